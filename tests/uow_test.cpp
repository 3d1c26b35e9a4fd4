#include "yon/util/uow.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

#include "yon/base/throw.h"
#include "yon/log/logger_factory.h"

namespace yon {
namespace {

/// A command line from words.
class Words {
public:
    Words(std::initializer_list<char const *> words) {
        for (char const * w : words) texts_.emplace_back(w);
        for (std::string & t : texts_) pointers_.push_back(t.data());
        pointers_.push_back(nullptr);
    }
    int argc() const { return static_cast<int>(texts_.size()); }
    char ** argv() { return pointers_.data(); }
    CmdLine line() { return CmdLine(argc(), argv()); }

private:
    std::vector<std::string> texts_;
    std::vector<char *> pointers_;
};

TEST(CmdLine, TakesWordsAndDumpsThem) {
    Words words{"program", "one", ""};
    CmdLine const line = words.line();
    EXPECT_EQ(line.cmd(), "program");
    EXPECT_EQ(line.args(), (std::vector<String>{"one", ""}));
    std::ostringstream os;
    line.dump(os);
    EXPECT_NE(os.str().find("cmd_ = \"program\""), std::string::npos) << os.str();
    EXPECT_TRUE(CmdLine(0, nullptr).args().empty());
}

struct Read {
    int port = 1;
    double factor = 0;
    String name = "none";
    bool verbose = false;
    std::vector<String> hosts;
    std::vector<String> files;
    std::ostringstream help;

    bool from(std::initializer_list<char const *> words) {
        Words line(words);
        CmdOptions options("program");
        options.option("port", port, "N", "a port")
            .option("factor", factor, "X", "a factor")
            .option("name", name, "TEXT", "a name")
            .option("host", hosts, "HOST", "a host")
            .flag("verbose", verbose, "say more")
            .rest(files, "FILE");
        return options.parse(line.line(), help);
    }
};

TEST(CmdOptions, ReadsAllForms) {
    Read r;
    EXPECT_TRUE(r.from({"p", "--port", "-7", "a", "--name=x=y", "--host", "h1", "--verbose", "--host=h2", "-",
                        "--factor", "2.5", "--", "--port", "b"}));
    EXPECT_EQ(r.port, -7);
    EXPECT_EQ(r.factor, 2.5);
    EXPECT_EQ(r.name, "x=y");
    EXPECT_TRUE(r.verbose);
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
    struct {
        std::initializer_list<char const *> words;
        char const * message;
    } const cases[] = {
        {{"p", "--prot", "1"}, "yon::ArgumentException: --prot: unknown option, see --help"},
        {{"p", "-v"}, "yon::ArgumentException: -v: unknown option, see --help"},
        {{"p", "--port"}, "yon::ArgumentException: --port: a value is missing"},
        {{"p", "--port=7x"}, "yon::ArgumentException: --port=7x: not a value for N: \"7x\""},
        {{"p", "--port", "99999999999"}, "yon::ArgumentException: --port: not a value for N: \"99999999999\""},
        {{"p", "--verbose=1"}, "yon::ArgumentException: --verbose=1: the option takes no value"},
    };
    for (auto const & c : cases) {
        Read r;
        try {
            r.from(c.words);
            ADD_FAILURE() << c.message;
        } catch (ArgumentException const & e) {
            EXPECT_STREQ(e.what(), c.message);
            EXPECT_EQ(r.port, 1);
        }
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
    EXPECT_EQ(early.start(), 3);
    EXPECT_EQ(early.calls, "if");

    Unit failing;
    failing.act = [](Unit & u) {
        if (u.calls == "il") YON_THROW(yon::InvalidDataException, "first");
        if (u.calls == "ill") throw std::runtime_error("second");
        u.stop(7);
    };
    EXPECT_EQ(failing.start(), 7);
    EXPECT_EQ(failing.calls, "illlf");

    Unit foreign;
    foreign.act = [](Unit &) { throw 5; };
    EXPECT_THROW(foreign.start(), int);
    EXPECT_FALSE(foreign.running());
    EXPECT_EQ(foreign.calls, "il");
}

TEST(UnitOfWork, GivesUpAfterFailuresInARow) {
    Unit unit;
    unit.onFailure(Time::milliSeconds(1), Time::milliSeconds(4), 5);
    unit.act = [](Unit & u) {
        if (u.calls.size() != 3) throw std::runtime_error("no");
    };
    EXPECT_EQ(unit.start(), 1);
    EXPECT_EQ(unit.calls, "i" + std::string(2 + 5, 'l') + "f");

    // A stop ends the waiting.
    Unit waiting;
    waiting.onFailure(Time::seconds(100), Time::seconds(100), 0);
    waiting.act = [](Unit &) { throw std::runtime_error("no"); };
    std::thread stopper([&] {
        while (waiting.loops < 1) std::this_thread::yield();
        waiting.stop(4);
    });
    EXPECT_EQ(waiting.start(), 4);
    stopper.join();
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
        EXPECT_EQ(root.path(), "root");
        EXPECT_EQ(grandchild.path(), "root/child/leaf");
        EXPECT_EQ(grandchild.root(), &root);
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
    try {
        {
            WithHole const holed;
            static_cast<void>(holed);
        }
        ADD_FAILURE();
    } catch (NullPointerException const & e) {
        EXPECT_STREQ(e.what(), "yon::NullPointerException: yon::NullPointerException");
        EXPECT_STREQ(e.func(), "yon::UnitOfWork::~UnitOfWork");
        EXPECT_EQ(e.line(), 68u);
    }
    EXPECT_THROW(
        {
            WithHole const holed;
            throw std::runtime_error("under way");
        },
        std::runtime_error);
}

TEST(UowMain, IsTheAppAndReadsArguments) {
    EXPECT_THROW(app(), NullPointerException);
    Words words{"program", "first", "second"};
    {
        UowMain program(words.argc(), words.argv());
        EXPECT_EQ(&app(), &program);
        EXPECT_EQ(program.path(), "main");
        EXPECT_EQ(program.argCount(), 2u);
        EXPECT_EQ(program.argCurrent(), "");
        EXPECT_EQ(program.argNext(), "first");
        EXPECT_EQ(program.argLeft(), 1u);
        EXPECT_EQ(program.argNext(), "second");
        EXPECT_EQ(program.argCurrent(), "second");
        EXPECT_THROW(program.argNext(), OutOfRangeException);
        EXPECT_THROW(program.argAt(2), OutOfRangeException);

        // Its loop runs the children and keeps the first code that is not 0.
        auto * const first = YON_NEW(Unit)("first");
        first->act = [](Unit & u) { u.stop(5); };
        auto * const second = YON_NEW(Unit)("second");
        second->act = [](Unit & u) { u.stop(6); };
        program.addChild(first);
        program.addChild(second);
        EXPECT_EQ(program.start(), 5);
        EXPECT_EQ(second->calls, "ilf");

        first->act = [](Unit &) { throw 7; };
        second->calls.clear();
        EXPECT_THROW(program.start(), int);
        EXPECT_EQ(second->calls, "");
    }
    EXPECT_EQ(main_uow::instance().get(), nullptr);
}

}  // namespace
}  // namespace yon
