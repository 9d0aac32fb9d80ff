#include "shell/termination.h"

#include "forms/form.h"
#include "forms/forms.h"

#include <QPointer>
#include <QTest>
#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>

namespace {

class TerminationTest : public testing::Test {
  protected:
    TerminationTest() {
        all_.SetAllGone([] {});
        all_.RegisterMaker("FrmMain", [] { return std::make_unique<forms::Form>("FrmMain", 3000, 3000); });
        main_ = all_.Shared("FrmMain");
    }
    ~TerminationTest() override { all_.Clear(); }

    forms::Forms& all_ = forms::Forms::Instance();
    QPointer<forms::Form> main_;
};

} // namespace

TEST_F(TerminationTest, ARequestClosesTheMainWindowAndLeavesTheInterruptedCallItsError) {
    const shell::Termination termination;
    errno = ENOENT;
    // More than the way to the event loop holds: it is full, and every further one is told already.
    for (int i = 0; i < 2000; ++i)
        std::raise(SIGTERM);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(main_->IsUnloaded()) << "never inside the signal's handler";
    EXPECT_TRUE(QTest::qWaitFor([this] { return main_.isNull() || main_->IsUnloaded(); }));
}

TEST_F(TerminationTest, AProgramThatIsToOutliveItsTerminalDoes) {
    std::signal(SIGHUP, SIG_IGN);
    {
        const shell::Termination termination;
        std::raise(SIGHUP);
        QTest::qWait(50);
        EXPECT_FALSE(main_.isNull() || main_->IsUnloaded());
        std::raise(SIGINT);
        EXPECT_TRUE(QTest::qWaitFor([this] { return main_.isNull() || main_->IsUnloaded(); }));
    }
    EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_IGN) << "what was set before is set again";
}
