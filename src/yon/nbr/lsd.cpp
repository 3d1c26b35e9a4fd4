#include <algorithm>
#include <bitset>
#include <memory>
#include <vector>

#include "yon/base/throw.h"
#include "yon/log/dumper.h"
#include "yon/nbr/value.h"

namespace yon::nbr {

namespace {

/// Of complex values in a dump; deeper ones are shown as their number of elements.
constexpr unsigned mostDepth = 32;

std::string tagText(unsigned char tag) { return tag == noTag ? std::string("-") : std::to_string(tag); }

}  // namespace

ValueBase::~ValueBase() { MemLeakChecker::pop(this); }

ValueBase * ValueBase::clone() const {
    if (simple()) return YON_NEW(SimpleValue)(*simpleValue());
    return YON_NEW(ComplexValue)(*complexValue());
}

void SimpleValue::checkNumber(unsigned width) const {
    if (data_.empty()) YON_THROW(yon::nbr::DecodeException, "empty number");
    if (data_.size() > width) YON_THROW(yon::nbr::DecodeException, "too wide a number");
}

bool SimpleValue::read(Bytes & bytes) const {
    bytes = data_;
    return !data_.empty();
}

bool SimpleValue::read(std::string & text) const {
    yon::detail::textFromItem(data_, text);
    return !data_.empty();
}

bool SimpleValue::read(wstring & text) const {
    yon::detail::textFromItem(data_, text);
    return !data_.empty();
}

dumper & SimpleValue::dump(dumper & d) const {
    d.push("yon::nbr::SimpleValue", "@");
    d.field("data_", data_).field("text_", text_);
    d.pop();
    return d;
}

/// The last element of each tag, sorted by tag.
class ComplexValue::Index {
public:
    explicit Index(Items const & items) {
        std::bitset<noTag + 1> seen;
        seen.set(noTag);
        for (auto item = items.rbegin(); item != items.rend(); ++item) {
            if (seen[item->tag]) continue;
            seen.set(item->tag);
            entries_.push_back(*item);
        }
        std::sort(entries_.begin(), entries_.end(), less);
    }
    ValueBase * find(unsigned char tag) const noexcept {
        auto const entry = std::lower_bound(entries_.begin(), entries_.end(), Item{tag, nullptr}, less);
        return entry != entries_.end() && entry->tag == tag ? entry->value : nullptr;
    }
    void set(Item const & item) {
        auto const entry = std::lower_bound(entries_.begin(), entries_.end(), item, less);
        if (entry != entries_.end() && entry->tag == item.tag) {
            *entry = item;
        } else {
            entries_.insert(entry, item);
        }
    }

private:
    static bool less(Item const & a, Item const & b) noexcept { return a.tag < b.tag; }

    std::vector<Item> entries_;
};

ComplexValue::ComplexValue(ComplexValue const & o) : ValueBase(o) {
    // A constructor that fails has no destructor: this one cleans up.
    ComplexValue copy;
    copy.copyFrom(o);
    swap(copy);
}

/// Depth costs memory and not stack.
void ComplexValue::copyFrom(ComplexValue const & o) {
    struct Level {
        ComplexValue * to;
        Items::const_iterator next;
        Items::const_iterator end;
    };
    std::vector<Level> levels{{this, o.begin(), o.end()}};
    while (!levels.empty()) {
        Level & level = levels.back();
        if (level.next == level.end) {
            levels.pop_back();
            continue;
        }
        Item const & item = *level.next++;
        if (item.value->simple()) {
            std::unique_ptr<SimpleValue> copy(YON_NEW(SimpleValue)(*item.value->simpleValue()));
            level.to->add(item.tag, copy.get());
            copy.release();
        } else {
            std::unique_ptr<ComplexValue> copy(YON_NEW(ComplexValue)());
            level.to->add(item.tag, copy.get());
            ComplexValue const & from = *item.value->complexValue();
            levels.push_back({copy.release(), from.begin(), from.end()});
        }
    }
}

ComplexValue::~ComplexValue() {
    delete index_.load(std::memory_order_relaxed);
    // What is below comes up before its owner goes, so that depth costs nothing.
    while (!items_.empty()) {
        ValueBase * const value = items_.front().value;
        items_.pop_front();
        if (ComplexValue * const complex = value->complexValue()) items_.splice(items_.begin(), complex->items_);
        delete value;
    }
}

void ComplexValue::swap(ComplexValue & o) noexcept {
    items_.swap(o.items_);
    Index * const mine = index_.load(std::memory_order_relaxed);
    index_.store(o.index_.load(std::memory_order_relaxed), std::memory_order_relaxed);
    o.index_.store(mine, std::memory_order_relaxed);
}

void ComplexValue::add(unsigned char tag, ValueBase * value) {
    if (value == nullptr) return;
    items_.push_back({tag, value});
    Index * const index = index_.load(std::memory_order_relaxed);
    if (index == nullptr || tag == noTag) return;
    try {
        index->set(items_.back());
    } catch (...) {
        items_.pop_back();
        throw;
    }
}

ValueBase * ComplexValue::get(unsigned char tag) const {
    if (tag == noTag || items_.empty()) return nullptr;
    Index * index = index_.load(std::memory_order_acquire);
    if (index == nullptr) {
        auto fresh = std::make_unique<Index>(items_);
        // Another thread may have been faster: its index is as good.
        if (index_.compare_exchange_strong(index, fresh.get(), std::memory_order_acq_rel)) index = fresh.release();
    }
    return index->find(tag);
}

dumper & ComplexValue::dump(dumper & d) const {
    dump(d, 1);
    return d;
}

void ComplexValue::dump(dumper & d, unsigned depth) const {
    d.push("yon::nbr::ComplexValue", "@");
    if (depth > mostDepth) {
        d.indent().raw(std::to_string(items_.size())).raw(" elements").endline();
    } else {
        for (Item const & item : items_) {
            d.indent().raw(tagText(item.tag)).raw(" : ");
            if (ComplexValue const * const complex = item.value->complexValue()) {
                complex->dump(d, depth + 1);
            } else {
                item.value->dump(d);
            }
            d.endline();
        }
    }
    d.pop();
}

}  // namespace yon::nbr
