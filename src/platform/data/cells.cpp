#include "data/cells.h"

#include <sqlite3.h>

namespace data {

int BindCell(sqlite3_stmt* statement, int at, const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        return sqlite3_bind_null(statement, at);
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return sqlite3_bind_int64(statement, at, value.toLongLong());
    case QMetaType::Double:
        return sqlite3_bind_double(statement, at, value.toDouble());
    default: {
        const QByteArray text = value.toString().toUtf8();
        return sqlite3_bind_text64(statement, at, text.constData(), sqlite3_uint64(text.size()), SQLITE_TRANSIENT,
                                   SQLITE_UTF8);
    }
    }
}

QVariant CellAt(sqlite3_stmt* statement, int column) {
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return qlonglong(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement, column);
    case SQLITE_NULL:
        return {};
    default: {
        const void* bytes = sqlite3_column_blob(statement, column);
        const int size = sqlite3_column_bytes(statement, column);
        return bytes == nullptr ? QString(QLatin1String("")) : QString::fromUtf8(static_cast<const char*>(bytes), size);
    }
    }
}

} // namespace data
