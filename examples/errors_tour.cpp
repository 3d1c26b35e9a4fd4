// A tour of the exceptions and the leak checker. docs/errors.md quotes the functions below.
#include <iostream>
#include <sstream>
#include <thread>
#include <vector>

#include "yon/yon.h"

using yon::istr;
using yon::String;

namespace {

int parsePort(istr text) {
    if (!yon::StrIsAllDigits(String(text).c_str())) {
        YON_THROW(yon::InvalidDataException, yon::Printf("not a port: '%s'", text));
    }
    return yon::Long(String(text));
}

bool raiseAndCatch() {
    try {
        return parsePort("http") == 0;
    } catch (yon::ExceptionBase const & error) {  // the root of the family, a std::logic_error
        std::cout << error;
        return istr(error.file()).endWith("errors_tour.cpp") && istr(error.func()) == "parsePort" &&
               istr(error.what()) == "yon::InvalidDataException: not a port: 'http'";
    }
}

}  // namespace

namespace app {

// An exception of one's own that can be kept and raised again.
class BadConfig : public yon::Exception {
public:
    using Exception::Exception;
    YON_EXCEPTION_DECLARE
};
YON_EXCEPTION_DEFINE(BadConfig, "app::BadConfig")

}  // namespace app

namespace {

bool raiseOnAnotherThread() {
    yon::Exception * kept = nullptr;
    std::thread([&kept] {
        try {
            YON_THROW(app::BadConfig, "no host");
        } catch (yon::Exception const & error) {
            kept = error.yon_clone();
        }
    }).join();
    bool caught = false;
    try {
        kept->yon_throw();  // throws a copy of its own class
    } catch (app::BadConfig const & error) {
        std::cout << error.yon_name() << ": " << error.what() << '\n';
        caught = true;
    }
    YON_DELETE(kept);
    return caught;
}

struct Packet {
    char bytes[64];
};

bool findLeaks() {
    yon::MemLeakChecker::enable(true);
    std::vector<Packet *> packets;
    for (int i = 0; i < 3; ++i) packets.push_back(YON_NEW(Packet)());
    YON_DELETE(packets.back());
    packets.pop_back();
    yon::MemLeakChecker::report(std::cout);
    bool const found = yon::MemLeakChecker::count() == 2 && yon::MemLeakChecker::bytes() == 128;
    for (Packet * packet : packets) YON_DELETE(packet);
    yon::MemLeakChecker::enable(false);
    return found && yon::MemLeakChecker::count() == 0;
}

// What the library has to tell goes to one sink in the process.
class Journal final : public yon::diagnostics::Sink {
public:
    using Location = yon::diagnostics::Location;

    void exceptionThrown(Location const & where, istr message) noexcept override {
        std::cout << "thrown in " << where.func << ": " << message << '\n';
    }
    void record(yon::diagnostics::Level, istr tag, Location const &, istr message) noexcept override {
        std::cout << tag << ": " << message << '\n';
    }
    bool categoryOn(istr) noexcept override { return false; }
    void enter(Location const & where) noexcept override { calls_.emplace_back(where); }
    void leave(Location const &) noexcept override { calls_.pop_back(); }
    void callStack(yon::CallStack & out) noexcept override {
        for (yon::Current const & call : calls_) out.container().push(call);
    }

private:
    static thread_local std::vector<yon::Current> calls_;
};
thread_local std::vector<yon::Current> Journal::calls_;

// Traces the block that it stands in.
struct Traced {
    explicit Traced(yon::diagnostics::Location const & where) : where_(where) { yon::diagnostics::enter(where_); }
    ~Traced() { yon::diagnostics::leave(where_); }
    Traced(Traced const &) = delete;
    Traced & operator=(Traced const &) = delete;
    yon::diagnostics::Location const where_;
};

int readConfig(istr text) {
    Traced const trace(YON_HERE);
    return parsePort(text);
}

bool listen() {
    Journal journal;
    yon::diagnostics::install(&journal);
    std::ostringstream text;
    try {
        Traced const trace(YON_HERE);
        readConfig("7x");
    } catch (yon::ExceptionBase const & error) {
        text << error;
    }
    yon::diagnostics::install(nullptr);
    std::cout << text.str();
    std::string const printed = text.str();
    return printed.find("CALL STACK: readConfig(") != printed.npos && printed.find("listen(") != printed.npos;
}

}  // namespace

int main() { return raiseAndCatch() && raiseOnAnotherThread() && findLeaks() && listen() ? 0 : 1; }
