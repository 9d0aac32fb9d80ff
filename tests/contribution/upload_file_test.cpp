#include "contribution/upload_file.h"

#include "support/scripted_server.h"
#include "upload_request.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

using support::Answer;
using support::Reply;
using support::ScriptedServer;

class UploadFileTest : public testing::Test {
  protected:
    UploadFileTest() { server_.SetAnswer("*", Reply(200, "ok")); }

    QString Write(const QByteArray& content) const {
        QFile file(folder_.filePath("new_hardware.txt"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return folder_.path() + "\\new_hardware.txt";
    }

    QByteArray Request(const QByteArray& path, const QByteArray& content) const {
        return UploadRequest(server_.Port(), path, content);
    }

    ScriptedServer server_;
    QTemporaryDir folder_;
};

TEST_F(UploadFileTest, TheRequestIsExactByteForByte) {
    QByteArray everyByte;
    for (int value = 0; value < 256; ++value) {
        everyByte += static_cast<char>(value);
    }
    for (const QByteArray& content :
         {QByteArray("USB\\VID_1234|||Some Adapter|||Some Maker\r\n"), QByteArray(), everyByte}) {
        EXPECT_TRUE(contribution::UploadFile(server_.Url("/files/up_v1.php"), Write(content)));
        EXPECT_EQ(server_.Requests().last(), Request("/files/up_v1.php", content));
    }
}

TEST_F(UploadFileTest, TheAddressIsTakenApartWithoutAScheme) {
    const QString path = Write("x");
    const QString host = QStringLiteral("127.0.0.1:%1").arg(server_.Port());
    EXPECT_TRUE(contribution::UploadFile(host, path));
    EXPECT_EQ(server_.Requests().last(), Request("/", "x"));
    EXPECT_TRUE(contribution::UploadFile("https://" + host + "/a:b/c", path));
    EXPECT_EQ(server_.Requests().last(), Request("/a:b/c", "x"));
    // A port that is no number is none; nothing here listens at the default one under this name.
    EXPECT_FALSE(contribution::UploadFile("http://no-such-host.invalid:abc/x", path));
    EXPECT_FALSE(contribution::UploadFile("http://", path));
    EXPECT_FALSE(contribution::UploadFile(QString(), path));
    EXPECT_EQ(server_.Requests().size(), 2);
}

TEST_F(UploadFileTest, AFileThatCannotBeReadMakesNoRequest) {
    EXPECT_FALSE(contribution::UploadFile(server_.Url("/x"), folder_.path() + "\\none"));
    EXPECT_FALSE(contribution::UploadFile(server_.Url("/x"), folder_.path()));
    EXPECT_TRUE(server_.Requests().isEmpty());
}

} // namespace
