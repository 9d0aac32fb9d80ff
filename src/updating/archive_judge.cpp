#include "updating/archive_judge.h"

#include "base/aside.h"
#include "base/paths.h"
#include "data/error.h"
#include "data/file_judge.h"
#include "data/recordset.h"
#include "database/schema.h"
#include "signing/signature.h"

#include <QFile>
#include <algorithm>
#include <array>
#include <optional>

namespace updating {

namespace {

constexpr qint64 longestSignature = 4096; // bytes

const QString databaseName = QStringLiteral("hwids.mdb");

std::optional<std::array<quint32, 3>> Numbers(const QString& version) {
    const QStringList fields = version.split(u'.');
    std::array<quint32, 3> numbers{};
    for (size_t at = 0; at < numbers.size(); ++at) {
        bool isNumber = false;
        numbers[at] = fields.value(qsizetype(at)).toUInt(&isNumber);
        if (!isNumber) {
            return std::nullopt;
        }
    }
    return fields.size() == qsizetype(numbers.size()) ? std::optional(numbers) : std::nullopt;
}

QString VersionOf(const QString& path) {
    QString version;
    data::Ran([&] {
        const auto connection = std::make_shared<data::Connection>();
        connection->SetRules(&database::Rules());
        connection->SetConnectionString(data::ConnectionStringFor(path));
        connection->Open();
        data::Recordset rows;
        rows.Open(QStringLiteral("SELECT * FROM version"), connection);
        version = rows.Value(QStringLiteral("dbversion")).toString();
    });
    return version;
}

// The signature's bytes, taken off the files; empty without one.
QByteArray TakeSignature(QList<net::UnpackedFile>& files) {
    const auto found = std::find_if(files.begin(), files.end(), [](const net::UnpackedFile& file) {
        return file.Name.compare(QString::fromUtf16(signing::SignatureName), Qt::CaseInsensitive) == 0;
    });
    if (found == files.end()) {
        return {};
    }
    QFile file(found->Path);
    QByteArray text = file.open(QIODevice::ReadOnly) ? file.read(longestSignature) : QByteArray();
    files.erase(found);
    return text;
}

// Nothing unsigned comes in beside what is signed, and the store reads nothing before it is known to be signed.
bool IsSigned(const QList<net::UnpackedFile>& files, const QByteArray& signature, const QString& trustedKeys) {
    return files.size() == 1 && files.first().Name.compare(databaseName, Qt::CaseInsensitive) == 0 &&
           signing::IsSignedFile(files.first().Path, signature, signing::ReadPublicKeys(trustedKeys));
}

bool Judge(QList<net::UnpackedFile>& files, const QString& trustedKeys, const QString& present,
           const std::atomic<bool>& stop) {
    const QByteArray signature = TakeSignature(files);
    const bool asksForKey = !trustedKeys.isEmpty();
    if (files.isEmpty() || (asksForKey && !IsSigned(files, signature, trustedKeys))) {
        return false;
    }
    const bool sound = std::all_of(files.cbegin(), files.cend(), [&stop](const net::UnpackedFile& file) {
        return !IsDatabase(file) || data::JudgeDatabaseFile(file.Path, database::Rules(), &stop).isEmpty();
    });
    return sound && (!asksForKey || IsNotOlder(VersionOf(files.first().Path), VersionOf(present)));
}

} // namespace

bool IsNotOlder(const QString& offered, const QString& present) {
    const auto numbers = Numbers(offered);
    return numbers && (!Numbers(present) || *numbers >= *Numbers(present));
}

bool IsArchiveGood(QList<net::UnpackedFile>& files, const QString& trustedKeys, const QString& folder,
                   const std::function<bool()>& stopped) {
    const QString present = base::NativePath(folder + u'/' + databaseName);
    bool good = false;
    base::RunAside([&](const std::atomic<bool>& stop) { good = Judge(files, trustedKeys, present, stop); }, stopped);
    return good && !stopped();
}

} // namespace updating
