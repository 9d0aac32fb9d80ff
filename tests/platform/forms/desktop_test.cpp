#include "forms/desktop.h"

#include <QUrl>
#include <QUrlQuery>
#include <gtest/gtest.h>

TEST(Browser, AddressesArriveIntact) {
    const QString typed = QStringLiteral("https://site.example/?q=PCI\\VEN_8086%26DEV_1E31%26SUBSYS_3 a+b#\"é Driver");
    const QUrl url = QUrl::fromEncoded(forms::EncodedAddress(typed), QUrl::StrictMode);
    ASSERT_TRUE(url.isValid()) << qPrintable(url.errorString());
    EXPECT_EQ(QUrlQuery(url).queryItemValue("q", QUrl::FullyDecoded),
              QString::fromUtf8("PCI\\VEN_8086&DEV_1E31&SUBSYS_3 a+b#\"é Driver"));
    EXPECT_FALSE(url.hasFragment());
}
