// The commands. Each talks through the console, and returns the program's status; `BadInput` and `BadUsage` end it
// early.
#pragma once

#include <string>
#include <vector>

#include "source.h"
#include "yon/nbr/output_stream.h"
#include "yon/nbr/scanner.h"

namespace nbrtool {

using pmltool::BadInput;
using pmltool::BadUsage;
using pmltool::Console;
using pmltool::Source;
using yon::istr;
using yon::String;
using yon::nbr::Token;
using yon::pml::Unit;

/// Reads a file, or standard input for "-", as it is.
Source readBytes(std::string const & file, Console & console);

/// Calls `work(token, depth)` for all tokens. Raises `BadInput` with the place of the first defect.
template <class Work>
void forEachToken(Source const & source, Work work) {
    yon::nbr::Scanner scanner{istr(source.text)};
    for (;;) {
        Token const token = scanner.next();
        if (token.what == Token::done) return;
        if (token.what == Token::defect) {
            throw BadInput(source.name + ':' + std::to_string(token.offset) + ": " + token.fault);
        }
        work(token, scanner.depth());
    }
}

/// What the data of an item may mean.
std::string guess(Token const & item);

struct DumpArguments {
    std::vector<std::string> files;
    bool hex = false;
};
int dump(DumpArguments const & arguments, Console & console);

int check(std::vector<std::string> const & files, Console & console);

/// From values to a tree of pml, whose root has the values as its children, and back. They raise `BadInput`.
void toTree(Source const & source, Unit & root);
void fromTree(Source const & source, Unit const & root, yon::nbr::OutputStream & out);
int toPml(std::string const & file, Console & console);
int fromPml(std::string const & file, Console & console);

/// The whole program: reads the command line (without the program's name) and runs the command.
int run(std::vector<std::string> arguments, Console & console);

}  // namespace nbrtool
