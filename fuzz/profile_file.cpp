// Profile files: any bytes read and written to. A value that was written reads back, and what the write does not
// concern stays.
#include "base/profile_file.h"
#include "base/text.h"
#include "fuzz_support.h"
#include "values/settings.h"

#include <QFile>

namespace {

constexpr int longest = 2048;

QString Read(const QString& section, const QString& key, const QString& path) {
    return base::GetPrivateProfileStringW(section, key, QStringLiteral("<none>"), longest, path);
}

QByteArray FileBytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Names that a file can hold as they are: no section mark, no sign of equality.
QString NameOf(QString text) {
    for (const char16_t sign : {u'[', u']', u'=', u'\r', u'\n'})
        text.remove(QChar(sign));
    return base::Left(text.trimmed(), 40);
}

// What reading makes of a written value: trimmed, one pair of quotes off, and in an ANSI file what the code page holds.
QString AsRead(QString value, bool unicode) {
    value = unicode ? value : base::FromAnsi(base::ToAnsi(value));
    value = value.trimmed();
    for (const char16_t quote : {u'"', u'\''}) {
        if (value.size() >= 2 && value.startsWith(quote) && value.endsWith(quote)) {
            value = value.sliced(1, value.size() - 2);
            break;
        }
    }
    return base::Left(value, longest - 1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Reader reader(data, size);
    QString section = NameOf(reader.Text());
    QString key = NameOf(reader.Text());
    const QString value = reader.Text();
    const QByteArray before = reader.Rest();
    const bool unicode = before.startsWith("\xFF\xFE");
    if (!unicode) {
        section = NameOf(base::FromAnsi(base::ToAnsi(section)));
        key = NameOf(base::FromAnsi(base::ToAnsi(key)));
    }
    const QString path = fuzz::WriteFile(QStringLiteral("profile.ini"), before);
    const QString other = Read(QStringLiteral("colors"), QStringLiteral("programback"), path);
    fuzz::Require(other.size() < longest, "a value keeps to its size");
    fuzz::Require(base::GetPrivateProfileStringW(section, key, value, 1, path).isEmpty(), "size 1 leaves no room");

    const bool written = base::WritePrivateProfileStringW(section, key, value, path);
    const bool acceptable = !section.isEmpty() && !key.isEmpty() && !value.contains(u'\n') && !value.contains(u'\r');
    fuzz::Require(written == acceptable, "what can be written is written");
    const QByteArray after = FileBytes(path);
    if (!written) {
        fuzz::Require(after == before, "a refused write leaves the file");
        return 0;
    }
    fuzz::Require(after.startsWith("\xFF\xFE") == unicode, "a file keeps its encoding");
    fuzz::Require(Read(section, key, path) == AsRead(value, unicode), "a written value reads back");
    const bool same = section.compare(QStringLiteral("colors"), Qt::CaseInsensitive) == 0 &&
                      key.compare(QStringLiteral("programback"), Qt::CaseInsensitive) == 0;
    fuzz::Require(same || Read(QStringLiteral("colors"), QStringLiteral("programback"), path) == other,
                  "another value stays");
    fuzz::Require(base::WritePrivateProfileStringW(section, key, value, path) && FileBytes(path) == after,
                  "writing the same again changes nothing");
    return 0;
}
