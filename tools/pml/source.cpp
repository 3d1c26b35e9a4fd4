#include "source.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <istream>
#include <memory>
#include <system_error>

#include "yon/pml/pml_parser.h"

namespace pmltool {

namespace {

/// What a view of the library can hold.
constexpr std::size_t mostBytes = yon::npos - std::size_t{1};

std::string reason(int error) { return std::generic_category().message(error); }

/// Appends pieces until `read` delivers none: what a file says of its length need not be true.
template <class Read>
void readAll(Source & source, Read read) {
    std::string piece(std::size_t{64} << 10, '\0');
    while (std::size_t const size = read(piece.data(), piece.size())) {
        if (size > mostBytes - source.text.size()) throw BadInput(source.name + ": longer than 4 GiB");
        source.text.append(piece, 0, size);
    }
}

void readFile(Source & source) {
    auto const fail = [&] { throw BadInput(source.name + ": " + reason(errno)); };
    struct Close {
        void operator()(std::FILE * file) const noexcept { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Close> const file(std::fopen(source.name.c_str(), "rb"));
    if (!file) fail();
    readAll(source, [&](char * to, std::size_t size) { return std::fread(to, 1, size, file.get()); });
    if (std::ferror(file.get())) fail();
}

void readInput(Source & source, Console & console) {
    if (console.inputTaken) throw BadUsage("standard input (-) can be read only once");
    console.inputTaken = true;
    source.name = "<stdin>";
    readAll(source, [&](char * to, std::size_t size) {
        console.in.read(to, static_cast<std::streamsize>(size));
        return static_cast<std::size_t>(console.in.gcount());
    });
    if (console.in.bad()) throw BadInput(source.name + ": cannot be read");
}

}  // namespace

Source readSource(std::string const & file, Console & console) {
    Source source{file, {}, false};
    file == "-" ? readInput(source, console) : readFile(source);
    source.marked = source.text.starts_with("\xEF\xBB\xBF");
    if (source.marked) source.text.erase(0, 3);
    return source;
}

void parse(Source const & source, Unit & root) {
    try {
        yon::pml::ntvFromPml(root, istr(source.text));
    } catch (std::invalid_argument const & error) {
        // "what is wrong at line 3, column 7"
        std::string text = error.what();
        unsigned long line = 0;
        unsigned long column = 0;
        std::size_t const at = text.rfind(" at line ");
        if (at == text.npos || std::sscanf(text.c_str() + at, " at line %lu, column %lu", &line, &column) != 2) throw;
        text.resize(at);
        throw BadInput(source.name + ':' + std::to_string(line) + ':' + std::to_string(column) + ": " + text);
    }
}

Unit const & findNode(Source const & source, Unit const & root, std::string const & path) {
    Unit const * const node = root.find(path);
    if (node == nullptr) throw BadInput(source.name + ": " + path + ": no such node");
    return *node;
}

Lines::Place Lines::place(std::size_t offset) {
    if (starts_.empty()) {
        starts_.push_back(0);
        for (std::size_t p = 0; (p = text_.find('\n', p)) != text_.npos;) starts_.push_back(++p);
    }
    auto const next = std::upper_bound(starts_.begin(), starts_.end(), offset);
    return {static_cast<std::size_t>(next - starts_.begin()), offset - next[-1] + 1};
}

std::string Lines::at(std::size_t offset) {
    Place const at = place(offset);
    return std::to_string(at.line) + ':' + std::to_string(at.column);
}

std::string Lines::inWords(std::size_t offset) {
    Place const at = place(offset);
    return "line " + std::to_string(at.line) + ", column " + std::to_string(at.column);
}

}  // namespace pmltool
