// A picture with transparency, shown over whatever lies below it, at an opacity in per cent. One that does something
// when it is clicked is made clickable: then it takes the keyboard, shows a hand and reads as a button.
#pragma once

#include "draw/picture.h"
#include "forms/control.h"

namespace suite {

class AlphaImgCtl : public forms::Control {
    Q_OBJECT
    Q_PROPERTY(draw::Picture Picture READ Picture WRITE SetPicture)
    Q_PROPERTY(int Opacity READ Opacity WRITE SetOpacity)
    Q_PROPERTY(int Index READ Index WRITE SetIndex)

  public:
    AlphaImgCtl(QWidget* container, const QString& name);

    const draw::Picture& Picture() const { return picture_; }
    void SetPicture(const draw::Picture& picture);
    // 0 to 100.
    int Opacity() const { return opacity_; }
    void SetOpacity(int percent);
    // The place in an array of pictures.
    int Index() const { return index_; }
    void SetIndex(int index) { index_ = index; }
    bool Clickable() const { return clickable_; }
    void SetClickable(bool clickable);
    // What a click does: raises MouseUp of the left button and Click.
    void Press();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool event(QEvent* event) override;

  private:
    draw::Picture picture_;
    int opacity_ = 100;
    int index_ = 0;
    bool clickable_ = false;
};

} // namespace suite
