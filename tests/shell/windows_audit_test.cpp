// Every window as its users meet it: by keyboard, by screen reader, at the dots per inch that the environment gives.
// Each check walks whole windows and names what it finds, so that a control added later is held to the same.
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "forms/control.h"
#include "inventory/open_lookup.h"
#include "suite/alpha_image.h"
#include "suite/list_tree.h"
#include "suite/tab_control.h"
#include "windows_fixture.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QTabBar>
#include <QToolTip>

namespace {

// What stands over other controls by design.
const QStringList floating = {"PanelProgress", "PanelDownloading"};

QString Describe(const QWidget* widget) {
    QString path = QLatin1String(widget->metaObject()->className());
    for (; widget != nullptr && !widget->isWindow(); widget = widget->parentWidget())
        if (!widget->objectName().isEmpty())
            path.prepend(widget->objectName() + u' ');
    return path;
}

class WindowsAudit : public WindowsFixture {
  protected:
    WindowsAudit()
        : WindowsFixture(UsbDevice(1, "Beta Hub", "Maker") + UsbDevice(2, "Alpha Hub", "Beta Maker") +
                         UsbDevice(3, "Alpha Mouse", "Maker")),
          main_(StartAndScan()) {}

    forms::Form* Open(const QString& name) {
        forms::Form* form = nullptr;
        if (name == "FrmLookup") {
            inventory::OpenLookup(*main_->ListViewHardware->ListItems().Item(1));
            form = all_.Find(name);
            auto* status = form->Find<forms::Label>("LabelStatus");
            EXPECT_TRUE(QTest::qWaitFor([status] { return status->Caption().startsWith("Results: "); }));
        } else {
            form = all_.Shared(name);
            form->Show();
        }
        Activate(form);
        return form;
    }

    static void Activate(forms::Form* form) {
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form)) << form->Name().toStdString();
    }

    QList<forms::Form*> OpenAll() {
        QList<forms::Form*> forms;
        for (const char* name : {"FrmMain", "FrmLookup", "FrmImprove", "FrmUpdate", "FrmColors"})
            forms << Open(name);
        return forms;
    }

    // The names of the program's controls in the order in which Tab visits them, from the first to the first again.
    static QStringList TabOrder(forms::Form* form) {
        QStringList names;
        QSet<QWidget*> visited;
        form->Client()->setFocus();
        for (int i = 0; i < 200; ++i) {
            QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
            QWidget* now = form->focusWidget();
            if (visited.contains(now))
                break;
            visited.insert(now);
            names << OwnerName(now);
        }
        return names;
    }

    static QString OwnerName(const QWidget* widget) {
        const QString part = widget->inherits("QHeaderView") ? QStringLiteral(" header") : QString();
        for (; widget != nullptr; widget = widget->parentWidget())
            if (qobject_cast<const forms::Control*>(widget) != nullptr)
                return widget->objectName() + part;
        return {};
    }

    shell::FrmMain* main_;
};

// All interfaces below one that can be seen.
QList<QAccessibleInterface*> Shown(QAccessibleInterface* top) {
    QList<QAccessibleInterface*> found;
    for (int i = 0; i < top->childCount(); ++i) {
        QAccessibleInterface* child = top->child(i);
        if (child == nullptr || child->state().invisible)
            continue;
        found << child << Shown(child);
    }
    return found;
}

bool Operable(QAccessibleInterface* element) {
    QAccessibleActionInterface* actions = element->actionInterface();
    return element->state().focusable ||
           (actions != nullptr && (actions->actionNames().contains(QAccessibleActionInterface::pressAction()) ||
                                   actions->actionNames().contains(QAccessibleActionInterface::toggleAction())));
}

