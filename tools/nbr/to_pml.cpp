#include <map>
#include <memory>
#include <ostream>

#include "nbr_commands.h"
#include "printed.h"
#include "yon/util/binary_stream.h"

namespace nbrtool {

namespace {

using yon::longlong;
using yon::detail::BinaryField;

/// Sets the value of an item as a number, when that number is written as these bytes.
bool setNumber(Unit & node, istr data) {
    if (data.size() > 8) return false;
    yon::ulonglong const bits = yon::BinaryStream::readUint(data, 8);
    bool const negative = data[data.size() - 1] < 0;
    if (negative && data.size() == 2) {
        node.type("short") << BinaryField<short>::fromBits(bits);
    } else if (negative && data.size() == 4) {
        node.type("int") << BinaryField<int>::fromBits(bits);
    } else if (negative && data.size() == 8) {
        node.type("longlong") << BinaryField<longlong>::fromBits(bits);
    } else if (!negative && yon::detail::integerSize(bits, 8) == data.size()) {
        node.type(bits <= 0x7FFFFFFF ? "int" : "longlong") << bits;
    } else {
        return false;
    }
    return true;
}

void setItem(Unit & node, Token const & item) {
    if (item.head == 0) {
        node.type("null");
    } else if (item.head >= 0xF0) {
        // An empty text needs its type, to be told from an empty item.
        item.data.empty() ? node.type("text") : node.setValue(item.data);
    } else if (item.data.empty()) {
        node.type("empty");
    } else if (!setNumber(node, item.data)) {
        node << yon::Bytes(item.data);  // as Base64
    }
}

/// Builds the tree of a document.
class Builder {
public:
    explicit Builder(Unit & root) : levels_{Level{&root, {}}} {}

    void add(Token const & token) {
        if (token.what == Token::end) {
            Unit & node = *levels_.back().node;
            if (node.listValue() == nullptr) node.type("complex");
            levels_.pop_back();
            return;
        }
        Level & level = levels_.back();
        auto node = std::make_unique<Unit>(istr(nameOf(level, token.tag)));
        if (token.what == Token::item) setItem(*node, token);
        Unit * const child = node.get();
        level.node->addChild(child);
        node.release();
        if (token.what == Token::begin) levels_.push_back(Level{child, {}});
    }

private:
    struct Level {
        Unit * node;
        std::map<int, unsigned> tags;  ///< how often each came
    };

    /// The tag; those that came before get a number, since names are unique: "5", "5.2", "5.3".
    static std::string nameOf(Level & level, int tag) {
        if (tag < 0 || tag == yon::nbr::noTag) return {};
        unsigned const count = ++level.tags[tag];
        return std::to_string(tag) + (count > 1 ? '.' + std::to_string(count) : std::string());
    }

    std::vector<Level> levels_;
};

}  // namespace

void toTree(Source const & source, Unit & root) {
    root.name("nbr");
    Builder builder(root);
    forEachToken(source, [&](Token const & token, std::size_t) { builder.add(token); });
}

int toPml(std::string const & file, Console & console) {
    Source const source = readBytes(file, console);
    Unit root;
    toTree(source, root);
    try {
        console.out << printed(root, source, yon::pml::ShowMode::FORMATTED);
    } catch (pmltool::TooMuchText const &) {
        console.out << printed(root, source, yon::pml::ShowMode::COMPACT);
    }
    console.out << '\n';
    return pmltool::ok;
}

}  // namespace nbrtool
