// Where the commands read from and write to, and how they say what is wrong.
#pragma once

#include <iosfwd>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "yon/pml/ntv.h"

namespace pmltool {

using yon::istr;
using yon::String;
using yon::pml::Unit;

/// The streams that a command talks through. Standard input can be taken once.
struct Console {
    std::istream & in;
    std::ostream & out;
    std::ostream & err;
    bool inputTaken = false;
};

/// Something is wrong with a file; the text names it. Ends a command with status 1.
struct BadInput : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The arguments contradict each other. Ends the program with the usage and status 2.
struct BadUsage : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The commands' statuses.
enum Status { ok = 0, bad = 1, usage = 2 };

/// A document that was read whole. Offsets into `text` are how the commands name places.
struct Source {
    std::string name;  ///< for messages
    std::string text;  ///< without the mark
    bool marked;       ///< a UTF-8 byte-order mark stood before the text
};

/// Reads a file, or standard input for "-". Raises `BadInput` with the system's reason.
Source readSource(std::string const & file, Console & console);

/// Parses the document as programs do. Raises `BadInput` with the place of the error.
void parse(Source const & source, Unit & root);

/// The node at a path. Raises `BadInput` when there is none.
Unit const & findNode(Source const & source, Unit const & root, std::string const & path);

/// Turns offsets into lines and columns, which count from 1 by line feeds and bytes. The text has to outlive it.
class Lines {
public:
    explicit Lines(std::string_view text) noexcept : text_(text) {}
    /// "line:column", or with words, "line L, column C".
    std::string at(std::size_t offset);
    std::string inWords(std::size_t offset);

private:
    struct Place {
        std::size_t line;
        std::size_t column;
    };
    Place place(std::size_t offset);

    std::string_view const text_;
    std::vector<std::size_t> starts_;  ///< of the lines; found at the first question
};

/// Calls `work` for each file, reports what goes wrong, and goes on: the worst status of all.
template <class Work>
int forEachFile(std::vector<std::string> const & files, Console & console, Work work) {
    int status = ok;
    for (std::string const & file : files) {
        try {
            status = std::max<int>(status, work(file));
        } catch (BadInput const & error) {
            console.err << error.what() << '\n';
            status = std::max<int>(status, bad);
        }
    }
    return status;
}

}  // namespace pmltool
