#include "inventory/registry_routines.h"

#include "base/numbers.h"
#include "base/text.h"
#include "pnp/registry_calls.h"

#include <QDateTime>
#include <QLocale>
#include <array>
#include <cstring>
#include <limits>

namespace inventory {

namespace {

constexpr quint32 ReadAccess = 0x20119;
constexpr quint32 WriteAccess = 0x20106;
constexpr quint32 CreateAccess = 0xF013F;
constexpr quint32 View64 = 256;
constexpr quint32 FirstBuffer = 1024;
constexpr quint32 KeyNameLength = 260;
constexpr quint32 ValueNameLength = 4096;
// What fits 32 bits, with a sign or without.
constexpr double LeastWord = std::numeric_limits<qint32>::min();
constexpr double GreatestWord = std::numeric_limits<quint32>::max();

// A key opened for the time of one operation.
class OpenedKey {
  public:
    OpenedKey(quint32 root, const QString& path, quint32 access)
        : result_(pnp::RegOpenKeyExW(qint32(root), path, 0, access, handle_)) {}
    ~OpenedKey() {
        if (handle_ != 0)
            pnp::RegCloseKey(handle_);
    }
    OpenedKey(const OpenedKey&) = delete;
    OpenedKey& operator=(const OpenedKey&) = delete;

    bool IsOpen() const { return result_ == pnp::Success; }
    qint32 Result() const { return result_; }
    pnp::KeyHandle Handle() const { return handle_; }

