// The binary encodings beside others: the same values written, read and parsed into trees.
#include <benchmark/benchmark.h>
#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>

#include <cereal/archives/binary.hpp>
#include <cereal/types/string.hpp>
#include <cstdio>
#include <memory>
#include <msgpack.hpp>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "yon/nbr/output_stream.h"
#include "yon/nbr/parser.h"
#include "yon/util/binary_in_stream.h"
#include "yon/util/binary_out_stream.h"

namespace {

/// One of each kind of value.
struct Record {
    bool flag;
    short small;
    int number;
    unsigned id;
    long long big;
    float ratio;
    double value;
    std::string name;
    bool operator==(Record const &) const = default;
};
constexpr std::size_t valuesARecord = 8;
constexpr std::size_t values = 1000000;

std::vector<Record> const & records() {
    static std::vector<Record> const made = [] {
        std::mt19937_64 random(1);
        std::vector<Record> all(values / valuesARecord);
        // Of all sizes, as in life, mostly small.
        auto const number = [&] { return static_cast<long long>(random() >> (random() % 64)); };
        for (Record & r : all) {
            r = {random() % 2 == 0,
                 static_cast<short>(number()),
                 static_cast<int>(number()),
                 static_cast<unsigned>(number()),
                 number(),
                 static_cast<float>(random() % 1000) / 8,
                 static_cast<double>(random()) / 7,
                 std::string(4 + random() % 12, 'n')};
        }
        return all;
    }();
    return made;
}

/// Calls `work` with each field.
template <class R, class Work>
void forEachField(R & r, Work work) {
    work(r.flag);
    work(r.small);
    work(r.number);
    work(r.id);
    work(r.big);
    work(r.ratio);
    work(r.value);
    work(r.name);
}

struct Zuvyon {
    static constexpr char const * name = "zuvyon";
    template <class All>
    static std::string_view write(All const & all) {
        static yon::BinaryOutStream out;
        out.buffer().reset();
        for (auto const & r : all) forEachField(r, [&](auto const & field) { out.write(field); });
        return out.str();
    }
    template <class All>
    static void read(std::string const & bytes, All & all) {
        yon::BinaryInStream in(bytes);
        for (auto & r : all) forEachField(r, [&](auto & field) { in.read(field); });
    }
};

struct ZuvyonNbr : Zuvyon {
    template <class All>
    static std::string_view write(All const & all) {
        static yon::nbr::OutputStream out;
        out.reset();
        for (auto const & r : all) forEachField(r, [&](auto const & field) { out << field; });
        return out.str();
    }
};

struct Msgpack {
    static constexpr char const * name = "msgpack";
    template <class All>
    static std::string_view write(All const & all) {
        static msgpack::sbuffer out(1 << 16);
        out.clear();
        msgpack::packer<msgpack::sbuffer> packer(out);
        for (auto const & r : all) forEachField(r, [&](auto const & field) { packer.pack(field); });
        return {out.data(), out.size()};
    }
    template <class All>
    static void read(std::string const & bytes, All & all) {
        std::size_t at = 0;
        msgpack::zone zone;
        for (auto & r : all) {
            forEachField(r,
                         [&](auto & field) { msgpack::unpack(zone, bytes.data(), bytes.size(), at).convert(field); });
        }
    }
};

struct Cereal {
    static constexpr char const * name = "cereal";
    template <class All>
    static std::string_view write(All const & all) {
        static std::ostringstream out;
        out.seekp(0);
        cereal::BinaryOutputArchive archive(out);
        for (auto const & r : all) forEachField(r, [&](auto const & field) { archive(field); });
        return out.view();
    }
    template <class All>
    static void read(std::string const & bytes, All & all) {
        struct View : std::streambuf {
            explicit View(std::string const & s) {
                char * const p = const_cast<char *>(s.data());
                setg(p, p, p + s.size());
            }
        } buffer(bytes);
        std::istream in(&buffer);
        cereal::BinaryInputArchive archive(in);
        for (auto & r : all) forEachField(r, [&](auto & field) { archive(field); });
    }
};

struct Protobuf {
    static constexpr char const * name = "protobuf";
    using Out = google::protobuf::io::CodedOutputStream;
    using In = google::protobuf::io::CodedInputStream;

