#include "printed.h"

#include <ostream>
#include <streambuf>

#include "yon/pml/pml_writer.h"

namespace pmltool {

namespace {

using yon::pml::ShowMode;
using yon::pml::ShowPattern;

class LimitedText final : public std::streambuf {
public:
    explicit LimitedText(std::size_t most) noexcept : most_(most) {}
    std::string & text() noexcept { return text_; }

protected:
    std::streamsize xsputn(char const * from, std::streamsize size) override {
        if (static_cast<std::size_t>(size) > most_ - text_.size()) throw TooMuchText();
        text_.append(from, static_cast<std::size_t>(size));
        return size;
    }

private:
    std::size_t const most_;
    std::string text_;
};

}  // namespace

std::string printed(Unit const & node, Source const & source, ShowMode mode, bool showPaths) {
    std::size_t const most = (std::size_t{64} << 20) + 16 * source.text.size();
    LimitedText text(mode == ShowMode::COMPACT ? std::string::npos : most);
    std::ostream out(&text);
    out.exceptions(std::ios::badbit);
    int const paths = showPaths ? ShowPattern::PATH : 0;
    ntvToPml(node, out, mode, ShowPattern::usual | ShowPattern::QUOTE_BLANKS | paths);
    return std::move(text.text());
}

}  // namespace pmltool
