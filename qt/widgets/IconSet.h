// The program's own icons: vector drawings in the shared data, in two tones. Parts drawn in "currentColor" take the
// colour of the surrounding text, so that one drawing serves light and dark themes; accents keep their colour.
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
    /// `folder` contains NAME.svg for each icon.
    explicit IconSet(QString folder) : folder_(std::move(folder)) {}

    /// The icon `name`, `size` device-independent pixels wide and high at pixel ratio `ratio`, with lines in the colour
    /// `ink`. Drawn on first use and cached while in use. A null pixmap if there is no such icon.
    QPixmap Pixmap(const QString& name, int size, qreal ratio, const QColor& ink) const;
    /// Path of the animated picture `name`. The one for dark themes has "-dark" behind its name.
    QString MoviePath(const QString& name) const { return folder_ + u'/' + name + QStringLiteral(".gif"); }
    /// The icon in the sizes that window managers ask for.
    QIcon Icon(const QString& name) const;

private:
    QString folder_;
};

} // namespace voxmate::qt