  private:
    pnp::KeyHandle handle_ = 0;
    qint32 result_;
};

// The bytes without the last character, which is the terminator.
QString WideText(const QByteArray& bytes) {
    const qsizetype length = (bytes.size() - qsizetype(sizeof(char16_t))) / qsizetype(sizeof(char16_t));
    return length <= 0 ? QString() : QString(reinterpret_cast<const QChar*>(bytes.constData()), length);
}

QString Expanded(const QString& text) {
    const quint32 size = pnp::ExpandEnvironmentStringsW(text, nullptr, 0);
    QString target(qsizetype(size), QChar(u'\0'));
    pnp::ExpandEnvironmentStringsW(text, reinterpret_cast<char16_t*>(target.data()), size);
    return base::CutAtNull(target);
}

QString HexBytes(const QByteArray& bytes) {
    QString text;
    for (const char byte : bytes) {
        text += QString::number(quint8(byte), 16).toUpper().rightJustified(2, QLatin1Char('0'));
        text += QLatin1Char(' ');
    }
    return base::TrimLeft(text);
}

// 100 nanoseconds since 1601 as the user's date and time.
QString LocalTime(pnp::FileTime time) {
    const auto local = QDateTime::fromMSecsSinceEpoch(qint64(time.value / 10000) - pnp::FileTimeBefore1970);
    return QLocale().toString(local.date(), QLocale::ShortFormat) + QLatin1Char(' ') +
           local.time().toString(QStringLiteral("HH:mm:ss"));
}

QString Joined(const QString& path, const QString& name) {
    return name.isEmpty() ? path : path + QLatin1Char('\\') + name;
}

QByteArray TextBytes(const QString& text, bool withTerminator) {
    const qsizetype count = text.size() + (withTerminator ? 1 : 0);
    return {reinterpret_cast<const char*>(text.utf16()), count * qsizetype(sizeof(char16_t))};
}

} // namespace

RegistryRoutines::RegistryRoutines() {
    if (const pnp::IsWow64ProcessCall call =
            pnp::GetProcAddress(QStringLiteral("kernel32"), QStringLiteral("IsWow64Process")))
        call(pnp::GetCurrentProcess(), is64Bit_);
}

RegistryRoutines::~RegistryRoutines() {
    if (hKey_ != 0)
        pnp::RegCloseKey(hKey_);
}

bool RegistryRoutines::KeyExists() const { return OpenedKey(keyRoot_, subkey_, ReadAccess).IsOpen(); }

QString RegistryRoutines::CreateKey(const QString& name) const {
    pnp::KeyHandle made = 0;
    const qint32 result = pnp::RegCreateKeyExW(qint32(keyRoot_), Joined(subkey_, name), CreateAccess, made, nullptr);
    if (made != 0)
        pnp::RegCloseKey(made);
    return QString::number(result);
}

qint32 RegistryRoutines::DeleteKey(const QString& name) const {
    const QString path = Joined(subkey_, name);
    return is64Bit_ == 1 ? pnp::RegDeleteKeyExW(qint32(keyRoot_), path, View64)
                         : pnp::RegDeleteKeyW(qint32(keyRoot_), path);
}

qint32 RegistryRoutines::DeleteValue(const QString& name) const {
    const OpenedKey key(keyRoot_, subkey_, WriteAccess);
    return key.IsOpen() ? pnp::RegDeleteValueW(key.Handle(), name) : key.Result();
}

QStringList RegistryRoutines::EnumKeys(quint32 root, const QString& path, bool withTime) const {
    QStringList names;
    const OpenedKey key(root, path, ReadAccess);
    for (quint32 index = 0; key.IsOpen(); ++index) {
        std::array<char16_t, KeyNameLength> name{};
        quint32 size = KeyNameLength;
        pnp::FileTime time;
        const qint32 result = pnp::RegEnumKeyExW(key.Handle(), index, name.data(), &size, &time);
        if (result != pnp::Success && result != pnp::MoreData)
            break;
        // A name that the buffer cannot hold is passed over.
        if (result == pnp::MoreData)
            continue;
        const QString text = base::CutAtNull(QString::fromUtf16(name.data(), qsizetype(size)));
        names.append(withTime ? text + QLatin1Char('|') + LocalTime(time) : text);
    }
    return names;
}

QStringList RegistryRoutines::EnumRegistryKeys(quint32 root, const QString& path) const {
    return EnumKeys(root, path, false);
}

QStringList RegistryRoutines::EnumRegistryKeysWithLastModified(quint32 root, const QString& path) const {
    return EnumKeys(root, path, true);
}

QStringList RegistryRoutines::EnumRegistryValues(quint32 root, const QString& path) const {
    QStringList names;
    const OpenedKey key(root, path, ReadAccess);
    for (quint32 index = 0; key.IsOpen(); ++index) {
        std::array<char16_t, ValueNameLength> name{};
        quint32 size = ValueNameLength;
        const qint32 result = pnp::RegEnumValueW(key.Handle(), index, name.data(), &size, nullptr, nullptr, nullptr);
        if (result != pnp::Success && result != pnp::MoreData)
            break;
        if (result == pnp::Success)
            names.append(base::CutAtNull(QString::fromUtf16(name.data(), qsizetype(size))));
    }
    return names;
}

QVariant RegistryRoutines::GetRegistryValue(const QString& name, const QVariant& fallback, qint32* type,
                                            bool expandStrings, bool dwordAsHex) const {
    const OpenedKey key(keyRoot_, subkey_, ReadAccess);
    if (!key.IsOpen())
        return fallback;
    QByteArray bytes(FirstBuffer, '\0');
    quint32 size = FirstBuffer;
    quint32 kind = 0;
    qint32 result = pnp::RegQueryValueExW(key.Handle(), name, &kind, bytes.data(), &size);
    if (result == pnp::MoreData) {
        bytes.resize(qsizetype(size));
        result = pnp::RegQueryValueExW(key.Handle(), name, &kind, bytes.data(), &size);
    }
    if (result != pnp::Success)
        return fallback;
    bytes.truncate(qsizetype(size));
    if (type != nullptr)
        *type = qint32(kind);
    switch (kind) {
    case RegistryText:
    case RegistryExpandText: {
        const QString text = base::CutAtNull(expandStrings ? Expanded(WideText(bytes)) : WideText(bytes));
        return text.isEmpty() ? fallback : text;
    }
    case RegistryMultiText: {
        const QString text = WideText(bytes);
        if (base::CutAtNull(text).isEmpty())
            return fallback;
        if (!expandStrings)
            return text;
        // Expansion ends at the first character 0, so each string is expanded by itself.
        QStringList parts = text.split(QChar(u'\0'));
        for (QString& part : parts)
            part = Expanded(part);
        return parts.join(QChar(u'\0'));
    }
    case RegistryBinary:
        return HexBytes(bytes);
    case RegistryWord: {
        if (bytes.size() < qsizetype(sizeof(qint32)))
            return fallback;
        qint32 number = 0;
        std::memcpy(&number, bytes.constData(), sizeof number);
        return dwordAsHex ? QVariant(QString::number(quint32(number), 16).toUpper()) : QVariant(number);
    }
    default:
        return fallback;
    }
}

QString RegistryRoutines::GetStringValue(const QString& name, bool expandStrings) const {
    qint32 type = 0;
    const QVariant value = GetRegistryValue(name, QString(), &type, expandStrings);
    return type == RegistryText || type == RegistryExpandText ? value.toString() : QString();
}

bool RegistryRoutines::SetRegistryValue(const QString& name, const QVariant& value, qint32 type,
                                        bool fromHexText) const {
    QByteArray bytes;
    switch (type) {
    case RegistryText:
    case RegistryExpandText:
        bytes = TextBytes(value.toString(), true);
        break;
    case RegistryMultiText:
        bytes = TextBytes(value.toString(), false);
        break;
    case RegistryBinary:
        bytes = value.toByteArray();
        break;
    case RegistryWord: {
        const QString text = fromHexText ? QStringLiteral("&H") + value.toString() : value.toString();
        const std::optional<double> number = base::TextToNumber(text);
        if (!number || *number < LeastWord || *number > GreatestWord)
            return false;
        const quint32 word = quint32(qint64(*number));
        bytes = QByteArray(reinterpret_cast<const char*>(&word), sizeof word);
        break;
    }
    default:
        return false;
    }
    const OpenedKey key(keyRoot_, subkey_, WriteAccess);
    return key.IsOpen() && pnp::RegSetValueExW(key.Handle(), name, quint32(type), bytes.constData(),
                                               quint32(bytes.size())) == pnp::Success;
}

} // namespace inventory
