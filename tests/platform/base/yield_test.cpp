#include "base/yield.h"

#include <QElapsedTimer>
#include <QTimer>
#include <gtest/gtest.h>

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
