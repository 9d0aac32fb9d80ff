// The program's push button: two colours with a vertical gradient, four visual states, an optional picture, a
// check-button mode and an optional popup menu in place of Click. The container owns it. A handler of any of its events
// may destroy it.
#pragma once

#include "base/colour.h"
#include "base/property_bag.h"
#include "controls/dc_button_painter.h"
#include "draw/picture.h"
#include "forms/drawn_control.h"
#include "forms/menu.h"

#include <QElapsedTimer>
#include <QFont>
#include <QPointer>

class QShortcut;

namespace controls {

// The key that the caption marks with "&", lower-cased; a null character if it marks none.
QChar FindAccessKey(const QString& caption);

class dcButton : public forms::DrawnControl {
    Q_OBJECT
    Q_PROPERTY(base::Colour BackColor READ BackColor WRITE SetBackColor)
    Q_PROPERTY(base::Colour BackStartColor READ BackStartColor WRITE SetBackStartColor)
    Q_PROPERTY(base::Colour ForeColor READ ForeColor WRITE SetForeColor)
    Q_PROPERTY(base::Colour MaskColor READ MaskColor WRITE SetMaskColor)
    Q_PROPERTY(bool UseMaskColor READ UseMaskColor WRITE SetUseMaskColor)
    Q_PROPERTY(int ButtonShape READ ButtonShape WRITE SetButtonShape)
    Q_PROPERTY(int SpecialEffect READ SpecialEffect WRITE SetSpecialEffect)
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(bool CheckBoxMode READ CheckBoxMode WRITE SetCheckBoxMode)
    Q_PROPERTY(bool Value READ Value WRITE SetValue)
    Q_PROPERTY(bool HandPointer READ HandPointer WRITE SetHandPointer)
    Q_PROPERTY(int MousePointer READ MousePointer WRITE SetMousePointer)
    Q_PROPERTY(draw::Picture MouseIcon READ MouseIcon WRITE SetMouseIcon)
    Q_PROPERTY(QFont Font READ Font WRITE SetFont)
    Q_PROPERTY(bool FontBold READ FontBold WRITE SetFontBold)
    Q_PROPERTY(bool FontItalic READ FontItalic WRITE SetFontItalic)
    Q_PROPERTY(QString FontName READ FontName WRITE SetFontName)
    Q_PROPERTY(double FontSize READ FontSize WRITE SetFontSize)
    Q_PROPERTY(bool FontStrikethru READ FontStrikethru WRITE SetFontStrikethru)
    Q_PROPERTY(bool FontUnderline READ FontUnderline WRITE SetFontUnderline)
    Q_PROPERTY(draw::Picture PictureNormal READ PictureNormal WRITE SetPictureNormal)
    Q_PROPERTY(draw::Picture PictureHot READ PictureHot WRITE SetPictureHot)
    Q_PROPERTY(draw::Picture PictureDown READ PictureDown WRITE SetPictureDown)
    Q_PROPERTY(int PictureOpacity READ PictureOpacity WRITE SetPictureOpacity)
    Q_PROPERTY(int PictureSize READ PictureSize WRITE SetPictureSize)
    Q_PROPERTY(int PictureSizeH READ PictureSizeH WRITE SetPictureSizeH)
    Q_PROPERTY(int PictureSizeW READ PictureSizeW WRITE SetPictureSizeW)
    Q_PROPERTY(int PictureAlignment READ PictureAlignment WRITE SetPictureAlignment)
    Q_PROPERTY(bool DisplayAsDefault READ DisplayAsDefault WRITE SetDisplayAsDefault)

  public:
    // What OverrideColor answers for an index that does not exist.
    static constexpr int InvalidArgument = 5;

    dcButton(QWidget* container, const QString& name);

    // A new control's values; a saved control's values. PictureAlignment is written and never read back: every control
    // starts with 3.
    void InitProperties();
    void ReadProperties(const base::PropertyBag& bag);
    void WriteProperties(base::PropertyBag& bag) const;

