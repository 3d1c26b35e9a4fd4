#include "yon/pml/pml_writer.h"

#include <array>
#include <fstream>
#include <ostream>
#include <sstream>
#include <vector>

#include "yon/base/byte_search.h"
#include "yon/string/string_buffer.h"

namespace yon::pml {

namespace {

using ntv::ListValue;

/// Whether a character makes a text be quoted.
constexpr std::array<bool, 256> quotable = [] {
    std::array<bool, 256> table{};
    for (unsigned char c : {'(', ')', ':', '*', '\\', '\'', '"'}) table[c] = true;
    return table;
}();

bool needsQuotes(istr text) noexcept {
    for (char c : text) {
        if (quotable[static_cast<unsigned char>(c)]) return true;
    }
    return false;
}

bool hasBlankEdge(istr text) noexcept {
    return pmlLexer::IsBlankChar(text[0]) || pmlLexer::IsBlankChar(text[text.size() - 1]);
}

void appendQuoted(StringBuffer & out, istr text) {
    out.append('\'');
    for (char const * from = text.begin();;) {
        char const * const p = findEither(from, text.end(), '\\', '\'');
        out.append(istr(from, static_cast<ulong>(p - from)));
        if (p == text.end()) break;
        out.append('\\').append(*p);
        from = p + 1;
    }
    out.append('\'');
}

char * put(char * to, istr text) noexcept {
    if (!text.empty()) std::memcpy(to, text.data(), text.size());
    return to + text.size();
}

/// Prints a tree in one layout. The open lists stand on an explicit stack, so that depth costs memory and not stack.
/// With a stream, the text goes out in pieces.
class Printer {
public:
    Printer(StringBuffer & out, std::ostream * stream, ShowMode mode, ShowPattern pattern)
        : out_(out), stream_(stream), mode_(mode), pattern_(pattern) {
        showPath_ = mode == ShowMode::FORMATTED && pattern.has(ShowPattern::PATH);
    }

    void print(Unit const & root) {
        if (showPath_ && root.parent() != nullptr) path_ = root.path();
        begin(root, 0, mode_ == ShowMode::COMPACT, root.childWasSingle());
        while (!open_.empty()) {
            OpenList & list = open_.back();
            if (list.next == list.children->data().size()) {
                end(list);
            } else {
                child(list);
            }
            if (stream_ != nullptr && out_.size() >= pieceSize) flush();
        }
        if (stream_ != nullptr) flush();
    }

private:
    /// A list whose children are being printed.
    struct OpenList {
        ListValue const * children;
        std::size_t next = 0;
        ulong depth;             ///< of the node that holds the list
        ulong childDepth;        ///< of the children
        std::size_t pathLength;  ///< of the node's path
        bool compact;
        bool broken;  ///< in MIXED: each element stands on its own line
    };

    void child(OpenList & list) {
        Unit const & unit = *list.children->data()[list.next++];
        bool const compact = list.compact;
        ulong const depth = list.childDepth;
        // The only child of a node that is no single chain is none either: nobody walks a chain twice.
        bool const single = !compact && list.children->data().size() > 1 && unit.childWasSingle();
        if (!compact && mode_ == ShowMode::MIXED && unit.name().empty() && !unit.type().empty()) newLine(depth);
        if (!compact && showPath_) extendPath(list, unit);
        begin(unit, depth, compact, single);
    }

    /// Prints a node up to its first child, or the whole node when it has none.
    void begin(Unit const & unit, ulong depth, bool compact, bool single) {
        if (!compact) {
            indent(depth);
            if (showPath_) out_.append("(* ").append(path_.empty() ? istr("/") : istr(path_)).append(" *) ");
        }
        compact = compact || single;
        head(unit);
        ListValue const * const list = unit.listValue();
        if (list == nullptr || list->empty()) {
            text(unit);
            out_.append(')');
            done();
            return;
        }
        bool const broken = !compact && mode_ == ShowMode::MIXED && unit.childrenWereUnnamedList();
        ulong const childDepth = mode_ == ShowMode::MIXED ? depth + broken : depth + 1;
        open_.push_back({list, 0, depth, childDepth, path_.size(), compact, broken});
        if (!compact && mode_ != ShowMode::MIXED) out_.append('\n');
    }

    void end(OpenList const & list) {
        if (list.broken) newLine(list.depth);
        if (!list.compact && mode_ != ShowMode::MIXED) indent(list.depth);
        out_.append(')');
        open_.pop_back();
        done();
    }