    static void put(Out & out, bool v) { out.WriteVarint32(v); }
    static void put(Out & out, short v) { out.WriteVarint32SignExtended(v); }
    static void put(Out & out, int v) { out.WriteVarint32SignExtended(v); }
    static void put(Out & out, unsigned v) { out.WriteVarint32(v); }
    static void put(Out & out, long long v) { out.WriteVarint64(static_cast<std::uint64_t>(v)); }
    static void put(Out & out, float v) { out.WriteLittleEndian32(std::bit_cast<std::uint32_t>(v)); }
    static void put(Out & out, double v) { out.WriteLittleEndian64(std::bit_cast<std::uint64_t>(v)); }
    static void put(Out & out, std::string const & v) {
        out.WriteVarint32(static_cast<std::uint32_t>(v.size()));
        out.WriteString(v);
    }
    template <class T>
    requires std::is_integral_v<T>
    static void get(In & in, T & v) {
        std::uint64_t bits = 0;
        in.ReadVarint64(&bits);
        v = static_cast<T>(bits);
    }
    static void get(In & in, float & v) {
        std::uint32_t bits = 0;
        in.ReadLittleEndian32(&bits);
        v = std::bit_cast<float>(bits);
    }
    static void get(In & in, double & v) {
        std::uint64_t bits = 0;
        in.ReadLittleEndian64(&bits);
        v = std::bit_cast<double>(bits);
    }
    static void get(In & in, std::string & v) {
        std::uint32_t size = 0;
        in.ReadVarint32(&size);
        in.ReadString(&v, static_cast<int>(size));
    }
    template <class All>
    static std::string_view write(All const & all) {
        static std::string bytes;
        bytes.clear();
        google::protobuf::io::StringOutputStream stream(&bytes);
        {
            Out out(&stream);
            for (auto const & r : all) forEachField(r, [&](auto const & field) { put(out, field); });
        }
        return bytes;
    }
    template <class All>
    static void read(std::string const & bytes, All & all) {
        In in(reinterpret_cast<std::uint8_t const *>(bytes.data()), static_cast<int>(bytes.size()));
        for (auto & r : all) forEachField(r, [&](auto & field) { get(in, field); });
    }
};

/// Fixed-width fields, copied.
struct Copy {
    static constexpr char const * name = "copy";
    template <class All>
    static std::string_view write(All const & all) {
        static std::string bytes(values * 16, '\0');
        char * p = bytes.data();
        for (auto const & r : all) {
            forEachField(r, [&]<class T>(T const & field) {
                if constexpr (std::is_arithmetic_v<T>) {
                    std::memcpy(p, &field, sizeof field);
                    p += sizeof field;
                } else {
                    *p++ = static_cast<char>(field.size());
                    p = std::copy(field.begin(), field.end(), p);
                }
            });
        }
        return {bytes.data(), static_cast<std::size_t>(p - bytes.data())};
    }
    template <class All>
    static void read(std::string const & bytes, All & all) {
        char const * p = bytes.data();
        for (auto & r : all) {
            forEachField(r, [&]<class T>(T & field) {
                if constexpr (std::is_arithmetic_v<T>) {
                    std::memcpy(&field, p, sizeof field);
                    p += sizeof field;
                } else {
                    field.assign(p + 1, static_cast<std::size_t>(*p));
                    p += 1 + *p;
                }
            });
        }
    }
};

[[noreturn]] void fail(char const * who) {
    std::fprintf(stderr, "%s does not hold the values\n", who);
    std::exit(1);
}

template <class Peer>
void addStream(char const * writeJob, char const * readJob) {
    static std::string const bytes(Peer::write(records()));
    static std::vector<Record> back(records().size());
    if (readJob != nullptr) {
        Peer::read(bytes, back);
        if (back != records()) fail(Peer::name);
    }
    std::printf("%-10s %zu bytes\n", Peer::name, bytes.size());
    auto const add = [](char const * job, auto run) {
        if (job == nullptr) return;
        benchmark::RegisterBenchmark((std::string(job) + "/" + Peer::name).c_str(), [run](benchmark::State & state) {
            for (auto _ : state) run();
            state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values));
        })->Unit(benchmark::kMillisecond);
    };
    add(writeJob, [] {
        benchmark::DoNotOptimize(Peer::write(records()));
        benchmark::ClobberMemory();
    });
    add(readJob, [] {
        Peer::read(bytes, back);
        benchmark::DoNotOptimize(back.data());
    });
}

