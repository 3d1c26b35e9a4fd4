#include "yon/util/uow.h"

#include <gtest/gtest.h>

#include <sstream>

#include "raise_testing.h"
#include "thread_testing.h"
#include "yon/base/throw.h"
#include "yon/log/logger_factory.h"

namespace yon {
namespace {

/// A command line from words.
class Words {
public:
    explicit Words(std::vector<char const *> const & words) {
        for (char const * w : words) texts_.emplace_back(w);
        for (std::string & t : texts_) pointers_.push_back(t.data());
        pointers_.push_back(nullptr);
    }
    int argc() const { return static_cast<int>(texts_.size()); }
    char ** argv() { return pointers_.data(); }

private:
    std::vector<std::string> texts_;
    std::vector<char *> pointers_;
};

struct Read {
    int port = 1;
    double factor = 0;
    String name = "none";
    bool verbose = false;
    std::vector<String> hosts;
    std::vector<String> files;
    std::ostringstream help;

    bool from(std::vector<char const *> const & words) {
        Words line(words);
        CmdOptions options("program");
        options.option("port", port, "N", "a port")
            .option("factor", factor, "X", "a factor")
            .option("name", name, "TEXT", "a name")
            .option("host", hosts, "HOST", "a host")
            .flag("verbose", verbose, "say more")
            .rest(files, "FILE");
        return options.parse(CmdLine(line.argc(), line.argv()), help);
    }
};

TEST(CmdOptions, ReadsAllForms) {
    Read r;
    EXPECT_TRUE(r.from({"p", "--port", "-7", "a", "--name=x=y", "--host", "h1", "--verbose", "--host=h2", "-",
                        "--factor", "2.5", "--", "--port", "b"}));
    EXPECT_TRUE(r.port == -7 && r.factor == 2.5 && r.name == "x=y" && r.verbose);
    EXPECT_EQ(r.hosts, (std::vector<String>{"h1", "h2"}));
    EXPECT_EQ(r.files, (std::vector<String>{"a", "-", "--port", "b"}));

    Read asked;
    EXPECT_FALSE(asked.from({"p", "--help", "--bad"}));
    EXPECT_EQ(asked.help.str(),
              "usage: program [OPTION...] FILE...\n"
              "  --port N     a port\n"
              "  --factor X   a factor\n"
              "  --name TEXT  a name\n"
              "  --host HOST  a host\n"
              "  --verbose    say more\n"
              "  --help       show this text\n");
}

TEST(CmdOptions, RefusesByName) {
    std::pair<std::vector<char const *>, std::string> const cases[] = {
        {{"p", "--prot", "1"}, "--prot: unknown option, see --help"},
        {{"p", "-v"}, "-v: unknown option, see --help"},
        {{"p", "--port"}, "--port: a value is missing"},
        {{"p", "--port=7x"}, "--port=7x: not a value for N: \"7x\""},
        {{"p", "--port", "99999999999"}, "--port: not a value for N: \"99999999999\""},
        {{"p", "--verbose=1"}, "--verbose=1: the option takes no value"},
    };
    for (auto const & [words, message] : cases) {
        Read r;
        auto const read = [&, &line = words] { r.from(line); };
        EXPECT_EQ(raised<ArgumentException>(read), "yon::ArgumentException: " + message);
        EXPECT_EQ(r.port, 1);
    }
}

/// Notes its hooks; `act` is called by the loop.
class Unit : public UnitOfWork {
public:
    explicit Unit(char const * name = "unit", UnitOfWork * parent = nullptr) : UnitOfWork(name, parent) {}
    void on_init() override {
        calls += 'i';
        if (stopAtOnce) stop(3);
    }
    void on_loop() override {
        calls += 'l';
        ++loops;
        act(*this);
    }
    void on_fini() override { calls += 'f'; }

