// Several processes on one database, and processes that are killed: what had been said to be written is there.
#include "database/additions.h"
#include "store_fixture.h"
#include "support/child.h"
#include "support/long_form.h"

#include <QElapsedTimer>
#include <random>
#include <unistd.h>

using namespace database;
using support::Child;

namespace {

QString Line(int writer, int number) { return QStringLiteral("SHARED|||Name %1.%2|||Maker").arg(writer).arg(number); }

} // namespace

class ProcessesTest : public StoreFixture {
  protected:
    void SetUp() override {
        StoreFixture::SetUp();
        // Names are numbered from 1001 then. Numbers of one length are no part of one another: "1,1" counts as present
        // in a row that holds "11,1", and which of two processes writes first is chance.
        DatabaseBuilder builder;
        for (int i = 1; i <= 1000; ++i) {
            builder.Add("OTHER", QStringLiteral("Other %1").arg(i), "Maker");
        }
        QString error;
        ASSERT_TRUE(builder.Write(Path(), "1.0.0", &error)) << error.toStdString();
    }
};

TEST_F(ProcessesTest, TwoThatAddToOneRowLoseNothing) {
    constexpr int count = 25;
    const auto addAll = [](int writer) {
        OpenDeviceDatabase();
        for (int i = 0; i < count; ++i) {
            AddDeviceToDatabase(Line(writer, i));
        }
    };
    Child other([&](const auto& /*stepDone*/) { addAll(1); });
    addAll(0);
    other.Finish();
    for (int i = 0; i < count; ++i) {
        EXPECT_TRUE(IsDeviceInDatabase(Line(0, i))) << i;
        EXPECT_TRUE(IsDeviceInDatabase(Line(1, i))) << i;
    }
    EXPECT_EQ(Column("SELECT * FROM mfgs", "mfg").size(), 1);
}

// A process that writes row after row leaves short gaps only; they are enough for another to start.
TEST_F(ProcessesTest, OneThatWritesWithoutPauseKeepsNobodyWaiting) {
    Child writer([](const auto& stepDone) {
        OpenDeviceDatabase();
        for (int i = 0;; ++i) {
            AddDeviceToDatabase(Line(0, i));
            stepDone();
        }
    });
    ASSERT_TRUE(writer.WaitForStep());
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(OpenDeviceDatabase());
        ReadVersionAndCount();
        CloseDeviceDatabase();
    }
    EXPECT_LT(clock.elapsed(), 30'000);
    writer.Kill();
    writer.Finish();
}

TEST_F(ProcessesTest, AKilledReplacementLeavesOneWholeFile) {
    DatabaseBuilder large;
    for (int i = 0; i < 2000; ++i) {
        large.Add(QStringLiteral("NEW\\%1").arg(i), QStringLiteral("Name %1").arg(i), QString());
    }
    QString error;
    ASSERT_TRUE(DatabaseBuilder().Write(Path(), "1.0.0", &error));
    std::minstd_rand random(11);
    for (int round = 0; round < support::Rounds(12, 200); ++round) {
        Child writer([&](const auto& /*stepDone*/) {
            for (bool odd = false;; odd = !odd) {
                odd ? large.Write(Path(), "2.0.0", &error) : DatabaseBuilder().Write(Path(), "1.0.0", &error);
            }
        });
        ::usleep(useconds_t(random() % 80000));
        writer.Kill();
        writer.Finish();
        ASSERT_TRUE(OpenDeviceDatabase());
        ReadVersionAndCount();
        const bool isLarge = values::Program().DatabaseVersion == "2.0.0";
        EXPECT_EQ(values::Program().DatabaseDeviceCount, isLarge ? 2000 : 0);
        CloseDeviceDatabase();
    }
}
