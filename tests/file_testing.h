// Files and programs for tests.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

/// An empty directory that is gone when the test is over.
class TemporaryDirectory {
public:
    explicit TemporaryDirectory(std::string const & name)
        : path_(std::filesystem::temp_directory_path() / ("yon-" + name + "-test")) {
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    /// With slashes, which every system takes.
    std::string file(std::string const & name) const { return path_.generic_string() + '/' + name; }

private:
    std::filesystem::path path_;
};

/// One that the test works in.
class WorkingDirectory : public TemporaryDirectory {
public:
    explicit WorkingDirectory(std::string const & name) : TemporaryDirectory(name) {
        std::filesystem::current_path(file(""));
    }
    ~WorkingDirectory() { std::filesystem::current_path(home_); }

private:
    std::filesystem::path const home_ = std::filesystem::current_path();
};

/// A program from anywhere, for shell commands. No blanks are in the path, so that no shell needs quotes.
inline std::string programPath(std::string const & program) {
    return std::filesystem::absolute(program).make_preferred().string();
}

/// The exit status of a shell command: the status itself, or as the system's wait delivers it.
inline int statusOf(std::string const & command) {
    int const status = std::system(command.c_str());
    return status > 255 ? status / 256 : status;
}

inline std::string contentOf(std::string const & name) {
    std::ifstream in(name, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

inline void writeFile(std::string const & name, std::string const & text) {
    std::ofstream(name, std::ios::binary) << text;
}

inline std::vector<std::string> linesOf(std::string const & name) {
    std::istringstream in(contentOf(name));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

/// How many lines there are of each text, when a line is a text and a number. The numbers of each text must count its
/// lines from 0 on; a line that breaks the row is a text of its own.
inline std::map<std::string, int> countsOf(std::vector<std::string> const & lines) {
    std::map<std::string, int> counts;
    for (std::string const & line : lines) {
        std::string const text = line.substr(0, line.rfind(' ') + 1);
        int & count = counts[text];
        ++(line == text + std::to_string(count) ? count : counts[line]);
    }
    return counts;
}
