// The contribution window: explains itself, finds hardware that the database lacks, lets the user take rows out, and on
// the second button writes the rest into the database and a text file that it uploads. One scan per opening; a
// submission runs to its end whatever is closed meanwhile.
#pragma once

#include "forms/form.h"

#include <QStringList>

namespace controls {
class Anchor;
class AnimationBar;
class PanelFx;
class TitelBar;
class dcButton;
} // namespace controls

namespace forms {
class Label;
class TextBox;
class Timer;
} // namespace forms

namespace suite {
class ListBox;
class ListView;
} // namespace suite

namespace contribution {

class SubmissionFile;

class FrmImprove : public forms::Form {
    Q_OBJECT

  public:
    // Twips.
    static constexpr double LeastWidth = 8520;
    static constexpr double LeastHeight = 8715;

    FrmImprove();

    controls::TitelBar* TitelBar1 = nullptr;
    forms::TextBox* LabelText1 = nullptr;
    forms::Label* ImportantLabel1 = nullptr;
    controls::dcButton* CommandGetHardware = nullptr;
    controls::dcButton* CommandSaveSubmit = nullptr;
    suite::ListView* ListViewHardware = nullptr;
    forms::Label* InfoLabelListTotal = nullptr;
    forms::Label* ImportantLabelSubmitStatus = nullptr;
    forms::Label* LabelStatus = nullptr;
    controls::PanelFx* PanelProgress = nullptr;
    controls::AnimationBar* DB1 = nullptr;
    suite::ListBox* List1 = nullptr;
    forms::Timer* TimerStatus = nullptr;
    forms::Timer* Timer1 = nullptr;
    controls::Anchor* Anchor1 = nullptr;
    forms::Label* LabelResize = nullptr;

    // The progress message that TimerStatus shows.
    QString StatusText;

    void CommandGetHardware_Click();
    void CommandSaveSubmit_Click();

  protected:
    void Load() override;
    void Resize() override;

  private:
    void CreateControls();
    void Connect();
    void ReadKeywords();
    bool BeginWork(controls::dcButton* button);
    void EndWork();
    void RemoveKnownRows();
    void OfferUnsentRows();
    QStringList LinesOnOffer() const;
    void SubmitRows(SubmissionFile& submission);
    void Timer1_Tick();
    void TimerStatus_Tick();

    // The lines of earlier submissions that the scan put on offer again.
    QStringList unsent_;
};

// Tells the collection of forms how the window is made.
void RegisterImproveForm();

} // namespace contribution