    /// A node is complete.
    void done() {
        if (!open_.empty() && !open_.back().compact && mode_ != ShowMode::MIXED) out_.append('\n');
    }

    void head(Unit const & unit) {
        istr const name = pattern_.has(ShowPattern::NAME) ? istr(unit.name()) : istr();
        istr const type = pattern_.has(ShowPattern::TYPE) ? istr(unit.type()) : istr();
        char * to = put(out_.extend(name.size() + !type.empty() + type.size() + 1), name);
        if (!type.empty()) {
            *to = ':';
            to = put(to + 1, type);
        }
        *to = '(';
    }

    void text(Unit const & unit) {
        if (!pattern_.has(ShowPattern::VALUE) || unit.value() == nullptr) return;
        if (ntv::StringValue const * const value = unit.stringValue()) {
            escaped(value->data());
        } else if (unit.value()->single()) {
            std::ostringstream foreign;
            unit.value()->dump(foreign);
            escaped(foreign.str());
        }
    }

    void escaped(istr value) {
        if (value.empty()) return;
        if (needsQuotes(value) || (pattern_.has(ShowPattern::QUOTE_BLANKS) && hasBlankEdge(value))) {
            appendQuoted(out_, value);
        } else {
            out_.append(value);
        }
    }

    void extendPath(OpenList const & list, Unit const & unit) {
        path_.resize(list.pathLength);
        path_ += '/';
        if (unit.name().empty()) {
            ((path_ += '[') += std::to_string(unit.index())) += ']';
        } else {
            path_ += unit.name();
        }
    }

    void newLine(ulong depth) {
        out_.append('\n');
        indent(depth);
    }
    void indent(ulong depth) { out_.append(' ', depth * 4); }

    void flush() {
        stream_->write(out_.data(), static_cast<std::streamsize>(out_.size()));
        out_.reset();
    }

    static constexpr ulong pieceSize = ulong{64} << 10;

    StringBuffer & out_;
    std::ostream * const stream_;
    ShowMode const mode_;
    ShowPattern const pattern_;
    bool showPath_ = false;
    std::string path_;
    std::vector<OpenList> open_;
};

}  // namespace

bool ntvToPml(Unit const & unit, std::ostream & out, ShowMode mode, ShowPattern pattern) {
    if (!mode.known()) return false;
    StringBuffer piece;
    Printer(piece, &out, mode, pattern).print(unit);
    return out.good();
}

bool ntvToPml(Unit const & unit, String & out, ShowMode mode, ShowPattern pattern) {
    if (!mode.known()) return false;
    // The target may be a text of the tree.
    StringBuffer text;
    Printer(text, nullptr, mode, pattern).print(unit);
    out = text.str();
    return true;
}

bool ntvToPml(Unit const & unit, File const & out, ShowMode mode, ShowPattern pattern) {
    std::ofstream file;
    if (!mode.known() || !out.open(file)) return false;
    bool const written = ntvToPml(unit, file, mode, pattern);
    file.close();
    return written && !file.fail();
}

void escapeString(String & text) {
    if (!needsQuotes(text)) return;
    StringBuffer quoted;
    appendQuoted(quoted, text);
    text = quoted.str();
}

char const * ShowMode::name() const noexcept {
    static constexpr char const * names[] = {"COMPACT", "SIMPLE", "MIXED", "FORMATTED"};
    return known() ? names[value_ - COMPACT] : "<UnknownShowMode>";
}

std::ostream & operator<<(std::ostream & os, ShowMode mode) { return os << mode.name(); }

std::ostream & operator<<(std::ostream & os, ShowPattern pattern) { return os << pattern.value(); }

Unit & operator<<(Unit & unit, ShowMode const & mode) { return unit.setValue(mode.name()); }

Unit & operator<<(Unit & unit, ShowPattern const & pattern) { return unit << pattern.value(); }

namespace ntv {

bool Unit::toString(String & out, ShowMode mode) const { return ntvToPml(*this, out, mode); }

String Unit::str(ShowMode mode) const {
    String text;
    toString(text, mode);
    return text;
}

std::ostream & operator<<(std::ostream & os, Unit const & unit) {
    ntvToPml(unit, os, ShowMode::COMPACT);
    return os;
}

String & operator<<(String & out, Unit const & unit) { return out += unit.str(); }

}  // namespace ntv

}  // namespace yon::pml
