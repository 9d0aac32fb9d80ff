// What the formats make of texts that devices should not have, and of what was looked up.
#include "inventory/device_lists.h"
#include "quorvane-list/formats.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace {

using list_tool::Match;
using list_tool::Matches;

class ListFormatsTest : public testing::Test {
  protected:
    void SetUp() override { inventory::AddDeviceColumns(list_); }

    void Add(const QString& name, const QString& errorCode = "(0) OK", const QString& ids = QString()) {
        suite::ListItem* row = list_.Add(name);
        row->SetSubItems(inventory::ErrorCodeColumn, errorCode);
        row->SetSubItems(inventory::HardwareIdsColumn, ids);
    }

    QJsonArray Json(const std::vector<Matches>* matches = nullptr) const {
        QJsonParseError error;
        const QByteArray text = list_tool::JsonText({list_, matches}).toUtf8();
        const QJsonDocument document = QJsonDocument::fromJson(text, &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << text.constData();
        return document.array();
    }

    suite::ListItems list_;
};

} // namespace

TEST_F(ListFormatsTest, JsonStaysValidWhateverTheTextsHold) {
    QString every;
    for (int unit = 0; unit < 0x10000; ++unit)
        if (!QChar::isSurrogate(char32_t(unit)))
            every += QChar(unit);
    Add(every);
    Add(QStringLiteral("a\\\"b") + QChar(0xD800));
    Add(QChar(0xDC00) + QStringLiteral("c") + QString::fromUcs4(U"\U0001F5A8"));
    const QJsonArray rows = Json();
    ASSERT_EQ(rows.size(), 3);
    const auto name = [&rows](int row) { return rows[row].toObject().value("name").toString(); };
    EXPECT_TRUE(name(0) == every);
    EXPECT_EQ(name(1).toStdString(), "a\\\"b\uFFFD");
    EXPECT_EQ(name(2).toStdString(), "\uFFFDc\U0001F5A8");
    // No terminal and no line-by-line reader trips over one.
    const QString text = list_tool::JsonString(every);
    for (int control = 0; control < 0x20; ++control)
        EXPECT_FALSE(text.contains(QChar(control)));
    EXPECT_FALSE(text.contains(QChar(0x9B)));
}

TEST_F(ListFormatsTest, JsonGivesNumbersAndArrays) {
    Add("A", "(28) Drivers are not installed", "PCI\\X&Y|PCI\\X|");
    Add("B", "() Unknown Error");
    const std::vector<Matches> matches = {{{"N, 1", "M", "PCI\\X"}, {"N2", "M2", "PCI\\Z"}}, {}};
    const QJsonArray rows = Json(&matches);
    const QJsonObject first = rows[0].toObject();
    EXPECT_EQ(first.value("problem_code").toInt(), 28);
    EXPECT_EQ(first.value("hardware_ids").toArray(), QJsonArray({"PCI\\X&Y", "PCI\\X"}));
    EXPECT_EQ(first.value("matches").toArray().at(1).toObject(),
              QJsonObject({{"name", "N2"}, {"manufacturer", "M2"}, {"hardware_id", "PCI\\Z"}}));
    EXPECT_TRUE(rows[1].toObject().value("problem_code").isNull());
    EXPECT_TRUE(rows[1].toObject().value("hardware_ids").toArray().isEmpty());
    EXPECT_FALSE(Json()[0].toObject().contains("matches"));

    list_.Clear();
    EXPECT_TRUE(Json().isEmpty());
}

TEST_F(ListFormatsTest, ATableStandsInColumnsAndMovesNoCursor) {
    Add("a\x1b[2J\r\n\u202E", "(0) OK", "X|Y|");
    Add(QString::fromUcs4(U"\U0001F5A8"));
    EXPECT_EQ(list_tool::TableText({list_}).toStdString(),
              "Name      Manufacturer  Error Code  Class  Driver Version  Hardware ID  Driver  Fitting Module  Place\n"
              "a\uFFFD[2J\uFFFD\uFFFD\uFFFD                (0) OK                             X\n"
              "\U0001F5A8                       (0) OK\n");
}
