#include "jet_file.h"

#include <QtEndian>
#include <array>
#include <numeric>

namespace jet {

namespace {

constexpr quint32 mapPage = 1;     // one row for each table: which pages hold its data
constexpr quint32 catalogPage = 2; // the definition of the table of tables
constexpr qsizetype pageHead = 14; // bytes of a data page before the places of its rows
constexpr quint32 inlineMemo = 0x80000000;

template <typename Number> void Append(QByteArray& bytes, Number number) {
    number = qToLittleEndian(number);
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

template <typename Number> void Put(QByteArray& bytes, qsizetype at, Number number) {
    qToLittleEndian(number, bytes.data() + at);
}

QByteArray Padded(QByteArray page) { return page.append(PageSize - page.size(), '\0'); }

bool IsFixed(Type kind) { return kind == Type::Integer || kind == Type::Long; }

QByteArray Utf16(const QString& text) {
    QByteArray bytes;
    for (const QChar unit : text)
        Append(bytes, quint16(unit.unicode()));
    return bytes;
}

// The number of columns, the numbers, the texts, where the texts begin from the last to the first, one bit a column.
QByteArray RowBytes(const Table& table, const QVariantList& values) {
    QByteArray row;
    QByteArrayList texts;
    Append(row, quint16(table.Columns.size()));
    for (size_t i = 0; i < table.Columns.size(); ++i) {
        const QVariant& value = values[qsizetype(i)];
        const QByteArray text = Utf16(value.toString());
        if (table.Columns[i].Kind == Type::Integer) {
            Append(row, qint16(value.toInt()));
        } else if (table.Columns[i].Kind == Type::Long) {
            Append(row, qint32(value.toInt()));
        } else if (table.Columns[i].Kind == Type::Text) {
            texts << text;
        } else {
            QByteArray memo;
            Append(memo, quint32(text.size()) | inlineMemo);
            texts << memo + QByteArray(8, '\0') + text;
        }
    }
    QByteArray places;
    for (const QByteArray& text : texts) {
        QByteArray place;
        Append(place, quint16(row.size()));
        places.prepend(place);
        row += text;
    }
    Append(row, quint16(row.size()));
    row += places;
    Append(row, quint16(texts.size()));
    return row + QByteArray(qsizetype(table.Columns.size() + 7) / 8, '\xff');
}

// Rows grow from the page's end towards its head.
QByteArray DataPage(quint32 owner, const QByteArrayList& rows) {
    QByteArray page("\x01\x01", 2);
    QByteArray places;
    QByteArray content;
    for (const QByteArray& row : rows) {
        content.prepend(row);
        Append(places, quint16(PageSize - content.size()));
    }
    Append(page, quint16(PageSize - pageHead - places.size() - content.size()));
    Append(page, owner);
    Append(page, quint32(0));
    Append(page, quint16(rows.size()));
    page += places;
    return page.append(PageSize - page.size() - content.size(), '\0') + content;
}

QByteArrayList DataPages(const Table& table, quint32 owner) {
    QByteArrayList pages;
    QByteArrayList rows;
    qsizetype used = pageHead;
    for (const QVariantList& values : table.Rows) {
        const QByteArray row = RowBytes(table, values);
        if (used + row.size() + 2 > PageSize) {
            pages << DataPage(owner, rows);
            rows.clear();
            used = pageHead;
        }
        rows << row;
        used += row.size() + 2;
    }
    return pages << DataPage(owner, rows);
}

QByteArray ColumnBytes(const Column& column, quint16 number, quint16& fixedPlace, quint16& textNumber) {
    QByteArray bytes(25, '\0');
    bytes[0] = char(column.Kind);
    Put(bytes, 5, number);
    Put(bytes, 7, textNumber);
    Put(bytes, 9, number);
    bytes[15] = IsFixed(column.Kind) ? 3 : 2;
    const quint16 size = column.Kind == Type::Integer ? 2 : column.Kind == Type::Long ? 4 : 510;
    Put(bytes, 23, size);
    if (IsFixed(column.Kind)) {
        Put(bytes, 21, fixedPlace);
        fixedPlace = quint16(fixedPlace + size);
    } else {
        ++textNumber;
    }
    return bytes;
}

// `mapRow`: the row of the map page that tells the table's pages.
QByteArray Definition(const Table& table, quint32 mapRow) {
    QByteArray page("\x02\x01", 2);
    page.append(61, '\0');
    QByteArray names;
    quint16 number = 0;
    quint16 fixedPlace = 0;
    quint16 textNumber = 0;
    for (const Column& column : table.Columns) {
        page += ColumnBytes(column, number++, fixedPlace, textNumber);
        Append(names, quint16(2 * column.Name.size()));
        names += Utf16(column.Name);
    }
    page += names;
    Put(page, 8, quint32(page.size() - 8));
    Put(page, 16, quint32(table.Rows.size()));
    page[40] = 'N';
    Put(page, 41, number);
    Put(page, 43, textNumber);
    Put(page, 45, number);
    Put(page, 55, mapPage << 8 | mapRow);
    Put(page, 59, mapPage << 8 | mapRow);
    return Padded(page);
}

QByteArray PageMap(quint32 first, qsizetype count) {
    QByteArray map(69, '\0');
    for (quint32 page = first; page < first + count; ++page)
        map[qsizetype(5 + page / 8)] = char(map[qsizetype(5 + page / 8)] | 1 << page % 8);
    return map;
}

// The head of the file is disguised by this cipher with a key that never changes; what it hides is all zero here.
QByteArray Disguise(qsizetype size) {
    constexpr std::array<quint8, 4> key = {0xC7, 0xDA, 0x39, 0x6B};
    std::array<quint8, 256> state{};
    std::iota(state.begin(), state.end(), quint8(0));
    quint8 j = 0;
    for (size_t i = 0; i < state.size(); ++i) {
        j = quint8(j + state[i] + key[i % key.size()]);
        std::swap(state[i], state[j]);
    }
    QByteArray stream;
    j = 0;
    for (quint8 i = 1; stream.size() < size; ++i) {
        j = quint8(j + state[i]);
        std::swap(state[i], state[j]);
        stream.append(char(state[quint8(state[i] + state[j])]));
    }
    return stream;
}

QByteArray Head() {
    QByteArray page("\0\1\0\0Standard Jet DB\0\1\0\0\0", 24);
    return Padded(page + Disguise(128));
}

} // namespace

QByteArray File(const std::vector<Table>& tables) {
    Table catalog{"MSysObjects",
                  {{"Id", Type::Long},
                   {"Name", Type::Text},
                   {"Type", Type::Integer},
                   {"Flags", Type::Long},
                   {"LvProp", Type::Memo}},
                  {}};
    QByteArrayList maps = {PageMap(catalogPage + 1, 1)};
    QByteArray body;
    for (const Table& table : tables) {
        const quint32 place = catalogPage + 2 + quint32(body.size() / PageSize);
        const QByteArrayList pages = DataPages(table, place);
        body += Definition(table, quint32(maps.size())) + pages.join();
        maps << PageMap(place + 1, pages.size());
        catalog.Rows.push_back({place, table.Name, 1, 0, QString()});
    }
    return Head() + DataPage(0, maps) + Definition(catalog, 0) + DataPages(catalog, catalogPage).join() + body;
}

} // namespace jet
