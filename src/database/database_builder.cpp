#include "database/database_builder.h"

#include "base/text.h"
#include "data/command.h"
#include "data/connection.h"
#include "data/error.h"
#include "data/replace_file.h"
#include "database/schema.h"

#include <QCoreApplication>
#include <QFile>
#include <algorithm>
#include <numeric>

namespace database {

namespace {

data::Parameter Text(const QString& value) {
    return {QString(), data::adLongVarChar, data::adParamInput, value.size(), value};
}

void Insert(const data::ConnectionPtr& connection, const QString& statement, const QStringList& values) {
    data::Command command;
    command.SetActiveConnection(connection);
    command.SetCommandText(statement);
    for (const QString& value : values) {
        command.AppendParameter(Text(value));
    }
    command.Execute(data::adCmdText + data::adExecuteNoRecords);
}

} // namespace

qint32 DatabaseBuilder::NumberedTexts::Number(const QString& text) {
    const QString kept = text.isEmpty() ? QStringLiteral("Unknown") : base::Left(text, NameSize);
    qint32& number = Numbers[base::LowerCase(kept)];
    if (number == 0) {
        Texts.append(kept);
        number = qint32(Texts.size());
    }
    return number;
}

bool DatabaseBuilder::Add(const QString& hwid, const QString& name, const QString& manufacturer) {
    const Entry entry{names_.Number(name), manufacturers_.Number(manufacturer)};
    const QString key = base::LowerCase(hwid);
    const auto known = ids_.constFind(key);
    if (known == ids_.constEnd()) {
        ids_.insert(key, qsizetype(rows_.size()));
        rows_.push_back({hwid, {entry}});
        return true;
    }
    std::vector<Entry>& entries = rows_[size_t(*known)].Entries;
    if (std::find(entries.begin(), entries.end(), entry) != entries.end()) {
        return false;
    }
    entries.push_back(entry);
    return true;
}

bool DatabaseBuilder::Contains(const QString& hwid) const { return ids_.contains(base::LowerCase(hwid)); }

bool DatabaseBuilder::Write(const QString& path, const QString& version, QString* error) const {
    const QString beside = path + QStringLiteral(".new-%1").arg(QCoreApplication::applicationPid());
    if (!data::CreateDatabaseFile(beside, SchemaStatements(), error)) {
        return false;
    }
    data::Error failure;
    bool written = data::Ran([&] { Fill(beside, version); }, &failure);
    if (!written) {
        *error = failure.Description();
    }
    written = written && data::ReplaceDatabaseFile(beside, path, error);
    if (!written) {
        QFile::remove(beside + QStringLiteral("-journal"));
        QFile::remove(beside);
    }
    return written;
}

void DatabaseBuilder::Fill(const QString& path, const QString& version) const {
    const auto connection = std::make_shared<data::Connection>();
    connection->SetRules(&Rules());
    connection->SetConnectionString(data::ConnectionStringFor(path));
    connection->Open();
    connection->BeginTrans();
    // Rows get their numbers in order, 1 being the first of an empty table.
    for (const QString& name : names_.Texts) {
        Insert(connection, QString::fromUtf16(InsertDeviceName), {name});
    }
    for (const QString& manufacturer : manufacturers_.Texts) {
        Insert(connection, QString::fromUtf16(InsertManufacturer), {manufacturer});
    }
    // In the order of the index, which then grows at its end.
    std::vector<size_t> order(rows_.size());
    std::iota(order.begin(), order.end(), size_t(0));
    std::sort(order.begin(), order.end(), [this](size_t left, size_t right) {
        return rows_[left].Text.compare(rows_[right].Text, Qt::CaseInsensitive) < 0;
    });
    for (const size_t at : order) {
        QString info;
        for (const auto& [name, manufacturer] : rows_[at].Entries) {
            info += QString::number(name) + QLatin1Char(',') + QString::number(manufacturer) + QStringLiteral("\r\n");
        }
        Insert(connection, QString::fromUtf16(InsertHardwareId), {rows_[at].Text, info});
    }
    Insert(connection, QStringLiteral("INSERT INTO version (dbversion) VALUES(?)"), {version});
    connection->CommitTrans();
}

} // namespace database
