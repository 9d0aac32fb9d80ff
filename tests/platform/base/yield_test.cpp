#include "base/yield.h"

#include "base/aside.h"

#include <QElapsedTimer>
#include <QTimer>
#include <gtest/gtest.h>
#include <sys/resource.h>

TEST(Yield, DispatchesWhatIsPendingAndKnowsItsDepth) {
    int depth = 0;
    QTimer::singleShot(0, [&depth] { depth = base::YieldDepth(); });
    base::Yield();
    EXPECT_EQ(depth, 1);
    EXPECT_EQ(base::YieldDepth(), 0);
}

TEST(Yield, TheGateHoldsBackWithinItsTime) {
    base::SetYieldGate(10000);
    base::YieldBlocking(1);
    bool ran = false;
    QTimer::singleShot(0, [&ran] { ran = true; });
    base::Yield();
    EXPECT_FALSE(ran);
    base::SetYieldGate(0);
    base::Yield();
    EXPECT_TRUE(ran);
}

TEST(Yield, BlockingWaitIsBoundedAndEndsEarly) {
    QElapsedTimer time;
    time.start();
    base::YieldBlocking(30);
    EXPECT_LT(time.elapsed(), 5000);
    QTimer::singleShot(1, [] {});
    time.restart();
    base::YieldBlocking(60000);
    EXPECT_LT(time.elapsed(), 30000);
}

#ifndef QUORVANE_SANITIZED // the sanitizers need the address space
// What was asked for is done, be it a judgement, also where there is no room for another thread's stack.
TEST(Aside, WithoutAThreadTheWorkIsDoneOnTheSpot) {
    rlimit before{};
    getrlimit(RLIMIT_AS, &before);
    const rlimit nothing{1, before.rlim_max};
    bool done = false;
    setrlimit(RLIMIT_AS, &nothing);
    base::RunAside([&done](const std::atomic<bool>& /*stop*/) { done = true; }, [] { return false; });
    setrlimit(RLIMIT_AS, &before);
    EXPECT_TRUE(done);
}
#endif
