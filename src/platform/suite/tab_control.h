// A strip of tabs over pages. Colours and metrics of the strip are the paint manager's; the strip is drawn by us in
// these colours and worked by mouse and keyboard. A page is shown while its tab is selected.
#pragma once

#include "base/colour.h"
#include "forms/control.h"

#include <QFont>
#include <vector>

class QTabBar;

namespace suite {

class TabControl;
class TabStrip;

// The colours of a tab control: faces of tabs that are at rest, under the pointer and selected, their texts, the strip
// behind them, the pane below and its frame. ControlFace is kept and not drawn: no part of this look has that colour.
class TabColorSet : public QObject {
    Q_OBJECT
    Q_PROPERTY(base::Colour ButtonNormal MEMBER ButtonNormal NOTIFY Changed)
    Q_PROPERTY(base::Colour ButtonHighlighted MEMBER ButtonHighlighted NOTIFY Changed)
    Q_PROPERTY(base::Colour ButtonSelected MEMBER ButtonSelected NOTIFY Changed)
    Q_PROPERTY(base::Colour NormalText MEMBER NormalText NOTIFY Changed)
    Q_PROPERTY(base::Colour HighlightText MEMBER HighlightText NOTIFY Changed)
    Q_PROPERTY(base::Colour SelectedText MEMBER SelectedText NOTIFY Changed)
    Q_PROPERTY(base::Colour HeaderFaceDark MEMBER HeaderFaceDark NOTIFY Changed)
    Q_PROPERTY(base::Colour HeaderFaceLight MEMBER HeaderFaceLight NOTIFY Changed)
    Q_PROPERTY(base::Colour PaneFace MEMBER PaneFace NOTIFY Changed)
    Q_PROPERTY(base::Colour ControlFace MEMBER ControlFace NOTIFY Changed)
    Q_PROPERTY(base::Colour FrameBorder MEMBER FrameBorder NOTIFY Changed)
    Q_PROPERTY(base::Colour BorderHighlight MEMBER BorderHighlight NOTIFY Changed)

  public:
    using QObject::QObject;

    base::Colour ButtonNormal{0x8000000FU};
    base::Colour ButtonHighlighted{0x80000016U};
    base::Colour ButtonSelected{0x80000005U};
    base::Colour NormalText{0x80000012U};
    base::Colour HighlightText{0x80000012U};
    base::Colour SelectedText{0x80000012U};
    base::Colour HeaderFaceDark{0x8000000FU};
    base::Colour HeaderFaceLight{0x8000000FU};
    base::Colour PaneFace{0x80000005U};
    base::Colour ControlFace{0x8000000FU};
    base::Colour FrameBorder{0x80000010U};
    base::Colour BorderHighlight{0x80000014U};

  Q_SIGNALS:
    void Changed();
};

class TabPaintManager : public QObject {
    Q_OBJECT
    Q_PROPERTY(QObject* ColorSet READ ColorSet CONSTANT)
    Q_PROPERTY(bool Enlarged READ Enlarged WRITE SetEnlarged)
    Q_PROPERTY(QFont Font READ Font WRITE SetFont)

  public:
    explicit TabPaintManager(TabControl* owner);

    TabColorSet* ColorSet() const { return colours_; }
    // Higher tabs.
    bool Enlarged() const { return enlarged_; }
    void SetEnlarged(bool enlarged);
    const QFont& Font() const { return font_; }
    void SetFont(const QFont& font);
    // How much room is kept beside a tab's text, both sides together, and the least height of its inside, in pixels.
    int ItemWidth() const { return itemWidth_; }
    int ItemHeight() const { return itemHeight_; }
    void SetItemMetrics(int width, int height);

  Q_SIGNALS:
    void MetricsChanged();

  private:
    TabColorSet* colours_;
    QFont font_;
    int itemWidth_ = 16;
    int itemHeight_ = 16;
    bool enlarged_ = false;
};

// One tab: what it shows, and a text of its own beside that (the plain title that captions are built from).
class TabItem : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(QString Tag READ Tag WRITE SetTag)
    Q_PROPERTY(bool Selected READ Selected WRITE SetSelected)
    Q_PROPERTY(int Index READ Index)

  public:
    QString Caption() const { return caption_; }
    void SetCaption(const QString& caption);
    QString Tag() const { return tag_; }
    void SetTag(const QString& tag) { tag_ = tag; }
    bool Selected() const;
    // true selects the tab; false does nothing, as one tab always is selected.
    void SetSelected(bool selected);
    // Counted from 0.
    int Index() const { return index_; }

  private:
    friend class TabControl;
    TabItem(TabControl* owner, int index, const QString& caption);
    TabControl& owner_;
    QString caption_;
    QString tag_;
    int index_;
};

// The ground that the controls of one tab stand on.
class TabControlPage : public forms::Control {
    Q_OBJECT
    Q_PROPERTY(base::Colour BackColor READ BackColor WRITE SetBackColor)

  public:
    TabControlPage(TabControl* tabs, const QString& name);
    base::Colour BackColor() const { return backColor_; }
    void SetBackColor(base::Colour colour);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    base::Colour backColor_{0x80000005U};
};

class TabControl : public forms::Control {
    Q_OBJECT
    Q_PROPERTY(QObject* PaintManager READ PaintManager CONSTANT)
    Q_PROPERTY(base::Colour BackColor READ BackColor WRITE SetBackColor)
    Q_PROPERTY(int SelectedIndex READ SelectedIndex WRITE SetSelectedIndex)
    Q_PROPERTY(int ItemCount READ ItemCount)

  public:
    TabControl(QWidget* container, const QString& name);

    // Appends a tab over `page`, which is a child of this control and may be null. The caption is its plain title too.
    TabItem* AddItem(const QString& caption, TabControlPage* page);
    int ItemCount() const { return int(items_.size()); }
    // Counted from 0; null where there is none.
    TabItem* Item(int index) const;
    TabControlPage* Page(int index) const;

    int SelectedIndex() const;
    void SetSelectedIndex(int index);

    TabPaintManager* PaintManager() const { return paintManager_; }
    base::Colour BackColor() const { return backColor_; }
    void SetBackColor(base::Colour colour);
    QTabBar* Strip() const;
    // Place and size of the pages, pixels.
    QRect PaneRect() const;
    void Refresh() override;

  Q_SIGNALS:
    void SelectedChanged(int index);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    friend class TabItem;
    void CaptionChanged(const TabItem& item);
    void ShowSelectedPage();
    void LayOut();

    TabPaintManager* paintManager_;
    TabStrip* strip_;
    std::vector<TabItem*> items_;
    std::vector<TabControlPage*> pages_;
    base::Colour backColor_{0x8000000FU};
};

} // namespace suite
