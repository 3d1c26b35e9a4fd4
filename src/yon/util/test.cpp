#include "yon/util/test.h"

#include <algorithm>
#include <iostream>
#include <random>

#include "yon/base/throw.h"
#include "yon/log/console.h"
#include "yon/util/test_menu.h"
#include "yon/util/test_runner.h"

namespace yon::test {

namespace {

constexpr unsigned mostFailures = 125;
constexpr int statusOfMisuse = 2;

constinit Case * registered = nullptr;

/// In the order of their registration.
std::vector<Case const *> allCases() {
    std::vector<Case const *> cases;
    for (Case const * c = registered; c != nullptr; c = c->next) cases.push_back(c);
    std::reverse(cases.begin(), cases.end());
    return cases;
}

}  // namespace

Case::Case(char const * caseMenu, char const * caseName, void (*caseBody)()) noexcept
    : menu(caseMenu), name(caseName), body(caseBody), next(std::exchange(registered, this)) {}

String Case::path() const { return String(menu) + '/' + name; }

struct UowTest::Impl {
    void readOptions(CmdLine const & line, UowTest & unit);
    /// The cases at a path or below it that the filter lets through, in the order they are to run in.
    std::vector<Case const *> select(istr where) const;
    void ask(UowTest & unit);

    bool list = false;
    String selection;
    String filter;
    longlong seed = -1;
    longlong limit = 60;
    String junit;
    std::unique_ptr<Report> report;
    std::unique_ptr<Menu> menu;
};

void UowTest::Impl::readOptions(CmdLine const & line, UowTest & unit) {
    CmdOptions options(line.cmd());
    options.flag("list", list, "list the cases")
        .option("run", selection, "NAME|all", "run a case, the cases of a menu, or all, without asking")
        .option("filter", filter, "TEXT", "only cases with this text in their paths")
        .option("shuffle", seed, "SEED", "in an order made from this number")
        .option("time-limit", limit, "SECONDS", "for each case, 60 at first")
        .option("junit", junit, "FILE", "write a JUnit report");
    if (!options.parse(line, std::cout)) unit.stop();
    if (limit < 1) YON_THROW(ArgumentException, "--time-limit: at least 1 second");
    if (!selection.empty() && select(selection).empty()) {
        YON_THROW(ArgumentException, "--run: no test case or menu " + selection + ", see --list");
    }
}

std::vector<Case const *> UowTest::Impl::select(istr where) const {
    std::vector<Case const *> cases = allCases();
    std::erase_if(cases, [&](Case const * c) {
        String const path = c->path();
        return !liesWithin(path, where == "all" ? istr() : where) || path.find(filter) == path.npos;
    });
    if (seed >= 0) {
        std::mt19937_64 random(static_cast<std::uint64_t>(seed));
        // By hand, so that a seed gives the same order everywhere.
        for (std::size_t i = cases.size(); i > 1; --i)
            std::swap(cases[i - 1], cases[static_cast<std::size_t>(random() % i)]);
    }
    return cases;
}

void UowTest::Impl::ask(UowTest & unit) {
    String line;
    if (!console::readline(line, menu->prompt().c_str())) {
        if (console::atEnd()) unit.stop(unit.exitCode());
        return;
    }
    String const path = menu->choose(line);
    if (!path.empty()) unit.run(path);
    if (menu->left()) return unit.stop(unit.exitCode());
    console::print(menu->text());
    console::flush();
}

UowTest::UowTest(char const * name, UnitOfWork * parent) : UnitOfWork(name, parent), impl_(new Impl) {}
UowTest::~UowTest() noexcept(false) = default;

void UowTest::on_init() {
    impl_->readOptions(cmdline().cmd().empty() ? root()->cmdline() : cmdline(), *this);
    impl_->report = std::make_unique<Report>(impl_->junit);
    impl_->menu = std::make_unique<Menu>(impl_->select(""));
    if (!impl_->list && impl_->selection.empty() && running()) console::print(impl_->menu->text());
}

void UowTest::on_loop() {
    if (impl_->list) {
        for (Case const * c : impl_->select(impl_->selection)) console::println(c->path());
        stop();
    } else if (!impl_->selection.empty()) {
        run(impl_->selection);
        stop(exitCode());
    } else {
        impl_->ask(*this);
    }
    console::flush();
}

void UowTest::run(String const & path) {
    for (Case const * c : impl_->select(path)) {
        impl_->report->begins(*c);
        impl_->report->ended(runCase(*c, Time::seconds(impl_->limit)));
    }
    impl_->report->summary();
    exitCode(static_cast<int>(std::min(impl_->report->failed(), mostFailures)));
}

int runMain(int argc, char ** argv) {
    UowMain program(argc, argv);
    auto * const tests = YON_NEW(UowTest)();
    program.addChild(tests);
    try {
        return tests->start();
    } catch (ArgumentException const & e) {
        std::cerr << program.cmdline().cmd() << ": " << e.what() << '\n';
        return statusOfMisuse;
    }
}

}  // namespace yon::test
