// Looking for long texts in linear time.

#include <algorithm>

#include "yon/base/view_base.h"

namespace yon::detail {

namespace {

/// Finds a text by the two-way method: in linear time whatever the texts hold, and without memory. The text is cut in
/// two at a place where a mismatch behind the cut allows to shift by all that matched there.
template <class Char>
class TwoWay {
public:
    using View = std::basic_string_view<Char>;

    explicit TwoWay(View s) noexcept : s_(s) {
        Suffix const a = greatestSuffix([](Char x, Char y) { return x < y; });
        Suffix const b = greatestSuffix([](Char x, Char y) { return y < x; });
        Suffix const & cut = a.begin > b.begin ? a : b;
        cut_ = cut.begin;
        period_ = cut.period;
        repeats_ = s.substr(0, cut_) == s.substr(period_, cut_);
        if (!repeats_) period_ = std::max(cut_, s.size() - cut_) + 1;
    }

    std::size_t find(View text, std::size_t pos) const noexcept {
        std::size_t known = 0;  // of the beginning of `s_`, where it repeats
        while (pos <= text.size() && text.size() - pos >= s_.size()) {
            Char const * const at = text.data() + pos;
            std::size_t i = std::max(cut_, known);
            while (i < s_.size() && s_[i] == at[i]) ++i;
            if (i < s_.size()) {
                pos += i - cut_ + 1;
                known = 0;
                continue;
            }
            i = cut_;
            while (i > known && s_[i - 1] == at[i - 1]) --i;
            if (i <= known) return pos;
            pos += period_;
            if (repeats_) known = s_.size() - period_;
        }
        return View::npos;
    }

private:
    struct Suffix {
        std::size_t begin;
        std::size_t period;
    };

    /// The suffix that is the greatest one by an order of the characters, and its period.
    template <class Less>
    Suffix greatestSuffix(Less less) const noexcept {
        Suffix best{0, 1};
        std::size_t other = 1;
        std::size_t same = 0;
        while (other + same < s_.size()) {
            Char const x = s_[other + same];
            Char const y = s_[best.begin + same];
            if (less(x, y)) {
                other += same + 1;
                same = 0;
                best.period = other - best.begin;
            } else if (x == y) {
                ++same;
                if (same == best.period) {
                    other += same;
                    same = 0;
                }
            } else {
                best = {other, 1};
                ++other;
                same = 0;
            }
        }
        return best;
    }

    View s_;
    std::size_t cut_;
    std::size_t period_;
    bool repeats_;
};

/// Goes by the first characters, which is the fastest way in all usual texts, until they mislead too often.
template <class Char>
std::size_t findBySample(std::basic_string_view<Char> text, std::basic_string_view<Char> s,
                         std::size_t pos) noexcept {
    auto const sample = s.substr(0, longestShort);
    std::size_t const begin = pos;
    for (std::size_t misled = 0; (pos = text.find(sample, pos)) != text.npos; ++pos) {
        if (text.substr(pos).starts_with(s)) return pos;
        if (++misled * s.size() > 8 * s.size() + (pos - begin)) return TwoWay<Char>(s).find(text, pos + 1);
    }
    return text.npos;
}

}  // namespace

std::size_t findLong(std::string_view text, std::string_view s, std::size_t pos) noexcept {
    return findBySample(text, s, pos);
}

std::size_t findLong(std::basic_string_view<wchar> text, std::basic_string_view<wchar> s, std::size_t pos) noexcept {
    return findBySample(text, s, pos);
}

}  // namespace yon::detail
