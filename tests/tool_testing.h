// The command-line tools, run within a test program.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "source.h"

using Words = std::vector<std::string>;

struct Result {
    int status;
    std::string out, err;
};

inline Result runTool(int (*tool)(Words, pmltool::Console &), Words const & arguments, std::string const & input) {
    std::istringstream in(input);
    std::ostringstream out, err;
    pmltool::Console console{in, out, err};
    int const status = tool(arguments, console);
    return {status, out.str(), err.str()};
}

/// The words of a text without quotes.
inline Words wordsOf(std::string const & text) {
    std::istringstream in(text);
    Words words;
    for (std::string word; in >> word;) words.push_back(word);
    return words;
}