TEST_F(WindowsAudit, EverythingThatCanBeOperatedHasANameAndARole) {
    QStringList faults;
    for (forms::Form* form : OpenAll()) {
        QAccessibleInterface* window = QAccessible::queryAccessibleInterface(form);
        if (window->text(QAccessible::Name).isEmpty())
            faults << form->Name() + ": no title";
        if (window->role() != QAccessible::Window)
            faults << form->Name() + " is no window";
        for (QAccessibleInterface* element : Shown(window)) {
            const auto* widget = qobject_cast<QWidget*>(element->object());
            const QString where = form->Name() + ": " + (widget ? Describe(widget) : QString("part of a control"));
            const bool generic = element->role() == QAccessible::Client || element->role() == QAccessible::NoRole;
            if (Operable(element) && widget != form->Client()) {
                if (element->text(QAccessible::Name).isEmpty())
                    faults << where + " has no name";
                if (generic)
                    faults << where + " has no role";
            }
            if (const auto* control = qobject_cast<const forms::Control*>(widget)) {
                const auto* label = qobject_cast<const forms::Label*>(widget);
                if (label && element->role() != (label->Grip() ? QAccessible::Grip : QAccessible::StaticText))
                    faults << where + " is no text";
                if (generic && control->focusProxy() == nullptr)
                    faults << where + " has no role";
            }
        }
    }
    for (size_t i = 0; i < main_->ImageLogo.size(); ++i)
        if (main_->ImageLogo[i]->grab().toImage() ==
            main_->ImageLogo[(i + 1) % main_->ImageLogo.size()]->grab().toImage())
            faults << QString("two logos look alike: %1 and the next").arg(i);
    EXPECT_EQ(faults.join('\n').toStdString(), "");
}

TEST_F(WindowsAudit, TabVisitsEverythingInReadingOrder) {
    EXPECT_EQ(TabOrder(Open("FrmMain")).join(' ').toStdString(),
              "CommandGetHardware CommandImproveHardware CommandCheckForUpdates CommandColors ImageLogo ImageLogo "
              "ImageLogo TabControl1 ListViewHardware ListViewHardware header dcButton1");
    EXPECT_EQ(TabOrder(Open("FrmLookup")).join(' ').toStdString(),
              "TextID CommandSearchGoogleID LabelListViewHardware LabelListViewHardware header");
    EXPECT_EQ(TabOrder(Open("FrmImprove")).join(' ').toStdString(),
              "LabelText1 CommandGetHardware ListViewHardware ListViewHardware header");
    forms::Form* update = Open("FrmUpdate");
    EXPECT_EQ(TabOrder(update).join(' ').toStdString(), "CheckForUpdates");
    update->Find<forms::Control>("PanelDownloading")->SetVisible(true);
    EXPECT_EQ(TabOrder(update).join(' ').toStdString(), "CommandCancel CheckForUpdates");
    const QStringList colours = TabOrder(Open("FrmColors"));
    EXPECT_EQ(colours.count("ColorPicker"), 28);
    EXPECT_EQ(colours.filter(QRegularExpression("^(?!ColorPicker)")).join(' ').toStdString(),
              "CheckPBarSmooth HScrollPBExample CheckMBarSmooth HScrollMBExample Combo2 Command2 CheckDisableShadow");
}

// A control counts as outside or covered if any part of it is.
void CollectPlaces(QWidget* container, const QString& form, QStringList* faults) {
    QList<QWidget*> siblings;
    for (auto* child : container->findChildren<forms::Control*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!child->isVisible() || floating.contains(child->objectName()))
            continue;
        if (!container->rect().contains(child->geometry()))
            *faults << form + ": " + Describe(child) + " reaches over its container";
        for (const QWidget* other : siblings)
            if (other->geometry().intersects(child->geometry()))
                *faults << form + ": " + Describe(child) + " covers " + Describe(other);
        siblings << child;
        CollectPlaces(child, form, faults);
    }
}

// The text that a control shows cut off, by its own judgement: it offers that text as a tool tip.
bool Cuts(QWidget* widget, const QPoint& place, const QString& text) {
    if (text.isEmpty() || !widget->toolTip().isEmpty())
        return false;
    QHelpEvent help(QEvent::ToolTip, place, widget->mapToGlobal(place));
    QCoreApplication::sendEvent(widget, &help);
    return QToolTip::isVisible() && QToolTip::text().startsWith(text);
}

