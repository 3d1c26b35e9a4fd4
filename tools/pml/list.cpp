#include <algorithm>
#include <ostream>

#include "commands.h"
#include "tree.h"
#include "visible.h"

namespace pmltool {

namespace {

/// How many columns a text takes, one for each UTF-8 character.
std::size_t columns(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

/// A column of the listing, as wide as its texts, within limits.
class Column {
public:
    explicit Column(std::size_t most) noexcept : most_(most) {}
    void fit(std::string_view text) { width_ = std::max(width_, std::min(columns(text), most_)); }
    void print(std::string & line, std::string_view text) const {
        if (width_ == 0) return;
        line += text;
        std::size_t const used = columns(text);
        line.append((used < width_ ? width_ - used : 0) + 2, ' ');
    }

private:
    std::size_t const most_;
    std::size_t width_ = 0;
};

}  // namespace

int list(NodeArguments const & arguments, Console & console) {
    Source const source = readSource(arguments.file, console);
    Unit root;
    parse(source, root);
    Unit const & top = findNode(source, root, arguments.path);
    std::string const topPath = top.path();

    constexpr std::size_t mostOfType = 40;
    constexpr std::size_t mostOfText = 60;
    Column paths(48);
    Column types(16);
    forEachNode(top, topPath, [&](Unit const & node, std::string const & path) {
        paths.fit(shortPath(path));
        types.fit(visible(node.type(), mostOfType));
    });
    std::string line;
    forEachNode(top, topPath, [&](Unit const & node, std::string const & path) {
        line.clear();
        paths.print(line, shortPath(path));
        types.print(line, visible(node.type(), mostOfType));
        line += valueText(node, mostOfText);
        line.erase(line.find_last_not_of(' ') + 1);
        console.out << line << '\n';
    });
    return ok;
}

}  // namespace pmltool
