#include "base/profile_file.h"

#include "base/file_mode.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "base/text.h"

#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace base {

namespace {

constexpr qint64 largestFile = 4 * 1024 * 1024; // bytes
constexpr auto unicodeMark = "\xFF\xFE";

struct ProfileText {
    QString text;
    bool unicode = false;
};

// The native form of a profile's path. Names that differ only in case are one file: where there are several all the
// same, it is the one in small letters, or else the first of them, however it is asked for.
QString ProfilePath(const QString& path) {
    const qsizetype name = qMax(path.lastIndexOf(u'\\'), path.lastIndexOf(u'/')) + 1;
    const QString found = NativePath(path.first(name) + path.sliced(name).toLower());
    return QFileInfo::exists(found) ? found : NativePath(path);
}

std::optional<ProfileText> Load(const QString& path) {
    const std::optional<QByteArray> content = ReadPlainFile(ProfilePath(path), largestFile + 1);
    if (!content || content->size() > largestFile)
        return std::nullopt;
    const QByteArray& bytes = *content;
    if (!bytes.startsWith(unicodeMark))
        return ProfileText{FromAnsi(bytes), false};
    QString text(bytes.size() / 2 - 1, Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i)
        text[i] = QChar(char16_t(uchar(bytes.at(2 * i + 2)) | uchar(bytes.at(2 * i + 3)) << 8));
    return ProfileText{text, true};
}

QByteArray Encoded(const ProfileText& profile) {
    if (!profile.unicode)
        return ToAnsi(profile.text);
    QByteArray bytes(unicodeMark);
    bytes.reserve(2 * profile.text.size() + 2);
    for (const QChar character : profile.text) {
        bytes.append(char(character.unicode() & 0xFF));
        bytes.append(char(character.unicode() >> 8));
    }
    return bytes;
}

// Where a profile is written: behind a link of the user's own, the file that it leads to. A link that somebody else put
// there leads nowhere; it is replaced.
QByteArray PlaceOf(const QString& native) {
    const QByteArray name = QFile::encodeName(native);
    struct stat link = {};
    if (lstat(name.constData(), &link) != 0 || !S_ISLNK(link.st_mode) || (link.st_uid != geteuid() && link.st_uid != 0))
        return name;
    const QFileInfo info(native);
    return QFile::encodeName(info.exists() ? info.canonicalFilePath() : info.symLinkTarget());
}

// Written beside the target and renamed over it. There is no flush to the disk: after a power cut the file system shows
// the old file or the new one, and twenty-eight colours in a row must not wait for twenty-eight flushes.
bool Store(const QString& path, const QByteArray& bytes) {
    const QByteArray target = PlaceOf(ProfilePath(path));
    struct stat existing = {};
    const bool exists = lstat(target.constData(), &existing) == 0;
    if (exists && !S_ISREG(existing.st_mode) && !S_ISLNK(existing.st_mode))
        return false;
    QByteArray temporary = target + ".XXXXXX";
    Descriptor file(mkstemp(temporary.data()));
    if (!file)
        return false;
    // Not asked for its result: a file system without permissions refuses it, and the settings are to be kept there
    // too.
    fchmod(file.Number(), exists && S_ISREG(existing.st_mode) ? existing.st_mode & 07777 : NewFileMode());
    bool good = WriteAll(file, bytes);
    good = file.Close() && good;
    good = good && rename(temporary.constData(), target.constData()) == 0;
    if (!good)
        unlink(temporary.constData());
    return good;
}

// The range of one line without its end, and where the next one starts.
struct Line {
    qsizetype start = 0;
    qsizetype end = 0;
    qsizetype next = 0;
};

Line LineAt(QStringView text, qsizetype start) {
    qsizetype end = start;
    while (end < text.size() && text.at(end) != u'\n' && text.at(end) != u'\r')
        ++end;
    qsizetype next = end;
    if (next < text.size() && text.at(next) == u'\r')
        ++next;
    if (next < text.size() && text.at(next) == u'\n')
        ++next;
    return {start, end, next};
}

std::optional<QStringView> SectionName(QStringView line) {
    const QStringView trimmed = line.trimmed();
    if (!trimmed.startsWith(u'['))
        return std::nullopt;
    const qsizetype end = trimmed.indexOf(u']');
    return trimmed.mid(1, (end < 0 ? trimmed.size() : end) - 1).trimmed();
}

// Where a key stands, or where it would have to be put.
struct Place {
    bool section = false;
    bool key = false;
    Line line;              // of the key
    qsizetype insertAt = 0; // behind the last line of the section that is not blank
};

// Copies nothing: a file may hold millions of lines.
Place Find(QStringView text, QStringView section, QStringView key) {
    Place place;
    for (qsizetype at = 0; at < text.size();) {
        const Line line = LineAt(text, at);
        const QStringView content = text.sliced(line.start, line.end - line.start);
        if (const auto name = SectionName(content)) {
            if (place.section)
                break;
            place.section = name->compare(section.trimmed(), Qt::CaseInsensitive) == 0;
            place.insertAt = line.next;
        } else if (place.section && !content.trimmed().isEmpty()) {
            place.insertAt = line.next;
            const qsizetype equals = content.indexOf(u'=');
            if (equals >= 0 && content.first(equals).trimmed().compare(key.trimmed(), Qt::CaseInsensitive) == 0) {
                place.key = true;
                place.line = line;
                return place;
            }
        }
        at = line.next;
    }
    return place;
}

bool HasLineBreak(const QString& text) { return text.contains(u'\n') || text.contains(u'\r'); }

QString WithoutQuotes(const QString& value) {
    for (const QChar quote : {QChar(u'"'), QChar(u'\'')})
        if (value.size() >= 2 && value.startsWith(quote) && value.endsWith(quote))
            return value.sliced(1, value.size() - 2);
    return value;
}

struct Gathered {
    QString path; // native; empty while no batch is open
    std::optional<ProfileText> profile;
};

Gathered& OpenBatch() {
    static Gathered batch;
    return batch;
}

bool IsGathered(const QString& path) { return !OpenBatch().path.isEmpty() && OpenBatch().path == ProfilePath(path); }

std::optional<ProfileText> Current(const QString& path) {
    return IsGathered(path) && OpenBatch().profile ? OpenBatch().profile : Load(path);
}

bool Put(const QString& path, ProfileText profile) {
    if (!IsGathered(path))
        return Store(path, Encoded(profile));
    OpenBatch().profile = std::move(profile);
    return true;
}

} // namespace