    // Bottom and top of the gradient, text and outer frame, transparent colour of a picture. Each setter derives all
    // other colours again, which ends overrides.
    base::Colour BackColor() const { return backColor_; }
    void SetBackColor(base::Colour colour);
    base::Colour BackStartColor() const { return backStartColor_; }
    void SetBackStartColor(base::Colour colour);
    base::Colour ForeColor() const { return foreColor_; }
    void SetForeColor(base::Colour colour);
    base::Colour MaskColor() const { return maskColor_; }
    void SetMaskColor(base::Colour colour);
    // False takes the picture's top left pixel as its transparent colour.
    bool UseMaskColor() const { return useMaskColor_; }
    void SetUseMaskColor(bool use);

    // 0 to 3, see controls::Shape; 0 to 3, see controls::Effect.
    int ButtonShape() const { return buttonShape_; }
    void SetButtonShape(int shape);
    int SpecialEffect() const { return specialEffect_; }
    void SetSpecialEffect(int effect);

    QString Caption() const { return caption_; }
    void SetCaption(const QString& caption);

    bool CheckBoxMode() const { return checkBoxMode_; }
    void SetCheckBoxMode(bool on);
    bool Value() const { return value_; }
    // True on a button that is no check button clicks it; the value is false again afterwards.
    void SetValue(bool value);
    void SetEnabled(bool enabled) override;

    bool HandPointer() const { return handPointer_; }
    void SetHandPointer(bool on);
    // A standard pointer's number; 99 is MouseIcon.
    int MousePointer() const { return mousePointer_; }
    void SetMousePointer(int pointer);
    const draw::Picture& MouseIcon() const { return mouseIcon_; }
    void SetMouseIcon(const draw::Picture& icon);

    QFont Font() const { return font(); }
    void SetFont(const QFont& font);
    bool FontBold() const { return font().bold(); }
    void SetFontBold(bool on);
    bool FontItalic() const { return font().italic(); }
    void SetFontItalic(bool on);
    QString FontName() const { return font().family(); }
    void SetFontName(const QString& family);
    // In points.
    double FontSize() const { return font().pointSizeF(); }
    void SetFontSize(double points);
    bool FontStrikethru() const { return font().strikeOut(); }
    void SetFontStrikethru(bool on);
    bool FontUnderline() const { return font().underline(); }
    void SetFontUnderline(bool on);

    // Every state shows PictureNormal; the other two are kept, saved and count for sizes alone.
    const draw::Picture& PictureNormal() const { return pictureNormal_; }
    void SetPictureNormal(const draw::Picture& picture);
    const draw::Picture& PictureHot() const { return pictureHot_; }
    void SetPictureHot(const draw::Picture& picture);
    const draw::Picture& PictureDown() const { return pictureDown_; }
    void SetPictureDown(const draw::Picture& picture);
    // 0 to 100; values outside are clamped.
    int PictureOpacity() const;
    void SetPictureOpacity(int percent);
    // 0 natural, 1 to 4 squares of 16, 24, 32 and 48 pixels, 5 as PictureSizeW and PictureSizeH say (pixels; setting
    // one of them makes it 5).
    int PictureSize() const { return pictureSize_; }
    void SetPictureSize(int size);
    int PictureSizeH() const { return pictureSizeH_; }
    void SetPictureSizeH(int pixels);
    int PictureSizeW() const { return pictureSizeW_; }
    void SetPictureSizeW(int pixels);
    // 0 to 8, see controls::PictureAlign.
    int PictureAlignment() const { return pictureAlignment_; }
    void SetPictureAlignment(int alignment);

    // The host's word on whether the button stands for the Return key; it shows the focus frame then.
    bool DisplayAsDefault() const { return displayAsDefault_; }
    void SetDisplayAsDefault(bool on);

    WId hwnd() const { return effectiveWinId(); }

    // Back to the built-in base colours.
    void ColorScheme(bool noRefresh);
    // Replaces one derived colour until the next change of a base colour: 0 down, 1 reserved (shows nowhere), 2
    // disabled fill, 3 disabled text, 4 hot, 5 start. 0, or InvalidArgument for any other index.
    int OverrideColor(int index, base::Colour colour, bool noRefresh);
    // The button opens `menu` instead of raising Click. `alignment` is 0 to 7; others open nothing. `defaultEntry` is
    // the name of the entry to show as default, empty for none. A null menu changes nothing.
    void SetPopupMenu(forms::Menu* menu, int alignment, int flags = 0, const QString& defaultEntry = QString());
    void UnsetPopupMenu();
    void Refresh() override;
    // Asks the shell to open an empty target, which shows nothing.
    void About();

