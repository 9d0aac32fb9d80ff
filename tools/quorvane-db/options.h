// The options and arguments of one sub-command, read strictly: what it does not name is refused.
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace tool {

class Options {
  public:
    // Options that take a value and flags that take none, without their dashes. Values follow as the next argument or
    // behind "="; "--" ends the options.
    Options(QStringList valued, QStringList flags) : valued_(std::move(valued)), flags_(std::move(flags)) {}

    // Empty, or what is wrong with them.
    QString Read(const QStringList& arguments);

    bool Has(const QString& name) const { return values_.contains(name); }
    QString Value(const QString& name, const QString& fallback = QString()) const {
        return values_.value(name, fallback);
    }
    // What stands outside the options.
    const QStringList& Arguments() const { return arguments_; }

  private:
    QStringList valued_;
    QStringList flags_;
    QHash<QString, QString> values_;
    QStringList arguments_;
};

} // namespace tool
