#include <gtest/gtest.h>

#include <atomic>
#include <set>

#include "raise_testing.h"
#include "thread_testing.h"
#include "yon/yon.h"

namespace yon {

/// A name that the library has, too: only its text counts here.
class TimeoutThread : public Shared {};

namespace {

std::atomic<int> live{0};

template <class Base>
struct Counted : Base {
    Counted() { ++live; }
    Counted(Counted const & other) : Base(other) { ++live; }
    Counted & operator=(Counted const &) = default;
    ~Counted() override {
        Handle<Counted> const again(this);  // must not delete twice
        --live;
    }
};
template <class Base>
struct Derived : Counted<Base> {};

template <class Base>
struct Ownership : testing::Test {};
using Bases = testing::Types<SimpleShared, Shared>;
TYPED_TEST_SUITE(Ownership, Bases);

TYPED_TEST(Ownership, FollowsTheHandles) {
    using Object = Counted<TypeParam>;
    MemLeakChecker::enable(true);
    std::size_t const registered = MemLeakChecker::count();
    {
        Handle<Derived<TypeParam>> const derived(YON_NEW(Derived<TypeParam>)());
        Handle<Object> a(derived), b, moved(std::move(a));
        EXPECT_EQ(moved->__getRef(), 2);
        b = moved;
        swap(a, b);
        a = *&a;
        EXPECT_TRUE(a == moved && a == derived && a && !b && b == nullptr && b < a && a.get() == &*moved);
        EXPECT_EQ(a->__getRef(), 3);
        Object copy(*a), other;
        EXPECT_EQ(copy.__getRef(), 0);
        copy = *a;
        *a = other;
        EXPECT_EQ(copy.__getRef() + 10 * a->__getRef(), 30);
        EXPECT_EQ(MemLeakChecker::count(), registered + 1);
        copy.__setNoDelete(true);
        other.__setNoDelete(true);
        Handle<Object>{ & copy} = nullptr;
        EXPECT_EQ(live, 3);
    }
    EXPECT_EQ(live, 0);
    EXPECT_EQ(MemLeakChecker::count(), registered);
    MemLeakChecker::enable(false);
}

TEST(OwnershipStress, HandlesAreCopiedAcrossThreads) {
    Handle<Counted<Shared>> const shared(new Counted<Shared>);
    InThreads(4, [mine = shared](int) {
        for (int n = 0; n < 20000; ++n) {
            Handle<Counted<Shared>> copy(mine), other(copy);
            other = std::move(copy);
        }
    });
    EXPECT_EQ(shared->__getRef(), 1);
}

template <class T>
std::string nullHandle() {
    return raisedAt<NullHandleException>([] { return Handle<T>()->__getRef(); });
}

TEST(Handle, TellsWhichOneIsEmpty) {
    std::string const place = "include/yon/mt/handle:38 yon::HandleBase<";
    EXPECT_EQ(nullHandle<HandleWrapper>(), place + "struct yon::HandleWrapper>::operator`->'");
    EXPECT_EQ(nullHandle<TimeoutThread>(), place + "class yon::TimeoutThread>::operator`->'");
    EXPECT_THROW(*Handle<TimeoutThread>(), NullHandleException);
    HandleWrapper(this, false);  // an address that nobody may close
}

struct Single {
    Single() {
        if (++made == 1) throw std::bad_alloc();
        std::this_thread::yield();
    }
    static inline std::atomic<int> made{0};
};

TEST(Singleton, IsMadeOnceHoweverManyCome) {
    auto const instance = [] { return Singleton_T<Single>::instance("file", 7, "function"); };
    EXPECT_THROW(instance(), std::bad_alloc);
    MemLeakChecker::enable(true);
    std::size_t const registered = MemLeakChecker::count();
    for (int round = 2; round < 50; ++round) {
        std::atomic<Single *> seen[4];
        InThreads(4, [&](int i) { seen[i] = instance(); });
        EXPECT_EQ(std::set<Single *>(std::begin(seen), std::end(seen)).size(), 1u);
        EXPECT_EQ(Single::made, round);
        EXPECT_EQ(MemLeakChecker::count(), registered + 1);
        Singleton_T<Single>::destroy();
        Singleton_T<Single>::destroy();
        EXPECT_EQ(MemLeakChecker::count(), registered);
    }
    MemLeakChecker::enable(false);
}

}  // namespace
}  // namespace yon
