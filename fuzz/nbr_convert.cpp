// The converters of the tool nbr on foreign bytes: values that become pml come back as the same values, and what a
// document of pml becomes has no defect.
#include <cstdint>

#include "nbr_commands.h"
#include "printed.h"
#include "require.h"
#include "yon/nbr/verify.h"

namespace nbrtool {
namespace {

std::string fromDocument(std::string const & text) {
    Source const document{"document", text, false};
    Unit root;
    parse(document, root);
    yon::nbr::OutputStream out;
    fromTree(document, root, out);
    return std::string(std::string_view(out.str()));
}

/// The tokens without their offsets, and heads without the number of bytes of the size.
std::string content(std::string const & bytes) {
    std::string text;
    forEachToken({"bytes", bytes, false}, [&](Token const & token, std::size_t) {
        text += std::to_string(token.what) + ' ' + std::to_string(token.tag) + ' ' + (token.head == 0 ? "n" : "");
        text += (token.head >= 0xF0 ? "t" : "b") + std::to_string(token.data.size()) + ' ';
        text += std::string_view(token.data);
    });
    return text;
}

void checkValues(std::string const & bytes) {
    if (yon::nbr::verify(bytes)) return;
    Source const source{"bytes", bytes, false};
    Unit root;
    toTree(source, root);
    std::string const text = printed(root, source, yon::pml::ShowMode::COMPACT);
    require(content(fromDocument(text)) == content(bytes), "values come back as others");
    forEachToken(source, [](Token const & token, std::size_t) {
        if (token.what == Token::item) require(!guess(token).empty(), "no guess");
    });
}

}  // namespace
}  // namespace nbrtool

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    std::string const bytes(reinterpret_cast<char const *>(data), size);
    nbrtool::checkValues(bytes);
    try {
        std::string const made = nbrtool::fromDocument(bytes);
        require(made.empty() || !yon::nbr::verify(made), "what a document becomes has a defect");
    } catch (nbrtool::BadInput const &) {
    }
    return 0;
}
