// Models of `Cond` and `RWRecMutex`, explored over all interleavings of three threads. A step is what no other thread
// can see the middle of: an operation on a semaphore, or all that happens under a mutex.
#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>
#include <vector>

namespace {

using Count = signed char;
using Programs = std::array<std::string, 3>;

/// Calls `terminal` for every state without a successor. `step(state, thread, go)` calls `go` for each successor.
template <class State>
void explore(auto step, auto terminal) {
    std::set<State> seen{State()};
    std::vector<State> open(seen.begin(), seen.end());
    while (!open.empty()) {
        State const state = open.back();
        open.pop_back();
        bool moved = false;
        auto const go = [&](State const & next) {
            moved = true;
            if (seen.insert(next).second) open.push_back(next);
        };
        for (std::size_t i = 0; i < state.threads.size(); ++i) step(state, i, go);
        if (!moved) terminal(state);
    }
}

/// Programs of `Cond`: w waits, t waits for a limited time, s signals, b broadcasts.
struct CondState {
    struct Thread {
        Count at, pc, woken, left, epoch;
        auto operator<=>(Thread const &) const = default;
    };
    Count gate = 1, queue = 0, waiting = 0, toRelease = 0;
    Count epoch = 0, due = 0, released = 0;  ///< wake-ups so far, how many threads they were for and have reached
    std::array<Thread, 3> threads{};
    auto operator<=>(CondState const &) const = default;
};

enum class Rule { ours, claimAlways };

struct CondModel {
    Programs programs;
    Rule rule = Rule::ours;
    int faults = 0;

    void operator()(CondState s, std::size_t i, auto go) {
        CondState::Thread & t = s.threads[i];
        if (static_cast<std::size_t>(t.at) == programs[i].size()) return;
        char const op = programs[i][static_cast<std::size_t>(t.at)];
        auto const next = [&](int pc) {
            t.pc = static_cast<Count>(pc);
            go(s);
        };
        auto const end = [&] {
            t = {static_cast<Count>(t.at + 1), 0, 0, 0, 0};
            go(s);
        };
        bool const waits = op == 'w' || op == 't';
        if (t.pc == 0 && !waits && s.waiting == 0) return end();
        if (t.pc == 0) return s.gate ? (--s.gate, next(waits ? 1 : 10)) : void();
        if (t.pc == 1) return ++s.waiting, t.epoch = s.epoch, next(2);
        if (t.pc == 2) return ++s.gate, next(3);
        if (t.pc == 3) {
            if (op == 't') next(4);
            return s.queue ? (--s.queue, t.woken = 1, next(4)) : void();
        }
        if (t.pc == 4) {
            --s.waiting;
            bool const leaves = rule == Rule::ours ? !t.woken && s.toRelease <= s.waiting : s.toRelease == 0;
            if (leaves) return end();
            faults += s.toRelease == 0 || t.epoch == s.epoch;  // not released, or it came after the wake-up
            t.left = --s.toRelease;
            ++s.released;
            if (rule == Rule::claimAlways) return next(t.woken ? 5 : 6);
            return t.left == 0 ? next(t.woken ? 7 : 6) : t.woken ? next(5) : end();
        }
        if (t.pc == 6) return s.queue ? (--s.queue, next(5)) : void();
        if (t.pc == 5 && t.left != 0) return ++s.queue, end();
        if (t.pc == 5 || t.pc == 7) return ++s.gate, end();
        if (t.pc == 10) {
            ++s.epoch;
            s.toRelease = op == 'b' || s.waiting == 0 ? s.waiting : Count{1};
            s.due = static_cast<Count>(s.due + s.toRelease);
            return next(s.waiting ? 11 : 12);
        }
        ++(t.pc == 11 ? s.queue : s.gate);
        end();
    }

    /// Only those may be left who wait without a limit and have not been woken.
    void terminal(CondState const & s) {
        int left = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            auto const & t = s.threads[i];
            if (static_cast<std::size_t>(t.at) == programs[i].size()) continue;
            ++left;
            faults += t.pc != 3 || programs[i][static_cast<std::size_t>(t.at)] != 'w';
        }
        faults += s.gate != 1 || s.queue != 0 || s.toRelease != 0 || s.waiting != left || s.released != s.due;
    }

    int faultsOf(Programs const & p) {
        programs = p;
        faults = 0;
        explore<CondState>([this](auto const & s, std::size_t i, auto go) { (*this)(s, i, go); },
                           [this](auto const & s) { terminal(s); });
        return faults;
    }
};

/// Calls `visit` for all sets of three out of `from`.
void forTriples(std::vector<std::string> const & from, auto visit) {
    for (auto a = from.begin(); a != from.end(); ++a) {
        for (auto b = a; b != from.end(); ++b) {
            for (auto c = b; c != from.end(); ++c) visit(Programs{*a, *b, *c});
        }
    }
}

