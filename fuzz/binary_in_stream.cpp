// The binary reader on foreign bytes: what the strict reader takes the lenient one reads as the same, what is read
// and written again is read as the same, and nothing else than the documented exceptions comes out.
#include <cstdint>
#include <string>

#include "require.h"
#include "yon/string/unicode.h"
#include "yon/util/binary_in_stream.h"
#include "yon/util/binary_out_stream.h"

namespace yon {
namespace {

template <class T>
bool same(T const & a, T const & b) {
    BinaryOutStream x, y;
    return x.write(a).str() == y.write(b).str();
}

template <class T, class Read>
bool succeeds(BinaryInStream & in, T & value, Read read) {
    try {
        read(in, value);
        return true;
    } catch (BinaryDecodeException const &) {
    } catch (UTFConversionException const &) {
    }
    return false;
}

/// Reads one value, which moves the stream unless it is at its end.
template <class T>
void readOne(BinaryInStream & in) {
    BinaryInStream strictIn(in);
    T lenient{}, strict{};
    auto const rest = in.rest();
    bool const wasStrict = succeeds(strictIn, strict, [](auto & s, T & v) { s.readStrict(v); });
    bool const wasLenient = succeeds(in, lenient, [](auto & s, T & v) { s.read(v); });
    require(in.rest().size() < rest.size() || rest.empty(), "a read does not go on");
    require(in.rest().end() == rest.end(), "the stream has lost its end");
    if (!wasStrict) {
        require(strictIn.rest().data() == rest.data(), "a failed strict read has moved");
        return;
    }
    require(wasLenient && same(lenient, strict), "the two ways of reading differ");
    require(in.rest().data() == strictIn.rest().data(), "the two ways of reading end at different places");
    BinaryOutStream out;
    out.write(strict);
    T again{};
    BinaryInStream back(out.str());
    back.readStrict(again);
    require(back.eof() && same(again, strict), "what was written is read as something else");
}

void readRaw(BinaryInStream & in) {
    char room[3];
    ulong n = sizeof room;
    in.readRaw(room, &n).readRaw(room[0]);
    in.readLos();
}

void (*const readers[])(BinaryInStream &) = {
    readOne<bool>, readOne<char>,  readOne<unsigned char>, readOne<short>, readOne<ushort>, readOne<int>,
    readOne<long>, readOne<ulong>, readOne<longlong>,      readOne<float>, readOne<double>, readOne<Ulonglong>,
    readOne<Time>, readOne<Bit>,   readOne<Bytes>,         readOne<istr>,  readOne<String>, readOne<wstring>,
    readRaw};

}  // namespace
}  // namespace yon

/// The first byte tells how many bytes behind it name readers, which take turns on the rest.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    using namespace yon;
    if (size < 2 || data[0] == 0 || size <= data[0]) return 0;
    std::size_t const count = data[0];
    BinaryInStream in(istr(data + 1 + count, static_cast<yon::ulong>(size - 1 - count)));
    for (std::size_t i = 0; !in.eof(); ++i) readers[data[1 + i % count] % std::size(readers)](in);
    return 0;
}
