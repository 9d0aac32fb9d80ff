// The colour editor, which is also the store of the colours: its picker array is the program's colour table. It is made
// once, hidden, when colours are first needed, and stays loaded until the program ends; its close button only hides it.
// Every change shows at once in all windows and is saved at once.
#pragma once

#include "appearance/colour_table.h"
#include "forms/form.h"

#include <array>

namespace controls {
class BrindlexPB;
class TitelBar;
class dcButton;
} // namespace controls
namespace draw {
class Picture;
}
namespace suite {
class AlphaImgCtl;
class CheckBox;
class ColorPicker;
class ComboBox;
class GroupBox;
class HScroll;
} // namespace suite

namespace appearance {

class FrmColors : public forms::Form {
    Q_OBJECT

  public:
    FrmColors();

    // The element of the array; null for 11, 15 and everything outside.
    suite::ColorPicker* ColorPicker(int index) const;
    // Values of the two segment boxes.
    bool MBarSegments() const;
    bool PBarSegments() const;
    // The logo picture that the main window shows.
    const draw::Picture& LogoPicture() const;

  protected:
    void Load() override;
    void Resize() override;
    void Activate() override;
    bool QueryUnload() override;

  private:
    // Design: makes the controls at their places.
    void CreateControls();
    void CreateGroups();
    void CreateBars(suite::GroupBox* group, int top, const QString& kind, suite::CheckBox*& smooth,
                    suite::HScroll*& scroll, controls::BrindlexPB*& example);
    void CreatePresets();
    void ConnectControls();

    void SetHandCursor();
    void LoadSegments(const QString& key, suite::CheckBox* box, controls::BrindlexPB* example);
    void PickColor();
    void SelectPreset();
    void ApplyPreset(const QString& name);
    void SavePreset();
    void SwitchShadow();
    void SwitchSegments(const QString& key, const suite::CheckBox* box, controls::BrindlexPB* example);

    std::array<suite::ColorPicker*, pickerArraySize> pickers_{};
    controls::TitelBar* titleBar_ = nullptr;
    suite::ComboBox* presets_ = nullptr;
    controls::dcButton* save_ = nullptr;
    suite::CheckBox* disableShadow_ = nullptr;
    suite::CheckBox* mBarSmooth_ = nullptr;
    suite::CheckBox* pBarSmooth_ = nullptr;
    suite::HScroll* mBarScroll_ = nullptr;
    suite::HScroll* pBarScroll_ = nullptr;
    controls::BrindlexPB* mBarExample_ = nullptr;
    controls::BrindlexPB* pBarExample_ = nullptr;
    suite::AlphaImgCtl* mouseIcon_ = nullptr;
    suite::AlphaImgCtl* logo_ = nullptr;
    bool activated_ = false;
};

// The one instance, made and loaded if it is not there; null while the program is closing and where nobody registered
// it.
FrmColors* ColorsForm();

// Values of the two segment boxes; false without the window.
bool MBarSegments();
bool PBarSegments();

// Tells the collection of forms how FrmColors is made.
void RegisterForms();

} // namespace appearance
