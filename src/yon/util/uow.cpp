#include "yon/util/uow.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <sstream>
#include <thread>
#include <utility>

#include "yon/base/throw.h"
#include "yon/log/logger_factory.h"
#include "yon/log/macros.h"
#include "yon/util/running_units.h"

namespace yon {

namespace {

constexpr char file[] = "src/yon/util/uow";

template <class E>
String printed(E const & error) {
    std::ostringstream os;
    os << error;
    return os.str();
}

/// Keeps a unit among the running ones.
struct Running {
    explicit Running(UnitOfWork & u) : unit(u) { RunningUnits::add(unit); }
    Running(Running const &) = delete;
    ~Running() { RunningUnits::remove(unit); }
    UnitOfWork & unit;
};

}  // namespace

UnitOfWork::UnitOfWork(char const * name, UnitOfWork * parent) : parent_(parent), name_(name) {}

UnitOfWork::~UnitOfWork() noexcept(false) {
    bool sawNull = false;
    std::exception_ptr raised;
    for (UnitOfWork * const child : children_) {
        sawNull |= child == nullptr;
        try {
            MemLeakChecker::pop(child);
            delete child;
        } catch (...) {
            if (!raised) raised = std::current_exception();
        }
    }
    children_.clear();
    if (std::uncaught_exceptions() > 0) return;
    if (raised) std::rethrow_exception(raised);
    if (sawNull) {
        YON_THROW_AT(YON_LOCATION(file, 68, "yon::UnitOfWork::~UnitOfWork"), yon::NullPointerException);
    }
}

int UnitOfWork::start() {
    TraceEntry const trace(logger_factory::yon(), file, 76, "yon::UnitOfWork::start", TraceEntry::both,
                           name_.c_str());
    exitCode_.store(0, std::memory_order_relaxed);
    Running const running(*this);
    on_init();
    loop();
    on_fini();
    return exitCode();
}

void UnitOfWork::loop() {
    unsigned failures = 0;
    while (running()) {
        try {
            if (reload_.exchange(false, std::memory_order_acq_rel)) on_reload();
            on_loop();
            failures = 0;
            continue;
        } catch (ExceptionBase const & e) {
            writeExcptLog(logger_factory::yon(), file, 91, "yon::UnitOfWork::start", printed(e).c_str());
        } catch (std::exception const & e) {
            writeErrorLog(logger_factory::yon(), file, 97, "yon::UnitOfWork::start", printed(e).c_str(), "<ERROR>");
        }
        failed(failures);
    }
}

void UnitOfWork::failed(unsigned & failures) {
    ++failures;
    if (failureLimit_ != 0 && failures >= failureLimit_) {
        stop(exitCode() != 0 ? exitCode() : 1);
        return;
    }
    if (firstWait_ <= Time()) return;
    Time wait = firstWait_;
    for (unsigned i = 1; i < failures && wait < longestWait_; ++i) wait += wait;
    auto const end = std::chrono::steady_clock::now() + std::chrono::microseconds(std::min(wait, longestWait_));
    // In short pieces, so that a stop is seen.
    while (running() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_until(
            std::min(end, std::chrono::steady_clock::now() + std::chrono::milliseconds(50)));
    }
}

void UnitOfWork::stop(int code) noexcept {
    exitCode_.store(code, std::memory_order_release);
    running_.store(false, std::memory_order_release);
}

void UnitOfWork::stopAll(int code) noexcept {
    for (UnitOfWork * unit = this; unit != nullptr; unit = unit->parent_) unit->stop(code);
}

UnitOfWork * UnitOfWork::root() noexcept {
    UnitOfWork * unit = this;
    while (unit->parent_ != nullptr) unit = unit->parent_;
    return unit;
}

String UnitOfWork::path() const {
    std::vector<UnitOfWork const *> units;
    for (UnitOfWork const * unit = this; unit != nullptr; unit = unit->parent_) units.push_back(unit);
    String path;
    for (auto unit = units.rbegin(); unit != units.rend(); ++unit) {
        if (unit != units.rbegin()) path += '/';
        path += (*unit)->name_;
    }
    return path;
}

UnitOfWork & UnitOfWork::addChild(UnitOfWork * child) {
    if (child == nullptr) YON_THROW(yon::NullPointerException, "UnitOfWork::addChild");
    for (UnitOfWork const * unit = this; unit != nullptr; unit = unit->parent_) {
        if (unit == child) YON_THROW(yon::InvalidDataException, "a unit cannot be its own descendant");
    }
    if (std::find(children_.begin(), children_.end(), child) != children_.end()) {
        YON_THROW(yon::InvalidDataException, "the unit is a child already");
    }
    children_.push_back(child);
    child->parent_ = this;
    return *child;
}

UnitOfWork & UnitOfWork::onFailure(Time first, Time most, unsigned limit) noexcept {
    firstWait_ = first;
    longestWait_ = std::max(first, most);
    failureLimit_ = limit;
    return *this;
}

}  // namespace yon
