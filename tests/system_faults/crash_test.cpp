// SIGKILL at random moments. After each the program starts, the database opens, what had been reported as done is
// there, and everything else is as it was before or as it was to become.
#include "appearance/colour_table.h"
#include "base/profile_file.h"
#include "faults_fixture.h"

#include <QDir>
#include <QElapsedTimer>
#include <QThread>

namespace {

constexpr int shortRounds = 3;
constexpr int longRounds = 200;

} // namespace

class CrashTest : public SystemFaults {
  protected:
    // Kills at a random moment of the time that the job takes from `line` on.
    void KillWithin(AtWork& process, const QString& line, int milliseconds) {
        ASSERT_TRUE(process.Reaches(line)) << process.Text().toStdString();
        QThread::usleep(random_() % (unsigned(milliseconds) * 1000U));
        process.Kill();
    }

    int Number(const AtWork& process, const char* line) const { return process.Last(QLatin1String(line)).toInt(); }
};

TEST_F(CrashTest, WhileDevicesAreAdded) {
    for (int round = 0; round < support::Rounds(shortRounds, longRounds); ++round) {
        const QString tag = QStringLiteral("round%1").arg(round);
        const auto process = Start({"add", "100000", tag});
        KillWithin(*process, "started", 400);
        const int returned = process->Last("added").isNull() ? 0 : Number(*process, "added") + 1;
        ExpectThatTheProgramStarts();
        EXPECT_EQ(CheckedVersion(), "1.0.0");
        // The one after the last that returned may have been written already, others not.
        const QList<int> found = Additions(tag, returned + 2);
        EXPECT_GE(found.size(), returned) << round;
        EXPECT_LE(found.size(), returned + 1) << round;
    }
}

TEST_F(CrashTest, WhileRowsAreSubmitted) {
    for (int round = 0; round < support::Rounds(shortRounds, longRounds); ++round) {
        RestoreTheOldDatabase();
        const auto before = server_.Requests().size();
        const auto process = Start({"submit"});
        KillWithin(*process, "offered", 200);
        ExpectEveryRowSent(before);
    }
}

TEST_F(CrashTest, WhileADatabaseIsUnpackedAndReplaced) {
    // How long it takes by itself: from the start of the download, and from the start of the unpacking.
    QElapsedTimer clock;
    auto process = Start({"update"});
    ASSERT_TRUE(process->Reaches("downloading"));
    clock.start();
    ASSERT_TRUE(process->Reaches("unpacking"));
    const int unpackingBegins = int(clock.elapsed());
    ASSERT_TRUE(process->Reaches("updated")) << process->Text().toStdString();
    const int whole = int(clock.elapsed());
    EXPECT_TRUE(process->Ends());

    int oldOnes = 0;
    int newOnes = 0;
    for (int round = 0; round < support::Rounds(shortRounds, longRounds); ++round) {
        RestoreTheOldDatabase();
        process = Start({"update"});
        // Two of three in the unpacking and replacing, the third at any moment.
        if (round % 3 != 0)
            KillWithin(*process, "unpacking", whole - unpackingBegins + 1);
        else
            KillWithin(*process, "downloading", whole);
        ExpectThatTheProgramStarts();
        const QString version = CheckedVersion();
        const QByteArray content = Content(Path("hwids.mdb"));
        EXPECT_TRUE(content == oldDatabase_ || content == newDatabase_) << "version " << version.toStdString();
        EXPECT_TRUE(process->Last("updated").isNull() || version == "2.0.0");
        (content == newDatabase_ ? newOnes : oldOnes) += 1;
    }
    RecordProperty("old", oldOnes);
    RecordProperty("new", newOnes);
    // What was left lying is swept away by the next update.
    RestoreTheOldDatabase();
    process = Start({"update"});
    EXPECT_TRUE(process->Reaches("updated")) << process->Text().toStdString();
    EXPECT_TRUE(process->Ends());
    ExpectTheNewDatabase();
    EXPECT_EQ(QDir(Folder()).entryList({".unpacking*", "*-journal"}, QDir::AllEntries | QDir::Hidden), QStringList());
}

TEST_F(CrashTest, WhileSettingsAndPresetsAreSaved) {
    QString settings = Path("settings.ini");
    ASSERT_TRUE(base::CreateTextFile(settings));
    ASSERT_TRUE(base::WritePrivateProfileStringW("other", "key", "kept", settings));
    // All colours of a file are of one saving: that which was reported last, or the one after it.
    const auto colourOf = [](const QString& file) {
        QSet<QString> colours;
        for (const appearance::ColourRow& row : appearance::colourRows)
            colours.insert(base::GetPrivateProfileStringW("colors", QLatin1String(row.Key), "none", 100, file));
        EXPECT_EQ(colours.size(), 1) << file.toStdString();
        return *colours.begin();
    };
    for (int round = 0; round < support::Rounds(shortRounds, longRounds); ++round) {
        const QString tag = QStringLiteral("preset%1").arg(round);
        const auto process = Start({"settings", "1000000", tag});
        ASSERT_TRUE(process->Reaches("saved"));
        KillWithin(*process, "saved", 100);
        const int saved = Number(*process, "saved");
        const int inSettings = colourOf(settings).toInt();
        EXPECT_GE(inSettings, saved);
        EXPECT_LE(inSettings, saved + 1);
        const int inPreset = colourOf(Path("color_presets/" + tag + ".ini")).toInt();
        EXPECT_GE(inPreset, saved);
        EXPECT_LE(inPreset, inSettings);
        const QString check = base::GetPrivateProfileStringW("main", "CheckForUpdates", QString(), 100, settings);
        EXPECT_TRUE(check == QString::number(inSettings % 2) || check == QString::number((inSettings + 1) % 2));
        EXPECT_EQ(base::GetPrivateProfileStringW("other", "key", QString(), 100, settings), "kept");
        ExpectThatTheProgramStarts();
        // A preset that was cut off while it was written is no preset.
        for (const QString& name : QDir(Path("color_presets")).entryList({"*.ini"}))
            EXPECT_GT(QFileInfo(Path("color_presets/" + name)).size(), 2) << name.toStdString();
    }
}
