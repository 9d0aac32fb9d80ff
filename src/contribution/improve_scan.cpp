#include "contribution/improve_scan.h"

#include "base/text.h"
#include "base/yield.h"
#include "contribution/improve_filters.h"
#include "data/error.h"
#include "data/recordset.h"
#include "inventory/clean_text.h"
#include "inventory/device_properties.h"
#include "pnp/wmi.h"
#include "suite/list_items.h"
#include "values/program_values.h"

namespace contribution {

namespace {

constexpr int columnSize = 255; // characters

using SetStatus = std::function<void(const QString&)>;

// The fields of the rowset; the last one holds the list of hardware IDs, despite its name.
QString ManufacturerField() { return QStringLiteral("Manufacturer"); }
QString NameField() { return QStringLiteral("Name"); }
QString IdsField() { return QStringLiteral("PNPDeviceID"); }

data::RecordsetPtr MakeRowset() {
    auto rowset = std::make_shared<data::Recordset>();
    for (const QString& field : {ManufacturerField(), NameField(), IdsField()})
        data::Ran([&] { rowset->Fields().Append(field, data::adVarChar, columnSize); });
    data::Ran([&] { rowset->Open(); });
    return rowset;
}

QString Property(const pnp::WmiObject& object, const char* name) {
    return object.Property(QLatin1String(name)).toString();
}

// A value longer than its column is refused, and the row goes on with what it has.
void KeepDevice(data::Recordset& rowset, const pnp::WmiObject& object, const QString& name, const QString& manufacturer,
                const SetStatus& setStatus) {
    data::Ran([&] { rowset.AddNew(); });
    data::Ran([&] { rowset.SetValue(ManufacturerField(), manufacturer); });
    data::Ran([&] { rowset.SetValue(NameField(), name); });
    setStatus(QStringLiteral("Status: Getting ") + Property(object, "Name"));
    base::Yield();
    const QString ids = inventory::GetHardwareIds(Property(object, "DeviceID"));
    data::Ran([&] { rowset.SetValue(IdsField(), ids); });
    data::Ran([&] { rowset.Update(); });
    base::Yield();
}

void WalkDevices(data::Recordset& rowset, pnp::WmiObjectSet devices, const SetStatus& setStatus) {
    while (const std::optional<pnp::WmiObject> object = devices.Next()) {
        if (values::ProgramClosing())
            return;
        const QString id = inventory::CleanText(Property(*object, "DeviceID"));
        const QString name = inventory::CleanText(Property(*object, "Name"));
        const QString manufacturer = inventory::CleanText(Property(*object, "Manufacturer"));
        base::Yield();
        if (IsDeviceWorthHaving(id, name, manufacturer))
            KeepDevice(rowset, *object, name, manufacturer, setStatus);
    }
}

void AddRow(suite::ListItems& list, const QString& name, const QString& manufacturer, const QString& id) {
    if (!IsGenericId(id))
        OfferRow(list, name, manufacturer, id);
}

QString FieldText(const data::Recordset& rowset, const QString& field) {
    QString text;
    data::Ran([&] { text = rowset.Value(field).toString(); });
    return text;
}

void FillList(suite::ListItems& list, data::Recordset& rowset) {
    bool more = data::Ran([&] { rowset.MoveFirst(); });
    while (more && !rowset.Eof() && !values::ProgramClosing()) {
        const QString name = FieldText(rowset, NameField());
        const QString manufacturer = FieldText(rowset, ManufacturerField());
        const QString ids = FieldText(rowset, IdsField());
        const QStringList pieces = base::Split(ids, QStringLiteral("|"));
        if (pieces.size() == 1)
            AddRow(list, name, manufacturer, ids);
        else
            for (const QString& piece : pieces) {
                AddRow(list, name, manufacturer, piece);
                base::Yield();
            }
        more = data::Ran([&] { rowset.MoveNext(); });
    }
}

} // namespace

void OfferRow(suite::ListItems& list, const QString& name, const QString& manufacturer, const QString& id) {
    const QString trimmedName = base::Trim(name);
    const QString trimmedManufacturer = base::Trim(manufacturer);
    const QString trimmedId = base::Trim(id);
    const QString key = base::LowerCase(trimmedName + u'|' + trimmedManufacturer + u'|' + trimmedId);
    suite::ListItem* row = list.AddWithKey(key, trimmedName);
    if (row == nullptr)
        return;
    row->SetSubItems(ManufacturerColumn, trimmedManufacturer);
    row->SetSubItems(HardwareIdColumn, trimmedId);
}

void ImproveScan(suite::ListItems& list, const SetStatus& setStatus) {
    const data::RecordsetPtr rowset = MakeRowset();
    const std::optional<pnp::WmiServices> services = pnp::GetObject(QStringLiteral("winmgmts:\\\\.\\root\\CIMV2"));
    std::optional<pnp::WmiObjectSet> devices;
    if (services)
        devices = services->ExecQuery(QStringLiteral("SELECT * FROM Win32_PnPEntity WHERE ConfigManagerErrorCode = 0"),
                                      QStringLiteral("WQL"), pnp::WmiServices::ForwardOnly);
    base::Yield();
    if (values::ProgramClosing())
        return;
    if (devices)
        WalkDevices(*rowset, *devices, setStatus);
    if (values::ProgramClosing())
        return;
    setStatus(QStringLiteral("Status: Updating List..."));
    base::Yield();
    FillList(list, *rowset);
    data::Ran([&] { rowset->Close(); });
}

} // namespace contribution