TEST_F(WindowsAudit, NothingIsCoveredOrCutAtThisDensity) {
    QStringList faults;
    for (forms::Form* form : OpenAll()) {
        const auto panels = form->findChildren<controls::PanelFx*>();
        for (const bool downloading : {false, true}) {
            for (controls::PanelFx* panel : panels)
                if (form->Name() == "FrmUpdate")
                    panel->SetVisible(downloading == (panel->Name() == "PanelDownloading"));
            CollectPlaces(form->Client(), form->Name(), &faults);
            for (auto* control : form->findChildren<forms::Control*>()) {
                if (!control->isVisible())
                    continue;
                QWidget* shown = control->focusProxy() != nullptr ? control->focusProxy() : control;
                const QString text = shown->accessibleName().isEmpty()
                                         ? QAccessible::queryAccessibleInterface(shown)->text(QAccessible::Name)
                                         : shown->accessibleName();
                if (Cuts(shown, QPoint(8, 8), text))
                    faults << form->Name() + ": " + Describe(control) + " cuts: " + text;
            }
        }
    }
    for (int i = 0; i < main_->TabControl1->ItemCount(); ++i) {
        QTabBar* strip = main_->TabControl1->Strip();
        if (Cuts(strip, strip->tabRect(i).center(), strip->tabText(i)))
            faults << "FrmMain: tab cuts: " + strip->tabText(i);
        if (!strip->rect().contains(strip->tabRect(i)))
            faults << "FrmMain: tab outside: " + strip->tabText(i);
    }
    EXPECT_EQ(faults.join('\n').toStdString(), "");
}

TEST_F(WindowsAudit, AButtonThatWorksKeepsTheKeyboardForLater) {
    Open("FrmMain");
    main_->CommandGetHardware->SetFocus();
    // Nothing must take the keyboard while the lists are read: the next key would do what nobody asked for.
    QString other;
    const auto watch = QObject::connect(qApp, &QApplication::focusChanged, main_, [&](QWidget*, QWidget* now) {
        if (now != nullptr && now != main_->Client() && now != main_->CommandGetHardware)
            other = now->objectName();
    });
    QTest::keyClick(main_->CommandGetHardware, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([this] { return main_->LabelStatus->Caption() == "Status: Done"; }, 20000));
    QObject::disconnect(watch);
    EXPECT_EQ(other.toStdString(), "");
    EXPECT_EQ(main_->focusWidget(), main_->CommandGetHardware);
}

TEST_F(WindowsAudit, TheFirstArrowKeyChoosesTheRowWithTheRing) {
    Open("FrmMain");
    suite::ListView* list = main_->ListViewHardware;
    list->Tree()->selectionModel()->clear();
    main_->TabControl1->setFocus();
    QTest::keyClick(main_->focusWidget(), Qt::Key_Tab);
    ASSERT_EQ(main_->focusWidget(), list->Tree());
    QTest::keyClick(list->Tree(), Qt::Key_Down);
    ASSERT_NE(list->SelectedItem(), nullptr);
    EXPECT_EQ(list->SelectedItem()->Index(), 1);
    QTest::keyClick(list->Tree(), Qt::Key_Down);
    EXPECT_EQ(list->SelectedItem()->Index(), 2);
}

TEST_F(WindowsAudit, TypingFindsARowByItsName) {
    suite::ListView* list = main_->ListViewHardware;
    Open("FrmMain");
    list->SetFocus();
    // A click into another column does not change what is searched.
    const QRect row = list->Tree()->visualRect(list->Tree()->model()->index(0, 0));
    const int other = list->Tree()->columnViewportPosition(1) + 5;
    QTest::mouseClick(list->Tree()->viewport(), Qt::LeftButton, {}, QPoint(other, row.center().y()));
    QTest::keyClicks(list->Tree(), "be");
    ASSERT_NE(list->SelectedItem(), nullptr);
    EXPECT_EQ(list->SelectedItem()->Text().toStdString(), "Beta Hub");
    QTest::qWait(QApplication::keyboardInputInterval() + 50);
    QTest::keyClicks(list->Tree(), "alpha m");
    EXPECT_EQ(list->SelectedItem()->Text().toStdString(), "Alpha Mouse");
}

} // namespace
