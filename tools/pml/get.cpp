#include <ostream>

#include "commands.h"
#include "printed.h"

namespace pmltool {

namespace {

std::string shown(Unit const & node, Source const & source) {
    using yon::pml::ShowMode;
    if (node.listValue() == nullptr) return std::string(std::string_view(node.getStringValue()));
    try {
        return printed(node, source, ShowMode::FORMATTED);
    } catch (TooMuchText const &) {
        return printed(node, source, ShowMode::COMPACT);
    }
}

}  // namespace

int get(NodeArguments const & arguments, Console & console) {
    Source const source = readSource(arguments.file, console);
    Unit root;
    parse(source, root);
    console.out << shown(findNode(source, root, arguments.path), source) << '\n';
    return ok;
}

}  // namespace pmltool
