#include "contribution/upload_file.h"
#include "net/inet.h"
#include "web_server.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <gtest/gtest.h>
#include <memory>
#include <sched.h>
#include <sys/mount.h>

namespace {

using end_to_end::WebServer;

const QString scriptPath = QStringLiteral("/files/hardware_ids/upload_hardware_id_v1.php");
const QByteArray boundary = "3fbd04f5-b1ed-4060-99b9-fca7ff59c113";
const QByteArray formType = "multipart/form-data; boundary=" + boundary;
const QByteArray goodLine = "USB\\VID_1234&PID_5678|||Some Adapter|||Some Maker \xAE\r\n";

class ServerTest : public testing::Test {
  protected:
    void SetUp() override { Start(20); }

    void Start(int filesPerDay) {
        server_ = std::make_unique<WebServer>(QStringLiteral(QUORVANE_SERVER_FOLDER), filesPerDay);
        if (server_->Fault().contains(QStringLiteral("not installed"))) {
            GTEST_SKIP() << qPrintable(server_->Fault());
        }
        ASSERT_TRUE(server_->Fault().isEmpty()) << qPrintable(server_->Fault());
    }

    QByteArrayList Stored() const {
        QByteArrayList contents;
        const QDir folder(server_->UploadFolder());
        for (const QString& name : folder.entryList(QDir::Files)) {
            EXPECT_TRUE(name.endsWith(QStringLiteral(".txt"))) << qPrintable(name);
            QFile file(folder.filePath(name));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            contents.append(file.readAll());
        }
        return contents;
    }

    static QByteArray Part(const QByteArray& content, const QByteArray& field = "uploadfile",
                           const QByteArray& fileName = "new_hardware.txt") {
        return "--" + boundary + "\r\nContent-Disposition: multipart/form-data; name=\"" + field + "\"; filename=\"" +
               fileName + "\"\r\nContent-Type: application/octet-stream\r\n\r\n" + content + "\r\n";
    }

    static QByteArray Request(const QByteArray& body, const QByteArray& type, const QByteArray& headers) {
        return "POST " + scriptPath.toLatin1() +
               " HTTP/1.0\r\nHost: 127.0.0.1\r\nUser-Agent: Uploader\r\nContent-Type: " + type + "\r\n" + headers +
               "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
    }

    // The status and the line of text of an answer.
    static QByteArray Outcome(const QByteArray& answer) {
        return answer.mid(9, 3) + ' ' + answer.sliced(std::max<qsizetype>(0, answer.indexOf("\r\n\r\n") + 4)).trimmed();
    }

    QByteArray Post(const QByteArray& body, const QByteArray& type = formType, const QByteArray& headers = "") const {
        return Outcome(server_->Exchange(Request(body, type, headers)));
    }

    static QByteArray Form(const QByteArray& content) { return Part(content) + "--" + boundary + "--"; }
    QByteArray PostFile(const QByteArray& content) const { return Post(Form(content)); }
    QByteArray PostFrom(const QByteArray& sender) const {
        return Post(Form(goodLine), formType, "X-Sender: " + sender + "\r\n");
    }

