#include <charconv>
#include <limits>
#include <ostream>

#include "nbr_commands.h"
#include "visible.h"
#include "yon/string/base64.h"
#include "yon/string/unicode.h"

namespace nbrtool {

namespace {

using yon::pml::ntv::ListValue;

/// What is wrong with a node.
struct Fault {
    std::string text;
};

std::string quoted(std::string_view text) { return '"' + pmltool::visible(text, 60) + '"'; }

template <class T>
void writeNumber(yon::nbr::OutputStream & out, Unit const & node) {
    std::string_view const text(node.getStringValue());
    using Parsed = std::conditional_t<std::is_floating_point_v<T>, T,
                                      std::conditional_t<std::is_signed_v<T>, yon::longlong, yon::ulonglong>>;
    Parsed value{};
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    bool fits = error == std::errc() && end == text.data() + text.size();
    if constexpr (std::is_integral_v<T>) {
        fits = fits && value >= std::numeric_limits<T>::min() && value <= std::numeric_limits<T>::max();
    }
    if (!fits) throw Fault{quoted(text) + " is no " + pmltool::visible(node.type())};
    out << static_cast<T>(value);
}

void writeText(yon::nbr::OutputStream & out, Unit const & node) {
    // Documents are UTF-8, whatever the code page is.
    try {
        out << yon::utf8ToWstring(node.getStringValue());
    } catch (yon::UTFConversionException const &) {
        throw Fault{"the text is not UTF-8"};
    }
}

void writeBytes(yon::nbr::OutputStream & out, Unit const & node) {
    yon::Bytes bytes;
    if (!yon::Base64::decode(node.getStringValue(), bytes)) throw Fault{"the text is not Base64"};
    out << bytes;
}

void writeNull(yon::nbr::OutputStream & out, Unit const &) { out << yon::null_type(); }
void writeEmpty(yon::nbr::OutputStream & out, Unit const &) { out << yon::empty_type(); }
void writeComplex(yon::nbr::OutputStream & out, Unit const &) { out.beginComplex().endComplex(); }

/// The type words of nodes without children.
struct TypeWord {
    std::string_view word;
    void (*write)(yon::nbr::OutputStream & out, Unit const & node);
} const typeWords[] = {
    {"", writeText},
    {"text", writeText},
    {"base64", writeBytes},
    {"null", writeNull},
    {"empty", writeEmpty},
    {"complex", writeComplex},
    {"bool", writeNumber<bool>},
    {"byte", writeNumber<unsigned char>},
    {"short", writeNumber<short>},
    {"ushort", writeNumber<unsigned short>},
    {"int", writeNumber<int>},
    {"uint", writeNumber<unsigned>},
    {"long", writeNumber<yon::slong>},
    {"ulong", writeNumber<yon::ulong>},
    {"longlong", writeNumber<yon::longlong>},
    {"ulonglong", writeNumber<yon::ulonglong>},
    {"time", writeNumber<yon::longlong>},
    {"float", writeNumber<float>},
    {"double", writeNumber<double>},
};

void writeSingle(yon::nbr::OutputStream & out, Unit const & node) {
    for (auto const & [word, write] : typeWords) {
        if (istr(node.type()) == istr(word)) return write(out, node);
    }
    throw Fault{"the type " + quoted(std::string_view(node.type())) + " is unknown"};
}

/// "5", or "5.2": what follows the point only makes the name unique.
unsigned tagOf(std::string_view name) {
    if (name.empty()) return yon::nbr::noTag;
    unsigned tag = 0;
    char const * const end = name.data() + name.size();
    auto const [behind, error] = std::from_chars(name.data(), end, tag);
    if (error != std::errc() || (behind != end && *behind != '.') || tag >= yon::nbr::noTag) {
        throw Fault{quoted(name) + " is no tag: these are 0 to 254"};
    }
    return tag;
}

class Writer {
public:
    Writer(yon::nbr::OutputStream & out, Unit const & root) : out_(out), node_(&root) {}

    void write() {
        if (ListValue const * const values = node_->listValue()) {
            levels_.push_back({values, 0});
        } else if (!node_->valueEmpty() || !node_->type().empty()) {
            writeSingle(out_, *node_);
        }
        while (!levels_.empty()) {
            Level & level = levels_.back();
            if (level.next < level.list->size()) {
                node_ = level.list->data()[level.next++];
                writeNode();
            } else {
                levels_.pop_back();
                if (!levels_.empty()) out_.endComplex();
            }
        }
    }
    /// Where the writer stands.
    Unit const & node() const noexcept { return *node_; }

private:
    struct Level {
        ListValue const * list;
        std::size_t next;
    };

    void writeNode() {
        unsigned const tag = tagOf(node_->name());
        if (levels_.size() > 1) {
            out_.tag(tag);
        } else if (tag != yon::nbr::noTag) {
            throw Fault{"only elements of complex values have tags"};
        }
        if (ListValue const * const list = node_->listValue()) {
            out_.beginComplex();
            levels_.push_back({list, 0});
        } else {
            writeSingle(out_, *node_);
        }
    }

    yon::nbr::OutputStream & out_;
    Unit const * node_;
    std::vector<Level> levels_;
};

}  // namespace

void fromTree(Source const & source, Unit const & root, yon::nbr::OutputStream & out) {
    Writer writer(out, root);
    try {
        writer.write();
    } catch (Fault const & fault) {
        throw BadInput(source.name + ": " + pmltool::shortPath(writer.node().path()) + ": " + fault.text);
    }
}

int fromPml(std::string const & file, Console & console) {
    Source const source = readSource(file, console);
    Unit root;
    parse(source, root);
    yon::nbr::OutputStream out;
    fromTree(source, root, out);
    console.out << std::string_view(out.str());
    return pmltool::ok;
}

}  // namespace nbrtool
