// The drawn band at the top of a window without a platform frame: caption strip with a diagonal end, icon, caption,
// caption buttons with a spin, and what a frame does for its window: dragging, double click, minimise, the program's
// own maximise to the work area, close. Everything is measured in pixels but BackColorCover. Setters store and mark the
// bar dirty: it is painted once, at the next yield or paint; Refresh also yields.
#pragma once

#include "base/property_bag.h"
#include "controls/alpha_image.h"
#include "controls/titel_bar_state.h"
#include "forms/drawn_control.h"
#include "forms/timer.h"

#include <QFont>
#include <QPointer>
#include <QRect>
#include <array>
#include <functional>

namespace controls {

class TitelBar : public forms::DrawnControl {
    Q_OBJECT
    Q_PROPERTY(bool AutoRedraw READ AutoRedraw WRITE SetAutoRedraw)
    Q_PROPERTY(base::Colour BackColor READ BackColor WRITE SetBackColor)
    Q_PROPERTY(int BackColorCover READ BackColorCover WRITE SetBackColorCover)
    Q_PROPERTY(base::Colour BackColorV1Begin READ BackColorV1Begin WRITE SetBackColorV1Begin)
    Q_PROPERTY(base::Colour BackColorV1End READ BackColorV1End WRITE SetBackColorV1End)
    Q_PROPERTY(base::Colour BackColorV2Begin READ BackColorV2Begin WRITE SetBackColorV2Begin)
    Q_PROPERTY(base::Colour BackColorV2End READ BackColorV2End WRITE SetBackColorV2End)
    Q_PROPERTY(int BorderNormal READ BorderNormal WRITE SetBorderNormal)
    Q_PROPERTY(base::Colour BorderColorHighLight READ BorderColorHighLight WRITE SetBorderColorHighLight)
    Q_PROPERTY(base::Colour BorderColorDarkLight READ BorderColorDarkLight WRITE SetBorderColorDarkLight)
    Q_PROPERTY(base::Colour ButtonBackColor READ ButtonBackColor WRITE SetButtonBackColor)
    Q_PROPERTY(base::Colour ButtonForeColor READ ButtonForeColor WRITE SetButtonForeColor)
    Q_PROPERTY(base::Colour ButtonXBackColor READ ButtonXBackColor WRITE SetButtonXBackColor)
    Q_PROPERTY(base::Colour ButtonXForeColor READ ButtonXForeColor WRITE SetButtonXForeColor)
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(base::Colour CaptionColor READ CaptionColor WRITE SetCaptionColor)
    Q_PROPERTY(base::Colour CaptionColorBack READ CaptionColorBack WRITE SetCaptionColorBack)
    Q_PROPERTY(int CaptionPosX READ CaptionPosX WRITE SetCaptionPosX)
    Q_PROPERTY(int CaptionPosY READ CaptionPosY WRITE SetCaptionPosY)
    Q_PROPERTY(bool DashBack READ DashBack WRITE SetDashBack)
    Q_PROPERTY(QFont Font READ Font WRITE SetFont)
    Q_PROPERTY(base::Colour ForeColor READ ForeColor WRITE SetForeColor)
    Q_PROPERTY(int IconStyle READ IconStyle WRITE SetIconStyle)
    Q_PROPERTY(draw::Picture Picture READ Picture WRITE SetPicture)
    Q_PROPERTY(draw::Picture PictureButton READ PictureButton WRITE SetPictureButton)
    Q_PROPERTY(int PicturePosMode READ PicturePosMode WRITE SetPicturePosMode)
    Q_PROPERTY(int PicturePosX READ PicturePosX WRITE SetPicturePosX)
    Q_PROPERTY(int PicturePosY READ PicturePosY WRITE SetPicturePosY)
    Q_PROPERTY(bool ShowClose READ ShowClose WRITE SetShowClose)
    Q_PROPERTY(bool ShowMinimized READ ShowMinimized WRITE SetShowMinimized)
    Q_PROPERTY(bool ShowMaximized READ ShowMaximized WRITE SetShowMaximized)
    Q_PROPERTY(bool ShowHelp READ ShowHelp WRITE SetShowHelp)
    Q_PROPERTY(bool ShowCloseEnabled READ ShowCloseEnabled WRITE SetShowCloseEnabled)
    Q_PROPERTY(bool ShowMinimizedEnabled READ ShowMinimizedEnabled WRITE SetShowMinimizedEnabled)
    Q_PROPERTY(bool ShowMaximizedEnabled READ ShowMaximizedEnabled WRITE SetShowMaximizedEnabled)
    Q_PROPERTY(bool ShowHelpEnabled READ ShowHelpEnabled WRITE SetShowHelpEnabled)
    Q_PROPERTY(int Style READ Style WRITE SetStyle)
    Q_PROPERTY(bool Maximised READ Maximised)

