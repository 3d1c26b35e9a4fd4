// The commands. Each takes its arguments, talks through the console, and returns the program's status; `BadInput` and
// `BadUsage` end it early.
#pragma once

#include <string>
#include <vector>

#include "source.h"
#include "yon/pml/show.h"

namespace pmltool {

struct FormatArguments {
    std::vector<std::string> files;
    yon::pml::ShowMode mode = yon::pml::ShowMode::FORMATTED;
    bool showPaths = false;
    bool inPlace = false;
    bool dropComments = false;
};
int format(FormatArguments const & arguments, Console & console);

struct CheckArguments {
    std::vector<std::string> files;
    bool strict = false;
};
int check(CheckArguments const & arguments, Console & console);

struct NodeArguments {
    std::string file;
    std::string path;
};
int get(NodeArguments const & arguments, Console & console);
int list(NodeArguments const & arguments, Console & console);

struct SetArguments {
    std::string file;
    std::string path;
    std::string value;
    bool existing = false;
    bool force = false;
};
int set(SetArguments const & arguments, Console & console);

struct DiffArguments {
    std::string left;
    std::string right;
};
int diff(DiffArguments const & arguments, Console & console);

/// The whole program: reads the command line (without the program's name) and runs the command.
int run(std::vector<std::string> arguments, Console & console);

}  // namespace pmltool
