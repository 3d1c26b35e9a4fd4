#include "printed.h"

#include <ostream>
#include <streambuf>

#include "yon/pml/pml_writer.h"

namespace pmltool {

namespace {

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

std::string printed(Unit const & node, yon::pml::ShowMode mode, yon::pml::ShowPattern pattern) {
    bool const indents = mode != yon::pml::ShowMode::COMPACT;
    LimitedText text(indents ? std::size_t{256} << 20 : std::size_t{0} - 1);
    std::ostream out(&text);
    out.exceptions(std::ios::badbit);
    ntvToPml(node, out, mode, pattern);
    return std::move(text.text());
}

}  // namespace pmltool
