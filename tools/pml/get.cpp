#include <ostream>

#include "commands.h"
#include "yon/pml/pml_writer.h"

namespace pmltool {

int get(NodeArguments const & arguments, Console & console) {
    Source const source = readSource(arguments.file, console);
    Unit root;
    parse(source, root);
    Unit const & node = findNode(source, root, arguments.path);
    if (node.listValue() != nullptr) {
        using namespace yon::pml;
        ntvToFormattedPml(node, console.out, ShowPattern::usual | ShowPattern::QUOTE_BLANKS);
    } else {
        console.out << std::string_view(node.getStringValue());
    }
    console.out << '\n';
    return ok;
}

}  // namespace pmltool
