// Which archives a build takes that trusts keys, and one that trusts none.
#include "updating/archive_judge.h"

#include "data/replace_file.h"
#include "database/schema.h"
#include "signing/key_file.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using signing::PrivateKey;

class SignedArchiveTest : public testing::Test {
  protected:
    SignedArchiveTest() : ours_(Make("ours")), before_(Make("before")), foreign_(Make("foreign")) {}

    QString Path(const char* name) const { return folder_.filePath(QLatin1String(name)); }

    PrivateKey Make(const char* name) const {
        QString error;
        PrivateKey key = PrivateKey::Make(Path(name), error);
        EXPECT_TRUE(key) << qPrintable(error);
        return key;
    }

    void MakeDatabase(const char* name, const QString& version) const {
        QFile::remove(Path(name));
        ASSERT_TRUE(data::CreateDatabaseFile(
            Path(name), database::SchemaStatements() +
                            QStringList(QStringLiteral("INSERT INTO version VALUES ('%1')").arg(version))));
    }

    void Write(const char* name, const QByteArray& bytes) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    static QString Text(std::initializer_list<PrivateKey> keys) {
        QStringList texts;
        for (const PrivateKey& key : keys)
            texts.append(QString::fromLatin1(key.PublicKey().toBase64()));
        return texts.join(u' ');
    }

    QByteArray SignatureOf(const char* name, std::initializer_list<PrivateKey> keys) const {
        QList<signing::Signature> signatures;
        for (const PrivateKey& key : keys)
            signatures.append(key.Sign(signing::MessageOf(Path(name))));
        return signing::SignatureText(signatures);
    }

    bool IsGood(const QString& trusted, const QStringList& more = {}) const {
        QList<net::UnpackedFile> files = {{"hwids.mdb", Path("new")}};
        if (QFile::exists(Path("signature")))
            files.append({"Hwids.sig.txt", Path("signature")});
        for (const QString& name : more)
            files.append({name, Path("new")});
        const bool good = updating::IsArchiveGood(files, trusted, folder_.path(), [] { return false; });
        EXPECT_TRUE(!good || files.size() == 1 + more.size()) << "the signature has no place in the folder";
        return good;
    }

    QTemporaryDir folder_;
    PrivateKey ours_;
    PrivateKey before_;
    PrivateKey foreign_;
};

TEST_F(SignedArchiveTest, ASignatureByATrustedKeyIsAskedFor) {
    MakeDatabase("hwids.mdb", "2.5.0");
    MakeDatabase("new", "2.5.1");
    MakeDatabase("other", "2.5.2");
    const QByteArray good = SignatureOf("new", {ours_});
    const QByteArray line = good.sliced(good.indexOf('\n') + 1);
    QByteArray turned = good;
    turned[turned.size() - 20] = turned.at(turned.size() - 20) == 'A' ? 'B' : 'A';
    struct Case {
        const char* what;
        QByteArray signature;
        bool good;       // for a build that trusts the one key
        bool goodBefore; // for one that trusts the key before as well
    };
    for (const Case& tried : {
             Case{"good", good, true, true},
             Case{"by both", SignatureOf("new", {before_, ours_}), true, true},
             Case{"by the key before", SignatureOf("new", {before_}), false, true},
             Case{"by a foreign key", SignatureOf("new", {foreign_}), false, false},
             Case{"by a foreign key as well", SignatureOf("new", {foreign_, ours_}), true, true},
             Case{"of another database", SignatureOf("other", {ours_}), false, false},
             Case{"good, and one of another", good + SignatureOf("other", {before_}).mid(good.indexOf('\n') + 1), true,
                  false},
             Case{"empty", "", false, false},
             Case{"a heading alone", good.first(good.indexOf('\n') + 1), false, false},
             Case{"doubled", good + line, false, false},
             Case{"without a heading", line, false, false},
             Case{"cut", good.chopped(1), false, false},
             Case{"with more behind it", good + "more\n", false, false},
             Case{"turned", turned, false, false},
             Case{"long", good + QByteArray(1 << 20, '\n'), false, false},
         }) {
        Write("signature", tried.signature);
        EXPECT_EQ(IsGood(Text({ours_})), tried.good) << tried.what;
        EXPECT_EQ(IsGood(Text({ours_, before_})), tried.goodBefore) << tried.what;
        EXPECT_TRUE(IsGood(QString())) << tried.what << ": a build without a key asks for none";
        EXPECT_FALSE(IsGood("no key")) << tried.what << ": a key that is none trusts nobody";
    }
    Write("signature", good);
    EXPECT_FALSE(IsGood(Text({ours_}), {"readme.txt"})) << "what is not signed";
    EXPECT_FALSE(IsGood(Text({ours_}), {"z.mdb"}));
    EXPECT_TRUE(IsGood(QString(), {"readme.txt", "z.mdb"}));
    QFile::remove(Path("signature"));
    EXPECT_FALSE(IsGood(Text({ours_}))) << "unsigned";
    EXPECT_TRUE(IsGood(QString()));
}