    // The access key was pressed, or Return (13) or Escape (27) for a default or cancel button.
    void AccessKeyPress(int key) override;

    // What the next paint shows, for tests: 0 normal, 1 hot, 2 down, 3 disabled.
    int CurrentState() const { return currentState_; }
    // Where caption and picture stand.
    ButtonLayout Layout() const;

  Q_SIGNALS:
    void MouseEnter();
    void MouseLeave();

  protected:
    void Draw(draw::Surface& surface) override;

    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    void ComputeColours();
    void ApplyAccessKey();
    void ApplyCursor();
    void ApplyPictureSize();
    // Stores a picture of another state, or the first picture of all as the normal one. False in that second case.
    bool StoreStatePicture(draw::Picture& slot, const draw::Picture& picture);
    void ApplyRegion();
    void LayoutChanged();
    ButtonPaint PaintState() const;
    base::Colour AmbientForeColor() const;

    void Changed(const char* name) { Q_EMIT PropertyChanged(QLatin1String(name)); }
    void SetBaseColour(base::Colour& member, base::Colour colour, const char* name);
    // -1 stands for the current state. Without `force` only a change of state or focus counts.
    void Repaint(int state, bool force);
    int RestingState() const { return mouseOver_ ? HotState : NormalState; }

    void OnMouseDown(int button, int shift, const QPointF& at);
    void OnMouseMove(int buttons, int shift, const QPointF& at);
    void OnMouseUp(int button, int shift, const QPointF& at);
    void OnClick();
    void OnDblClick();
    void OnLeave();
    void OnSpaceDown(int shift);
    void OnArrowDown(int keyCode, int shift);
    void OnOtherKeyDown(int keyCode, int shift);
    void OnSpaceUp(int shift);
    void OpenPopup();
    bool PopupJustClosed() const;
    bool IsUnder(const QPoint& place) const;
    void TakeCapture();
    void DropCapture();

    // InitProperties gives these their first values.
    base::Colour backColor_;
    base::Colour backStartColor_;
    base::Colour foreColor_;
    base::Colour maskColor_;
    ButtonColours colours_;
    QString caption_;
    draw::Picture mouseIcon_;
    draw::Picture pictureNormal_;
    draw::Picture pictureHot_;
    draw::Picture pictureDown_;
    float pictureOpacity_ = 1;
    int pictureSize_ = 0;
    int pictureSizeH_ = 0;
    int pictureSizeW_ = 0;
    int pictureAlignment_ = 3;
    int buttonShape_ = SquareBoth;
    int specialEffect_ = DarkBelow;
    int mousePointer_ = 0;
    bool useMaskColor_ = true;
    bool checkBoxMode_ = false;
    bool value_ = false;
    bool handPointer_ = false;

    int currentState_ = NormalState;
    int lastButton_ = 0;            // the mouse button that went down last, or the mark of a double click
    bool lastFocusPainted_ = false; // hasFocus_ at the last repaint
    bool hasFocus_ = false;
    bool windowActive_ = false;
    bool displayAsDefault_ = false;
    bool pressed_ = false;       // held down, by the mouse or the space key
    bool mouseDownHeld_ = false; // by the mouse
    bool spaceHeld_ = false;     // by the space key
    bool mouseOver_ = false;
    bool tracking_ = false; // the pointer has entered; its leaving is still to be told
    bool hidden_ = false;
    bool clickDue_ = false; // a press arrived whose release inside makes a click

    QPointer<forms::Menu> popupMenu_;
    QString popupDefault_;
    int popupAlignment_ = 0;
    int popupFlags_ = 0;
    bool popupSet_ = false;        // a popup takes the place of Click, even if its menu is gone
    bool popupOpen_ = false;       // from its opening to the release of the press that opened it
    bool popupJustClosed_ = false; // the next press may be the one that closed it
    bool popupShowing_ = false;    // its loop is on the stack
    QElapsedTimer sincePopup_;
    QShortcut* shortcut_ = nullptr;
};

} // namespace controls