  public:
    enum ButtonIndex { CloseButton, MaximiseButton, MinimiseButton, HelpButton, ButtonCount };
    static constexpr int TrackIdle = 255;
    static constexpr int Tracking = 1;

    TitelBar(QWidget* container, const QString& name);

    // A control that was just put on a window, or one that comes back from its bag.
    void InitProperties();
    void ReadProperties(const base::PropertyBag& bag);
    void WriteProperties(base::PropertyBag& bag) const;

    bool AutoRedraw() const { return state_.autoRedraw; }
    void SetAutoRedraw(bool on) { Store(state_.autoRedraw, on, "AutoRedraw"); }
    // The surface's background, which stays visible right of the diagonal and in the corners.
    base::Colour BackColor() const { return state_.backColor; }
    void SetBackColor(base::Colour colour) { Store(state_.backColor, colour, "BackColor"); }
    // Twips: rows of the gradient below this value get the second band.
    int BackColorCover() const { return state_.backColorCover; }
    void SetBackColorCover(int twips) { Store(state_.backColorCover, twips, "BackColorCover"); }
    base::Colour BackColorV1Begin() const { return state_.backColorV1Begin; }
    void SetBackColorV1Begin(base::Colour colour) { Store(state_.backColorV1Begin, colour, "BackColorV1Begin"); }
    base::Colour BackColorV1End() const { return state_.backColorV1End; }
    void SetBackColorV1End(base::Colour colour) { Store(state_.backColorV1End, colour, "BackColorV1End"); }
    // The second band's colours are also those at top and bottom of the button faces, from their next rebuilding on.
    base::Colour BackColorV2Begin() const { return state_.backColorV2Begin; }
    void SetBackColorV2Begin(base::Colour colour) { Store(state_.backColorV2Begin, colour, "BackColorV2Begin"); }
    base::Colour BackColorV2End() const { return state_.backColorV2End; }
    void SetBackColorV2End(base::Colour colour) { Store(state_.backColorV2End, colour, "BackColorV2End"); }
    int BorderNormal() const { return state_.borderNormal; }
    void SetBorderNormal(int pixels) { Store(state_.borderNormal, pixels, "BorderNormal"); }
    base::Colour BorderColorHighLight() const { return state_.borderColorHighLight; }
    void SetBorderColorHighLight(base::Colour colour) {
        Store(state_.borderColorHighLight, colour, "BorderColorHighLight");
    }
    base::Colour BorderColorDarkLight() const { return state_.borderColorDarkLight; }
    void SetBorderColorDarkLight(base::Colour colour) {
        Store(state_.borderColorDarkLight, colour, "BorderColorDarkLight");
    }
    // These four rebuild the button faces.
    base::Colour ButtonBackColor() const { return state_.buttonBackColor; }
    void SetButtonBackColor(base::Colour colour) { StoreFace(state_.buttonBackColor, colour, "ButtonBackColor"); }
    base::Colour ButtonForeColor() const { return state_.buttonForeColor; }
    void SetButtonForeColor(base::Colour colour) { StoreFace(state_.buttonForeColor, colour, "ButtonForeColor"); }
    base::Colour ButtonXBackColor() const { return state_.buttonXBackColor; }
    void SetButtonXBackColor(base::Colour colour) { StoreFace(state_.buttonXBackColor, colour, "ButtonXBackColor"); }
    base::Colour ButtonXForeColor() const { return state_.buttonXForeColor; }
    void SetButtonXForeColor(base::Colour colour) { StoreFace(state_.buttonXForeColor, colour, "ButtonXForeColor"); }
    QString Caption() const { return state_.caption; }
    void SetCaption(const QString& caption);
    base::Colour CaptionColor() const { return state_.captionColor; }
    void SetCaptionColor(base::Colour colour);
    base::Colour CaptionColorBack() const { return state_.captionColorBack; }
    void SetCaptionColorBack(base::Colour colour) { Store(state_.captionColorBack, colour, "CaptionColorBack"); }
    // 0 behind the icon or at the top rule, 1 at the near edge, 2 centred, 3 at the far edge.
    int CaptionPosX() const { return state_.captionPosX; }
    void SetCaptionPosX(int rule) { Store(state_.captionPosX, rule, "CaptionPosX"); }
    int CaptionPosY() const { return state_.captionPosY; }
    void SetCaptionPosY(int rule) { Store(state_.captionPosY, rule, "CaptionPosY"); }
    bool DashBack() const { return state_.dashBack; }
    void SetDashBack(bool on) { Store(state_.dashBack, on, "DashBack"); }
    QFont Font() const { return font(); }
    void SetFont(const QFont& font);
    // The surface's foreground; the next refresh sets it to CaptionColor.
    base::Colour ForeColor() const { return state_.foreColor; }
    void SetForeColor(base::Colour colour) { Store(state_.foreColor, colour, "ForeColor"); }
    // 0 to 2; above that 2 is stored. Nothing painted depends on it.
    int IconStyle() const { return state_.iconStyle; }
    void SetIconStyle(int style);
    // The window icon.
    draw::Picture Picture() const { return state_.picture; }
    void SetPicture(const draw::Picture& picture) { Store(state_.picture, picture, "Picture"); }
    draw::Picture PictureButton() const { return state_.pictureButton; }
    void SetPictureButton(const draw::Picture& picture) { Store(state_.pictureButton, picture, "PictureButton"); }
    // 1 centres the icon across, 2 down, 3 both; the centred place overwrites the two positions.
    int PicturePosMode() const { return state_.picturePosMode; }
    void SetPicturePosMode(int mode) { Store(state_.picturePosMode, mode, "PicturePosMode"); }
    // 16 bits; a value beyond them is passed over.
    int PicturePosX() const { return state_.picturePosX; }
    void SetPicturePosX(int pixels) { StoreShort(state_.picturePosX, pixels, "PicturePosX"); }
    int PicturePosY() const { return state_.picturePosY; }
    void SetPicturePosY(int pixels) { StoreShort(state_.picturePosY, pixels, "PicturePosY"); }
    // These eight lay the buttons out; the diagonal follows at the next refresh only.
    bool ShowClose() const { return state_.showClose; }
    void SetShowClose(bool on) { StoreShow(state_.showClose, on, "ShowClose"); }
    bool ShowMinimized() const { return state_.showMinimized; }
    void SetShowMinimized(bool on) { StoreShow(state_.showMinimized, on, "ShowMinimized"); }
    bool ShowMaximized() const { return state_.showMaximized; }
    void SetShowMaximized(bool on) { StoreShow(state_.showMaximized, on, "ShowMaximized"); }
    bool ShowHelp() const { return state_.showHelp; }
    void SetShowHelp(bool on) { StoreShow(state_.showHelp, on, "ShowHelp"); }
    bool ShowCloseEnabled() const { return state_.showCloseEnabled; }
    void SetShowCloseEnabled(bool on) { StoreShow(state_.showCloseEnabled, on, "ShowCloseEnabled"); }
    bool ShowMinimizedEnabled() const { return state_.showMinimizedEnabled; }
    void SetShowMinimizedEnabled(bool on) { StoreShow(state_.showMinimizedEnabled, on, "ShowMinimizedEnabled"); }
    bool ShowMaximizedEnabled() const { return state_.showMaximizedEnabled; }
    void SetShowMaximizedEnabled(bool on) { StoreShow(state_.showMaximizedEnabled, on, "ShowMaximizedEnabled"); }
    bool ShowHelpEnabled() const { return state_.showHelpEnabled; }
    void SetShowHelpEnabled(bool on) { StoreShow(state_.showHelpEnabled, on, "ShowHelpEnabled"); }
    // 0 to 14; others are passed over. Style 13 alone has a background of its own, the others show BackColor.
    int Style() const { return state_.style; }
    void SetStyle(int style);