    std::string calls;
    std::atomic<int> loops{0};
    bool stopAtOnce = false;
    std::function<void(Unit &)> act = [](Unit & u) { u.stop(); };
};

TEST(UnitOfWork, RunsHooksUntilStopped) {
    Unit early;
    early.stopAtOnce = true;
    EXPECT_TRUE(early.start() == 3 && early.calls == "if");

    Unit failing;
    failing.act = [](Unit & u) {
        if (u.calls == "il") YON_THROW(yon::InvalidDataException, "first");
        if (u.calls == "ill") throw std::runtime_error("second");
        u.stop(7);
    };
    EXPECT_TRUE(failing.start() == 7 && failing.calls == "illlf");

    Unit foreign;
    foreign.act = [](Unit &) { throw 5; };
    EXPECT_THROW(foreign.start(), int);
    EXPECT_TRUE(!foreign.running() && foreign.calls == "il");
}

TEST(UnitOfWork, GivesUpAfterFailuresInARow) {
    Unit unit;
    unit.onFailure(Time::milliSeconds(1), Time::milliSeconds(4), 5);
    unit.act = [](Unit & u) {
        if (u.calls.size() != 3) throw std::runtime_error("no");
    };
    EXPECT_TRUE(unit.start() == 1 && unit.calls == "i" + std::string(2 + 5, 'l') + "f");

    // A stop ends the waiting.
    Unit waiting;
    waiting.onFailure(Time::seconds(100), Time::seconds(100), 0);
    waiting.act = [](Unit &) { throw std::runtime_error("no"); };
    InThreads const stopper(1, [&](int) { eventually([&] { return waiting.loops > 0; }), waiting.stop(4); });
    EXPECT_EQ(waiting.start(), 4);
}

struct Mortal : UnitOfWork {
    Mortal(char const * name, std::string & d) : UnitOfWork(name), deaths(d) {}
    ~Mortal() noexcept(false) override { deaths += name(); }
    std::string & deaths;
};

TEST(UnitOfWork, OwnsItsChildrenAndKnowsItsPath) {
    std::string deaths;
    {
        UnitOfWork root("root");
        UnitOfWork & child = root.addChild(YON_NEW(Mortal)("child", deaths));
        UnitOfWork & grandchild = child.addChild(YON_NEW(Mortal)("leaf", deaths));
        root.addChild(YON_NEW(Mortal)("second", deaths));
        EXPECT_EQ(grandchild.path(), "root/child/leaf");
        EXPECT_THROW(root.addChild(nullptr), NullPointerException);
        EXPECT_THROW(root.addChild(&child), InvalidDataException);
        EXPECT_THROW(grandchild.addChild(&root), InvalidDataException);
        grandchild.stopAll(9);
        EXPECT_EQ(root.exitCode(), 9);
    }
    EXPECT_EQ(deaths, "childleafsecond");
}

struct WithHole : UnitOfWork {
    WithHole() : UnitOfWork("holed") { children().push_back(nullptr); }
};

TEST(UnitOfWork, TellsOfANullChildUnlessUnwinding) {
    EXPECT_TRUE(raisedAt<NullPointerException>([] { WithHole(); }).ends_with(":68 yon::UnitOfWork::~UnitOfWork"));
    auto const underWay = [] {
        WithHole const holed;
        throw std::runtime_error("under way");
    };
    EXPECT_THROW(underWay(), std::runtime_error);
}

TEST(UowMain, IsTheAppAndReadsArguments) {
    EXPECT_THROW(app(), NullPointerException);
    Words words({"program", "first", "second"});
    {
        UowMain program(words.argc(), words.argv());
        EXPECT_EQ(&app(), &program);
        EXPECT_EQ(program.argNext(), "first");
        EXPECT_EQ(program.argLeft(), 1u);
        EXPECT_TRUE(program.argNext() == "second" && program.argCurrent() == "second");
        EXPECT_THROW(program.argNext(), OutOfRangeException);
        EXPECT_THROW(program.argAt(2), OutOfRangeException);

        // Its loop runs the children and keeps the first code that is not 0.
        Unit * const children[] = {YON_NEW(Unit)("first"), YON_NEW(Unit)("second")};
        for (Unit * const child : children) {
            child->act = [](Unit & u) { u.stop(u.name() == "first" ? 5 : 6); };
            program.addChild(child);
        }
        EXPECT_EQ(program.start(), 5);
        EXPECT_EQ(children[1]->calls, "ilf");
        children[0]->act = [](Unit &) { throw 7; };
        EXPECT_THROW(program.start(), int);
        EXPECT_EQ(children[1]->calls, "ilf");
    }
    EXPECT_EQ(main_uow::instance().get(), nullptr);
}

}  // namespace
}  // namespace yon
