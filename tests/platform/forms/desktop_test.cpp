#include "forms/desktop.h"

#include "draw/system_colours.h"
#include "forms/desktop_theme.h"

#include <QApplication>
#include <QFile>
#include <QPalette>
#include <QTemporaryDir>
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

    // A percent sign that escapes nothing, in the middle and at both kinds of end.
    const QString percent = QStringLiteral("https://site.example/?q=5% of 7%zz%26 %4");
    const QUrl escaped = QUrl::fromEncoded(forms::EncodedAddress(percent), QUrl::StrictMode);
    ASSERT_TRUE(escaped.isValid()) << qPrintable(escaped.errorString());
    EXPECT_EQ(QUrlQuery(escaped).queryItemValue("q", QUrl::FullyDecoded), QStringLiteral("5% of 7%zz& %4"));
}

namespace {

constexpr const char* busVariable = "DBUS_SESSION_BUS_ADDRESS";

// The environment as a test wants it; what it was comes back.
class Variable {
  public:
    Variable(const char* name, const QByteArray& value) : name_(name), before_(qgetenv(name)) { qputenv(name, value); }
    ~Variable() { before_.isNull() ? qunsetenv(name_) : qputenv(name_, before_); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    const char* name_;
    QByteArray before_;
};

} // namespace

TEST(SessionBus, IsNotStartedWhereThereIsNone) {
    const QTemporaryDir folder;
    const Variable runtimeFolder("XDG_RUNTIME_DIR", folder.path().toLocal8Bit());
    const Variable bus(busVariable, "");
    forms::StartNoSessionBus();
    EXPECT_EQ(qgetenv(busVariable), "disabled:");
}

TEST(SessionBus, IsUsedWhereThereIsOne) {
    const QTemporaryDir folder;
    const Variable runtimeFolder("XDG_RUNTIME_DIR", folder.path().toLocal8Bit());
    {
        const Variable bus(busVariable, "unix:path=/there");
        forms::StartNoSessionBus();
        EXPECT_EQ(qgetenv(busVariable), "unix:path=/there");
    }
    const Variable bus(busVariable, "");
    QFile socket(folder.filePath("bus"));
    ASSERT_TRUE(socket.open(QIODevice::WriteOnly));
    forms::StartNoSessionBus();
    EXPECT_EQ(qgetenv(busVariable), "");
}

// As a desktop that goes dark in the evening tells the toolkit.
TEST(Theme, SystemColoursFollowItDuringTheRun) {
    const QPalette before = QApplication::palette();
    forms::FollowDesktopTheme();
    QPalette dark = before;
    dark.setColor(QPalette::Button, QColor(1, 2, 3));
    QApplication::setPalette(dark);
    EXPECT_EQ(draw::GetSysColor(draw::COLOR_BTNFACE), base::Colour(0x030201));
    QApplication::setPalette(before);
    EXPECT_NE(draw::GetSysColor(draw::COLOR_BTNFACE), base::Colour(0x030201));
    draw::ResetSysColors();
}
