#include "yon/timer/timer_records.h"

#include "yon/log/dumper.h"

namespace yon {

namespace {

struct Show {
    dumper & d;
    void operator()(std::monostate) const {}
    void operator()(TimerId id) const { id.dump(d.internal_stream()); }
    void operator()(auto const & value) const { d << value; }
};

}  // namespace

TimerRecords::~TimerRecords() {
    if (!entries_.empty()) write();
}

void TimerRecords::add(Entry const & entry) noexcept try {
    entries_.push_back(entry);
    auto const * const block = std::get_if<TimerBlock>(&entry.subject);
    if (!pin_ && block != nullptr && block->m_pCallBackTimerObject != nullptr) pin_.emplace(callbacks_);
} catch (std::bad_alloc const &) {
    // As promised.
}

void TimerRecords::write() noexcept try {
    std::vector<String> texts;
    for (Entry const & entry : entries_) {
        dumper d;
        d.raw(entry.text);
        std::visit(Show{d}, entry.subject);
        texts.push_back(d.str());
    }
    // Who listens to records may do what it likes.
    pin_.reset();
    for (std::size_t i = 0; i < texts.size(); ++i) {
        Entry const & entry = entries_[i];
        istr tag = category_;
        if (entry.level == diagnostics::Level::error) tag = "<ERROR>";
        if (entry.level == diagnostics::Level::warning) tag = "<WARNING>";
        diagnostics::record(entry.level, tag, {"src/yon/timer/timerQueue", entry.line, entry.function}, texts[i]);
    }
} catch (...) {
    // No memory for the texts, or an object that cannot be dumped.
}

}  // namespace yon
