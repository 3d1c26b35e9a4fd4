#include <iostream>
#include <streambuf>

#include "commands.h"
#include "examine.h"
#include "replace_file.h"
#include "tree.h"
#include "visible.h"
#include "yon/pml/pml_writer.h"

namespace pmltool {

namespace {

using yon::pml::ShowMode;
using yon::pml::ShowPattern;

/// Collects text up to a limit: the indentation of a deep tree grows with the square of its depth.
class LimitedText final : public std::streambuf {
public:
    struct Exceeded {};

    explicit LimitedText(std::size_t most) noexcept : most_(most) {}
    std::string & text() noexcept { return text_; }

protected:
    std::streamsize xsputn(char const * from, std::streamsize size) override {
        if (static_cast<std::size_t>(size) > most_ - text_.size()) throw Exceeded();
        text_.append(from, static_cast<std::size_t>(size));
        return size;
    }
    int_type overflow(int_type c) override {
        char const one = traits_type::to_char_type(c);
        return xsputn(&one, 1) == 1 ? c : traits_type::eof();
    }

private:
    std::size_t const most_;
    std::string text_;
};

std::string formatted(Source const & source, Unit const & root, FormatArguments const & arguments) {
    LimitedText text((std::size_t{64} << 20) + 16 * source.text.size());
    std::ostream out(&text);
    out.exceptions(std::ios::badbit);
    int const paths = arguments.showPaths ? ShowPattern::PATH : 0;
    try {
        ntvToPml(root, out, arguments.mode, ShowPattern::usual | ShowPattern::QUOTE_BLANKS | paths);
    } catch (LimitedText::Exceeded const &) {
        throw BadInput(source.name + ": nested too deep for this layout; --mode compact does without indentation");
    }
    out << '\n';
    return std::move(text.text());
}

/// Names with quotes in them, for example, may be written as something else.
void ensureReadsBack(Source const & source, std::string const & text, Unit const & root) {
    Unit again;
    bool parsed = true;
    try {
        parse({source.name, text, false}, again);
    } catch (BadInput const &) {
        parsed = false;
    }
    Unit const * const lost = firstDifference(root, again);
    if (parsed && lost == nullptr) return;
    throw BadInput(source.name + ": " + (lost == nullptr ? "the document" : shortPath(lost->path())) +
                   " would read back differently; see pml check");
}

int formatFile(std::string const & file, FormatArguments const & arguments, Console & console) {
    Source const source = readSource(file, console);
    Unit root;
    parse(source, root);
    Report const report = examine(source);
    if (report.hasErrors) {
        print(report, source, console.err, false);
        return bad;
    }
    std::string const text = formatted(source, root, arguments);
    ensureReadsBack(source, text, root);
    if (report.comments != 0 && !arguments.dropComments) {
        std::string const lost = source.name + ':' + Lines(source.text).at(report.firstComment) + ": ";
        if (arguments.inPlace) throw BadInput(lost + "comments would be lost; --drop-comments allows it");
        console.err << lost << "warning: comments are left out\n";
    }
    if (!arguments.inPlace) {
        console.out << text;
    } else if (text != source.text || source.marked) {
        replaceFile(file, "", text);
    }
    return ok;
}

}  // namespace

int format(FormatArguments const & arguments, Console & console) {
    if (arguments.inPlace) {
        for (std::string const & file : arguments.files) {
            if (file == "-") throw BadUsage("standard input (-) cannot be written in place");
        }
    }
    return forEachFile(arguments.files, console,
                       [&](std::string const & file) { return formatFile(file, arguments, console); });
}

}  // namespace pmltool
