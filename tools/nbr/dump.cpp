#include <algorithm>
#include <cstdio>
#include <ostream>

#include "nbr_commands.h"

namespace nbrtool {

namespace {

/// Deeper levels are not indented further, but numbered: a deep tree takes the time that it is large.
constexpr std::size_t mostIndent = 32;
constexpr std::size_t offsetColumn = 10;

void begin(std::string & line, std::size_t offset, std::size_t depth) {
    line = std::to_string(offset);
    line.insert(0, offsetColumn - std::min(offsetColumn, line.size()), ' ');
    line.append(2 + 2 * std::min(depth, mostIndent), ' ');
    if (depth > mostIndent) line += "[level " + std::to_string(depth) + "] ";
}

void addHex(std::ostream & out, Token const & token, std::size_t depth) {
    constexpr yon::ulong width = 16;
    std::string line;
    auto const dataOffset = token.offset + 1 + (token.head & 0x0Fu);
    for (yon::ulong at = 0; at < token.data.size(); at += width) {
        begin(line, dataOffset + at, depth);
        line += "    ";
        for (char const c : token.data.substr(at, width)) {
            char pair[4];
            std::snprintf(pair, sizeof pair, "%02X ", static_cast<unsigned>(static_cast<unsigned char>(c)));
            line += pair;
        }
        line.back() = '\n';
        out << line;
    }
}

void dumpFile(Source const & source, bool hex, std::ostream & out) {
    std::string line;
    forEachToken(source, [&](Token const & token, std::size_t depth) {
        if (token.what == Token::begin) --depth;
        begin(line, token.offset, depth);
        if (token.tag >= 0) line += token.tag == yon::nbr::noTag ? "-: " : std::to_string(token.tag) + ": ";
        switch (token.what) {
            case Token::begin:
                line += '(';
                break;
            case Token::end:
                line += ')';
                break;
            default: {
                std::string const size = std::to_string(token.data.size());
                if (!token.data.empty()) line += size + (token.data.size() == 1 ? " byte, " : " bytes, ");
                line += guess(token);
            }
        }
        out << line << '\n';
        if (hex) addHex(out, token, depth);
    });
}

}  // namespace

int dump(DumpArguments const & arguments, Console & console) {
    return forEachFile(arguments.files, console, [&](std::string const & file) {
        dumpFile(readBytes(file, console), arguments.hex, console.out);
        return pmltool::ok;
    });
}

}  // namespace nbrtool
