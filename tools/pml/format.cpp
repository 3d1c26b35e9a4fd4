#include <ostream>

#include "commands.h"
#include "examine.h"
#include "printed.h"
#include "replace_file.h"
#include "tree.h"
#include "visible.h"

namespace pmltool {

namespace {

std::string formatted(Source const & source, Unit const & root, FormatArguments const & arguments) {
    try {
        return printed(root, source, arguments.mode, arguments.showPaths) + '\n';
    } catch (TooMuchText const &) {
        throw BadInput(source.name + ": nested too deep for this layout; --mode compact does without indentation");
    }
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
    Source const result{source.name, formatted(source, root, arguments), false};
    if (Unit const * const lost = firstLost(root, result)) {
        throw BadInput(source.name + ": " + shortPath(lost->path()) + " would read back differently; see pml check");
    }
    if (report.comments != 0 && !arguments.dropComments) {
        std::string const lost = source.name + ':' + Lines(source.text).at(report.firstComment) + ": ";
        if (arguments.inPlace) throw BadInput(lost + "comments would be lost; --drop-comments allows it");
        console.err << lost << "warning: comments are left out\n";
    }
    if (!arguments.inPlace) {
        console.out << result.text;
    } else if (result.text != source.text || source.marked) {
        replaceFile(file, "", result.text);
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
