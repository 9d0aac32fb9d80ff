// Shows every drawn control in every state, in one window.
#include "draw/system_colours.h"
#include "forms/forms.h"
#include "frm_gallery.h"

#include <QApplication>
#include <QStyleFactory>

int main(int argc, char** argv) {
    // Sizes are device pixels; the toolkit must not scale them a second time.
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    draw::SetSysColors(QApplication::palette());
    forms::Forms& all = forms::Forms::Instance();
    all.RegisterMaker(QStringLiteral("FrmGallery"), [] { return std::make_unique<FrmGallery>(); });
    all.Shared(QStringLiteral("FrmGallery"))->Show();
    const int status = QApplication::exec();
    all.Clear();
    return status;
}
