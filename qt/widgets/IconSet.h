// The program's own icons: vector drawings in the shared data, in two tones. What is drawn in "currentColor" takes the
// colour of the text around it, so that one drawing serves light and dark themes; accents keep their colour.
#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QString>

namespace voxmate::qt
{

class IconSet
{
public:
    /// `folder` holds NAME.svg for each icon.
    explicit IconSet(QString folder) : folder_(std::move(folder)) {}

    /// The icon `name`, `size` device-independent pixels wide and high at the given pixel ratio, its lines in `ink`.
    /// Drawn when first asked for and kept while it is in use; a null pixmap when there is no such icon.
    QPixmap Pixmap(const QString& name, int size, qreal ratio, const QColor& ink) const;
    /// Path of the moving picture of that name.
    QString MoviePath(const QString& name) const { return folder_ + u'/' + name + QStringLiteral(".gif"); }
    /// The icon in the sizes that window managers ask for.
    QIcon Icon(const QString& name) const;

private:
    QString folder_;
};

} // namespace voxmate::qt