TEST_F(SignedArchiveTest, AnOldDatabaseDoesNotComeBack) {
    struct Case {
        const char* present;
        const char* offered;
        bool good;
    };
    for (const Case& tried : {Case{"2.5.0", "2.5.0", true}, Case{"2.5.0", "2.4.9", false}, Case{"2.5.0", "2.5.1", true},
                              Case{"2.9.0", "2.10.0", true}, Case{"2.10.0", "2.9.9", false},
                              Case{"mine", "1.0.0", true}, Case{"2.5.0", "mine", false}, Case{"2.5.0", "3", false},
                              Case{"2.5.0", "99999999999.0.0", false}, Case{"2.5.0", "-3.0.0", false}}) {
        MakeDatabase("hwids.mdb", QLatin1String(tried.present));
        MakeDatabase("new", QLatin1String(tried.offered));
        Write("signature", SignatureOf("new", {ours_}));
        EXPECT_EQ(IsGood(Text({ours_})), tried.good) << tried.offered << " over " << tried.present;
        EXPECT_TRUE(IsGood(QString()));
    }
    QFile::remove(Path("hwids.mdb"));
    MakeDatabase("new", "1.0.0");
    Write("signature", SignatureOf("new", {ours_}));
    EXPECT_TRUE(IsGood(Text({ours_}))) << "nothing there";
}

TEST_F(SignedArchiveTest, KeyFilesOfAnyOtherKindAreRefused) {
    QString error;
    EXPECT_EQ(PrivateKey::Read(Path("ours"), error).PublicKey(), ours_.PublicKey());
    struct stat status {};
    ASSERT_EQ(::stat(qPrintable(Path("ours")), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_FALSE(PrivateKey::Make(Path("ours"), error)) << "a key is never written over";

    ASSERT_EQ(::mkfifo(qPrintable(Path("pipe")), 0600), 0);
    ASSERT_TRUE(QFile::link(Path("ours"), Path("link")));
    ASSERT_TRUE(QFile::copy(Path("ours"), Path("readable")));
    ASSERT_EQ(::chmod(qPrintable(Path("readable")), 0640), 0);
    Write("empty", "");
    Write("text", "no key\n");
    Write("public", QFile::exists(Path("ours")) ? ours_.PublicKey().toBase64() : QByteArray());
    Write("large", QByteArray(1 << 20, 'x'));
    for (const char* command :
         {"genpkey -algorithm RSA -pkeyopt rsa_keygen_bits:1024 -out rsa", "genpkey -algorithm ED448 -out ed448",
          "pkey -in ours -pubout -out public.pem", "pkey -in ours -aes256 -passout pass:x -out locked"}) {
        QProcess tool;
        tool.setWorkingDirectory(folder_.path());
        tool.start("openssl", QProcess::splitCommand(QString::fromLatin1(command)));
        ASSERT_TRUE(tool.waitForFinished() && tool.exitCode() == 0) << tool.readAllStandardError().constData();
    }
    for (const char* name : {"none", "pipe", "link", "readable", "empty", "text", "public", "large", "rsa", "ed448",
                             "public.pem", "locked"}) {
        if (qstrcmp(name, "readable") != 0)
            ::chmod(qPrintable(Path(name)), 0600);
        error.clear();
        EXPECT_FALSE(PrivateKey::Read(Path(name), error)) << name;
        EXPECT_FALSE(error.isEmpty()) << name;
    }
}

// Another maker of signatures agrees: the message is a line and the file's SHA-512.
TEST_F(SignedArchiveTest, IsWhatOpensslMakes) {
    MakeDatabase("new", "1.0.0");
    Write("message", signing::MessageOf(Path("new")));
    QProcess tool;
    tool.setWorkingDirectory(folder_.path());
    tool.start("openssl", {"pkeyutl", "-sign", "-inkey", "ours", "-rawin", "-in", "message", "-out", "signed"});
    ASSERT_TRUE(tool.waitForFinished() && tool.exitCode() == 0) << tool.readAllStandardError().constData();
    QFile made(Path("signed"));
    ASSERT_TRUE(made.open(QIODevice::ReadOnly));
    EXPECT_EQ(made.readAll(), ours_.Sign(signing::MessageOf(Path("new"))).Bytes);
}

} // namespace
