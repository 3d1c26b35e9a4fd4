// Views, byte buffers and number texts beside the standard library.
#include <benchmark/benchmark.h>

#include <array>
#include <charconv>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "yon/base/bytes.h"
#include "yon/base/number_text.h"
#include "yon/base/scalars.h"

namespace {

using yon::istr;
using yon::detail::formatNumber;
using yon::detail::numberRoom;
using yon::detail::parseNumber;

constexpr std::size_t count = 1024;

/// Measures `work(i)` for all indices.
template <class Work>
void add(std::string const & name, Work work) {
    benchmark::RegisterBenchmark(name.c_str(), [work](benchmark::State & state) {
        for (auto _ : state) {
            for (std::size_t i = 0; i < count; ++i) work(i);
        }
        state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
    });
}

/// Pairs of texts of about `length` that differ in their last character, or not at all.
struct Texts {
    explicit Texts(std::size_t length) {
        std::mt19937 random(1);
        for (std::size_t i = 0; i < count; ++i) {
            std::string s(length + random() % 8, 'a');
            for (char & c : s) c = static_cast<char>('a' + random() % 20);
            left.push_back(s);
            if (random() % 2) s.back() = 'x';
            right.push_back(s);
        }
    }
    std::vector<std::string> left, right;
};

template <class View>
void addViews(std::string const & contestant) {
    for (std::size_t length : {4, 12, 40, 1000}) {
        static std::vector<Texts> kept;
        kept.reserve(8);
        Texts const & texts = kept.emplace_back(length);
        std::vector<View> const a(texts.left.begin(), texts.left.end()), b(texts.right.begin(), texts.right.end());
        std::string const n = "/" + std::to_string(length) + "/" + contestant;
        add("view ==" + n, [=](std::size_t i) { benchmark::DoNotOptimize(a[i] == b[i]); });
        add("view <" + n, [=](std::size_t i) { benchmark::DoNotOptimize(a[i] < b[i]); });
        add("view compare" + n, [=](std::size_t i) { benchmark::DoNotOptimize(a[i].compare(b[i])); });
        add("view find char" + n, [=](std::size_t i) { benchmark::DoNotOptimize(a[i].find('x')); });
        add("view find text" + n, [=](std::size_t i) { benchmark::DoNotOptimize(a[i].find(View("abcx"))); });
        add("view rfind char" + n, [=](std::size_t i) { benchmark::DoNotOptimize(a[i].rfind('x')); });
        add("view hash" + n, [=](std::size_t i) { benchmark::DoNotOptimize(std::hash<View>()(a[i])); });
    }
}

/// A buffer that grows from nothing, in memory and not in registers, as the member of an object does.
void addAppend(std::size_t size, int times) {
    std::string const piece(size, 'x');
    std::string const job = "append/" + std::to_string(times) + " times " + std::to_string(size) + " bytes/";
    add(job + "zuvyon", [=](std::size_t) {
        yon::Bytes b;
        benchmark::DoNotOptimize(&b);
        for (int i = 0; i < times; ++i) b.append(piece);
        benchmark::DoNotOptimize(b.data());
    });
    add(job + "std::vector", [=](std::size_t) {
        std::vector<unsigned char> v;
        benchmark::DoNotOptimize(&v);
        auto const bytes = reinterpret_cast<unsigned char const *>(piece.data());
        for (int i = 0; i < times; ++i) v.insert(v.end(), bytes, bytes + piece.size());
        benchmark::DoNotOptimize(v.data());
    });
}

template <class T>
char * standardFormat(char * first, T value) {
    if constexpr (std::is_integral_v<T>) {
        return std::to_chars(first, first + numberRoom, value).ptr;
    } else {
        return std::to_chars(first, first + numberRoom, value, std::chars_format::general, 6).ptr;
    }
}

template <class T>
void addNumbers(std::string const & kind, std::vector<T> values) {
    std::vector<std::string> texts;
    for (T value : values) {
        std::array<char, numberRoom> room;
        texts.emplace_back(room.data(), standardFormat(room.data(), value));
    }
    add(kind + " to text/zuvyon", [=](std::size_t i) {
        std::array<char, numberRoom> room;
        benchmark::DoNotOptimize(formatNumber(room.data(), values[i]));
        benchmark::ClobberMemory();
    });
    add(kind + " to text/std::to_chars", [=](std::size_t i) {
        std::array<char, numberRoom> room;
        benchmark::DoNotOptimize(standardFormat(room.data(), values[i]));
        benchmark::ClobberMemory();
    });
    add(kind + " from text/zuvyon", [=](std::size_t i) {
        T value{};
        benchmark::DoNotOptimize(parseNumber(istr(texts[i]), value));
        benchmark::DoNotOptimize(value);
    });
    add(kind + " from text/std::from_chars", [=](std::size_t i) {
        T value{};
        benchmark::DoNotOptimize(std::from_chars(texts[i].data(), texts[i].data() + texts[i].size(), value).ec);
        benchmark::DoNotOptimize(value);
    });
}

template <class Scalar, class T>
void addScalar(std::string const & kind, std::vector<T> values) {
    std::vector<yon::String> texts;
    for (T value : values) texts.push_back(Scalar(value).toString());
    add(kind + " toString/zuvyon", [=](std::size_t i) { benchmark::DoNotOptimize(Scalar(values[i]).toString()); });
    add(kind + " toString/std::to_chars", [=](std::size_t i) {
        std::array<char, numberRoom> room;
        benchmark::DoNotOptimize(std::string(room.data(), standardFormat(room.data(), values[i])));
    });
    add(kind + " fromString/zuvyon", [=](std::size_t i) {
        Scalar value;
        value.fromString(texts[i]);
        benchmark::DoNotOptimize(value);
    });
    add(kind + " fromString/std::from_chars", [=](std::size_t i) {
        T value{};
        std::from_chars(texts[i].data(), texts[i].data() + texts[i].size(), value);
        benchmark::DoNotOptimize(value);
    });
}

/// Numbers of every size, as many short as long.
template <class T>
std::vector<T> integers() {
    std::mt19937_64 random(2);
    std::vector<T> values(count);
    for (T & v : values) v = static_cast<T>(static_cast<T>(random()) >> random() % (8 * sizeof(T)));
    return values;
}

std::vector<double> reals(double scale) {
    std::mt19937_64 random(3);
    std::vector<double> values(count);
    for (double & v : values) v = static_cast<double>(static_cast<int>(random() % 2000000) - 1000000) / scale;
    return values;
}

bool const registered = [] {
    addViews<istr>("zuvyon");
    addViews<std::string_view>("std::string_view");
    for (std::size_t size : {1, 16, 200}) {
        for (int times : {10, 1000}) addAppend(size, times);
    }
    addNumbers("int", integers<int>());
    addNumbers("ulonglong", integers<yon::ulonglong>());
    addNumbers("whole double", reals(1));
    addNumbers("double", reals(1234.5));
    addNumbers("float", std::vector<float>(count, 0.1f));
    addScalar<yon::Long>("Long", integers<yon::slong>());
    addScalar<yon::Double>("Double", reals(1234.5));
    return true;
}();

}  // namespace
