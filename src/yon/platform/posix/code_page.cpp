#include <iconv.h>
#include <langinfo.h>

#include <bit>
#include <cerrno>
#include <cstring>

#include "yon/platform/platform.h"
#include "yon/platform/posix/libc_lock.h"

namespace yon::platform {

namespace {

constexpr char const * utf16 = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

char const * codePage() noexcept { return ::nl_langinfo(CODESET); }

class Converter {
public:
    Converter(char const * to, char const * from) noexcept {
        LibcLock const lock;
        handle_ = ::iconv_open(to, from);
    }
    Converter(Converter const &) = delete;
    Converter & operator=(Converter const &) = delete;
    ~Converter() {
        LibcLock const lock;
        if (valid()) ::iconv_close(handle_);
    }
    bool valid() const noexcept { return handle_ != reinterpret_cast<iconv_t>(-1); }

    /// Converts until the source or the room is used up: false, and `errno` says why it stopped. A null source writes
    /// what returns to the initial shift state.
    bool step(char ** source, std::size_t * sourceLeft, char ** target, std::size_t * targetLeft) noexcept {
        return ::iconv(handle_, source, sourceLeft, target, targetLeft) != static_cast<std::size_t>(-1);
    }

private:
    iconv_t handle_;
};

template <class From, class To>
ConversionResult convert(Converter && converter, From const * s, std::size_t size, std::basic_string<To> & out) {
    // A character set that iconv does not know has no characters.
    if (!converter.valid()) return ConversionResult::sourceIllegal;
    char * source = const_cast<char *>(reinterpret_cast<char const *>(s));
    std::size_t left = size * sizeof(From);
    for (bool ending = false;;) {
        To chunk[512];
        char * target = reinterpret_cast<char *>(chunk);
        std::size_t room = sizeof chunk;
        bool const done = converter.step(ending ? nullptr : &source, &left, &target, &room);
        int const error = done ? 0 : errno;
        out.append(chunk, (sizeof chunk - room) / sizeof(To));
        if (done && ending) return ConversionResult::ok;
        if (done) ending = true;
        if (error == EINVAL) return ConversionResult::sourceExhausted;
        if (!done && error != E2BIG) return ConversionResult::sourceIllegal;
    }
}

}  // namespace

bool codePageIsUtf8() noexcept {
    // Plain ASCII is what a program has that sets no locale. It is a part of UTF-8, which loses nothing.
    char const * const name = codePage();
    for (char const * const known : {"UTF-8", "ANSI_X3.4-1968", "utf8", "US-ASCII", "ASCII"}) {
        if (std::strcmp(name, known) == 0) return true;
    }
    return false;
}

ConversionResult codePageToWide(istr s, wstring & out) {
    return convert(Converter(utf16, codePage()), s.data(), s.size(), out);
}

ConversionResult wideToCodePage(iwstr s, std::string & out) {
    return convert(Converter(codePage(), utf16), s.data(), s.size(), out);
}

}  // namespace yon::platform
