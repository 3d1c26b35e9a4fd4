#include "visible.h"

#include "yon/pml/pml_writer.h"

namespace pmltool {

namespace {

/// Whether a byte continues a UTF-8 character.
bool continues(char c) noexcept { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

void appendEscaped(std::string & out, char c) {
    static constexpr char digits[] = "0123456789abcdef";
    auto const u = static_cast<unsigned char>(c);
    switch (c) {
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            ((out += "\\x") += digits[u >> 4]) += digits[u & 15];
    }
}

}  // namespace

std::string visible(std::string_view text, std::size_t most) {
    bool const cut = text.size() > most;
    if (cut) {
        while (most != 0 && continues(text[most])) --most;
        text = text.substr(0, most);
    }
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        bool const control = static_cast<unsigned char>(c) < ' ' || c == '\x7f';
        control ? appendEscaped(out, c) : void(out += c);
    }
    return cut ? out += "..." : out;
}

std::string shortPath(std::string const & path) {
    constexpr std::size_t most = 256;
    if (path.size() <= most) return visible(path);
    std::size_t from = path.size() - most;
    while (continues(path[from])) ++from;
    return "..." + visible(std::string_view(path).substr(from));
}

std::string typeSuffix(Unit const & node) { return node.type().empty() ? "" : ':' + visible(node.type()); }

std::string valueText(Unit const & node, std::size_t most) {
    if (auto const * list = node.listValue()) {
        return '(' + std::to_string(list->size()) + (list->size() == 1 ? " child)" : " children)");
    }
    // Quoting a long text in full only to cut it would be a waste.
    istr const text = node.getStringValue();
    String shown(text.size() > most ? text.leftstr(static_cast<yon::ulong>(most) + 1) : text);
    yon::pml::escapeString(shown);
    return visible(shown, most);
}

}  // namespace pmltool
