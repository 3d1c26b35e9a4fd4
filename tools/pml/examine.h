// What is wrong, or suspicious, in a document.
#pragma once

#include <string>
#include <vector>

#include "source.h"

namespace pmltool {

struct Finding {
    std::size_t offset;
    bool error;  ///< otherwise a warning
    std::string text;
};

struct Report {
    std::vector<Finding> findings;  ///< in the order of the text
    std::size_t comments = 0;
    std::size_t firstComment = 0;  ///< where it stands
    bool hasErrors = false;
};

/// Errors are what the parser refuses, what it leaves unread, and input that ends early; warnings are what it reads,
/// but perhaps not as it was meant.
Report examine(Source const & source);

/// Prints a line for each: "file:line:column: error: text". Warnings only when asked for.
void print(Report const & report, Source const & source, std::ostream & out, bool warnings);

}  // namespace pmltool
