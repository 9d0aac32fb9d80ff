// A swatch with a label that opens a colour dialog by mouse, space bar or return key. Its Color is a value of the
// program's colour table and may name a system colour; the swatch shows the plain colour behind it.
#pragma once

#include "suite/hosted_control.h"

#include <functional>
#include <optional>

class QPushButton;

namespace suite {

class ColorPicker : public HostedControl {
    Q_OBJECT
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(base::Colour Color READ Color WRITE SetColor)
    Q_PROPERTY(int Appearance READ Appearance WRITE SetAppearance)
    Q_PROPERTY(int Index READ Index WRITE SetIndex)

  public:
    ColorPicker(QWidget* container, const QString& name, const QString& caption = QString());

    QString Caption() const { return caption_; }
    void SetCaption(const QString& caption);
    base::Colour Color() const { return colour_; }
    // Raises nothing.
    void SetColor(base::Colour colour);
    int Appearance() const { return appearance_; }
    void SetAppearance(int appearance) { appearance_ = appearance; }
    // The place in an array of pickers.
    int Index() const { return index_; }
    void SetIndex(int index) { index_ = index; }

    // Asks for a colour, and takes it and raises Change if one is chosen, the same one included.
    void Pick();

  Q_SIGNALS:
    void Change();

  protected:
    QString TipText() const override;
    QString ShownText() const override;
    int TextRoom() const override;

  private:
    void Describe();
    QString DialogTitle() const;

    QPushButton* button_;
    QString caption_;
    base::Colour colour_;
    int appearance_ = 0;
    int index_ = 0;
    bool picking_ = false;
};

// The colour that the user chooses, or nothing. The toolkit's own dialog by default, which keeps no configuration.
using ColourDialog =
    std::function<std::optional<base::Colour>(QWidget* owner, base::Colour start, const QString& title)>;
// Takes the dialog's place; null restores it.
void SetColourDialog(ColourDialog dialog);

} // namespace suite
