#include "base/yield.h"

#include <QApplication>
#include <gmock/gmock.h>

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    base::SetYieldGate(0);
    return RUN_ALL_TESTS();
}
