// Property bags with any values under the controls' own names, read by each drawn control. Whatever a bag holds, the
// control paints at any size, and what it writes is what a second control of that kind reads and writes again.
#include "base/property_bag.h"
#include "base/colour.h"
#include "controls/animation_bar.h"
#include "controls/brindlex_pb.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "controls/titel_bar.h"
#include "fuzz_support.h"

#include <QApplication>
#include <QFont>
#include <QMetaProperty>
#include <array>

namespace {

// Names that are no properties.
constexpr std::array furtherNames = {"UseMask", "CheckBox", "PicNormal", "PicHot",  "PicDown", "PicOpacity",
                                     "PicSize", "PicSizeH", "PicSizeW",  "Effects", "Font",    "State"};

QStringList NamesOf(const QMetaObject& control) {
    QStringList names;
    for (int i = QWidget::staticMetaObject.propertyCount(); i < control.propertyCount(); ++i)
        names.append(QString::fromLatin1(control.property(i).name()));
    for (const char* name : furtherNames)
        names.append(QString::fromLatin1(name));
    return names;
}

QVariant AnyValue(fuzz::Reader& reader) {
    switch (reader.Number(0, 9)) {
    case 0:
        return reader.Number(0, 40);
    case 1:
        return qint32(reader.Long());
    case 2:
        return reader.Real();
    case 3:
        return reader.Byte() % 2 == 0;
    case 4:
        return QVariant::fromValue(base::Colour(reader.Long()));
    case 5: {
        QImage image(reader.Number(0, 20), reader.Number(0, 20), QImage::Format_RGB32);
        image.fill(reader.Long());
        return QVariant::fromValue(draw::Picture::FromImage(image));
    }
    case 6:
        return QFont(QStringLiteral("DejaVu Sans"), reader.Number(1, 40));
    case 7:
        return reader.Number(-3, 3) / 2.0F;
    case 8:
        return {};
    default:
        return reader.Text();
    }
}

bool SameValues(const base::PropertyBag& left, const base::PropertyBag& right, const QStringList& names) {
    for (const QString& name : names) {
        const QVariant one = left.ReadProperty(name, {});
        const QVariant other = right.ReadProperty(name, {});
        const bool bothNaN = one != one && other != other;
        if (left.Contains(name) != right.Contains(name) || (one != other && !bothNaN))
            return false;
    }
    return left.Count() == right.Count();
}

void CheckBag(fuzz::Reader reader) {
    base::PropertyBag bag;
    const QString name = reader.Text();
    const QVariant value = AnyValue(reader);
    const QVariant fallback = AnyValue(reader);
    bag.WriteProperty(name, value, fallback);
    fuzz::Require(bag.Contains(name.toUpper().toLower()) || !bag.Contains(name) ||
                      name.toUpper().toLower() != name.toLower(),
                  "keys are compared without case");
    fuzz::Require(bag.Contains(name) == (value != fallback), "a default is not written");
    const QVariant read = bag.ReadProperty(name, fallback);
    fuzz::Require(!fallback.isValid() || read.metaType() == fallback.metaType(), "a value comes in its default's type");
}

template <typename Control> void CheckControl(fuzz::Reader& reader) {
    static const QStringList names = NamesOf(Control::staticMetaObject);
    const QSize size(reader.Number(0, 120), reader.Number(0, 60));
    base::PropertyBag bag;
    while (!reader.AtEnd()) {
        const QString& name = names.at(reader.Byte() % names.size());
        bag.WriteProperty(name, AnyValue(reader), QVariant());
    }
    QWidget container;
    container.resize(200, 100);
    Control control(&container, QStringLiteral("Control1"));
    control.resize(size);
    control.ReadProperties(bag);
    static_cast<void>(control.UpToDateSurface());
    control.resize(size.transposed());
    static_cast<void>(control.UpToDateSurface());
    base::PropertyBag written;
    control.WriteProperties(written);

    Control second(&container, QStringLiteral("Control1"));
    second.ReadProperties(written);
    base::PropertyBag again;
    second.WriteProperties(again);
    fuzz::Require(SameValues(written, again, names), "properties come out as they went in");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_FONT_DPI", "96");
    static int count = 1;
    static char name[] = "fuzz";
    static char* arguments[] = {name, nullptr};
    static const QApplication application(count, arguments);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Reader reader(data, size);
    switch (reader.Number(0, 5)) {
    case 0:
        CheckControl<controls::AnimationBar>(reader);
        break;
    case 1:
        CheckControl<controls::BrindlexPB>(reader);
        break;
    case 2:
        CheckControl<controls::dcButton>(reader);
        break;
    case 3:
        CheckControl<controls::PanelFx>(reader);
        break;
    case 4:
        CheckControl<controls::TitelBar>(reader);
        break;
    default:
        CheckBag(reader);
    }
    return 0;
}
