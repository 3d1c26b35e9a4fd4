#include "yon/log/crash_report.h"

#include <cxxabi.h>

#include <atomic>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <string_view>
#include <typeinfo>

#include "yon/base/exception.h"
#include "yon/base/version_text.h"
#include "yon/log/crash_writer.h"
#include "yon/log/emergency.h"
#include "yon/log/logger_factory.h"
#include "yon/log/trace_mirror.h"
#include "yon/platform/alternate_stack.h"
#include "yon/platform/crash.h"
#include "yon/platform/fork.h"
#include "yon/platform/locks.h"
#include "yon/platform/platform.h"

namespace yon {

namespace {

struct HookEntry {
    std::atomic<CrashReport::Hook> hook{nullptr};
    void * arg = nullptr;
};

constinit HookEntry hooks[16];
constinit std::atomic<std::size_t> hookCount{0};
constinit std::atomic<std::terminate_handler> earlierTerminate{nullptr};
constinit char program[1024] = "";
// Not on the stack, of which there may be little left.
constinit CrashWriter reportWriter([](char const * data, std::size_t size) noexcept {
    platform::writeCrashFile(data, size);
});

[[maybe_unused]] bool const survivesFork =
    (platform::onFork(platform::ForkLayer::log, nullptr, nullptr, platform::leaveCrashFile), true);

/// The thread that crashed first. What the others wait for is that it ends the process.
constinit std::atomic<unsigned> reporter{0};
constinit std::atomic<bool> reported{false};
constexpr unsigned patience = 10000;  // milliseconds
constexpr unsigned step = 20;

void writeMirror(CrashWriter & out, TraceMirror const & mirror) noexcept {
    unsigned const depth = mirror.size();
    if (depth == 0) return;
    out.open("stack");
    unsigned i = depth;
    if (depth > TraceMirror::capacity) {
        out.number("omitted", depth - TraceMirror::capacity);
        i = TraceMirror::capacity;
    }
    while (i != 0) out.call(mirror.at(--i));
    out.close();
}

void writeThreads(CrashWriter & out, unsigned crashed) noexcept {
    out.open("threads");
    bool known = false;
    auto const begin = [&](unsigned id) {
        out.open("", "thread");
        out.number("id", id);
        if (id == crashed) out.number("crashed", 1);
    };
    TraceMirror::forEach([&](TraceMirror const & mirror) {
        unsigned const id = mirror.threadId();
        known = known || id == crashed;
        begin(id);
        if (*mirror.threadName() != '\0') out.text("name", mirror.threadName());
        writeMirror(out, mirror);
        out.close();
    });
    if (!known) {
        begin(crashed);
        out.close();
    }
    out.close();
}

void writeStack(CrashWriter & out, CallStack const & stack) noexcept {
    if (stack.container().empty()) return;
    out.open("stack");
    for (auto i = stack.container().end(); i != stack.container().begin();) {
        --i;
        out.call({i->file(), i->line(), i->func()});
    }
    out.close();
}

/// The exception that nobody caught. REQUIRES: this is called by `std::terminate`.
void writeException(CrashWriter & out) noexcept {
    std::type_info const * const type = abi::__cxa_current_exception_type();
    if (type == nullptr) return;
    out.open("exception");
    out.text("type", type->name());
    try {
        throw;
    } catch (ExceptionBase const & e) {
        out.text("text", e.what());
        out.call({e.file(), e.line(), e.func()}, "at", "");
        writeStack(out, e.stack());
    } catch (std::exception const & e) {
        out.text("text", e.what());
    } catch (...) {
    }
    out.close();
}

enum class Origin { system, terminate };

/// Signals are known by small numbers, exceptions of Windows by hexadecimal ones.
void writeCode(CrashWriter & out, unsigned code) noexcept {
    if (code < 0x100) {
        out.number("code", code);
    } else {
        out.hex("code", code);
    }
}

void writeReport(platform::CrashCause const & cause, Origin origin) noexcept {
    CrashWriter & out = reportWriter;
    out.open("crash");
    out.text("reason", cause.name);
    if (origin == Origin::system) writeCode(out, cause.code);
    if (cause.located) out.hex("address", cause.address);
    out.time("time", platform::wallMicroseconds());
    out.text("version", YON_VERSION_TEXT);
    out.text("program", program);
    out.number("process", platform::currentProcessId());
    out.number("thread", cause.thread);
    if (origin == Origin::terminate) writeException(out);
    out.flush();
    writeThreads(out, cause.thread);
    out.close();
    out.flush();
}

void callHooks() noexcept {
    for (HookEntry const & h : hooks) {
        if (CrashReport::Hook const hook = h.hook.load(std::memory_order_acquire)) hook(h.arg);
    }
}

/// Returns whether the earlier handlers are to be called.
bool handle(platform::CrashCause const & cause, Origin origin) noexcept {
    unsigned first = 0;
    if (!reporter.compare_exchange_strong(first, cause.thread)) {
        // `std::terminate` ends in `abort`, and an earlier handler may do so.
        if (first == cause.thread) return reported.load(std::memory_order_relaxed);
        for (unsigned waited = 0; waited < patience; waited += step) platform::pauseInCrash(step);
        return false;
    }
    writeReport(cause, origin);
    emergencyFlush();
    callHooks();
    reported.store(true, std::memory_order_relaxed);
    return true;
}

bool onSystemCrash(platform::CrashCause const & cause) noexcept { return handle(cause, Origin::system); }

[[noreturn]] void onTerminate() noexcept {
    bool const wanted = handle({"std::terminate", 0, false, 0, platform::currentThreadId()}, Origin::terminate);
    std::terminate_handler const earlier = earlierTerminate.load(std::memory_order_acquire);
    if (wanted && earlier != nullptr) earlier();
    std::abort();
}

/// How much of a path is its directory, with the separator.
std::size_t directorySize(std::string_view path) noexcept { return path.find_last_of("/\\") + 1; }

String defaultName() {
    std::string const log = logger_factory::yon().filename();
    std::string_view const path = program;
    std::string name = log.substr(0, directorySize(log));
    name.append(path.substr(directorySize(path)));
    return name + "." + std::to_string(platform::currentProcessId()) + ".crash.pml";
}

}  // namespace

bool CrashReport::install(istr filename) {
    // Stays with the thread for as long as it lives.
    static thread_local platform::AlternateStack const stack;
    static_cast<void>(&stack);
    std::string const path = platform::programPath();
    program[path.copy(program, sizeof program - 1)] = '\0';
    int const error = platform::prepareCrashFile(filename.empty() ? defaultName() : String(filename));
    platform::watchCrashes(onSystemCrash);
    if (std::terminate_handler const now = std::set_terminate(onTerminate); now != onTerminate)
        earlierTerminate.store(now, std::memory_order_release);
    return error == 0;
}

void CrashReport::uninstall() noexcept {
    if (std::get_terminate() == onTerminate) std::set_terminate(earlierTerminate.load(std::memory_order_acquire));
    platform::unwatchCrashes();
    platform::closeCrashFile();
}

bool CrashReport::onCrash(Hook hook, void * arg) noexcept {
    std::size_t const at = hookCount.fetch_add(1, std::memory_order_relaxed);
    if (at >= std::size(hooks)) return false;
    hooks[at].arg = arg;
    hooks[at].hook.store(hook, std::memory_order_release);
    return true;
}

}  // namespace yon