ProfileBatch::ProfileBatch(const QString& path) {
    Q_ASSERT(OpenBatch().path.isEmpty());
    OpenBatch().path = ProfilePath(path);
}

ProfileBatch::~ProfileBatch() {
    const Gathered gathered = std::exchange(OpenBatch(), Gathered());
    if (gathered.profile)
        Store(gathered.path, Encoded(*gathered.profile));
}

QString GetPrivateProfileStringW(const QString& section, const QString& key, const QString& fallback, int size,
                                 const QString& path) {
    QString value = fallback;
    if (const auto profile = Current(path)) {
        const Place place = Find(profile->text, section, key);
        if (place.key) {
            const QString line = profile->text.sliced(place.line.start, place.line.end - place.line.start);
            value = WithoutQuotes(line.mid(line.indexOf(u'=') + 1).trimmed());
        }
    }
    return Left(value, size - 1);
}

bool WritePrivateProfileStringW(const QString& section, const QString& key, const QString& value, const QString& path) {
    if (path.isEmpty() || section.trimmed().isEmpty() || key.trimmed().isEmpty())
        return false;
    if (HasLineBreak(section) || HasLineBreak(key) || HasLineBreak(value))
        return false;
    // A file that is there but cannot be taken in whole must not be replaced by one key.
    std::optional<ProfileText> profile = Current(path);
    if (!profile && FileExists(path))
        return false;
    if (!profile)
        profile = ProfileText{};
    QString& text = profile->text;
    const QString lineEnd = QStringLiteral("\r\n");
    const QString line = key + u'=' + value;
    const Place place = Find(text, section, key);
    if (place.key) {
        text.replace(place.line.start, place.line.end - place.line.start, line);
    } else if (place.section) {
        const bool open =
            place.insertAt > 0 && text.at(place.insertAt - 1) != u'\n' && text.at(place.insertAt - 1) != u'\r';
        text.insert(place.insertAt, (open ? lineEnd : QString()) + line + lineEnd);
    } else {
        const bool open = !text.isEmpty() && !text.endsWith(u'\n') && !text.endsWith(u'\r');
        text.append((open ? lineEnd : QString()) + u'[' + section + u']' + lineEnd + line + lineEnd);
    }
    return Put(path, std::move(*profile));
}

bool CreateTextFile(const QString& path) { return !path.isEmpty() && Store(path, QByteArray(unicodeMark)); }

} // namespace base