    // The window stands in the program's maximised state.
    bool Maximised() const { return maximised_; }
    bool HasFocus() const { return hasFocus_; }
    int TrackState() const { return trackState_; }
    bool SpinRunning() const { return spinRunning_; }
    // The child part that has the keyboard, or null.
    QWidget* ActiveControl() const;
    bool HasDC() const { return true; }
    draw::Surface& hdc() { return UpToDateSurface(); }
    QWidget* hwnd() { return this; }
    static double TwipsPerPixelX();
    static double TwipsPerPixelY();
    // The plain colour of a value; one that has no meaning yields once and keeps its low three bytes.
    static base::Colour GetRealColor(base::Colour colour);

    AlphaImage& Button(ButtonIndex index) { return *buttons_[index].image; }
    forms::Timer& SpinTimer(ButtonIndex index) { return *buttons_[index].timer; }

    // Lays out, paints at the next yield, and yields.
    void Refresh() override;
    // Fills the surface with BackColor.
    void Cls();
    // The parts of a paint, on the surface: background, icon, caption, border.
    void SetVerlauf(base::Colour v1Begin, base::Colour v1End, base::Colour v2Begin, base::Colour v2End);
    void SetImageI();
    void Shadow();
    void BSetBorder(int width);
    // Composes the faces of all buttons anew.
    void UpdateTitleBarButtons();
    // Lays the buttons out from the right edge.
    void SetTBX_();
    // Maximises the window to the work area, or puts it back.
    void MaxminizeParent();

