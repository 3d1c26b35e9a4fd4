#include <iostream>

#include "commands.h"
#include "examine.h"
#include "printed.h"
#include "replace_file.h"
#include "tree.h"
#include "visible.h"
#include "yon/pml/pml_writer.h"

namespace pmltool {

namespace {

using yon::pml::ShowPattern;

std::string formatted(Source const & source, Unit const & root, FormatArguments const & arguments) {
    int const paths = arguments.showPaths ? ShowPattern::PATH : 0;
    try {
        return printed(root, arguments.mode, ShowPattern::usual | ShowPattern::QUOTE_BLANKS | paths) + '\n';
    } catch (TooMuchText const &) {
        throw BadInput(source.name + ": nested too deep for this layout; --mode compact does without indentation");
    }
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
