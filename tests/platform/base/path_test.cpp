#include "base/paths.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

TEST(Paths, LastComponentMatchesAnExistingFileInAnyCase) {
    const QTemporaryDir folder;
    QFile(folder.filePath("hwids.mdb")).open(QIODevice::WriteOnly);
    EXPECT_EQ(base::NativePath(folder.path() + "\\HWIDS.mdb"), folder.filePath("hwids.mdb"));
    QFile(folder.filePath("HWIDS.mdb")).open(QIODevice::WriteOnly);
    EXPECT_EQ(base::NativePath(folder.path() + "\\HWIDS.mdb"), folder.filePath("HWIDS.mdb"));
    EXPECT_EQ(base::NativePath(folder.path() + "\\\\new.txt"), folder.filePath("new.txt"));
    EXPECT_EQ(base::NativePath(QString()), QString());
    // Of the program's own folder the name is taken as it is.
    base::SetProgramFolder(folder.path() + "/own\\folder");
    for (const char* native : {"/own\\folder", "/own\\folder/x", "/own/folderx/x"})
        EXPECT_EQ(base::NativePath(folder.path() + QString(native).replace("/x", "\\x").replace("own/f", "own\\f")),
                  folder.path() + native);
    base::SetProgramFolder({});
}

TEST(Paths, DeleteNeverRemovesAFolder) {
    const QTemporaryDir folder;
    const QString path = folder.path() + "\\a\\b";
    EXPECT_TRUE(base::SHCreateDirectoryExW(path));
    EXPECT_TRUE(base::SHCreateDirectoryExW(path));
    EXPECT_FALSE(base::DeleteFileW(path));
    EXPECT_FALSE(base::FileExists(path));
    QFile(folder.filePath("a/f")).open(QIODevice::WriteOnly);
    EXPECT_TRUE(base::FileExists(folder.path() + "\\a\\F"));
    EXPECT_TRUE(base::DeleteFileW(folder.path() + "\\a\\F"));
    EXPECT_FALSE(base::DeleteFileW(folder.path() + "\\a\\F"));
}