  Q_SIGNALS:
    void Resize();
    void HelpButtonClick();
    // After each MaxminizeParent.
    void ResizedParent();

  protected:
    void Draw(draw::Surface& surface) override;
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    struct CaptionButton {
        AlphaImage* image = nullptr;
        forms::Timer* timer = nullptr;
    };
    enum class Face { Question, Bar, Maximise, Restore, X };

    template <typename T> void Store(T& member, const T& value, const char* name) {
        member = value;
        Changed(name);
        Touch();
    }
    void StoreShort(int& member, int value, const char* name);
    void StoreFace(base::Colour& member, base::Colour colour, const char* name);
    void StoreShow(bool& member, bool on, const char* name);
    void Changed(const char* name);
    // Everything of a refresh but the yield.
    void Touch();
    void CentreIcon();
    void StopTimers();

    void MakeButtons();
    void ConnectButton(ButtonIndex index);
    QSize ButtonSize() const;
    draw::Picture ComposeFace(Face face, base::Colour middle, base::Colour glyph) const;
    void ButtonEntered(ButtonIndex index);
    void HoverOff(ButtonIndex index);
    void TurnSpinPoints(ButtonIndex index, double degrees);
    void SpinTick(ButtonIndex index);
    void HoldSpinning();
    void PaintButton(ButtonIndex index, QPainter* context, bool* cancel);
    void ButtonReleased(ButtonIndex index);
    bool IsShown(ButtonIndex index) const;
    // The last button shown, in the order close, maximise, minimise, help; null if there is none.
    const AlphaImage* LastShownButton() const;

    int RowCount() const;
    int SlantStart() const;
    int CaptionStart() const;
    void DrawBands(draw::Surface& surface, const std::array<base::Colour, 4>& colours) const;
    void DrawDots(draw::Surface& surface) const;
    void DrawDashBack(draw::Surface& surface) const;
    QString ShownCaption() const;

    void WatchParent();
    void AnswerMaximised();
    void FillWorkArea();
    void FollowMonitors();
    bool MoveParent(forms::Form& parent, const std::function<bool()>& gone);
    void TakeFace(const AlphaImage& face);
    void StopTracking();
    void TrackTick();
    void GiveParentFocus();
    void ReturnKeyboard();

    TitelBarState state_;
    int drawWidth_ = 1;
    std::array<CaptionButton, ButtonCount> buttons_;
    AlphaImage* maximizeFace_ = nullptr;
    AlphaImage* restoreFace_ = nullptr;
    forms::Timer* trackTimer_ = nullptr;
    // The four buttons share the points; one spin at a time is the expected case.
    Parallelogram spinPoints_{};
    bool spinRunning_ = false;
    int trackState_ = TrackIdle;
    bool hasFocus_ = false;
    bool clickDue_ = false; // a press arrived whose release inside makes a click
    bool maximised_ = false;
    bool answering_ = false;
    bool changingPlace_ = false;
    // Twips.
    QRect savedMonitor_; // without panels, in pixels
    int savedTop_ = 0;
    int savedLeft_ = 0;
    int savedHeight_ = 0;
    int savedWidth_ = 0;
    QSize laidOutFor_;
    QPointer<QWidget> focusBefore_;
};

} // namespace controls
