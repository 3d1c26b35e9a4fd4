#include <algorithm>

#include "commands.h"
#include "examine.h"

namespace pmltool {

int check(CheckArguments const & arguments, Console & console) {
    return forEachFile(arguments.files, console, [&](std::string const & file) {
        Source const source = readSource(file, console);
        Report const report = examine(source);
        print(report, source, console.err, true);
        return report.hasErrors || (arguments.strict && !report.findings.empty()) ? bad : ok;
    });
}

}  // namespace pmltool
