// pml beside other formats and their readers: the same trees parsed, printed, searched and destroyed. The memory of a
// tree is counted by the heap, with what the heap itself adds.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <unordered_map>

#include "pml_peers.h"

namespace {

/// As many trees at once as make a measurable piece of work, so that pausing the clock between pieces costs nothing.
std::size_t batchOf(std::string const & text) {
    return std::max<std::size_t>(1, (std::size_t{128} << 10) / text.size());
}

std::size_t heapInUse() {
    auto const info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

template <class Peer>
double countBytesANode(Document const & document) {
    std::string const & text = Peer::text(document);
    std::vector<typename Peer::Tree> trees(4 * batchOf(text));
    std::size_t const before = heapInUse();
    for (auto & tree : trees) tree = Peer::parse(text);
    return static_cast<double>(heapInUse() - before) / static_cast<double>(trees.size() * document.nodes);
}

/// Bytes of memory for a node, counted in a process of its own, where no memory is left over from other trees.
template <class Peer>
double bytesANode(Document const & document) {
    int ends[2];
    double bytes = 0;
    if (pipe(ends) != 0) std::abort();
    pid_t const child = fork();
    if (child == 0) {
        bytes = countBytesANode<Peer>(document);
        _exit(write(ends[1], &bytes, sizeof bytes) == sizeof bytes ? 0 : 1);
    }
    if (child < 0 || read(ends[0], &bytes, sizeof bytes) != sizeof bytes) std::abort();
    waitpid(child, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    return bytes;
}

template <class Peer>
void parse(benchmark::State & state, Document const & document, double bytes) {
    std::string const & text = Peer::text(document);
    std::vector<typename Peer::Tree> trees(batchOf(text));
    for (auto _ : state) {
        for (auto & tree : trees) tree = Peer::parse(text);
        state.PauseTiming();
        for (auto & tree : trees) tree.reset();
        state.ResumeTiming();
    }
    auto const count = static_cast<double>(trees.size() * document.nodes) * static_cast<double>(state.iterations());
    state.counters["per node"] = benchmark::Counter(count, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["bytes/node"] = bytes;
}

template <class Peer>
void destroy(benchmark::State & state, Document const & document) {
    std::string const & text = Peer::text(document);
    std::vector<typename Peer::Tree> trees(batchOf(text));
    for (auto _ : state) {
        state.PauseTiming();
        for (auto & tree : trees) tree = Peer::parse(text);
        state.ResumeTiming();
        for (auto & tree : trees) tree.reset();
    }
}

template <class Peer>
void print(benchmark::State & state, Document const & document) {
    auto const tree = Peer::parse(Peer::text(document));
    for (auto _ : state) benchmark::DoNotOptimize(Peer::print(tree));
}

template <class Peer>
void printIndented(benchmark::State & state, Document const & document) {
    auto const tree = Peer::parse(Peer::text(document));
    for (auto _ : state) benchmark::DoNotOptimize(Peer::printIndented(tree));
}

/// The paths of all nodes that only named ones stand above, in the peer's form.
template <class Peer>
void collectPaths(std::vector<std::string> & paths, Node const & node, std::string const & path) {
    for (Node const & child : node.children) {
        if (child.name.empty()) continue;
        std::string const childPath = path + Peer::step(child);
        paths.push_back(childPath);
        collectPaths<Peer>(paths, child, childPath);
    }
}

template <class Peer>
void findPath(benchmark::State & state, Document const & document) {
    std::vector<std::string> paths;
    collectPaths<Peer>(paths, document.root, "");
    std::shuffle(paths.begin(), paths.end(), std::mt19937(5));
    paths.resize(1000);
    auto const tree = Peer::parse(Peer::text(document));
    for (auto _ : state) {
        for (std::string const & path : paths) {
            if (Peer::find(tree, path) == nullptr) std::abort();
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(paths.size()) * state.iterations());
}

/// All names of the document's root, in disorder, through `find(name)`.
template <class Find>
void findNames(benchmark::State & state, Document const & document, Find find) {
    std::vector<std::string> names;
    for (Node const & child : document.root.children) names.push_back(child.name);
    std::shuffle(names.begin(), names.end(), std::mt19937(6));
    for (auto _ : state) {
        for (std::string const & name : names) {
            if (!find(name)) std::abort();
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(names.size()) * state.iterations());
}

void findNamesInUnit(benchmark::State & state, Document const & document) {
    auto const tree = Zuvyon::parse(document.pml);
    yon::pml::Unit const & unit = *tree;
    findNames(state, document, [&](std::string const & name) { return unit.at(yon::istr(name)) != nullptr; });
}

void findNamesInMap(benchmark::State & state, Document const & document) {
    std::unordered_map<std::string, std::string> map;
    for (Node const & child : document.root.children) map.emplace(child.name, child.text);
    findNames(state, document, [&](std::string const & name) { return map.find(name) != map.end(); });
}

void findNamesInNlohmann(benchmark::State & state, Document const & document) {
    auto const tree = Nlohmann::parse(document.json);
    findNames(state, document, [&](std::string const & name) { return tree->find(name) != tree->end(); });
}

template <class Run>
benchmark::internal::Benchmark * add(std::string const & job, Document const & document, char const * contestant,
                                     Run run) {
    return benchmark::RegisterBenchmark((job + "/" + document.title + "/" + contestant).c_str(),
                                        [run, &document](benchmark::State & state) { run(state, document); })
        ->Unit(benchmark::kMicrosecond);
}

void showNode(std::string & out, Node const & node, bool sorts) {
    out += node.text;
    std::vector<Node const *> children;
    for (Node const & child : node.children) children.push_back(&child);
    auto const less = [](Node const * a, Node const * b) {
        return label(a->name, a->type) < label(b->name, b->type);
    };
    if (sorts) std::stable_sort(children.begin(), children.end(), less);
    for (Node const * child : children) {
        out += label(child->name, child->type) + "(";
        showNode(out, *child, sorts);
        out += ")";
    }
}

/// Stops the program unless the peer's tree holds what the document says: all do equal work.
template <class Peer>
void verify(Document const & document) {
    std::string expected, shown;
    showNode(
        expected, document.root, requires { Peer::sorts; });
    Peer::show(shown, Peer::parse(Peer::text(document)));
    if (shown == expected) return;
    std::fprintf(stderr, "%s does not hold the document \"%s\"\n", Peer::name, document.title.c_str());
    std::exit(1);
}

template <class Peer>
void addPeer(Document const & document) {
    double const bytes = bytesANode<Peer>(document);
    verify<Peer>(document);
    add("parse", document, Peer::name,
        [bytes](benchmark::State & state, Document const & d) { parse<Peer>(state, d, bytes); });
    add("print", document, Peer::name, print<Peer>);
    if constexpr (requires(typename Peer::Tree t) { Peer::printIndented(t); }) {
        add("print indented", document, Peer::name, printIndented<Peer>);
    }
    // A few, because the trees are built outside the measured time.
    add("destroy", document, Peer::name, destroy<Peer>)->Iterations(10);
    if constexpr (requires(typename Peer::Tree t) { Peer::find(t, std::string()); }) {
        if (document.title == "40000 nodes") add("find path", document, Peer::name, findPath<Peer>);
    }
}

template <class... Peers>
void addPeers(Document const & document) {
    (addPeer<Peers>(document), ...);
}

bool const added = [] {
    static std::vector<Document> const documents = makeDocuments();
    for (Document const & document : documents) {
        std::printf("%-12s %6zu nodes: pml %zu bytes, xml %zu, json %zu, yaml %zu, info %zu, libconfig %zu\n",
                    document.title.c_str(), document.nodes, document.pml.size(), document.xml.size(),
                    document.json.size(), document.yaml.size(), document.info.size(), document.config.size());
        addPeers<Zuvyon, RapidjsonSingle, RapidjsonPool, Pugixml, Nlohmann, Libconfig, Yaml, PropertyTree>(document);
        if (document.title != "20000 names") continue;
        add("find name", document, Zuvyon::name, findNamesInUnit);
        add("find name", document, "unordered_map", findNamesInMap);
        add("find name", document, Nlohmann::name, findNamesInNlohmann);
    }
    return true;
}();

}  // namespace