TEST(CondModel, ReleasesWhomItShouldAndNeverLocksUp) {
    forTriples({"w", "tt", "ttt", "ts", "st", "bt", "tb", "ss", "sb", "wsw"}, [](Programs const & p) {
        EXPECT_EQ(CondModel{}.faultsOf(p), 0) << p[0] << ' ' << p[1] << ' ' << p[2];
    });
    // The model finds what happens when whose time is over takes a release although somebody else has the count.
    CondModel greedy;
    greedy.rule = Rule::claimAlways;
    EXPECT_GT(greedy.faultsOf({"t", "t", "ss"}), 0);
}

/// Programs of `RWRecMutex`: r and w lock for reading and writing, u upgrades, capitals for a limited time; d
/// downgrades, "." unlocks. A limited lock that fails skips to behind the next ".".
struct RwState {
    struct Thread {
        Count at, holds;  ///< -1: for writing
        char waits;       ///< for "r", "w" or "u", or woken: "!"
        auto operator<=>(Thread const &) const = default;
    };
    Count count = 0, waitingWriters = 0;
    bool upgrading = false;
    std::array<Thread, 3> threads{};
    auto operator<=>(RwState const &) const = default;
};

struct RwModel {
    Programs programs;
    bool passesOn = true;  ///< who gives up wakes whom it has kept from going
    int faults = 0;

    /// Wakes whoever may go, and goes on with each who may have been chosen.
    static void passOn(RwState s, auto go) {
        bool woken = false;
        if (s.waitingWriters == 0 && s.count >= 0) {
            for (auto & t : s.threads) t.waits = t.waits == 'r' ? '!' : t.waits;
        } else if (s.waitingWriters != 0 && s.count == 0) {
            for (auto & t : s.threads) {
                if (t.waits != (s.upgrading ? 'u' : 'w')) continue;
                woken = true;
                RwState chosen = s;
                chosen.threads[static_cast<std::size_t>(&t - s.threads.data())].waits = '!';
                go(chosen);
            }
        }
        if (!woken) go(s);
    }

    void operator()(RwState s, std::size_t i, auto go) {
        RwState::Thread & t = s.threads[i];
        std::string const & program = programs[i];
        if (static_cast<std::size_t>(t.at) == program.size()) return;
        char const letter = program[static_cast<std::size_t>(t.at)];
        bool const limited = letter == 'R' || letter == 'W' || letter == 'U';
        char const op = limited ? static_cast<char>(letter - 'A' + 'a') : letter;
        if (t.waits != 0 && t.waits != '!') {
            if (!limited) return;
            t.waits = '!';
            return go(s);
        }
        if (op == '.' || op == 'd') {
            ++t.at;
            s.count = static_cast<Count>(op == 'd' ? 1 : s.count - t.holds);
            t.holds = op == 'd';
            return passOn(s, go);
        }
        if (t.waits == 0 && op == 'u') {
            if (s.upgrading) return ++t.at, go(s);
            s.upgrading = true;
            --s.count;
            t.holds = 0;
        }
        if (t.waits == '!' && op != 'r') --s.waitingWriters;
        t.waits = 0;
        bool const free =
            op == 'r' ? s.count >= 0 && s.waitingWriters == 0 : s.count == 0 && s.upgrading == (op == 'u');
        if (free) {
            ++t.at;
            t.holds = op == 'r' ? 1 : -1;
            s.count = static_cast<Count>(s.count + t.holds);
            if (op == 'u') s.upgrading = false;
            return go(s);
        }
        RwState waiting = s;
        waiting.threads[i].waits = op;
        if (op != 'r') ++waiting.waitingWriters;
        go(waiting);
        if (!limited) return;
        if (op == 'u') {
            ++s.count;
            s.upgrading = false;
            t.holds = 1;
            ++t.at;
        } else {
            t.at = static_cast<Count>(program.find('.', static_cast<std::size_t>(t.at)) + 1);
        }
        passesOn && op != 'r' ? passOn(s, go) : go(s);
    }

    int faultsOf(Programs const & p) {
        programs = p;
        explore<RwState>(
            [this](auto const & s, std::size_t i, auto go) {
                int readers = 0, writers = 0;
                for (auto const & t : s.threads) ++(t.holds < 0 ? writers : readers), readers -= t.holds == 0;
                faults += writers != 0 ? s.count != -1 || readers != 0 : s.count != readers;
                // No reader waits any longer than it has to.
                faults += s.threads[i].waits == 'r' && s.count >= 0 && s.waitingWriters == 0;
                (*this)(s, i, go);
            },
            [this](RwState const & s) {
                for (std::size_t i = 0; i < 3; ++i) {
                    faults += static_cast<std::size_t>(s.threads[i].at) != programs[i].size();
                }
                faults += s.count != 0 || s.waitingWriters != 0 || s.upgrading;
            });
        return faults;
    }
};

TEST(RwRecMutexModel, KeepsWritersAloneAndNeverLocksUp) {
    forTriples({"r.R.", "r.w.", "W.", "W.W.", "wd.", "ru.", "rU.", "rU.rU.", "w.r."},
               [](Programs const & p) { EXPECT_EQ(RwModel{}.faultsOf(p), 0) << p[0] << ' ' << p[1] << ' ' << p[2]; });
    RwModel careless;
    careless.passesOn = false;
    EXPECT_GT(careless.faultsOf({"r.", "r.", "W."}), 0);
}

}  // namespace
