#include "base/yield.h"

#include <QCoreApplication>
#include <gmock/gmock.h>

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    QCoreApplication application(argc, argv);
    base::SetYieldGate(0);
    return RUN_ALL_TESTS();
}
