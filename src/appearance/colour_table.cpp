#include "appearance/colour_table.h"

#include "appearance/frm_colors.h"
#include "appearance/window_effects.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/profile_file.h"
#include "suite/color_picker.h"
#include "suite/combo_box.h"
#include "values/program_values.h"
#include "values/settings.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <span>

namespace appearance {

namespace {

const QString section = QStringLiteral("colors");
const QString extension = QStringLiteral(".ini");
constexpr qsizetype longestFileName = 255;     // bytes, as file systems have it
constexpr qsizetype temporarySuffixLength = 7; // a write goes to a name this much longer first

QString SettingsFile() { return values::ProgramFolder() + QStringLiteral("\\settings.ini"); }

QString PresetFolder() { return values::ProgramFolder() + QStringLiteral("\\color_presets"); }

QString PresetPath(const QString& name) { return PresetFolder() + u'\\' + name + extension; }

void ReadColour(int index, QString& path) {
    const QString text = values::ReadSetting(section, QLatin1StringView(RowOf(index)->Key), path);
    if (const auto colour = ColourFromText(text))
        SetColor(index, *colour);
}

void ReadColours(std::span<const ColourIndex> indices, QString& path) {
    for (const ColourIndex index : indices)
        ReadColour(index, path);
}

// A system colour may be held in memory as it is; in a file it would mean another colour on each desktop.
void WriteColours(std::span<const ColourIndex> indices, QString& path) {
    for (const ColourIndex index : indices) {
        const QString text = QString::number(TranslateColor(ColorOf(index)).SignedValue());
        values::WriteSetting(section, QLatin1StringView(RowOf(index)->Key), text, path);
    }
}

void WriteAllColours(QString path) {
    if (!ColorPicker(ProgramBack))
        return;
    const base::ProfileBatch batch(path);
    WriteColours(windowColours, path);
    WriteColours(importantButtonColours, path);
    WriteColours(barColours, path);
}

} // namespace

const ColourRow* RowOf(int index) {
    const auto* const row = std::ranges::find_if(colourRows, [index](const ColourRow& r) { return r.Index == index; });
    return row == colourRows.end() ? nullptr : row;
}

suite::ColorPicker* ColorPicker(int index) {
    FrmColors* const form = ColorsForm();
    return form ? form->ColorPicker(index) : nullptr;
}

base::Colour ColorOf(int index) {
    if (const suite::ColorPicker* const picker = ColorPicker(index))
        return picker->Color();
    const ColourRow* const row = RowOf(index);
    return row ? row->Default : base::Colour();
}

void SetColor(int index, base::Colour colour) {
    if (suite::ColorPicker* const picker = ColorPicker(index))
        picker->SetColor(colour);
}

std::optional<base::Colour> ColourFromText(const QString& text) {
    const auto number = base::TextToInt(text);
    if (!number)
        return std::nullopt;
    return base::Colour(quint32(*number));
}

void LoadColors() {
    QString path = SettingsFile();
    ReadColours(windowColours, path);
    SetColor(ImportantButtonTopBack, ColorOf(TitleTopBack));
    SetColor(ImportantButtonText, ColorOf(TitleText));
    ReadColours(barColours, path);
    ReadColours(importantButtonColours, path);
}

void LoadColorPreset(const QString& name) {
    if (!IsSafePresetName(name))
        return;
    QString path = PresetPath(name);
    ReadColours(windowColours, path);
    ReadColours(barColours, path);
    ReadColours(importantButtonColours, path);
}

void SaveColors() { WriteAllColours(SettingsFile()); }

void SaveColorPreset(const QString& name) {
    if (!IsSafePresetName(name))
        return;
    base::SHCreateDirectoryExW(PresetFolder());
    WriteAllColours(PresetPath(name));
}

bool IsSafePresetName(const QString& name) {
    if (name.isEmpty() || name == QStringLiteral(".") || name == QStringLiteral(".."))
        return false;
    const bool plain = std::ranges::all_of(
        name, [](QChar c) { return c != u'/' && c != u'\\' && c.unicode() >= 0x20 && c.unicode() != 0x7F; });
    const QByteArray fileName = QFile::encodeName(name + extension);
    // A name that does not survive the way to the file system and back would stand in the list under another one.
    return plain && fileName.size() + temporarySuffixLength <= longestFileName &&
           QFile::decodeName(fileName) == name + extension;
}

void TakeWindowsDefaultColors() {
    for (const ColourRow& row : colourRows)
        SetColor(row.Index, TranslateColor(row.WindowsDefault));
}

void ListColorPresets(suite::ComboBox* combo) {
    combo->Clear();
    combo->AddItem(QString());
    combo->AddItem(QLatin1StringView(windowsDefaultPreset));
    base::SHCreateDirectoryExW(PresetFolder());
    // Sorted as the program's platform lists a folder; the file systems here return names in no order at all.
    const QDir folder(base::NativePath(PresetFolder()));
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden, QDir::Name | QDir::IgnoreCase))
        if (name.right(extension.size()).toLower() == extension)
            combo->AddItem(name.chopped(extension.size()));
}

} // namespace appearance
