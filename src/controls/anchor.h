// Keeps a window's layout at any size: every control that states in the first letters of its tag which edges it follows
// is moved or stretched by exactly the change of the window's size. Made by the window before its other members need
// it, owned by the window; it works from the window's load to its unload and keeps the window within its least and
// greatest size.
#pragma once

#include "base/property_bag.h"
#include "forms/component.h"
#include "forms/form.h"

#include <QElapsedTimer>
#include <QList>
#include <QPointer>
#include <QSize>

namespace controls {

// What the last activated window with an anchor allows, in pixels.
struct FormLimits {
    double minWidth = 0;
    double minHeight = 0;
    double maxWidth = 0;
    double maxHeight = 0;
    QPointer<forms::Form> form;
};

const FormLimits& LastFormLimits();

class Anchor : public forms::Component {
    Q_OBJECT
    Q_PROPERTY(int InitWidth READ InitWidth WRITE SetInitWidth)
    Q_PROPERTY(int InitHeight READ InitHeight WRITE SetInitHeight)
    Q_PROPERTY(int MinWidth READ MinWidth WRITE SetMinWidth)
    Q_PROPERTY(int MinHeight READ MinHeight WRITE SetMinHeight)
    Q_PROPERTY(int MaxWidth READ MaxWidth WRITE SetMaxWidth)
    Q_PROPERTY(int MaxHeight READ MaxHeight WRITE SetMaxHeight)

  public:
    Anchor(forms::Form* form, const QString& name);
    ~Anchor() override;

    // All sizes are twips. The size that the window takes at load; ignored if not positive.
    int InitWidth() const { return initWidth_; }
    int InitHeight() const { return initHeight_; }
    void SetInitWidth(int twips) { initWidth_ = twips; }
    void SetInitHeight(int twips) { initHeight_ = twips; }
    // Least size; below 1 at load it becomes the window's size at load.
    int MinWidth() const { return minWidth_; }
    int MinHeight() const { return minHeight_; }
    void SetMinWidth(int twips);
    void SetMinHeight(int twips);
    // Greatest size; below 1 means no limit. A greatest size below the least one wins.
    int MaxWidth() const { return maxWidth_; }
    int MaxHeight() const { return maxHeight_; }
    void SetMaxWidth(int twips);
    void SetMaxHeight(int twips);
    // Whether the load takes place and size from the user's application settings. Not persisted, off.
    void SetRestorePosition(bool on) { restorePosition_ = on; }
    void SetRestoreSize(bool on) { restoreSize_ = on; }

    void ReadProperties(const base::PropertyBag& bag);
    void WriteProperties(base::PropertyBag& bag) const;

    // Runs when the window loads: takes the anchor letters off the tags and remembers the size.
    void DoInit();
    // Runs when the window resizes. A call from inside a handler is put off until the running pass has ended.
    void DoResize();
    // Runs when the window is activated.
    void SetFormMinMax();

    // Brackets of a pass for the window's redrawing. They do nothing: windows hold their repaints back by themselves.
    void Freeze(forms::Form*) {}
    void UnFreeze(forms::Form*, bool /*redraw*/) {}

    // The four letters of a control, by its place in the window's list; empty for controls that follow no edge.
    QString ppAnchors(qsizetype place) const;

  Q_SIGNALS:
    // Raised around the layout, only when the size changed. The changes are in twips.
    void BeforeResize();
    void AfterResize(int deltaHeight, int deltaWidth);

  private:
    struct Entry {
        QPointer<QObject> control;
        QString letters;
    };

    void TellLimits() const;
    void TakeLetters();
    void RestoreFromSettings();
    bool ResizeOnce();
    QSize KeepWithinLimits();
    bool PushBackIsFutile(QSize from);
    void LayOut(int deltaHeight, int deltaWidth);

    int initWidth_ = 0;
    int initHeight_ = 0;
    int minWidth_ = 0;
    int minHeight_ = 0;
    int maxWidth_ = 0;
    int maxHeight_ = 0;
    int oldWidth_ = 0;
    int oldHeight_ = 0;
    bool restorePosition_ = false;
    bool restoreSize_ = false;
    bool resizing_ = false;
    bool again_ = false;
    QList<Entry> entries_;
    QSize pushedFrom_;
    int pushCount_ = 0;
    QElapsedTimer sincePush_;
};

} // namespace controls
