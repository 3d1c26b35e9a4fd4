#include "yon/mt/thread_factory.h"

#include "yon/base/located_new.h"
#include "yon/log/dumper_stl.h"
#include "yon/mt/handle.h"
#include "yon/mt/lock.h"
#include "yon/mt/simple_thread.h"
#include "yon/mt/thread_entry.h"
#include "yon/platform/fork.h"
#include "yon/platform/locks.h"
#include "yon/platform/platform.h"
#include "yon/platform/threads.h"
#include "yon/util/singleton_T.h"

namespace yon {

using detail::ThreadEntry;

constinit std::atomic<unsigned> detail::generation{1};

namespace {

/// Guards the factory, its making included, and what it knows of other threads. It stays when the factory goes.
constinit detail::SystemLock factoryLock;

unsigned presentGeneration() noexcept { return detail::generation.load(std::memory_order_relaxed); }

void beforeFork() noexcept { factoryLock.lock(); }
void afterForkInParent() noexcept { factoryLock.unlock(); }
void afterForkInChild() noexcept {
    detail::generation.fetch_add(1, std::memory_order_relaxed);
    factoryLock.unlock();
}
[[maybe_unused]] bool const survivesFork =
    (platform::onFork(platform::ForkLayer::mt, beforeFork, afterForkInParent, afterForkInChild), true);

void endEntry(void * value) {
    ThreadEntry * const entry = static_cast<ThreadEntry *>(value);
    ThreadFactory::forget_i(*entry);
    YON_DELETE(entry);
}

bool setForCaller(ThreadEntry * entry) noexcept { return platform::setSlot(platform::Slot::info, entry, endEntry); }

ThreadEntry & makeForCaller() {
    ThreadEntry * const entry = YON_NEW(ThreadEntry)();
    if (!setForCaller(entry)) {
        YON_DELETE(entry);
        throw std::bad_alloc();
    }
    return *entry;
}

}  // namespace

// --- what a thread knows of itself ---

String detail::identityText(ThreadId id, bool ofLibrary) {
    String text(ofLibrary ? "{" : "<");
    text += std::to_string(platform::currentProcessId());
    text += '.';
    text += std::to_string(static_cast<unsigned int>(id));
    text += ofLibrary ? '}' : '>';
    return text;
}

ThreadEntry & ThreadEntry::makeKnown() {
    ThreadEntry * const old = ofCaller();
    ThreadEntry & entry = old != nullptr ? *old : makeForCaller();
    ThreadFactory::know_i(entry, entry.thread_);
    return entry;
}

void ThreadEntry::begin(SimpleThread & thread) { ThreadFactory::know_i(get(), &thread); }

void ThreadEntry::end() noexcept {
    ThreadEntry * const entry = ofCaller();
    if (entry == nullptr) return;
    setForCaller(nullptr);
    endEntry(entry);
}

void ThreadInfo::updateDateTime() {
    Time const now = Time::now();
    // The text shows milliseconds.
    bool const sameText = now.toMilliSeconds() == currDateTime_.toMilliSeconds() && !sCurrDateTime_.empty();
    currDateTime_ = now;
    if (!sameText) sCurrDateTime_ = now.toDateTime();
}

dumper & ThreadInfo::dump(dumper & d) const {
    d.push("yon::ThreadInfo", "@");
    d.field("sThreadId_", sThreadId_).field("currDateTime_", currDateTime_).field("sCurrDateTime_", sCurrDateTime_);
    if (thread_ != nullptr) {
        d.field("*thread_", *thread_);
    } else {
        d.field("*thread_", [](dumper & out) -> dumper & { return out.raw("(void*)0"); });
    }
    d.pop();
    return d;
}

// --- the factory ---

ThreadFactory & ThreadFactory::made_i() {
    ThreadFactory & factory =
        *Singleton_T<ThreadFactory>::instance("src/yon/mt/thread", 759, "yon::ThreadFactory::instance");
    if (factory.generation_ != presentGeneration()) {
        // None of the threads that the parent process had is there.
        factory.entries_.clear();
        factory.generation_ = presentGeneration();
    }
    return factory;
}

ThreadFactory * ThreadFactory::instance() {
    Lock const lock(factoryLock);
    return &made_i();
}

void ThreadFactory::know_i(ThreadEntry & entry, SimpleThread * thread) {
    ThreadId const id = ThreadId::current();
    String text = detail::identityText(id, thread != nullptr);
    Lock const lock(factoryLock);
    ThreadFactory & factory = made_i();
    factory.entries_[id] = &entry;
    entry.thread_ = thread;
    entry.sThreadId_.swap(text);
    entry.id_ = id;
    entry.generation_ = factory.generation_;
}

void ThreadFactory::forget_i(ThreadEntry & entry) noexcept {
    Lock const lock(factoryLock);
    if (entry.generation_ == presentGeneration()) made_i().entries_.erase(entry.id_);
}

void ThreadFactory::destroy_i() {
    Lock const lock(factoryLock);
    detail::generation.fetch_add(1, std::memory_order_relaxed);
    Singleton_T<ThreadFactory>::destroy();
}

std::size_t ThreadFactory::size() const {
    Lock const lock(factoryLock);
    return entries_.size();
}

std::vector<KnownThread> ThreadFactory::threads() const {
    std::vector<KnownThread> threads;
    Lock const lock(factoryLock);
    for (auto const & [id, entry] : entries_) {
        // The object is there as long as its entry.
        SimpleThread const * const thread = entry->thread_;
        threads.push_back({id, entry->sThreadId_, thread != nullptr ? thread->name() : String(), thread != nullptr,
                           thread == nullptr || thread->living()});
    }
    return threads;
}

dumper & operator<<(dumper & d, THREAD_FACTORY const & factory) {
    struct Known {
        ThreadId id;
        String text;
        Handle<SimpleThread> thread;  ///< lives as long as it is written
    };
    std::vector<Known> threads;
    {
        Lock const lock(factoryLock);
        for (auto const & [id, entry] : factory.entries_) threads.push_back({id, entry->sThreadId_, entry->thread_});
    }
    return detail::dumpRange(d, "yon::ThreadFactory", threads, [&d](Known const & known) {
        ThreadInfo info{known.thread.get(), known.text, {}, {}};
        info.updateDateTime();
        d.write(known.id).raw(" : ") << info;
    });
}

}  // namespace yon
