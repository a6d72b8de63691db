// The dialog for choosing a font. The toolkit's own lists a family once for each of its foundries, offers styles that a
// balloon cannot have, and takes any size.
#pragma once

#include "controls/Control.h"

#include <QDialog>
#include <QStringList>

#include <optional>

class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QSpinBox;

namespace voxmate::qt
{

/// Asks for family and size and shows a sample. The family's name can be typed; the dialog accepts only an installed
/// family, or the initial one even if it is not installed.
class FontDialog : public QDialog
{
public:
    /// Sizes are in points.
    FontDialog(QWidget* over, const FontSpec& font, int minSize, int maxSize);
    FontSpec Chosen() const;

private:
    void Typed(const QString& name);
    void Picked(int row);
    void ShowSample();
    /// The family that the typed name stands for; empty when it is not acceptable.
    QString Family() const;

    const QString first_;
    const QStringList families_;
    QLineEdit* name_;
    QListView* list_;
    QSpinBox* size_;
    QLabel* sample_;
    QPushButton* ok_;
};

/// Shows the dialog over a window. Sizes are in points. Returns nothing when the user cancels.
std::optional<FontSpec> ShowFontDialog(QWidget* over, const FontSpec& font, int minSize, int maxSize);

} // namespace voxmate::qt
