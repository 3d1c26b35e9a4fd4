// The nbr parser on foreign bytes: nothing but the documented exception comes out of it; what `verify` finds right is
// read whole; and a tree that is copied, or written and parsed, is the same tree.
#include <cstdint>

#include "nbr_trees.h"
#include "require.h"
#include "yon/log/dumper.h"
#include "yon/nbr/input_stream.h"
#include "yon/nbr/verify.h"

namespace yon::nbr {
namespace {

void checkTree(ValueBase const & tree, bool verified) {
    std::string const text = flat(tree);
    std::unique_ptr<ValueBase> const copy(tree.clone());
    require(flat(*copy) == text, "a copy differs");
    dumper d;
    tree.dump(d);
    if (auto const * complex = tree.complexValue()) {
        for (auto const & item : *complex) {
            ValueBase const * const found = complex->get(item.tag);
            require((found != nullptr) == (item.tag != noTag), "an element is not found, or one without a tag is");
        }
    }
    // Other text than UTF-8 has no writer.
    if (!verified) return;
    OutputStream out;
    write(out, tree);
    require(!verify(out.str()), "what was written has a defect");
    InputStream const back(out.str());
    require(back.get() != nullptr && flat(*back.get()) == text, "what was written is read as another tree");
}

void checkBytes(istr bytes) {
    auto const defect = verify(bytes);
    require(!defect || defect->offset <= bytes.size(), "a defect beyond the end");
    parser values(bytes);
    try {
        while (!values.eof()) {
            std::unique_ptr<ValueBase> const tree(values.parse());
            if (tree) checkTree(*tree, !defect);
        }
    } catch (DecodeException const &) {
        require(defect.has_value(), "verified bytes are not parsed");
    }
}

}  // namespace
}  // namespace yon::nbr

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    yon::nbr::checkBytes(yon::istr(data, static_cast<yon::ulong>(size)));
    return 0;
}
