// The gallery's window: every drawn control of the program in every state, one section for each kind. The collection of
// forms owns it; its controls belong to it.
#pragma once

#include "forms/form.h"
#include "forms/label.h"
#include "forms/timer.h"

constexpr double twipsPerUnit = 15; // a unit is a pixel at 96 dots per inch

class FrmGallery : public forms::Form {
  public:
    FrmGallery();

  protected:
    void Activate() override;

  private:
    void AddTitle();
    void AddButtons();
    void AddPictureButtons();
    void AddProgressBars();
    void AddAnimationBars();
    void AddPanels();
    void AddTitleBars();
    // Gives the controls that show a state of the pointer or the keyboard the events that lead there.
    void Pose();

    void AddHeading(int left, int top, const QString& text, int width = 310);
    forms::Label* AddNote(int left, int top, int width, const QString& text);
    // Places a control by units.
    template <typename Control> Control* Place(Control* control, int left, int top, int width, int height) {
        control->Move(left * twipsPerUnit, top * twipsPerUnit, width * twipsPerUnit, height * twipsPerUnit);
        return control;
    }

    forms::Timer poseTimer_;
    int noteCount_ = 0;
    bool posed_ = false;
};

// A picture of 24 by 24 pixels with a bright disc on the colour that is transparent by default, or an icon of the same
// disc.
namespace gallery {
draw::Picture DiscBitmap();
draw::Picture DiscIcon(int side);
// A square of 8 pixels with slanting lines that go on in the next one.
draw::Picture Tile();
// Pixels of this screen.
int Scaled(int units);
} // namespace gallery
