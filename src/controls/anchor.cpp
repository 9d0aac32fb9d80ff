#include "controls/anchor.h"

#include "base/numbers.h"
#include "forms/late_bound.h"
#include "forms/screen.h"

#include <QCoreApplication>
#include <QSettings>
#include <algorithm>

namespace controls {

namespace {

const QString marker = QStringLiteral("*/");
constexpr qsizetype letterCount = 4;
constexpr qsizetype prefixLength = 6; // the letters and the marker
// A handler that resizes the window in every pass is cut off here; the next resize picks up what is left.
constexpr int mostPasses = 100;
// A window manager that insists on a size gets it after so many tries within the time.
constexpr int mostPushBacks = 5;
constexpr int pushBackMilliseconds = 1000;

enum Edge { LeftEdge, TopEdge, RightEdge, BottomEdge };

bool Follows(const QString& letters, Edge edge) { return letters.at(edge) == QLatin1Char('T'); }

FormLimits& Limits() {
    static FormLimits limits;
    return limits;
}

// Adds `delta` twips to a property of a control; a control without it is passed over.
void Shift(QObject* control, const char* property, int delta, bool onlyPositive) {
    const QVariant old = forms::GetProperty(control, property);
    if (!old.isValid())
        return;
    const double shifted = old.toDouble() + delta;
    if (!onlyPositive || shifted > 0)
        forms::SetProperty(control, property, shifted);
}

void ShiftAlong(QObject* control, bool stretches, const char* place, const char* extent, int delta) {
    if (stretches)
        Shift(control, extent, delta, true);
    else
        Shift(control, place, delta, false);
}

double Limited(double value, int least, int greatest) {
    const double raised = value < least ? least : value;
    return greatest >= 1 && raised > greatest ? greatest : raised;
}

} // namespace

const FormLimits& LastFormLimits() { return Limits(); }

Anchor::Anchor(forms::Form* form, const QString& name) : Component(form, name) {
    if (form == nullptr)
        return;
    oldHeight_ = base::RoundToInt(form->Height());
    oldWidth_ = base::RoundToInt(form->Width());
    connect(form, &forms::Form::Loading, this, &Anchor::DoInit);
    connect(form, &forms::Form::Resized, this, &Anchor::DoResize);
    connect(form, &forms::Form::Activated, this, &Anchor::SetFormMinMax);
}

Anchor::~Anchor() {
    if (Limits().form == ParentForm())
        Limits().form = nullptr;
}

void Anchor::SetMinWidth(int twips) {
    minWidth_ = twips;
    TellLimits();
}

void Anchor::SetMinHeight(int twips) {
    minHeight_ = twips;
    TellLimits();
}

void Anchor::SetMaxWidth(int twips) {
    maxWidth_ = twips;
    TellLimits();
}

void Anchor::SetMaxHeight(int twips) {
    maxHeight_ = twips;
    TellLimits();
}

// So that the window manager's own sizing leaves the window nothing to push back. A greatest size below the least one
// wins, which window managers do not know.
void Anchor::TellLimits() const {
    forms::Form* form = ParentForm();
    if (form == nullptr)
        return;
    const auto pixels = [](int twips) { return twips < 1 ? 0 : forms::ToPixels(twips); };
    const QSize greatest(pixels(maxWidth_), pixels(maxHeight_));
    const auto least = [&pixels](int twips, int most) {
        return most > 0 ? std::min(pixels(twips), most) : pixels(twips);
    };
    form->SetSizeLimits({least(minWidth_, greatest.width()), least(minHeight_, greatest.height())}, greatest);
}

void Anchor::ReadProperties(const base::PropertyBag& bag) {
    initWidth_ = bag.Read(QStringLiteral("InitWidth"), 0);
    initHeight_ = bag.Read(QStringLiteral("InitHeight"), 0);
    minHeight_ = bag.Read(QStringLiteral("MinHeight"), 0);
    minWidth_ = bag.Read(QStringLiteral("MinWidth"), 0);
    maxHeight_ = bag.Read(QStringLiteral("MaxHeight"), 0);
    maxWidth_ = bag.Read(QStringLiteral("MaxWidth"), 0);
}

void Anchor::WriteProperties(base::PropertyBag& bag) const {
    bag.WriteProperty(QStringLiteral("InitWidth"), initWidth_, 0);
    bag.WriteProperty(QStringLiteral("InitHeight"), initHeight_, 0);
    bag.WriteProperty(QStringLiteral("MinHeight"), minHeight_, 0);
    bag.WriteProperty(QStringLiteral("MinWidth"), minWidth_, 0);
    bag.WriteProperty(QStringLiteral("MaxHeight"), maxHeight_, 0);
    bag.WriteProperty(QStringLiteral("MaxWidth"), maxWidth_, 0);
}

void Anchor::DoInit() {
    forms::Form* form = ParentForm();
    if (form == nullptr)
        return;
    if (initWidth_ > 0)
        form->SetWidth(initWidth_);
    if (initHeight_ > 0)
        form->SetHeight(initHeight_);
    if (minHeight_ < 1)
        minHeight_ = base::RoundToInt(form->Height());
    if (minWidth_ < 1)
        minWidth_ = base::RoundToInt(form->Width());
    TellLimits();
    TakeLetters();
    oldHeight_ = base::RoundToInt(form->Height());
    oldWidth_ = base::RoundToInt(form->Width());
    RestoreFromSettings();
}

// Afterwards the program's own code never sees the letters: a tag holds only what stood behind the marker.
void Anchor::TakeLetters() {
    entries_.clear();
    for (QObject* control : ParentForm()->Controls()) {
        Entry entry{control, QString()};
        const QString tag = forms::GetProperty(control, "Tag").toString();
        if (tag.contains(marker)) {
            entry.letters = tag.left(letterCount);
            forms::SetProperty(control, "Tag", tag.mid(prefixLength));
        }
        entries_.append(entry);
    }
}

void Anchor::RestoreFromSettings() {
    if (!restorePosition_ && !restoreSize_)
        return;
    forms::Form* form = ParentForm();
    const QSettings settings(QSettings::IniFormat, QSettings::UserScope, QCoreApplication::applicationName(),
                             QStringLiteral("windows"));
    const auto stored = [&](const char* key, double current) {
        return settings.value(form->Name() + QLatin1Char('/') + QLatin1String(key), current).toDouble();
    };
    if (restorePosition_) {
        form->SetLeft(stored("Left", form->Left()));
        form->SetTop(stored("Top", form->Top()));
    }
    if (restoreSize_) {
        form->SetWidth(stored("Width", form->Width()));
        form->SetHeight(stored("Height", form->Height()));
    }
}

// Handlers of the events yield, and a yield may resize the window. A nested pass would apply the same difference twice.
void Anchor::DoResize() {
    if (resizing_) {
        again_ = true;
        return;
    }
    if (ParentForm() == nullptr)
        return;
    resizing_ = true;
    int passes = 0;
    do {
        again_ = false;
        if (!ResizeOnce())
            return;
    } while (again_ && ++passes < mostPasses);
    resizing_ = false;
}

// False if the anchor was destroyed by a handler.
bool Anchor::ResizeOnce() {
    forms::Form* form = ParentForm();
    if (form->IsUnloaded() || form->WindowState() == forms::MinimisedWindow)
        return true;
    Freeze(form);
    const QSize size = KeepWithinLimits();
    const int deltaHeight = size.height() - oldHeight_;
    const int deltaWidth = size.width() - oldWidth_;
    oldHeight_ = size.height();
    oldWidth_ = size.width();
    if (deltaHeight == 0 && deltaWidth == 0)
        return true;
    const QPointer<Anchor> alive(this);
    Q_EMIT BeforeResize();
    if (alive)
        LayOut(deltaHeight, deltaWidth);
    if (alive)
        Q_EMIT AfterResize(deltaHeight, deltaWidth);
    if (alive)
        UnFreeze(form, true);
    return !alive.isNull();
}

// Both limits are applied before the window is touched, so that inverted ones do not chase each other. Gives the size
// in twips that the layout goes by: that of the window, and the nearest allowed one where the window manager insists.
QSize Anchor::KeepWithinLimits() {
    forms::Form* form = ParentForm();
    const double height = form->Height();
    const double width = form->Width();
    // A size on screen is a whole number of pixels and may lie a fraction below a limit that is none.
    const double allowedHeight = forms::ToTwips(forms::ToPixels(Limited(height, minHeight_, maxHeight_)));
    const double allowedWidth = forms::ToTwips(forms::ToPixels(Limited(width, minWidth_, maxWidth_)));
    const bool within = qFuzzyCompare(allowedHeight, height) && qFuzzyCompare(allowedWidth, width);
    if (!within && !PushBackIsFutile(form->WindowRect().size())) {
        if (!qFuzzyCompare(allowedHeight, height))
            form->SetHeight(allowedHeight);
        if (!qFuzzyCompare(allowedWidth, width))
            form->SetWidth(allowedWidth);
        return {base::RoundToInt(form->Width()), base::RoundToInt(form->Height())};
    }
    return {base::RoundToInt(allowedWidth), base::RoundToInt(allowedHeight)};
}

// A window manager that lays windows out by itself answers each push with its own size again, for ever.
bool Anchor::PushBackIsFutile(QSize from) {
    if (ParentForm()->InDrag())
        return false;
    const bool repeated = from == pushedFrom_ && sincePush_.isValid() && sincePush_.elapsed() < pushBackMilliseconds;
    pushCount_ = repeated ? pushCount_ + 1 : 0;
    pushedFrom_ = from;
    sincePush_.start();
    return pushCount_ >= mostPushBacks;
}

void Anchor::LayOut(int deltaHeight, int deltaWidth) {
    // A copy: setting a property may run code that makes or ends controls.
    const QList<Entry> entries = entries_;
    for (const Entry& entry : entries) {
        // Entries that follow neither the right nor the bottom edge have nothing to do.
        if (entry.letters.size() < letterCount || entry.letters.endsWith(QLatin1String("FF")) || !entry.control)
            continue;
        if (Follows(entry.letters, BottomEdge) && deltaHeight != 0)
            ShiftAlong(entry.control, Follows(entry.letters, TopEdge), "Top", "Height", deltaHeight);
        if (entry.control && Follows(entry.letters, RightEdge) && deltaWidth != 0)
            ShiftAlong(entry.control, Follows(entry.letters, LeftEdge), "Left", "Width", deltaWidth);
    }
}

void Anchor::SetFormMinMax() {
    const double twipsPerPixel = forms::TwipsPerPixel();
    Limits() = {minWidth_ / twipsPerPixel, minHeight_ / twipsPerPixel, maxWidth_ / twipsPerPixel,
                maxHeight_ / twipsPerPixel, ParentForm()};
}

QString Anchor::ppAnchors(qsizetype place) const {
    return place >= 0 && place < entries_.size() ? entries_.at(place).letters : QString();
}

} // namespace controls
