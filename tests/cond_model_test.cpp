// Models of `Cond` and `RWRecMutex`, explored over all interleavings of three threads. A step is what no other thread
// can see the middle of: an operation on a semaphore, or all that happens under a mutex.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <utility>
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
        Count at, pc, woken, group, epoch, posts[2];
        auto operator<=>(Thread const &) const = default;
    };
    struct Group {
        Count queue, waiting, released, epoch;
        auto operator<=>(Group const &) const = default;
    };
    Count young = 0, gate = 0, outside = 0, idle = 0;
    Count epoch = 0, due = 0, released = 0;  ///< wake-ups so far, how many threads they were for and have reached
    Group groups[2]{};
    std::array<Thread, 3> threads{};
    auto operator<=>(CondState const &) const = default;
};

struct CondModel {
    Programs programs;
    bool keepsApart = true;  ///< nobody joins a group while threads of it are being released
    int faults = 0;

    char program(CondState const & s, std::size_t i) const {
        auto const at = static_cast<std::size_t>(s.threads[i].at);
        return at == programs[i].size() ? char{} : programs[i][at];
    }

    void operator()(CondState s, std::size_t i, auto go) {
        CondState::Thread & t = s.threads[i];
        char const op = program(s, i);
        CondState::Group & group = s.groups[t.group];
        auto const next = [&](int pc) {
            t.pc = static_cast<Count>(pc);
            go(s);
        };
        auto const end = [&] {
            t = {static_cast<Count>(t.at + 1), 0, 0, 0, 0, {}};
            go(s);
        };
        auto const leave = [&] {
            --group.waiting;
            faults += group.released == 0 || t.epoch >= group.epoch;  // it came after the wake-up
            ++s.released;
            t.posts[0] = --group.released == 0 ? std::exchange(s.outside, Count{0}) : Count{0};
            t.posts[0] != 0 ? next(5) : end();
        };
        auto const take = [&](Count & semaphore, int pc) {
            if (semaphore != 0) --semaphore, next(pc);
        };
        if (op == 0) return;
        if (t.pc == 0 && (op == 's' || op == 'b')) {
            if (s.idle == 0) return end();
            int count = op == 's' ? 1 : 9;
            ++s.epoch;
            for (int g : {1 - s.young, int{s.young}}) {
                CondState::Group & from = s.groups[g];
                t.posts[g] = static_cast<Count>(std::min(count, from.waiting - from.released));
                if (t.posts[g] != 0) from.epoch = s.epoch;
                count -= t.posts[g];
                from.released = static_cast<Count>(from.released + t.posts[g]);
                s.idle = static_cast<Count>(s.idle - t.posts[g]);
                s.due = static_cast<Count>(s.due + t.posts[g]);
            }
            return next(10);
        }
        switch (t.pc) {
            case 0:
                if (s.groups[s.young].released != 0) s.young = static_cast<Count>(1 - s.young);
                if (keepsApart && s.groups[s.young].released != 0) return ++s.outside, next(1);
                ++s.groups[s.young].waiting;
                ++s.idle;
                t.group = s.young;
                t.epoch = s.epoch;
                return next(2);
            case 1:
                return take(s.gate, 0);
            case 2:
                if (op == 't') next(3);
                t.woken = 1;
                return take(group.queue, 3);
            case 3:
                if (t.woken) return leave();
                if (group.released == group.waiting) return next(4);
                --group.waiting, --s.idle;
                return end();
            case 4:
                t.woken = 1;
                return take(group.queue, 3);
            case 5:
                s.gate = static_cast<Count>(s.gate + t.posts[0]);
                return end();
            default:
                s.groups[t.pc % 2].queue = static_cast<Count>(s.groups[t.pc % 2].queue + t.posts[t.pc % 2]);
                t.pc == 10 ? next(11) : end();
        }
    }

    /// Only those may be left who wait without a limit and have not been woken.
    void terminal(CondState const & s) {
        int left = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            if (program(s, i) == 0) continue;
            ++left;
            faults += s.threads[i].pc != 2 || program(s, i) != 'w';
        }
        faults += s.gate != 0 || s.outside != 0 || s.idle != left || s.released != s.due;
        for (auto const & g : s.groups) faults += g.queue != 0 || g.released != 0, left -= g.waiting;
        faults += left != 0;
    }

    int faultsOf(Programs const & p) {
        programs = p;
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
    forTriples({"w", "ttt", "tst", "sst", "bt", "stb", "ss", "sb", "wsw", "bw"}, [](Programs const & p) {
        EXPECT_EQ(CondModel().faultsOf(p), 0) << p[0] << ' ' << p[1] << ' ' << p[2];
    });
    CondModel careless;
    careless.keepsApart = false;
    EXPECT_GT(careless.faultsOf({"w", "w", "ssw"}), 0);
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
               [](Programs const & p) { EXPECT_EQ(RwModel().faultsOf(p), 0) << p[0] << ' ' << p[1] << ' ' << p[2]; });
    RwModel careless;
    careless.passesOn = false;
    EXPECT_GT(careless.faultsOf({"r.", "r.", "W."}), 0);
}

}  // namespace
