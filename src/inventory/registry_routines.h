// A small class around the registry calls. Callers set the root and the subkey, then ask. It always works on the 64-bit
// view. Nothing in it fails towards its caller: a key that does not open gives the default or an empty collection.
#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

namespace inventory {

inline constexpr quint32 HKEY_LOCAL_MACHINE = 0x80000002;

// Types of registry values.
enum RegistryType : qint32 {
    RegistryText = 1,
    RegistryExpandText = 2,
    RegistryBinary = 3,
    RegistryWord = 4,
    RegistryMultiText = 7,
};

class RegistryRoutines {
  public:
    RegistryRoutines();
    // Closes hKey if it is not 0.
    ~RegistryRoutines();
    RegistryRoutines(const RegistryRoutines&) = delete;
    RegistryRoutines& operator=(const RegistryRoutines&) = delete;

    qint32 hKey() const { return hKey_; }
    void SetHKey(qint32 key) { hKey_ = key; }
    quint32 KeyRoot() const { return keyRoot_; }
    void SetKeyRoot(quint32 root) { keyRoot_ = root; }
    const QString& Subkey() const { return subkey_; }
    void SetSubkey(const QString& subkey) { subkey_ = subkey; }

    bool KeyExists() const;
    // Makes Subkey, or `name` below it. The platform's result code as text: "0" when the key was made or was there.
    QString CreateKey(const QString& name = {}) const;
    // The platform's result codes.
    qint32 DeleteKey(const QString& name) const;
    qint32 DeleteValue(const QString& name) const;

    // The names of the keys below a path.
    QStringList EnumRegistryKeys(quint32 root, const QString& path) const;
    // The same, each with "|" and the time of its last change in local time.
    QStringList EnumRegistryKeysWithLastModified(quint32 root, const QString& path) const;
    // The names of a key's values.
    QStringList EnumRegistryValues(quint32 root, const QString& path) const;

    // The value by its type: texts as QString (cut at the first character 0; of a multi-string the characters 0 between
    // and one behind the last stay), words as qint32 or in hexadecimal text, bytes as hexadecimal text. `fallback` for
    // what is missing, empty or of another type. `type` (may be null) is written for a value that is there.
    QVariant GetRegistryValue(const QString& name, const QVariant& fallback = {}, qint32* type = nullptr,
                              bool expandStrings = false, bool dwordAsHex = false) const;
    // The text of a plain or expandable string; empty for anything else.
    QString GetStringValue(const QString& name, bool expandStrings = false) const;
    // Texts for the text types, QByteArray for bytes, a number of 32 bits (or, `fromHexText`, hexadecimal digits) for
    // words; all else writes nothing. True if it was written.
    bool SetRegistryValue(const QString& name, const QVariant& value, qint32 type, bool fromHexText = false) const;

  private:
    QStringList EnumKeys(quint32 root, const QString& path, bool withTime) const;

    qint32 hKey_ = 0;
    quint32 keyRoot_ = 0;
    QString subkey_;
    qint32 is64Bit_ = 0;
};

} // namespace inventory
