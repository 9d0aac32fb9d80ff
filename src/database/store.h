// The device database: one connection for the whole process, opened at start-up, and the five recordset slots that
// searches share. All of it runs on the user-interface thread. Only OpenDeviceDatabase reports a failure; every other
// routine passes over what fails and keeps the values that it has.
#pragma once

#include "data/connection.h"
#include "data/error.h"
#include "data/recordset.h"

#include <QString>
#include <functional>

namespace database {

// The open connection; null before the first opening and after CloseDeviceDatabase.
const data::ConnectionPtr& DatabaseConnection();

// Another number for every opening of a database file; 0 without an open connection. What was read between two equal
// answers belongs together, numbers of rows above all.
quint64 DatabaseGeneration();

// The shared recordsets. A slot is made anew before each use; who walks one across a yield keeps a pointer of its own,
// because another search may put its own rows into the slot meanwhile.
enum class Slot { Identity, Hwids, DeviceNames, Mfgs, Version };
data::RecordsetPtr& RecordsetSlot(Slot slot);

// Opens hwids.mdb in the program's folder, then yields. Where that fails it shows the fatal message and ends the
// process; false only where the handler that ends it returns.
bool OpenDeviceDatabase();

// Makes `path` the open database, for tools: nothing is shown and nothing ends where it fails.
bool OpenDatabaseFile(const QString& path, data::Error* error = nullptr);

// Closes and releases the slots and the connection, yielding after each. Never fails.
void CloseDeviceDatabase();

// What a fatal failure does: `show` gets the whole message, then `end` is called. By default the message goes to
// standard error and the process ends at once with status 1; null restores that.
void SetFatalHandlers(std::function<void(const QString& message)> show, std::function<void()> end);

// The texts behind the numbers of an info entry, as the entry spells them; empty where there is no such row or `id` is
// no decimal number.
QString DeviceNameById(const QString& id);
QString ManufacturerById(const QString& id);

// Reads version and row count of the open database into the program-wide values, with the yields of its steps. What
// cannot be read keeps its old value.
void ReadVersionAndCount();

// The two captions made of these values.
QString DeviceCountCaption();
QString DatabaseVersionCaption();

// For a text in a query: every apostrophe doubled.
QString DoubleApostrophes(const QString& text);

} // namespace database
