#include <ostream>

#include "commands.h"
#include "printed.h"

namespace pmltool {

namespace {

std::string shown(Unit const & node) {
    using yon::pml::ShowMode;
    using yon::pml::ShowPattern;
    if (node.listValue() == nullptr) return std::string(std::string_view(node.getStringValue()));
    ShowPattern const pattern(ShowPattern::usual | ShowPattern::QUOTE_BLANKS);
    try {
        return printed(node, ShowMode::FORMATTED, pattern);
    } catch (TooMuchText const &) {
        return printed(node, ShowMode::COMPACT, pattern);
    }
}

}  // namespace

int get(NodeArguments const & arguments, Console & console) {
    Source const source = readSource(arguments.file, console);
    Unit root;
    parse(source, root);
    console.out << shown(findNode(source, root, arguments.path)) << '\n';
    return ok;
}

}  // namespace pmltool
