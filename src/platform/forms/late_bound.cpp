#include "forms/late_bound.h"

#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaProperty>

namespace forms {

namespace {

// The object that holds the last component of `path`, and that component; null if a component on the way is missing.
QObject* Owner(QObject* object, QByteArrayView& path) {
    for (;;) {
        const qsizetype dot = path.indexOf('.');
        if (object == nullptr || dot < 0)
            return object;
        const QMetaObject* meta = object->metaObject();
        const int index = meta->indexOfProperty(path.first(dot).toByteArray().constData());
        object = index < 0 ? nullptr : meta->property(index).read(object).value<QObject*>();
        path = path.sliced(dot + 1);
    }
}

} // namespace

PropertyResult SetProperty(QObject* object, QByteArrayView path, const QVariant& value) {
    QObject* owner = Owner(object, path);
    if (owner == nullptr)
        return PropertyResult::Absent;
    const QMetaObject* meta = owner->metaObject();
    const int index = meta->indexOfProperty(path.toByteArray().constData());
    if (index < 0)
        return PropertyResult::Absent;
    const QMetaProperty property = meta->property(index);
    return property.isWritable() && property.write(owner, value) ? PropertyResult::Set : PropertyResult::Refused;
}

QVariant GetProperty(const QObject* object, QByteArrayView path) {
    const QObject* owner = Owner(const_cast<QObject*>(object), path);
    if (owner == nullptr)
        return {};
    const int index = owner->metaObject()->indexOfProperty(path.toByteArray().constData());
    return index < 0 ? QVariant() : owner->metaObject()->property(index).read(owner);
}

bool CallByName(QObject* object, const char* name) {
    if (object == nullptr)
        return false;
    const int index = object->metaObject()->indexOfMethod(QByteArray(name) + "()");
    return index >= 0 && object->metaObject()->method(index).invoke(object, Qt::DirectConnection);
}

} // namespace forms
