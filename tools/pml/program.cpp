#include "program.h"

#include <cerrno>
#include <new>
#include <ostream>
#include <system_error>

namespace pmltool {

namespace {

/// Says why the output failed, unless nobody reads it any more.
int outputFailed(char const * program, Console & console, int error) {
    console.out.exceptions(std::ios::goodbit);  // it is flushed once more when the program ends
    if (error != EPIPE) {
        console.err << program << ": standard output: " << std::generic_category().message(error) << '\n';
    }
    return bad;
}

}  // namespace

int guarded(char const * program, Console & console, std::function<int()> const & work) {
    console.out.exceptions(std::ios::badbit | std::ios::failbit);
    try {
        int const status = work();
        errno = 0;
        console.out.flush();
        return status;
    } catch (BadInput const & error) {
        console.err << error.what() << '\n';
    } catch (std::bad_alloc const &) {
        console.err << program << ": out of memory\n";
    } catch (std::ios::failure const &) {
        return outputFailed(program, console, errno);
    }
    return bad;
}

void protectFileNames(std::vector<std::string> & arguments) {
    for (std::string & argument : arguments) {
        if (argument.starts_with('[') && argument.ends_with(']')) argument.insert(0, "./");
    }
}

}  // namespace pmltool
