// Integers in network byte order.
#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstring>
#include <type_traits>

#include "yon/base/config.h"
#include "yon/base/types.h"

namespace yon {

/// N bytes that hold an unsigned integer, most significant byte first. A plain value of size N.
template <ulong N>
class octets {
    static_assert(N == 2 || N == 4 || N == 8);

public:
    constexpr octets() noexcept = default;
    /// The first min(`n`, N) bytes of `p`, the others 0; nothing for null.
    octets(void const * p, ulong n) noexcept {
        if (p != nullptr) std::memcpy(bytes_.data(), p, std::min(n, N));
    }
    /// Copies N bytes.
    explicit octets(void const * p) noexcept : octets(p, N) {}

    constexpr unsigned char & operator[](ulong i) noexcept { return bytes_[i]; }
    constexpr unsigned char const & operator[](ulong i) const noexcept { return bytes_[i]; }
    constexpr unsigned char const * data() const noexcept { return bytes_.data(); }
    static constexpr ulong size() noexcept { return N; }

    friend bool operator==(octets const &, octets const &) noexcept = default;

private:
    std::array<unsigned char, N> bytes_{};
};

static_assert(sizeof(octets<2>) == 2 && sizeof(octets<4>) == 4 && sizeof(octets<8>) == 8);

namespace detail {

template <ulong N, class T>
constexpr octets<N> toOctets(T value) noexcept {
    octets<N> r;
    for (ulong i = 0; i < N; ++i) r[i] = static_cast<unsigned char>(value >> (8 * (N - 1 - i)));
    return r;
}
template <class T, ulong N>
constexpr T fromOctets(octets<N> const & o) noexcept {
    T value = 0;
    for (ulong i = 0; i < N; ++i) value = static_cast<T>(value << 8 | o[i]);
    return value;
}

}  // namespace detail

constexpr octets<2> hton(unsigned short v) noexcept { return detail::toOctets<2>(v); }
constexpr octets<4> hton(unsigned int v) noexcept { return detail::toOctets<4>(v); }
constexpr octets<sizeof(unsigned long)> hton(unsigned long v) noexcept {
    return detail::toOctets<sizeof(unsigned long)>(v);
}
constexpr octets<8> hton(unsigned long long v) noexcept { return detail::toOctets<8>(v); }

/// Of signed integers the bits count.
template <std::signed_integral T>
constexpr auto hton(T v) noexcept {
    return hton(static_cast<std::make_unsigned_t<T>>(v));
}

constexpr unsigned short ntoh(octets<2> const & o) noexcept { return detail::fromOctets<unsigned short>(o); }
constexpr ulong ntoh(octets<4> const & o) noexcept { return detail::fromOctets<ulong>(o); }
constexpr unsigned long long ntoh(octets<8> const & o) noexcept { return detail::fromOctets<unsigned long long>(o); }

}  // namespace yon
