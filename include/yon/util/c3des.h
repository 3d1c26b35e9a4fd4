// `C3DES`: triple DES, for peers that know nothing newer.
#pragma once

#include <array>
#include <memory>

#include "yon/base/bytes.h"
#include "yon/base/config.h"
#include "yon/base/exception.h"

namespace yon {

/// Encrypts and decrypts with triple DES, and PKCS#7 padding: the result is 1 to 8 bytes longer than the text and a
/// multiple of 8. Whoever changes the bytes on their way is not noticed, and blocks of 64 bits are safe for little
/// data only: new protocols should use something else.
///
/// Keys are not checked for weakness, and their parity bits do not count. What is wrong with arguments or data raises
/// `InvalidDataException`. One object belongs to one thread at a time.
class YON_API C3DES {
public:
    /// ECB: each block by itself, so that equal blocks stay equal. CBC: each block depends on all before it.
    enum class Mode { ECB, CBC };
    static constexpr ulong blockSize = 8;

    /// A key of 16 bytes (two keys, the first of which serves as the third, too) or of 24; for CBC an initial vector
    /// of 8 bytes, which should be random and new for each text.
    explicit C3DES(istr key, Mode mode = Mode::ECB, istr vector = istr());
    C3DES(C3DES &&) noexcept = default;
    C3DES & operator=(C3DES &&) noexcept = default;
    ~C3DES() = default;

    /// Another initial vector for CBC; ECB has none.
    C3DES & vector(istr vector);

    /// Each call starts with the initial vector. Decrypting raises for data that no encryption gives, and for a
    /// broken padding, which a wrong key gives almost always.
    Bytes encrypt(istr text) const;
    Bytes decrypt(istr data) const;

private:
    struct YON_API Close {
        void operator()(void * cipher) const noexcept;
    };
    void start() const;

    Mode mode_;
    std::unique_ptr<void, Close> cipher_;
    std::array<char, blockSize> vector_{};
};

}  // namespace yon
