#include "yon/util/c3des.h"

#include <gcrypt.h>

#include <new>
#include <stdexcept>
#include <string>

#include "yon/base/throw.h"

namespace yon {

namespace {

constexpr ulong keySize = 24;
constexpr ulong twoKeySize = 16;

/// The application may have set up the library of ciphers; otherwise it is done here, without locked memory.
bool setUp() {
    if (gcry_control(GCRYCTL_INITIALIZATION_FINISHED_P) == 0) {
        gcry_check_version(nullptr);
        gcry_control(GCRYCTL_DISABLE_SECMEM, 0);
        gcry_control(GCRYCTL_INITIALIZATION_FINISHED, 0);
    }
    return true;
}

gcry_cipher_hd_t handle(void * cipher) noexcept { return static_cast<gcry_cipher_hd_t>(cipher); }

void check(gcry_error_t error) {
    if (error != 0) YON_THROW(InvalidDataException, gcry_strerror(error));
}

[[noreturn]] void wrongSize(char const * what, istr given, char const * expected) {
    YON_THROW(InvalidDataException,
              istr(what + (" of " + std::to_string(given.size())) + " bytes; it takes " + expected));
}

/// The key of three keys, which is wiped when it goes.
struct FullKey {
    explicit FullKey(istr key) noexcept {
        MemCopy(bytes, key.data(), key.size());
        if (key.size() == twoKeySize) MemCopy(bytes + twoKeySize, bytes, keySize - twoKeySize);
    }
    ~FullKey() {
        for (char volatile & c : bytes) c = 0;
    }
    char bytes[keySize];
};

Bytes room(ulong size) {
    Bytes bytes(size);
    if (bytes.buffer() == nullptr) throw std::bad_alloc();
    bytes.size(size);
    return bytes;
}

/// How many bytes of padding end the text; 0 for no padding. Looks at the same bytes whatever they hold.
unsigned paddingOf(Bytes const & text) noexcept {
    unsigned const size = text[text.size() - 1];
    unsigned wrong = size == 0 || size > C3DES::blockSize;
    for (unsigned i = 1; i <= C3DES::blockSize; ++i) {
        wrong |= static_cast<unsigned>(i <= size) & static_cast<unsigned>(text[text.size() - i] != size);
    }
    return wrong != 0 ? 0 : size;
}

}  // namespace

void C3DES::Close::operator()(void * cipher) const noexcept { gcry_cipher_close(handle(cipher)); }

C3DES::C3DES(istr key, Mode mode, istr initial) : mode_(mode) {
    static bool const ready = setUp();
    static_cast<void>(ready);
    if (key.size() != twoKeySize && key.size() != keySize) wrongSize("a key", key, "16 or 24");
    if (mode == Mode::CBC) vector(initial);
    gcry_cipher_hd_t cipher = nullptr;
    check(gcry_cipher_open(&cipher, GCRY_CIPHER_3DES, mode == Mode::ECB ? GCRY_CIPHER_MODE_ECB : GCRY_CIPHER_MODE_CBC,
                           0));
    cipher_.reset(cipher);
    check(gcry_cipher_ctl(cipher, GCRYCTL_SET_ALLOW_WEAK_KEY, nullptr, 1));
    FullKey const full(key);
    // A weak key is told of, and set all the same.
    gcry_error_t const error = gcry_cipher_setkey(cipher, full.bytes, keySize);
    if (gcry_err_code(error) != GPG_ERR_WEAK_KEY) check(error);
}

C3DES & C3DES::vector(istr vector) {
    if (vector.size() != blockSize) wrongSize("an initial vector", vector, "8");
    MemCopy(vector_.data(), vector.data(), blockSize);
    return *this;
}

void C3DES::start() const {
    check(gcry_cipher_reset(handle(cipher_.get())));
    if (mode_ == Mode::CBC) check(gcry_cipher_setiv(handle(cipher_.get()), vector_.data(), blockSize));
}

Bytes C3DES::encrypt(istr text) const {
    if (text.size() > npos - blockSize) throw std::length_error("yon::C3DES: longer than 32 bits can count");
    ulong const padding = blockSize - text.size() % blockSize;
    Bytes out = room(text.size() + padding);
    MemCopy(out.buffer(), text.data(), text.size());
    std::fill_n(out.buffer() + text.size(), padding, static_cast<unsigned char>(padding));
    start();
    check(gcry_cipher_encrypt(handle(cipher_.get()), out.buffer(), out.size(), nullptr, 0));
    return out;
}

Bytes C3DES::decrypt(istr data) const {
    if (data.empty() || data.size() % blockSize != 0) wrongSize("data", data, "a multiple of 8");
    Bytes out = room(data.size());
    start();
    check(gcry_cipher_decrypt(handle(cipher_.get()), out.buffer(), out.size(), data.data(), data.size()));
    unsigned const padding = paddingOf(out);
    if (padding == 0) YON_THROW(InvalidDataException, "broken padding");
    out.size(out.size() - padding);
    return out;
}

}  // namespace yon
