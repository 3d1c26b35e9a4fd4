#include "nbr_commands.h"

namespace nbrtool {

Source readBytes(std::string const & file, Console & console) {
    Source source = readSource(file, console);
    // Here the mark of a text is data like any other.
    if (source.marked) source.text.insert(0, "\xEF\xBB\xBF");
    return source;
}

}  // namespace nbrtool
