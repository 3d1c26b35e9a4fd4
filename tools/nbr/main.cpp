#include <iostream>

#include "nbr_commands.h"
#include "yon/platform/platform.h"

int main(int argc, char ** argv) {
    std::ios::sync_with_stdio(false);
    for (std::FILE * file : {stdin, stdout, stderr}) yon::platform::setBinary(file);
    nbrtool::Console console{std::cin, std::cout, std::cerr};
    return nbrtool::run({argv + 1, argv + argc}, console);
}
