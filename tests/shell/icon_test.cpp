#include "window/icon_resource.h"

#include <gtest/gtest.h>

TEST(IconResource, ChoosesBySizeAndThenByDepth) {
    const QVector<window::IconEntry> group = {{16, 16, 8, 0}, {16, 16, 32, 1}, {32, 32, 32, 2}, {48, 48, 32, 3}};
    EXPECT_EQ(window::BestIconEntry(group, 16, 16), 1);
    EXPECT_EQ(window::BestIconEntry(group, 24, 24), 2); // rather reduced than enlarged
    EXPECT_EQ(window::BestIconEntry(group, 200, 200), 3);
    EXPECT_EQ(window::BestIconEntry({}, 16, 16), -1);
}

TEST(IconResource, TheProgramsIconComesInAnySize) {
    for (const int size : {16, 24, 30, 36, 48, 72, 256}) {
        const draw::Picture picture = window::LoadIconFromRes("AAA", size, size, 0, false);
        EXPECT_EQ(picture.Width(), size);
        EXPECT_EQ(picture.Type(), draw::PictureType::Icon);
    }
    EXPECT_EQ(window::LoadIconFromRes("AAA", 0, 0, 0, false).Width(), 32);
    EXPECT_EQ(window::LoadIconFromRes("AAA", 20, 32, 0, true).Width(), 16);
    EXPECT_NE(window::LoadIconFromRes("AAA", 16, 16, 8, false), window::LoadIconFromRes("AAA", 16, 16, 32, false));
    EXPECT_TRUE(window::LoadIconFromRes("BBB", 16, 16, 0, false).IsEmpty());
    EXPECT_TRUE(window::ReadIconGroup(QByteArray("\0\0\1\0\xFF\xFF", 6)).isEmpty());
}
