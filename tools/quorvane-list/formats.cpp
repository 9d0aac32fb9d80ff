#include "formats.h"

#include "inventory/device_lists.h"
#include "inventory/list_text.h"
#include "pnp/device_tree.h"

#include <QStringList>
#include <algorithm>

namespace list_tool {

namespace {

constexpr QChar Separator = u'|';

using Field = QString Match::*;

struct MatchColumn {
    const char* caption; // of csv
    const char* key;     // of JSON
    Field field;
};

constexpr MatchColumn MatchColumns[] = {
    {"Match Names", "name", &Match::Name},
    {"Match Manufacturers", "manufacturer", &Match::Manufacturer},
    {"Match Hardware IDs", "hardware_id", &Match::HardwareId},
};

// What the program's own columns do not tell.
struct DeviceField {
    const char* key; // of JSON
    QString pnp::Device::*field;
};

constexpr DeviceField DeviceFields[] = {
    {"driver", &pnp::Device::service},
    {"module", &pnp::Device::fittingModule},
    {"bus", &pnp::Device::bus},
    {"address", &pnp::Device::address},
};

constexpr const char* DeviceCaptions[] = {"Driver", "Fitting Module", "Place"};

// In the order of the list's columns; the hardware IDs stand apart.
constexpr const char* Keys[] = {"name", "manufacturer", "error_code", "class", "driver_version"};

// The matches of row `row`, counted from 1.
const Matches& MatchesOf(const ListText& text, int row) { return (*text.matches)[size_t(row - 1)]; }

QString Joined(const Matches& matches, Field field) {
    QString joined;
    for (const Match& match : matches)
        joined += match.*field + Separator;
    return joined;
}

QString Pair(const char* key, const QString& value) {
    return JsonString(QLatin1String(key)) + QLatin1Char(':') + value;
}

QString JsonArray(const QStringList& values) {
    return QLatin1Char('[') + values.join(QLatin1Char(',')) + QLatin1Char(']');
}

// The number in front of "(28) Drivers are not installed"; null where there is none.
QString ProblemCode(const QString& errorCode) {
    bool number = false;
    const uint code = errorCode.mid(1, errorCode.indexOf(QLatin1Char(')')) - 1).toUInt(&number);
    return number ? QString::number(code) : QStringLiteral("null");
}

QString JsonMatches(const Matches& matches) {
    QStringList objects;
    for (const Match& match : matches) {
        QStringList pairs;
        for (const MatchColumn& column : MatchColumns)
            pairs += Pair(column.key, JsonString(match.*column.field));
        objects += QLatin1Char('{') + pairs.join(QLatin1Char(',')) + QLatin1Char('}');
    }
    return JsonArray(objects);
}

// The device of a row, whose tag is its instance path; an empty one for a row of another kind.
pnp::Device DeviceOf(const suite::ListItem& item) {
    const QString path = item.Tag().toString();
    const pnp::Device* const device = path.isEmpty() ? nullptr : pnp::CurrentTree()->Find(path);
    return device == nullptr ? pnp::Device() : *device;
}

QString JsonRow(const ListText& text, int row) {
    const suite::ListItem& item = *text.list.Item(row);
    QStringList pairs;
    for (int column = 0; column < inventory::HardwareIdsColumn; ++column) {
        pairs += Pair(Keys[column], JsonString(item.CellText(column)));
        if (column == inventory::ErrorCodeColumn)
            pairs += Pair("problem_code", ProblemCode(item.CellText(column)));
    }
    QStringList ids;
    for (const QString& id : item.CellText(inventory::HardwareIdsColumn).split(Separator, Qt::SkipEmptyParts))
        ids += JsonString(id);
    pairs += Pair("hardware_ids", JsonArray(ids));
    if (text.matches != nullptr)
        pairs += Pair("matches", JsonMatches(MatchesOf(text, row)));
    const pnp::Device device = DeviceOf(item);
    for (const DeviceField& field : DeviceFields) {
        const QString& value = device.*field.field;
        pairs += Pair(field.key, value.isEmpty() ? QStringLiteral("null") : JsonString(value));
    }
    return QLatin1Char('{') + pairs.join(QLatin1Char(',')) + QLatin1Char('}');
}

// What could move a terminal's cursor or hide text becomes a visible mark.
QString Visible(QString text) {
    for (QChar& character : text) {
        const QChar::Category category = character.category();
        if (category == QChar::Other_Control || category == QChar::Other_Format || category == QChar::Separator_Line ||
            category == QChar::Separator_Paragraph)
            character = QChar::ReplacementCharacter;
    }
    return text;
}

// Characters, not code units.
qsizetype Length(const QString& text) { return text.toUcs4().size(); }

std::vector<QStringList> TableRows(const ListText& text) {
    std::vector<QStringList> rows(1);
    for (int column = 1; column <= text.list.ColumnCount(); ++column)
        rows.front() += text.list.Column(column).Caption;
    rows.front().last() = QStringLiteral("Hardware ID");
    if (text.matches != nullptr)
        for (const MatchColumn& column : MatchColumns)
            rows.front() += QLatin1String(column.caption);
    for (const char* caption : DeviceCaptions)
        rows.front() += QLatin1String(caption);
    for (int row = 1; row <= text.list.Count(); ++row) {
        const suite::ListItem& item = *text.list.Item(row);
        QStringList cells;
        for (int column = 0; column < inventory::HardwareIdsColumn; ++column)
            cells += Visible(item.CellText(column));
        cells += Visible(item.CellText(inventory::HardwareIdsColumn).section(Separator, 0, 0));
        if (text.matches != nullptr)
            for (const MatchColumn& column : MatchColumns)
                cells +=
                    Visible(Joined(MatchesOf(text, row), column.field).chopped(MatchesOf(text, row).empty() ? 0 : 1));
        const pnp::Device device = DeviceOf(item);
        cells += {Visible(device.service), Visible(device.fittingModule),
                  Visible((device.bus + QLatin1Char(' ') + device.address).trimmed())};
        rows.push_back(cells);
    }
    return rows;
}

} // namespace

QString CsvText(const ListText& text) {
    QString whole = inventory::WholeListText(text.list, inventory::ListTextScope::WholeRow);
    if (text.matches == nullptr)
        return whole;
    // Row by row rather than line by line: a text of a device may hold a line break.
    const QString lineBreak = QStringLiteral("\r\n");
    QString extended = whole.section(lineBreak, 0, 0);
    for (const MatchColumn& column : MatchColumns)
        extended += QLatin1Char(',') + QLatin1String(column.caption);
    for (int row = 1; row <= text.list.Count(); ++row) {
        extended += lineBreak + inventory::RowText(text.list, text.list.Item(row), inventory::ListTextScope::WholeRow);
        for (const MatchColumn& column : MatchColumns)
            extended += QLatin1Char(',') + Joined(MatchesOf(text, row), column.field);
    }
    return extended + lineBreak;
}

QString JsonText(const ListText& text) {
    QString array;
    for (int row = 1; row <= text.list.Count(); ++row)
        array += (row == 1 ? QStringLiteral("\n") : QStringLiteral(",\n")) + JsonRow(text, row);
    return QLatin1Char('[') + array + (text.list.Count() > 0 ? QStringLiteral("\n]") : QStringLiteral("]"));
}

QString TableText(const ListText& text) {
    const std::vector<QStringList> rows = TableRows(text);
    std::vector<qsizetype> widths(size_t(rows.front().size()), 0);
    for (const QStringList& row : rows)
        for (size_t column = 0; column < widths.size(); ++column)
            widths[column] = std::max(widths[column], Length(row[qsizetype(column)]));
    QString table;
    for (const QStringList& row : rows) {
        QString line;
        for (size_t column = 0; column < widths.size(); ++column) {
            const QString& cell = row[qsizetype(column)];
            line += cell + QString(widths[column] - Length(cell) + 2, QLatin1Char(' '));
        }
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        table += line + QLatin1Char('\n');
    }
    return table;
}

QString JsonString(const QString& text) {
    QString quoted = QStringLiteral("\"");
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar character = text[at];
        const bool pair = character.isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
        if (pair)
            quoted += text.mid(at++, 2);
        else if (character.isSurrogate())
            quoted += QChar(QChar::ReplacementCharacter); // half a character; no UTF-8 has it
        else if (character == QLatin1Char('"') || character == QLatin1Char('\\'))
            quoted += QLatin1Char('\\') + character;
        else if (character < QLatin1Char(' ') || character == QChar(0x7F) ||
                 character.category() == QChar::Other_Control)
            quoted += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
        else
            quoted += character;
    }
    return quoted + QLatin1Char('"');
}

} // namespace list_tool
