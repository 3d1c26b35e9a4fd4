#include "yon/pml/pml_parser.h"

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "yon/pml/ntv_access.h"
#include "yon/pml/token_reader.h"

namespace yon::pml {

namespace {

using ntv::ListValue;
using ntv::detail::Access;
using State = pmlParserBase::PasingState;

/// Builds the tree below one node. The lists that are still open stand on an explicit stack, so that depth costs
/// memory and not stack. A node enters its list when it is complete: a failed parse leaves only complete ones.
template <class Source>
class TreeBuilder {
public:
    TreeBuilder(Source & in, Unit & root, istr filename) noexcept
        : in_(in), slab_(Slab::local()), root_(root), filename_(filename), node_(&root) {}
    TreeBuilder(TreeBuilder const &) = delete;
    TreeBuilder & operator=(TreeBuilder const &) = delete;

    ~TreeBuilder() {
        drop(node_);
        for (OpenList const & open : open_) drop(open.node);
    }

    void build(State state) {
        for (;;) {
            bool const closed = state == State::PasingName && readName(state);
            if (!closed && beginsList(state)) continue;
            state = State::PasingName;
            if (finish(closed)) return;
        }
    }

private:
    using Mark = typename Source::Mark;

    /// A list that waits for more children, and the node that it belongs to.
    struct OpenList {
        Unit * node;
        ListValue * list;
        Mark start;
    };

    [[noreturn]] void raise(char const * error, Mark where) const {
        Position const at = in_.position(where);
        std::string const line = std::to_string(at.line);
        std::string const column = std::to_string(at.column);
        throw std::invalid_argument(std::string(error) + " at " +
                                    (filename_.empty() ? "line " + line + ", column " + column
                                                       : String(filename_) + ':' + line + ':' + column));
    }

    bool next() { return readToken(in_, token_, tokenStart_); }

    /// Reads a node's name. True when that was the end of the list; there is a node then only for a bare name.
    bool readName(State & state) {
        if (!next()) {
            if (!in_.atEnd()) raise("get pml name token", tokenStart_);
            return true;
        }
        if (token_.flag == pmlLexer::TokenEnd) {
            if (token_.text.empty()) return true;
            // After a bare name the tag is read again, by the list around.
            in_.unget();
            beginNode();
            return true;
        }
        beginNode();
        state = token_.flag == pmlLexer::TokenColon ? State::PasingType : State::PasingValue;
        return false;
    }

    /// Reads the type where one is due, and the value. True when the value is a list, whose first child is the node
    /// now.
    bool beginsList(State & state) {
        if (state == State::PasingType) {
            if (!next()) raise("get type token", tokenStart_);
            if (token_.flag != pmlLexer::TokenBegin) raise("not found value begin tag, token", tokenStart_);
            Access::setType(*node_, token_.text);
        }
        if (!next() || token_.flag == pmlLexer::TokenEnd) {
            setText(unquoted(trimmedRight(token_.text), token_.mixed));
            return false;
        }
        openList();
        beginNode();
        state = token_.flag == pmlLexer::TokenColon ? State::PasingType : State::PasingValue;
        return true;
    }

    /// Makes the node that the token names; the root is there already.
    void beginNode() {
        start_ = tokenStart_;
        if (node_ != nullptr) {
            Access::setName(*node_, token_.text);
        } else {
            node_ = ntv::make<Unit>(slab_, __LINE__, "yon::pml::pmlParserBase::__doParser", token_.text);
        }
    }

    void setText(istr text) {
        if (node_->value() != nullptr) {
            node_->setValue(text);
        } else {
            Access::setText(*node_, slab_, text);
        }
    }

    void openList() {
        // Only the root can have a value from before.
        if (node_->value() != nullptr) delete node_->popValue();
        open_.push_back({node_, &Access::setList(*node_, slab_), start_});
        if (!storages_.empty()) {
            Access::swapChildren(*open_.back().list, storages_.back());
            storages_.pop_back();
        }
        node_ = nullptr;
    }

    /// Hands the node, which is complete, to its list, and closes the lists that end here. True when the root is
    /// done.
    bool finish(bool closed) {
        while (!open_.empty()) {
            if (node_ != nullptr) addNode();
            if (!closed) return false;
            closeList();
            closed = false;
        }
        return true;
    }

    void addNode() {
        OpenList const & open = open_.back();
        if (!Access::tryAdd(*open.list, node_, open.node)) raise("duplicated unit", start_);
        node_ = nullptr;
    }

    /// Gives the list storage of its exact size; the one it grew in serves the next list.
    void closeList() {
        OpenList const & open = open_.back();
        if (open.list->data().capacity() != open.list->data().size()) {
            ListValue::Children exact(open.list->data());
            Access::swapChildren(*open.list, exact);
            if (storages_.size() < mostStorages) {
                exact.clear();
                storages_.push_back(std::move(exact));
            }
        }
        node_ = open.node;
        start_ = open.start;
        open_.pop_back();
    }

    void drop(Unit * node) noexcept {
        if (node != &root_) delete node;
    }

    static constexpr std::size_t mostStorages = 64;

    Source & in_;
    Slab & slab_;
    Unit & root_;
    istr const filename_;
    Unit * node_;  ///< being read, or null; owned, unless it is the root
    Mark start_{};
    Token token_;
    Mark tokenStart_{};
    std::vector<OpenList> open_;
    std::vector<ListValue::Children> storages_;
};

template <class Source>
bool parse(Source & in, Unit & unit, State state, istr filename = istr()) {
    TreeBuilder<Source>(in, unit, filename).build(state);
    return true;
}

}  // namespace

bool pmlParserBase::doParser(std::istream & in) {
    pmlLexerIstream lexer(in);
    LexerSource<pmlLexerIstream> source(lexer);
    return parse(source, *unit_, state_);
}

bool pmlParserBase::doParser(char const *& text) {
    MemorySource source(text, text + StrLen(text));
    // After an error, too.
    struct Advance {
        ~Advance() { text = source.mark(); }
        char const *& text;
        MemorySource const & source;
    } const advance{text, source};
    return parse(source, *unit_, state_);
}

bool pmlParserBase::doParser(istr text) {
    MemorySource source(text.begin(), text.end());
    return parse(source, *unit_, state_);
}

bool pmlParserBase::doParser(File const & file) {
    std::ifstream in;
    if (!file.open(in)) return false;
    // Read until the end shows: what a file says of its length need not be true.
    std::string text;
    std::string block(std::size_t{64} << 10, '\0');
    while (in.read(block.data(), static_cast<std::streamsize>(block.size())), in.gcount() > 0) {
        text.append(block, 0, static_cast<std::size_t>(in.gcount()));
    }
    if (in.bad()) return false;
    return doParser(FileText{file.filename(), text});
}

bool pmlParserBase::doParser(FileText const & file) {
    constexpr char const * byteOrderMark = "\xEF\xBB\xBF";
    istr const text = file.text.beginWith(byteOrderMark) ? file.text.removeLeft(3) : file.text;
    MemorySource source(text.begin(), text.end());
    return parse(source, *unit_, state_, file.filename);
}

bool pmlParserBase::doParser(pmlLexer & lexer) {
    LexerSource<pmlLexer> source(lexer);
    return parse(source, *unit_, state_);
}

void unescapeString(String & token) {
    istr const inner = unquoted(token);
    if (inner.size() != token.size()) token = String(inner);
}

}  // namespace yon::pml
