#include "frm_gallery.h"

#include "controls/titel_bar.h"
#include "forms/screen.h"

#include <QImage>
#include <QPainter>

namespace {

constexpr int windowWidth = 1010;
constexpr int windowHeight = 672;
constexpr int settleMilliseconds = 200;
constexpr base::Colour backColour = base::Colour::FromRgb(44, 52, 66);
constexpr base::Colour noteColour = base::Colour::FromRgb(190, 200, 215);
constexpr base::Colour headingColour = base::Colour::FromRgb(255, 214, 120);

} // namespace

namespace gallery {

draw::Picture DiscBitmap() {
    QImage image(24, 24, QImage::Format_RGB32);
    image.fill(qRgb(0xC0, 0xC0, 0xC0));
    QPainter painter(&image);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(240, 150, 30));
    painter.drawEllipse(2, 2, 20, 20);
    painter.setBrush(QColor(255, 235, 140));
    painter.drawEllipse(7, 5, 8, 8);
    painter.end();
    return draw::Picture::FromImage(image);
}

draw::Picture DiscIcon(int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(70, 170, 230));
    painter.drawEllipse(QRectF(1, 1, side - 2, side - 2));
    painter.setBrush(QColor(225, 245, 255));
    painter.drawEllipse(QRectF(side * 0.3, side * 0.2, side * 0.35, side * 0.35));
    painter.end();
    return draw::Picture::IconFromImage(image);
}

int Scaled(int units) { return forms::ToPixels(units * twipsPerUnit); }

draw::Picture Tile() {
    draw::Surface tile(8, 8);
    tile.Cls(base::Colour::FromRgb(60, 84, 110));
    tile.Line(0, 7, 8, -1, base::Colour::FromRgb(92, 124, 158));
    tile.Line(0, 3, 4, -1, base::Colour::FromRgb(74, 102, 132));
    return tile.ToPicture();
}

} // namespace gallery

FrmGallery::FrmGallery()
    : Form(QStringLiteral("FrmGallery"), windowWidth * twipsPerUnit, windowHeight * twipsPerUnit),
      poseTimer_(this, QStringLiteral("TimerPose"), settleMilliseconds, false) {
    connect(&poseTimer_, &forms::Timer::Tick, this, [this] {
        poseTimer_.SetEnabled(false);
        Pose();
    });
    SetCaption(QStringLiteral("Quorvane: control gallery"));
    SetBackColor(backColour);
    SetForeColor(noteColour);
    AddTitle();
    AddButtons();
    AddPictureButtons();
    AddProgressBars();
    AddAnimationBars();
    AddPanels();
    AddTitleBars();
}

void FrmGallery::AddTitle() {
    auto* bar = Place(new controls::TitelBar(Client(), QStringLiteral("TitelBar1")), 0, 0, windowWidth, 32);
    bar->InitProperties();
    bar->SetBackColor(backColour);
    bar->SetCaption(Caption());
    bar->SetPicture(gallery::DiscIcon(gallery::Scaled(24)));
    bar->SetShowHelp(true);
    bar->SetShowHelpEnabled(true);
    bar->SetShowMaximized(true);
    bar->SetShowMaximizedEnabled(true);
    bar->Refresh();
}

void FrmGallery::AddHeading(int left, int top, const QString& text, int width) {
    AddNote(left, top, width, text)->SetForeColor(headingColour);
}

forms::Label* FrmGallery::AddNote(int left, int top, int width, const QString& text) {
    auto* label =
        Place(new forms::Label(Client(), QStringLiteral("Note%1").arg(++noteCount_), text), left, top, width, 16);
    label->SetBackColor(backColour);
    label->SetForeColor(noteColour);
    return label;
}

void FrmGallery::Activate() {
    if (posed_)
        return;
    posed_ = true;
    // Once everything is shown: a control that is not visible is under no pointer.
    poseTimer_.SetEnabled(true);
}
