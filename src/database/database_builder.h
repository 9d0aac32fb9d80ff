// Gathers devices in memory and writes a whole new database file from them. Owned by the tool or benchmark that builds;
// the program itself never rebuilds its database.
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <utility>
#include <vector>

namespace database {

class DatabaseBuilder {
  public:
    // Notes that `hwid` is known under this name and manufacturer. Empty ones are "Unknown", long ones are cut to what
    // the tables take, and names that differ only in case are one. False where exactly this is noted already.
    bool Add(const QString& hwid, const QString& name, const QString& manufacturer);
    bool Contains(const QString& hwid) const;

    qsizetype HardwareIdCount() const { return ids_.size(); }
    qsizetype NameCount() const { return names_.Texts.size(); }
    qsizetype ManufacturerCount() const { return manufacturers_.Texts.size(); }

    // Writes beside `path` (native) and puts the finished file in its place. False, with `path` as it was and nothing
    // left beside it, where that fails.
    bool Write(const QString& path, const QString& version, QString* error) const;

  private:
    using Entry = std::pair<qint32, qint32>; // numbers of name and manufacturer, from 1
    struct NumberedTexts {
        qint32 Number(const QString& text);
        QStringList Texts;
        QHash<QString, qint32> Numbers; // by lower-case text
    };
    struct HardwareId {
        QString Text;
        std::vector<Entry> Entries;
    };

    void Fill(const QString& path, const QString& version) const;

    NumberedTexts names_;
    NumberedTexts manufacturers_;
    std::vector<HardwareId> rows_;
    QHash<QString, qsizetype> ids_; // places in rows_ by lower-case ID
};

} // namespace database
