// The lookup window: what the database knows about one device. Each request opens one of its own; it starts its search
// by its timer once its opener has filled it, and keeps its rows until it is closed.
#pragma once

#include "forms/form.h"

namespace controls {
class Anchor;
class AnimationBar;
class TitelBar;
class dcButton;
} // namespace controls

namespace forms {
class Label;
class PictureBox;
class TextBox;
class Timer;
} // namespace forms

namespace suite {
class ListItem;
class ListView;
} // namespace suite

namespace database {

class FrmLookup : public forms::Form {
    Q_OBJECT

  public:
    FrmLookup();

    controls::TitelBar* TitelBar1 = nullptr;
    forms::Label* ImportantLabelName = nullptr;
    forms::Label* LabelHardwareID = nullptr;
    forms::TextBox* TextID = nullptr;
    controls::dcButton* CommandSearchGoogleID = nullptr;
    forms::Label* LabelPossible = nullptr;
    suite::ListView* LabelListViewHardware = nullptr;
    forms::PictureBox* ImportantPictureBestMacthColor = nullptr;
    forms::Label* ImportantLabel2 = nullptr;
    forms::Label* InfoLabel1 = nullptr;
    forms::Label* LabelStatus = nullptr;
    controls::AnimationBar* DB1 = nullptr;
    controls::Anchor* Anchor1 = nullptr;
    forms::Label* LabelResize = nullptr;
    forms::Timer* TimerStart = nullptr;
    forms::Timer* TimerStatus = nullptr;

  protected:
    void Load() override;
    void Resize() override;

  private:
    void CreateControls();
    void Connect();
    void SortByLength();
    void Mark(suite::ListItem& row);
    void SampleChanged();
    void TimerStart_Tick();
    void TimerStatus_Tick();
    void CommandSearchGoogleID_Click();
};

// Tells the collection of forms how lookup windows are made.
void RegisterLookupForm();

} // namespace database