    std::unique_ptr<WebServer> server_;
};

TEST_F(ServerTest, StoresWhatTheProgramSendsByteForByte) {
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("new_hardware.txt")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(goodLine + "PCI\\VEN_8086|||Unknown|||Unknown\r\n");
    file.close();
    EXPECT_TRUE(
        contribution::UploadFile(server_->Url(scriptPath), folder.path() + QStringLiteral("\\new_hardware.txt")));
    EXPECT_EQ(Stored(), QByteArrayList{goodLine + "PCI\\VEN_8086|||Unknown|||Unknown\r\n"});
}

TEST_F(ServerTest, AnswersInOneLineAndKeepsOutEverythingElse) {
    EXPECT_EQ(PostFile(goodLine), "200 Thank you: 1 line(s).");
    EXPECT_EQ(PostFile(""), "200 Nothing to store.");
    EXPECT_EQ(Stored().size(), 1);
    const QByteArray refused = "400 Not a contribution.";
    const QByteArray end = "--" + boundary + "--";
    EXPECT_EQ(Post(Part(goodLine, "other") + end), refused);
    EXPECT_EQ(Post(Part(goodLine, "uploadfile", "evil.php") + end), refused);
    EXPECT_EQ(Post(Part(goodLine, "uploadfile", "../new_hardware.txt") + end), refused);
    EXPECT_EQ(Post(Part(goodLine) + Part(goodLine, "second") + end), refused);
    EXPECT_EQ(Post(Part(goodLine, "uploadfile[]") + end), refused);
    EXPECT_EQ(Post(Part(goodLine) + end + "\r\n"), refused) << "not the program's form";
    EXPECT_EQ(Post(Part(goodLine) + end, "multipart/form-data; boundary=\"" + boundary + "\""), refused);
    EXPECT_EQ(Post("uploadfile=x", "application/x-www-form-urlencoded"), refused);
    EXPECT_EQ(Post(""), refused);
    EXPECT_EQ(Stored().size(), 1);
}

// It costs that line alone, wherever it stands; a file of such lines is none.
TEST_F(ServerTest, ABadLineCostsThatLine) {
    const QByteArray other = "PCI\\VEN_8086|||Name||||Maker\r\n"; // three fields, the last of which is "|Maker"
    QByteArrayList stored;
    for (const QByteArray& bad :
         {QByteArray("one field\r\n"), QByteArray("a|||b\r\n"), QByteArray("a|||b|||c|||d\r\n"),
          QByteArray("a||||||c\r\n"), QByteArray("a|||b|||c\n\r\n"), QByteArray("\r\n"),
          QByteArray("<?php echo 1;\r\n"), QByteArray("a|||b\0|||c\r\n", 12), QByteArray(256, 'a') + "|||b|||c\r\n"}) {
        EXPECT_EQ(PostFile(bad), "400 Not a contribution.") << bad.constData();
        EXPECT_EQ(PostFile(goodLine + bad + other), "200 Thank you: 2 line(s).") << bad.constData();
        stored.append(goodLine + other);
    }
    EXPECT_EQ(PostFile("a|||b|||c"), "400 Not a contribution.") << "cut off";
    EXPECT_EQ(PostFile(other + "a|||b|||c"), "200 Thank you: 1 line(s).");
    stored.append(other);
    QByteArrayList found = Stored();
    std::sort(found.begin(), found.end());
    std::sort(stored.begin(), stored.end());
    EXPECT_EQ(found, stored);
}

TEST_F(ServerTest, ManyAtOnceAreAllStoredAndNoneMixed) {
    Start(200);
    QByteArrayList requests;
    QSet<QByteArray> sent;
    for (int i = 0; i < 210; ++i) {
        const QByteArray line = "USB\\VID_1234&PID_" + QByteArray::number(i) + "|||Adapter|||Maker\r\n";
        sent.insert(line.repeated(1 + i % 300));
        requests.append(Request(Form(line.repeated(1 + i % 300)), formType, ""));
    }
    int taken = 0;
    int refused = 0;
    for (const QByteArray& answer : server_->Exchange(requests)) {
        taken += Outcome(answer).startsWith("200 Thank you: ") ? 1 : 0;
        refused += Outcome(answer) == "429 Too many files today." ? 1 : 0;
    }
    EXPECT_EQ(taken, 200);
    EXPECT_EQ(refused, 10);
    const QByteArrayList stored = Stored();
    const QSet<QByteArray> contents(stored.begin(), stored.end());
    EXPECT_EQ(contents.size(), 200);
    EXPECT_TRUE((contents - sent).isEmpty());
}

TEST_F(ServerTest, EachSenderHasALimitOfItsOwn) {
    Start(2);
    const struct {
        const char* Address;
        const char* Status;
    } sendings[] = {
        {"192.0.2.1", "200"},         {"::ffff:192.0.2.1", "200"}, {"192.0.2.1", "429"},
        {"::ffff:192.0.2.1", "429"},  {"192.0.2.2", "200"},        {"::ffff:192.0.2.3", "200"},
        {"::ffff:192.0.2.4", "200"},  {"2001:db8:1:1::1", "200"},  {"2001:db8:1:1::2", "200"},
        {"2001:db8:1:1:f::3", "429"}, {"2001:db8:1:2::1", "200"},
    };
    for (const auto& [address, status] : sendings)
        EXPECT_EQ(PostFrom(address).first(3), status) << address;
    Start(0);
    for (int file = 0; file < 25; ++file)
        EXPECT_EQ(PostFrom("192.0.2.1").first(3), "200") << file;
}

// What cannot be stored is an error of the server, leaves nothing, names no folder and does not count.
TEST_F(ServerTest, WhatCannotBeStoredIsToldAndDoesNotCount) {
    if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        GTEST_SKIP() << "no disk of a chosen size can be mounted";
    const struct {
        const char* Name;
        bool Temporary; // PHP's own folder
        unsigned long Flags;
        const char* Options;
        int Filled; // bytes
    } disks[] = {
        {"full", false, 0, "size=4k", 4096},      {"room for the count alone", false, 0, "size=4k", 0},
        {"no inode", false, 0, "nr_inodes=1", 0}, {"no inode but for the count", false, 0, "nr_inodes=4", 0},
        {"read-only", false, MS_RDONLY, "", 0},   {"full while it arrives", true, 0, "size=4k", 4096},
    };
    for (const auto& disk : disks) {
        Start(2);
        const QString folder = disk.Temporary ? server_->TemporaryFolder() : server_->UploadFolder();
        const QByteArray place = QFile::encodeName(folder);
        ASSERT_EQ(::mount("none", place.constData(), "tmpfs", disk.Flags, disk.Options), 0);
        if (disk.Filled > 0) {
            QFile filler(folder + QStringLiteral("/filler.txt"));
            EXPECT_TRUE(filler.open(QIODevice::WriteOnly) &&
                        filler.write(QByteArray(disk.Filled, 'x')) == disk.Filled && filler.flush());
        }
        for (int file = 0; file < 5; ++file) {
            EXPECT_EQ(PostFile(goodLine), "500 Could not be stored.") << disk.Name;
        }
        QFile::remove(folder + QStringLiteral("/filler.txt"));
        EXPECT_TRUE(Stored().isEmpty()) << disk.Name;
        ASSERT_EQ(::mount("none", place.constData(), "tmpfs", MS_REMOUNT, "size=1m,nr_inodes=100"), 0);
        EXPECT_EQ(PostFile(goodLine), "200 Thank you: 1 line(s).") << disk.Name;
        EXPECT_EQ(PostFile(goodLine), "200 Thank you: 1 line(s).") << disk.Name;
        EXPECT_EQ(PostFile(goodLine), "429 Too many files today.") << disk.Name;
        ::umount2(place.constData(), MNT_DETACH);
    }
}

// The file before it gets its name, and the name before the answer goes out.
TEST_F(ServerTest, WhatIsThankedForIsOnTheDisk) {
    QStringList arguments{QStringLiteral("-y"), QStringLiteral("-e"), QStringLiteral("trace=fsync,rename,write")};
    const QStringList processes = server_->ScriptProcesses();
    for (const QString& process : processes)
        arguments << QStringLiteral("-p") << process;
    QProcess tracer;
    tracer.setProcessChannelMode(QProcess::MergedChannels);
    tracer.start(QStringLiteral("strace"), arguments);
    QByteArray record;
    while (record.count("attached") < processes.size()) {
        if (!tracer.waitForReadyRead(10'000))
            GTEST_SKIP() << "no process may be traced";
        record += tracer.readAll();
    }
    EXPECT_EQ(PostFile(goodLine), "200 Thank you: 1 line(s).");
    tracer.terminate();
    EXPECT_TRUE(tracer.waitForFinished());
    record += tracer.readAll();
    qsizetype at = 0;
    const QByteArray uploads = server_->UploadFolder().toUtf8();
    for (const QByteArray& next :
         {QByteArray(".part>)"), QByteArray("rename("), uploads + ">)", QByteArray("<socket:")})
        EXPECT_GE(at = record.indexOf(next, at), 0) << next.constData() << record.constData();
}

TEST_F(ServerTest, LimitsSizeAndNumber) {
    const QByteArray fits = goodLine.repeated(1024 * 1024 / goodLine.size());
    EXPECT_TRUE(PostFile(fits).startsWith("200 Thank you"));
    EXPECT_EQ(PostFile(fits + goodLine), "413 Too large.");
    EXPECT_TRUE(PostFile(goodLine.repeated(50'000)).startsWith("413"));
    for (int file = 2; file <= 20; ++file) {
        EXPECT_EQ(PostFile(goodLine), "200 Thank you: 1 line(s).") << file;
    }
    EXPECT_EQ(PostFile(goodLine), "429 Too many files today.");
    EXPECT_EQ(Stored().size(), 20);
}

TEST_F(ServerTest, HandsOutTheUpdateFilesAndNothingElse) {
    QFile version(server_->PublicFolder() + QStringLiteral("/files/updates/quorvane/database_v1.htm"));
    ASSERT_TRUE(version.open(QIODevice::WriteOnly));
    version.write("2.5.0");
    version.close();
    net::Inet inet;
    EXPECT_EQ(inet.OpenURL(server_->Url(QStringLiteral("/files/updates/quorvane/database_v1.htm"))),
              QStringLiteral("2.5.0"));
    const auto status = [this](const QByteArray& request) { return server_->Exchange(request).mid(9, 3); };
    EXPECT_EQ(status("GET /files/updates/quorvane/update.htm HTTP/1.0\r\n\r\n"), "404");
    EXPECT_EQ(status("GET /files/updates/quorvane/ HTTP/1.0\r\n\r\n"), "403");
    EXPECT_EQ(status("GET /uploads/ HTTP/1.0\r\n\r\n"), "404");
    EXPECT_EQ(status("GET /files/updates/quorvane/../../../../nginx.conf HTTP/1.0\r\n\r\n"), "400");
    EXPECT_EQ(status("GET " + scriptPath.toLatin1() + " HTTP/1.0\r\n\r\n"), "403");
}

} // namespace
