#include "contribution/upload_file.h"
#include "net/inet.h"
#include "web_server.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>
#include <memory>

namespace {

using end_to_end::WebServer;

const QString scriptPath = QStringLiteral("/files/hardware_ids/upload_hardware_id_v1.php");
const QByteArray boundary = "3fbd04f5-b1ed-4060-99b9-fca7ff59c113";
const QByteArray goodLine = "USB\\VID_1234&PID_5678|||Some Adapter|||Some Maker \xAE\r\n";

class ServerTest : public testing::Test {
  protected:
    void SetUp() override {
        server_ = std::make_unique<WebServer>(QStringLiteral(QUORVANE_SERVER_FOLDER));
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

    // The status and the line of text that answers a body.
    QByteArray Post(const QByteArray& body,
                    const QByteArray& type = "multipart/form-data; boundary=" + boundary) const {
        const QByteArray answer =
            server_->Exchange("POST " + scriptPath.toLatin1() +
                              " HTTP/1.0\r\nHost: 127.0.0.1\r\nUser-Agent: Uploader\r\nContent-Type: " + type +
                              "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
        return answer.mid(9, 3) + ' ' + answer.sliced(std::max<qsizetype>(0, answer.indexOf("\r\n\r\n") + 4)).trimmed();
    }

    QByteArray PostFile(const QByteArray& content) const { return Post(Part(content) + "--" + boundary + "--"); }

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
    for (const QByteArray& content :
         {QByteArray("one field\r\n"), QByteArray("a|||b\r\n"), QByteArray("a|||b|||c|||d\r\n"),
          QByteArray("a||||||c\r\n"), QByteArray("a|||b|||c"), QByteArray("a|||b|||c\n"),
          QByteArray("a|||b|||c\r\n\r\n"), goodLine + "<?php echo 1;\r\n", QByteArray("a|||b\0|||c\r\n", 12),
          QByteArray(256, 'a') + "|||b|||c\r\n"}) {
        EXPECT_EQ(PostFile(content), refused) << content.constData();
    }
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
