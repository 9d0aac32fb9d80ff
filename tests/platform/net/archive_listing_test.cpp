#include "net/archive_listing.h"

#include "net/crc32.h"

#include <ctime>
#include <gtest/gtest.h>
#include <utility>

namespace {

using net::ArchiveEntry;

QByteArray Block(const QByteArray& path, const QByteArray& size = "5", const QByteArray& attributes = "A -rw-r--r--",
                 const QByteArray& crc = "363A3020") {
    return "Path = " + path + "\nSize = " + size + "\nPacked Size = \nModified = \nAttributes = " + attributes +
           "\nCRC = " + crc + "\nEncrypted = -\nMethod = LZMA2:12\nBlock = 0\n\n";
}

bool Allowed(const QByteArray& listing) {
    const std::optional<QList<ArchiveEntry>> entries = net::ParseListing(listing);
    return entries && net::AreEntriesAllowed(*entries);
}

TEST(Crc32Test, MatchesTheKnownValueInAnyPieces) {
    EXPECT_EQ(net::Crc32(0, "123456789", 9), 0xCBF43926U);
    EXPECT_EQ(net::Crc32(net::Crc32(0, "1", 1), "23456789", 8), 0xCBF43926U);
    EXPECT_EQ(net::Crc32(7, "", 0), 7U);
    const QByteArray zeros(1000, '\0');
    EXPECT_EQ(net::Crc32(net::Crc32(0, zeros.constData(), 333), zeros.constData(), 667),
              net::Crc32(0, zeros.constData(), 1000));
}

TEST(ArchiveListingTest, ReadsWhatTheEngineWrites) {
    const auto entries = net::ParseListing(Block("color_presets", "0", "D drwxr-xr-x", "") + Block("hwids.mdb") +
                                           Block("a = b.txt", "0", "A", "") + Block("l.txt", "5", "A lrwxrwxrwx"));
    ASSERT_TRUE(entries);
    ASSERT_EQ(entries->size(), 4);
    EXPECT_TRUE(entries->at(0).isFolder);
    EXPECT_EQ(entries->at(1).path, "hwids.mdb");
    EXPECT_EQ(entries->at(1).size, 5);
    EXPECT_EQ(entries->at(1).crc, 0x363A3020U);
    EXPECT_EQ(entries->at(2).path, "a = b.txt");
    EXPECT_FALSE(entries->at(2).crc);
    EXPECT_FALSE(entries->at(3).isPlain);
    EXPECT_TRUE(net::ParseListing("")->isEmpty());
}

TEST(ArchiveListingTest, ABrokenListingIsNone) {
    EXPECT_FALSE(net::ParseListing(Block("a.txt", "")));
    EXPECT_FALSE(net::ParseListing(Block("a.txt", "-1")));
    EXPECT_FALSE(net::ParseListing(Block("a.txt", "99999999999999999999")));
    EXPECT_FALSE(net::ParseListing(Block("a.txt", "5", "A", "nothex")));
    EXPECT_FALSE(net::ParseListing(Block("d", "5", "D")));
    EXPECT_FALSE(net::ParseListing(Block("")));
    EXPECT_FALSE(net::ParseListing("Size = 5\n\n"));
    EXPECT_FALSE(net::ParseListing(Block("bad\xFF.txt")));
    // A name with a line end in it.
    EXPECT_FALSE(net::ParseListing(Block("a.txt\nPath = b.txt")));
    EXPECT_FALSE(net::ParseListing(Block("a\nb.txt")));
    EXPECT_FALSE(net::ParseListing(Block("a.txt").repeated(65)));
}

TEST(ArchiveListingTest, LetsInDataAlone) {
    EXPECT_TRUE(Allowed(Block("hwids.mdb")));
    EXPECT_TRUE(Allowed(Block("HWIDS.MDB") + Block("docs", "0", "D", "") + Block("docs/Read.Me.TXT") + Block("x.md") +
                        Block("color_presets/Night.ini") + Block("empty.txt", "0", "A", "")));
    for (const char* name : {"qt.conf", "libevil.so", "platforms/libqxcb.so", "quorvane", "run.sh", "a.exe", "7za.dll",
                             "settings.ini", "Settings.INI", "color_presets/settings.ini", "theme/x.ini", "x.ini",
                             "hwids.mdb-journal", "hwids.mdb ", ".txt", "hwids.mdb.", "a/.mdb/x", "noextension"}) {
        EXPECT_FALSE(Allowed(Block("hwids.mdb") + Block(name))) << name;
    }
}

TEST(ArchiveListingTest, EachKindHasASizeAndAllTogether) {
    const QByteArray database = QByteArray::number(48 << 20);
    for (const auto& [name, largest] : {std::pair("x.mdb", 48 << 20), std::pair("x.txt", 1 << 20),
                                        std::pair("x.md", 1 << 20), std::pair("color_presets/x.ini", 64 << 10)}) {
        EXPECT_TRUE(Allowed(Block(name, QByteArray::number(largest)))) << name;
        EXPECT_FALSE(Allowed(Block(name, QByteArray::number(largest + 1)))) << name;
    }
    EXPECT_FALSE(Allowed(Block("a.mdb", database) + Block("b.mdb", database)));
}

TEST(ArchiveListingTest, LetsNoNameOutOfTheFolder) {
    for (const char* name : {"../hwids.mdb", "a/../../x.txt", "/etc/x.txt", "./x.txt", "a//x.txt", "a/./x.txt",
                             "..\\x.txt", "C:\\x.txt", "C:x.txt", "a\tb.txt", "a/", "..", "1/2/3/4/5.txt"}) {
        EXPECT_FALSE(Allowed(Block(name))) << name;
    }
    EXPECT_FALSE(Allowed(Block("x.txt") + Block("../up", "0", "D", "")));
    EXPECT_FALSE(Allowed(Block(QByteArray(250, 'x') + ".txt")));
}

TEST(ArchiveListingTest, LetsInOneFileOfAName) {
    EXPECT_FALSE(Allowed(Block("hwids.mdb") + Block("hwids.mdb")));
    EXPECT_FALSE(Allowed(Block("hwids.mdb") + Block("Hwids.MDB")));
    EXPECT_FALSE(Allowed(Block("\xC3\xA9.txt") + Block("e\xCC\x81.txt"))) << "one name in two normal forms";
    EXPECT_FALSE(Allowed(Block("a.txt") + Block("A.txt/b.txt")));
    EXPECT_FALSE(Allowed(Block("a.txt") + Block("a.txt", "0", "D", "")));
}

TEST(ArchiveListingTest, RefusesWhatIsNoOrdinaryFile) {
    for (const char* attributes :
         {"A lrwxrwxrwx", "AL", "A crw-rw-rw-", "A brw-rw-rw-", "A prw-rw-rw-", "A srw-rw-rw-"}) {
        EXPECT_FALSE(Allowed(Block("hwids.mdb", "5", attributes))) << attributes;
    }
    EXPECT_FALSE(Allowed("Path = a.txt\nSize = 5\nCRC = 363A3020\nSymbolic Link = /etc/passwd\n\n"));
    EXPECT_FALSE(Allowed("Path = a.txt\nSize = 5\nCRC = 363A3020\nAnti = +\n\n"));
    EXPECT_FALSE(Allowed(Block("hwids.mdb", "5", "A", ""))) << "nothing to check the bytes against";
    EXPECT_FALSE(Allowed("")) << "nothing inside";
    EXPECT_FALSE(Allowed(Block("d", "0", "D", "")));
}

// Listings as large as they are taken in must not hold up the program: nothing yields while they are judged.
TEST(ArchiveListingTest, LargeListingsOfAnyFormTakeABoundedTime) {
    constexpr qsizetype size = 256 << 10;
    constexpr int entries = 64;
    const auto filled = [](const QByteArray& piece) { return piece.repeated(size / piece.size()); };
    QByteArray many;
    for (int i = 0; i < entries; ++i)
        many += Block("a/b/c/" + QByteArray(100, 'n') + QByteArray::number(i) + ".txt");
    const std::pair<QByteArray, bool> listings[] = {
        {many, true},
        // Accents in the wrong order; few enough that the test ends if they are put in order.
        {Block(QByteArray("\xCC\x81\xCC\xA3").repeated(60'000) + ".txt"), false},
        {Block(filled("a/") + ".txt"), false},
        {Block("hwids.mdb") + filled("\n"), true},
        {"Path = hwids.mdb\nSize = 5\nCRC = 363A3020\n" + filled("Folder = -\n"), true},
        {"Path = d\n" + filled("Folder = +\n"), false},
        {filled("Path = a.txt\nSize = 1\nCRC = 1\n\n"), false},
        {filled("x"), false},
    };
    for (const auto& [listing, allowed] : listings) {
        const std::clock_t begun = std::clock();
        EXPECT_EQ(Allowed(listing), allowed) << listing.first(30).constData();
        EXPECT_LT(std::clock() - begun, 10 * CLOCKS_PER_SEC) << listing.first(30).constData();
    }
}

TEST(ArchiveListingTest, ATotalBeyondCountingIsNone) {
    const auto entries = net::ParseListing(Block("a.txt", "9223372036854775807") + Block("b.txt", "1"));
    ASSERT_TRUE(entries);
    EXPECT_EQ(net::TotalSize(*entries), std::nullopt);
    EXPECT_EQ(net::TotalSize(entries->sliced(0, 1)), 9223372036854775807);
}

} // namespace
