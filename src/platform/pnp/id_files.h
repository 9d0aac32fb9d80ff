// Names from the ID files: pci.ids and usb.ids (vendors and their devices) and pnp.ids (three-letter vendors). A file
// is read when it is first asked; a vendor's devices are indexed when that vendor is first asked. A broken line costs
// that line, the first of duplicates wins, a missing file knows no names.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <vector>

namespace pnp {

class IdFile {
  public:
    explicit IdFile(QString path) : path_(std::move(path)) {}

    // Empty where unknown.
    QString VendorName(quint16 vendor);
    QString DeviceName(quint16 vendor, quint16 device);

  private:
    struct Span {
        qsizetype begin;
        qsizetype end;
    };
    struct Vendor {
        Span name{0, 0};
        std::vector<Span> blocks;
        bool indexed = false;
        QHash<quint16, Span> devices;
    };

    void Load();
    void IndexDevices(Vendor& vendor) const;
    QString Decode(Span span) const;

    QString path_;
    bool loaded_ = false;
    QByteArray text_;
    QHash<quint16, Vendor> vendors_;
};

class PnpVendorFile {
  public:
    explicit PnpVendorFile(QString path) : path_(std::move(path)) {}

    // The name behind three letters in upper case; empty where unknown.
    QString VendorName(const QString& letters);

  private:
    QString path_;
    bool loaded_ = false;
    QByteArray text_;
};

// A name of an ID file: UTF-8, else Latin-1, since old files mix both.
QString DecodeIdName(QByteArrayView bytes);

} // namespace pnp
