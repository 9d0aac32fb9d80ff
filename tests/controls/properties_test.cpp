// What all drawn controls owe to their host: properties by name, and word of each change.
#include "controls/animation_bar.h"
#include "controls/brindlex_pb.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "controls/titel_bar.h"
#include "forms/form.h"
#include "forms/late_bound.h"

#include <QMetaProperty>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace controls {
namespace {

// Set by name, each property tells its host, of all controls that are kept in a bag.
TEST(Properties, ReportEachChange) {
    QWidget container;
    const QSet<QByteArray> silent = {"Style", "DisplayAsDefault"}; // of the title bar; the host's own
    const auto report = [&silent](forms::Control& control) {
        const QMetaObject* meta = control.metaObject();
        EXPECT_GT(meta->propertyCount(), meta->propertyOffset());
        for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
            const QMetaProperty property = meta->property(i);
            if (!property.isWritable() || silent.contains(property.name()))
                continue;
            QSignalSpy changes(&control, &forms::Control::PropertyChanged);
            EXPECT_TRUE(property.write(&control, property.read(&control))) << property.name();
            const QByteArray name = QByteArray(property.name()).startsWith("Font") ? "Font" : property.name();
            EXPECT_TRUE(changes.contains(QVariantList{QString::fromLatin1(name)}))
                << meta->className() << ' ' << name.constData();
        }
    };
    dcButton button(&container, QStringLiteral("Button"));
    PanelFx panel(&container, QStringLiteral("Panel"));
    AnimationBar strip(&container, QStringLiteral("DB1"));
    BrindlexPB bar(&container, QStringLiteral("PB1"));
    TitelBar title(&container, QStringLiteral("TitelBar1"));
    for (forms::Control* control : std::initializer_list<forms::Control*>{&button, &panel, &strip, &bar, &title})
        report(*control);
    QSignalSpy tip(&button, &forms::Control::PropertyChanged);
    forms::SetProperty(&button, "ToolTipText", QStringLiteral("tip"));
    EXPECT_EQ(tip.size(), 1);
    const draw::Picture picture = draw::Picture::FromImage(QImage(4, 4, QImage::Format_RGB32));
    for (const char* name : {"PictureNormal", "PictureHot", "PictureDown", "MouseIcon"}) {
        forms::SetProperty(&button, name, QVariant::fromValue(picture));
        EXPECT_EQ(forms::GetProperty(&button, name).value<draw::Picture>(), picture) << name;
    }
}

// A form's client area has no colour of its own, and neither have panels.
TEST(Properties, TheTextColourOfASavedButtonIsTheNearestContainers) {
    forms::Form form(QStringLiteral("FrmTest"), 3000, 3000);
    form.SetForeColor(base::Colour(0x123456));
    PanelFx panel(form.Client(), QStringLiteral("Panel"));
    dcButton button(&panel, QStringLiteral("Button"));
    button.ReadProperties({});
    EXPECT_EQ(button.ForeColor(), base::Colour(0x123456));
}

} // namespace
} // namespace controls
