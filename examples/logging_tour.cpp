// Logging in practice: two threads work with a configuration file, and fail on purpose in several ways. Prints the
// log that they leave; docs/logging.md walks through it.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "yon/yon.h"

namespace {

namespace fs = std::filesystem;

// Settings for all loggers, and what differs for the one called "mail".
constexpr char const * settings = R"(tour(
    log(
        filename(tour.log)
        debugOn(1)                    (* debug lines go to tour.debug.log *)
        loggers(
            mail(traceOn(1))
        )
    )
))";

/// What a program usually writes: its loggers by name.
yon::logger & mail() {
    static yon::logger & log = yon::logger_factory::instance("mail");
    return log;
}

int sizeOf(yon::String const & message) {
    YON_TRACE(mail());
    if (message.empty()) YON_THROW(yon::EmptyDataException, "a message without text");
    return static_cast<int>(message.size());
}

bool deliver(yon::String const & message) {
    YON_TRACE_INFO(mail(), "message '" << message << "'");
    int const size = sizeOf(message);
    YON_ENSURE(mail(), size < 20, "it is cut");
    YON_LOG_DEBUG(mail(), "MAIL", size << " bytes delivered");
    return true;
}

/// Delivers its messages one by one, and dies of what it does not expect.
class Worker : public yon::SimpleThread {
public:
    Worker(char const * name, std::vector<yon::String> const & messages)
        : SimpleThread(nullptr, name), messages_(messages) {}

private:
    bool onLoop() override {
        if (messages_.empty()) return false;
        yon::String const message = messages_.front();
        messages_.erase(messages_.begin());
        if (message == "?") throw std::runtime_error("what is this?");
        try {
            deliver(message);
        } catch (yon::ExceptionBase const & e) {
            YON_LOG_EXCEPTION(mail(), e);
        }
        return true;
    }

    std::vector<yon::String> messages_;
};

void work() {
    YON_LOG_INFO(mail(), "open with " << 2 << " workers");
    using Messages = std::vector<yon::String>;
    yon::Handle<Worker> const first = YON_NEW(Worker)("first", Messages{"hello", ""});
    yon::Handle<Worker> const second = YON_NEW(Worker)("second", Messages{"more than twenty letters", "?"});
    for (Worker * const worker : {first.get(), second.get()}) worker->start();
    while (first->getThreadControl().isAlive() || second->getThreadControl().isAlive()) yon::sleep(1);
    YON_LOG_WARNING(mail(), "closing, " << 2 << " messages were not delivered");
    YON_LOG_EVENT(mail(), "closed", "delivered", 2, "reason", "end of (working) day");
}

void configure(std::string const & text) {
    std::ofstream("tour.pml", std::ios::binary) << text;
    yon::logger_factory::yon().reload("tour.pml");
    mail().reload("tour.pml");
}

// Trouble with the log itself is told on standard error, once, and never stops the program.
void breakThings() {
    configure("tour(\n    log(debugOn:bool)\n)");
    mail().filename("missing/tour.log");
    YON_LOG_INFO(mail(), "lost");
    YON_LOG_INFO(mail(), "lost, too");
    yon::logger::Counters const counters = mail().counters();
    std::cerr << counters.dropped << " lines lost, " << counters.written << " written\n";
    fs::create_directory("missing");
    YON_LOG_INFO(mail(), "all is well again");
}

std::string contentOf(char const * name) {
    std::ostringstream text;
    text << std::ifstream(name, std::ios::binary).rdbuf();
    return text.str();
}

bool holds(std::string const & log, char const * part) {
    if (log.find(part) != log.npos) return true;
    std::cout << "missing: " << part << '\n';
    return false;
}

}  // namespace

int main() {
    fs::path const before = fs::current_path();
    fs::path const directory = fs::temp_directory_path() / "yon-logging-tour";
    fs::remove_all(directory);
    fs::create_directories(directory);
    fs::current_path(directory);

    configure(settings);
    work();
    breakThings();
    yon::logger_factory::flush();
    std::string const log = contentOf("tour.log");
    std::string const debug = contentOf("tour.debug.log");
    std::cout << "--- tour.log\n" << log << "--- tour.debug.log\n" << debug;

    bool ok = holds(debug, "[mail][MAIL]{first}[deliver] 5 bytes delivered\n");
    for (char const * const part :
         {"[mail] open with 2 workers\n", "THROWING\n", "CAUSE: yon::EmptyDataException: a message without text\n",
          "CALL STACK: sizeOf(examples/logging_tour.cpp:", "EXCEPTION\n", "CONDITION: size < 20\n",
          "WILL DO: it is cut\n", "uncaught exception:std::exception: what is this?", "[mail][<WARNING>] ",
          "closed(delivered(2)reason('end of (working) day'))\n"}) {
        ok = holds(log, part) && ok;
    }
    ok = holds(contentOf("missing/tour.log"), "[mail] all is well again\n") && ok;
    fs::current_path(before);
    return ok ? 0 : 1;
}
