#include "nbr_commands.h"

namespace nbrtool {

int check(std::vector<std::string> const & files, Console & console) {
    return forEachFile(files, console, [&](std::string const & file) {
        forEachToken(readBytes(file, console), [](Token const &, std::size_t) {});
        return pmltool::ok;
    });
}

}  // namespace nbrtool
