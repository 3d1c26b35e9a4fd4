// A tour of pml: parse a document, ask it, change it, print it. docs/pml.md quotes the functions below.
#include <iostream>
#include <map>
#include <stdexcept>
#include <vector>

#include "yon/yon.h"

using yon::istr;
using yon::String;
using yon::pml::Unit;

namespace {

bool parseAndQuery() {
    Unit root;
    yon::pml::ntvFromPml(root, istr(R"pml(
        server(
            host(alpha)
            port:ushort(7400)
            motd('it\'s up')
            peers(:peer(id(beta)) :peer(id(gamma)))
        ))pml"));
    int port = 0;
    if (!(root["port"] >> port)) return false;              // false, and port untouched, unless it is a number
    istr const motd = root["motd"].getStringValue();        // a view of the text, which the tree owns
    Unit const * const second = root.find("/peers[1]/id");  // null when there is no such node
    std::cout << port << ", " << motd << ", " << second->getStringValue() << '\n';
    for (Unit const * peer : *root["peers"].listValue()) {
        std::cout << peer->path() << " is a " << peer->type() << " with " << peer->numofChildren() << " child\n";
    }
    return port == 7400 && motd == "it's up" && second->getStringValue() == "gamma";
}

bool build() {
    Unit root("server");
    root["host"] << "alpha";  // made when it is not there
    root["port"].type("ushort") << 7400;
    root["limits"]["rate"].type("double") << 0.25;
    root["peers"].addChild("", "peer", "beta");  // an unnamed node in a list
    root["peers"].addChild("", "peer", "gamma (new)");
    std::cout << root.str(yon::pml::ShowMode::SIMPLE) << '\n';
    return root.str(yon::pml::ShowMode::COMPACT) ==
           "server(host(alpha)port:ushort(7400)limits(rate:double(0.25))peers(:peer(beta):peer('gamma (new)')))";
}

bool edit() {
    Unit root;
    yon::pml::ntvFromPml(root, istr("log(level(3) file(a.log))"));
    root["level"] << 4;                 // a new text in the old node
    root.updateChild("file", "b.log");  // changed here, added where it is missing
    Unit backup(root);                  // a deep copy
    backup.name("backup");
    root.addChild(backup);  // another copy, as a child
    try {
        root.addChild("level", "5");
    } catch (std::invalid_argument const & error) {
        std::cout << error.what() << '\n';  // duplicated unit
    }
    std::cout << root << '\n';  // on one line
    return root.str(yon::pml::ShowMode::COMPACT) == "log(level(4)file(b.log)backup(level(4)file(b.log)))";
}

bool reportErrors() {
    Unit root;
    try {
        yon::pml::ntvFromPml(root, istr("times(\n    start(12:30)\n)"));
    } catch (std::invalid_argument const & error) {
        std::cout << error.what() << '\n';
        return String(error.what()) == "not found value begin tag, token at line 2, column 14";
    }
    return false;
}

struct Settings {
    bool volatile tracing = false;
    yon::ushort port = 7400;
    std::map<String, yon::Bit> enabled;
    std::vector<String> peers;

    /// One description for both ways.
    void codec(yon::pml::stream & s) {
        using yon::pml::field;
        s & field("tracing", tracing) & field("port", port, "ushort") & field("enabled", enabled) &
            field("peers", peers);
    }
};

bool bindFields() {
    Settings settings;
    yon::pml::stream in("server(tracing(1) enabled(net(1) disk(0)) peers((beta)))");
    settings.codec(in);  // an input stream: what is missing, as the port, stays as it is
    settings.peers.push_back("gamma");
    yon::pml::stream out;
    settings.codec(out.name("server"));  // an output stream
    std::cout << out << '\n';
    return out.str(yon::pml::ShowMode::COMPACT) ==
           "server(tracing(1)port:ushort(7400)enabled(disk(0)net(1))peers((beta)(gamma)))";
}

bool formatText() {
    String text;
    if (!yon::pml::format(istr("b(  x( 1 )y('2'))(* gone *)"), text, yon::pml::ShowMode::SIMPLE)) return false;
    std::cout << text << '\n';
    return text == "b(\n    x(1)\n    y(2)\n)";
}

}  // namespace

int main() { return parseAndQuery() && build() && edit() && reportErrors() && bindFields() && formatText() ? 0 : 1; }