// --- trees: 40,000 values, in 4,000 groups of nine ---

constexpr int groups = 4000;
constexpr int elements = 9;

template <class Number, class Text>
void fillGroup(int group, Number number, Text text) {
    for (int i = 0; i < elements; ++i) {
        i % 3 == 2 ? text(i, "value " + std::to_string(group)) : number(i, group * (1 + i % 4 * 60) % 100003);
    }
}

std::string nbrTree() {
    yon::nbr::OutputStream out;
    out.beginComplex();
    for (int g = 0; g < groups; ++g) {
        out.beginComplex();
        fillGroup(
            g, [&](int i, int n) { out.tag(static_cast<unsigned>(i)) << n; },
            [&](int i, std::string const & s) { out.tag(static_cast<unsigned>(i)) << s; });
        out.endComplex();
    }
    out.endComplex();
    return std::string(std::string_view(out.str()));
}

std::string msgpackTree() {
    msgpack::sbuffer buffer;
    msgpack::packer<msgpack::sbuffer> out(buffer);
    out.pack_array(groups);
    for (int g = 0; g < groups; ++g) {
        out.pack_map(elements);
        // Names of one letter: what reads msgpack into JSON knows no other keys.
        auto const put = [&](int i, auto const & value) {
            out.pack(std::string(1, static_cast<char>('a' + i)));
            out.pack(value);
        };
        fillGroup(g, put, put);
    }
    return {buffer.data(), buffer.size()};
}

template <class Parse>
void addParse(char const * contestant, std::string const & bytes, Parse parse) {
    benchmark::RegisterBenchmark((std::string("parse tree/") + contestant).c_str(), [=](benchmark::State & state) {
        for (auto _ : state) {
            auto tree = parse(bytes);
            state.PauseTiming();
            { auto const gone = std::move(tree); }
            state.ResumeTiming();
        }
    })->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark((std::string("parse, destroy tree/") + contestant).c_str(),
                                 [=](benchmark::State & state) {
                                     for (auto _ : state) benchmark::DoNotOptimize(parse(bytes));
                                 })
        ->Unit(benchmark::kMicrosecond);
}

bool const added = [] {
    addStream<Zuvyon>("write", "read");
    addStream<Msgpack>("write", "read");
    addStream<Cereal>("write", "read");
    addStream<Protobuf>("write", "read");
    addStream<Copy>("write", "read");
    addStream<ZuvyonNbr>("write nbr", nullptr);
    addStream<Msgpack>("write nbr", nullptr);
    addStream<Protobuf>("write nbr", nullptr);

    addParse("zuvyon", nbrTree(), [](std::string const & bytes) {
        std::unique_ptr<yon::nbr::ValueBase> tree(yon::nbr::parser::from(bytes));
        if (tree->complexValue()->data().size() != groups) fail("zuvyon");
        return tree;
    });
    addParse("msgpack", msgpackTree(), [](std::string const & bytes) {
        auto tree = msgpack::unpack(bytes.data(), bytes.size());
        if (tree->via.array.size != groups) fail("msgpack");
        return tree;
    });
    addParse("nlohmann", msgpackTree(), [](std::string const & bytes) {
        auto tree = nlohmann::json::from_msgpack(bytes);
        if (tree.size() != groups) fail("nlohmann");
        return tree;
    });
    return true;
}();

}  // namespace
