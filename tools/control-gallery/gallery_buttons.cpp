// The sections of push buttons, and the events that bring some of them into their state.
#include "frm_gallery.h"

#include "controls/dc_button.h"

#include <QCoreApplication>
#include <QFocusEvent>
#include <QMouseEvent>

namespace {

constexpr int columnLeft = 16;

const char* const hotName = "CommandHot";
const char* const downName = "CommandDown";
const char* const focusedName = "CommandFocused";

controls::dcButton* NewButton(QWidget* container, const QString& name, const QString& caption) {
    auto* button = new controls::dcButton(container, name);
    button->InitProperties();
    button->SetCaption(caption);
    button->SetBackColor(base::Colour::FromRgb(70, 104, 150));
    button->SetBackStartColor(base::Colour::FromRgb(34, 46, 66));
    return button;
}

void SendMouse(QWidget* target, QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons) {
    const QPointF middle = target->rect().center();
    QMouseEvent event(type, middle, target->mapToGlobal(middle), button, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &event);
}

} // namespace

void FrmGallery::AddButtons() {
    AddHeading(columnLeft, 44, QStringLiteral("Buttons: states"));
    const std::pair<const char*, const char*> states[] = {
        {"CommandNormal", "&Normal"}, {hotName, "Hot"},         {downName, "Down"},
        {"CommandOff", "Disabled"},   {focusedName, "Focused"}, {"CommandChecked", "Checked"},
    };
    int at = 0;
    for (const auto& [name, caption] : states) {
        auto* button = NewButton(Client(), QString::fromLatin1(name), QString::fromLatin1(caption));
        Place(button, columnLeft + at % 3 * 108, 64 + at / 3 * 38, 100, 30);
        ++at;
        if (button->Name() == QStringLiteral("CommandOff"))
            button->SetEnabled(false);
        if (button->Name() == QStringLiteral("CommandChecked")) {
            button->SetCheckBoxMode(true);
            button->SetValue(true);
        }
    }

    AddHeading(columnLeft, 146, QStringLiteral("Buttons: shapes 0 to 3, effects 0 to 3"));
    for (int kind = 0; kind < 4; ++kind) {
        auto* shaped =
            NewButton(Client(), QStringLiteral("CommandShape%1").arg(kind), QStringLiteral("Shape %1").arg(kind));
        Place(shaped, columnLeft + kind * 81, 166, 73, 30)->SetButtonShape(kind);
        auto* effect =
            NewButton(Client(), QStringLiteral("CommandEffect%1").arg(kind), QStringLiteral("Effect %1").arg(kind));
        Place(effect, columnLeft + kind * 81, 204, 73, 30)->SetSpecialEffect(kind);
    }
}

void FrmGallery::AddPictureButtons() {
    AddHeading(columnLeft, 248, QStringLiteral("Buttons: picture alignments 0 to 8"));
    for (int alignment = 0; alignment < 9; ++alignment) {
        auto* button = NewButton(Client(), QStringLiteral("CommandPicture%1").arg(alignment),
                                 QStringLiteral("Pic %1").arg(alignment));
        Place(button, columnLeft + alignment % 3 * 108, 268 + alignment / 3 * 66, 100, 58);
        button->SetPictureNormal(gallery::DiscIcon(gallery::Scaled(24)));
        button->SetPictureAlignment(alignment);
    }
    AddHeading(columnLeft, 474, QStringLiteral("Buttons: bitmaps, disabled icon and bitmap"));
    for (int kind = 0; kind < 4; ++kind) {
        auto* button = NewButton(Client(), QStringLiteral("CommandMask%1").arg(kind), QStringLiteral("OK"));
        Place(button, columnLeft + kind * 81, 494, 73, 32);
        button->SetPictureNormal(kind == 2 ? gallery::DiscIcon(gallery::Scaled(24)) : gallery::DiscBitmap());
        button->SetUseMaskColor(kind != 1);
        button->SetEnabled(kind < 2);
    }
    AddHeading(columnLeft, 540, QStringLiteral("Buttons: two lines, no caption, large font, tiny"));
    auto* lines = NewButton(Client(), QStringLiteral("CommandLines"), QStringLiteral("A caption on two lines"));
    Place(lines, columnLeft, 560, 100, 40);
    auto* empty = NewButton(Client(), QStringLiteral("CommandEmpty"), QString());
    Place(empty, columnLeft + 108, 560, 40, 40)->SetButtonShape(controls::RoundBoth);
    auto* large = NewButton(Client(), QStringLiteral("CommandLarge"), QStringLiteral("Large"));
    Place(large, columnLeft + 156, 560, 100, 40)->SetFontSize(16);
    large->SetFontBold(true);
    auto* tiny = NewButton(Client(), QStringLiteral("CommandTiny"), QStringLiteral("x"));
    Place(tiny, columnLeft + 264, 560, 10, 10);
}

void FrmGallery::Pose() {
    if (auto* hot = Find<QWidget>(QString::fromLatin1(hotName)))
        SendMouse(hot, QEvent::MouseMove, Qt::NoButton, Qt::NoButton);
    if (auto* down = Find<QWidget>(QString::fromLatin1(downName)))
        SendMouse(down, QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton);
    if (QWidget* grabber = QWidget::mouseGrabber())
        grabber->releaseMouse();
    if (auto* focused = Find<QWidget>(QString::fromLatin1(focusedName))) {
        QFocusEvent event(QEvent::FocusIn);
        QCoreApplication::sendEvent(focused, &event);
    }
}
