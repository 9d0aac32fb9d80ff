#include "appearance/window_effects.h"

#include "appearance/colour_table.h"
#include "base/modules.h"
#include "base/numbers.h"
#include "base/special_folders.h"
#include "base/text.h"
#include "draw/system_colours.h"
#include "forms/form.h"
#include "forms/forms.h"
#include "suite/shadow_manager.h"
#include "values/program_values.h"

#include <QHash>

namespace appearance {

namespace {

constexpr int extendedStyleIndex = -20;
constexpr quint32 layeredStyle = 0x80000; // WS_EX_LAYERED
constexpr quint32 colourKeyFlag = 1;      // LWA_COLORKEY
constexpr int folderBufferSize = 257;     // characters, the terminator included
constexpr int shadowStyle = 8 | 16;       // the manager keeps it and has one style
constexpr int opaque = 255;               // of a shadow at its strongest

// The extended styles that windows were given here; the only one with a meaning on this platform is the layered one.
QHash<const forms::Form*, quint32>& ExtendedStyles() {
    static QHash<const forms::Form*, quint32> styles;
    return styles;
}

quint32 GetWindowLongA(const forms::Form* form, int index) {
    return index == extendedStyleIndex ? ExtendedStyles().value(form) : 0;
}

void SetWindowLongA(const forms::Form* form, int index, quint32 value) {
    if (index != extendedStyleIndex)
        return;
    if (!ExtendedStyles().contains(form))
        QObject::connect(form, &QObject::destroyed, form, [form] { ExtendedStyles().remove(form); });
    ExtendedStyles().insert(form, value);
}

// Only a layered window takes a colour key; `alpha` counts for nothing beside one.
bool SetLayeredWindowAttributes(forms::Form* form, base::Colour key, int /*alpha*/, quint32 flags) {
    if ((GetWindowLongA(form, extendedStyleIndex) & layeredStyle) == 0 || (flags & colourKeyFlag) == 0)
        return false;
    form->SetColourKey(key);
    return true;
}

int Scaled(double pixels) { return base::RoundToInt(pixels * double(values::Program().DpiScale)); }

// Which of the two libraries serves special folders; asked once in a run.
bool FoldersServed() {
    static const bool inShell = ApiExists(QStringLiteral("SHGetFolderPathW"), QStringLiteral("shell32"));
    static const bool inShellFolder =
        !inShell && ApiExists(QStringLiteral("SHGetFolderPathW"), QStringLiteral("shfolder"));
    return inShell || inShellFolder;
}

} // namespace

void MakeWindowColorKeyed(forms::Form* form, base::Colour colour) {
    if (!form)
        return;
    const quint32 style = GetWindowLongA(form, extendedStyleIndex);
    SetWindowLongA(form, extendedStyleIndex, style | layeredStyle);
    SetLayeredWindowAttributes(form, colour, 0, colourKeyFlag);
}

void InitShadow() {
    suite::ShadowManager& manager = suite::SharedShadowManager();
    if (!manager.Available())
        return;
    manager.SetStyleFlags(shadowStyle);
    // Strongest just beyond the window's edge, fading to nothing.
    manager.SetBlendCurve({{0.0F, float(Scaled(1)) / 100, 1.0F}, {0.0F, 1.0F, 0.0F}});
    manager.SetUpdateMode(true);
    const int size = Scaled(10);
    const int secondSize = Scaled(15);
    manager.SetSize(size);
    manager.SetOffsetX(0);
    manager.SetOffsetY(0);
    manager.SetSecondSize(secondSize);
    manager.SetTransparency(opaque);
    manager.SetGlobalSize(size);
    manager.SetGlobalOffsetX(0);
    manager.SetGlobalOffsetY(0);
    manager.SetGlobalSecondSize(secondSize);
    manager.SetGlobalTransparency(opaque);
    manager.SetUpdateMode(false);
}

void UpdateShadow(forms::Form* form) {
    suite::ShadowManager& manager = suite::SharedShadowManager();
    if (!values::Program().ShadowEnabled) {
        if (manager.Knows(form))
            manager.Remove(form);
        return;
    }
    if (!manager.Available())
        return;
    manager.SetUpdateMode(true);
    const base::Colour colour = TranslateColor(ColorOf(TitleBottomBack));
    manager.SetColour(colour);
    manager.SetGlobalColour(colour);
    if (!manager.Knows(form))
        manager.Add(form);
    manager.SetUpdateMode(false);
}

void RenewShadows() {
    InitShadow();
    for (forms::Form* form : forms::Forms::Instance().Loaded())
        UpdateShadow(form);
}

base::Colour TranslateColor(base::Colour colour) { return draw::OleTranslateColor(colour); }

QString GetSpecialFolder(int folder, int /*flags*/, bool create, const forms::Form* /*owner*/, int /*token*/) {
    if (!FoldersServed())
        return {};
    QString path;
    if (base::SHGetFolderPathW(create ? folder | base::csidlFlagCreate : folder, folderBufferSize, path) != 0)
        return {};
    return base::CutAtNull(path);
}

bool ApiExists(const QString& function, const QString& library) {
    base::ModuleHandle module = base::GetModuleHandleA(library);
    const bool loadedHere = module == 0;
    if (loadedHere)
        module = base::LoadLibraryA(library);
    const bool exists = module != 0 && base::GetProcAddress(module, function);
    if (loadedHere && module != 0)
        base::FreeLibrary(module);
    return exists;
}

} // namespace appearance
