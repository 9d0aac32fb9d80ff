// Windows with lists as the program has them, and recorders for everything that leaves the process. Popups open inside
// a loop of their own, so what is to happen there is arranged before the click that opens them.
#pragma once

#include "forms/desktop.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "forms/menu.h"
#include "inventory/device_lists.h"
#include "inventory/frm_menu.h"
#include "inventory/list_behaviour.h"
#include "suite/list_tree.h"
#include "suite/list_view.h"
#include "values/addresses.h"

#include <QApplication>
#include <QMenu>
#include <QTest>
#include <gtest/gtest.h>

class ListWindow : public forms::Form {
  public:
    ListWindow(const QString& name, const QString& listName, const QString& menu, bool active)
        : Form(name, 12000, 6000) {
        list = AddList(listName, menu, active);
    }

    suite::ListView* AddList(const QString& listName, const QString& menu, bool active) {
        auto* made = new suite::ListView(Client(), listName);
        made->Move(0, 0, 12000, 6000);
        inventory::ConnectList(*made, menu, active ? this : nullptr);
        return made;
    }

    suite::ListView* list = nullptr;
};

class ViewFixture : public testing::Test {
  protected:
    ViewFixture() {
        all_.SetAllGone([] {});
        inventory::RegisterMenuForm();
        forms::SetMsgBoxRecorder([this](const QString& text, forms::MessageIcon) { messages_ << text; });
        forms::SetBrowserRecorder([this](const QString& address) { addresses_ << address; });
        forms::SetClipboardRecorder([this](const QString& text) { clipboard_ << text; });
        values::ServerAddresses().SearchSite = QStringLiteral("http://search.example");
    }
    ~ViewFixture() override {
        all_.Clear();
        forms::SetMsgBoxRecorder(nullptr);
        forms::SetBrowserRecorder(nullptr);
        forms::SetClipboardRecorder(nullptr);
        values::ServerAddresses() = before_;
    }

    // Does `act` on the popup that opens next and closes it if it is open still.
    void OnPopup(std::function<void(QMenu*)> act) {
        auto* timer = new QTimer(QApplication::instance());
        QObject::connect(timer, &QTimer::timeout, timer, [this, timer, act] {
            auto* popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (popup == nullptr)
                return;
            timer->stop();
            timer->deleteLater();
            ++popups_;
            act(popup);
            if (popup->isVisible())
                popup->close();
        });
        timer->start(5);
    }

    void PickNext(const QString& entry) {
        OnPopup([entry](QMenu* popup) {
            QAction* action = popup->findChild<QAction*>(entry);
            ASSERT_NE(action, nullptr) << entry.toStdString();
            QTest::mouseClick(popup, Qt::LeftButton, {}, popup->actionGeometry(action).center());
        });
    }

    // On the middle of a row, counted from 1; below the rows where there is none.
    static void Click(suite::ListView* list, int row, Qt::MouseButton button = Qt::LeftButton,
                      Qt::KeyboardModifiers keys = {}) {
        suite::ListTree* tree = list->Tree();
        const QModelIndex index = tree->model()->index(row - 1, 0);
        const QPoint place = index.isValid() ? tree->visualRect(index).center() : QPoint(20, 100);
        QTest::mouseClick(tree->viewport(), button, keys, place);
    }

    void Choose(suite::ListView* list, int row, const QString& entry) {
        // A menu takes a click for an unwanted one where the mouse has not moved since it opened.
        QTest::mouseMove(list->window()->windowHandle(), QPoint(1, 1));
        PickNext(entry);
        Click(list, row, Qt::RightButton);
    }

    static void AddRow(suite::ListView* list, const QStringList& texts) {
        suite::ListItem* row = list->ListItems().Add(texts[0]);
        for (int i = 1; i < texts.size(); ++i)
            row->SetSubItems(i, texts[i]);
    }

    static QStringList Names(const suite::ListView* list) {
        QStringList names;
        for (int i = 1; i <= list->ListItems().Count(); ++i)
            names << list->ListItems().Item(i)->Text();
        return names;
    }

    forms::Forms& all_ = forms::Forms::Instance();
    const values::Addresses before_ = values::ServerAddresses();
    QStringList messages_;
    QStringList addresses_;
    QStringList clipboard_;
    int popups_ = 0;
};
