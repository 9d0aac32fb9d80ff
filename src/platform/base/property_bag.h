// The bag that persisted properties of a control are read from and written to. Keys are kept in lower case and compared
// without regard to case. A value equal to its default is not written, so a bag holds only what differs.
#pragma once

#include <QHash>
#include <QString>
#include <QVariant>

namespace base {

class PropertyBag {
  public:
    // The stored value, or `fallback` if the key is missing or holds a value that does not convert to its type.
    QVariant ReadProperty(const QString& key, const QVariant& fallback) const;

    template <typename T> T Read(const QString& key, const T& fallback) const {
        return ReadProperty(key, QVariant::fromValue(fallback)).template value<T>();
    }

    // Stores the value, or removes the key if the value equals `fallback`.
    void WriteProperty(const QString& key, const QVariant& value, const QVariant& fallback);

    bool Contains(const QString& key) const;
    qsizetype Count() const { return values_.size(); }

  private:
    QHash<QString, QVariant> values_;
};

} // namespace base
