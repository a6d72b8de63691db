// The desktop's own dialog for choosing a file or a folder, where a desktop has one.
#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class QWidget;
class QWindow;

namespace voxmate::qt
{

/// What the user is asked for.
struct FileQuestion {
    /// A kind of file, by the patterns of its names ("*.txt").
    struct Kind {
        QString name;
        QStringList patterns;
    };

    QString title;
    QString folder; ///< to begin in
    QList<Kind> kinds;
    bool wantsFolder; ///< a folder is chosen, not a file
    QString saveAs{}; ///< a file is to be written, for which this name is proposed; empty: it is to be read
};

/// A dialog in a process of the desktop's. Each platform adds its implementation of `Make`.
class DesktopFileDialog : public QObject
{
    Q_OBJECT

public:
    /// nullptr where the desktop has none.
    static std::unique_ptr<DesktopFileDialog> Make();

    /// Shows the dialog above the window `over`, which may be nullptr. One of the two signals follows, once.
    virtual void Ask(const FileQuestion& question, QWindow* over) = 0;

Q_SIGNALS:
    /// The user has chosen the file or folder with that full path; an empty one: nothing.
    void Answered(const QString& path);
    /// The desktop cannot show its dialog.
    void Failed();
};

/// Shows the desktop's own dialog; the program's windows are blocked meanwhile, as by a dialog of its own, except the
/// character. Returns the full path chosen, an empty one where the user cancelled, and nothing where the desktop has no
/// such dialog or could not show it.
std::optional<QString> AskDesktop(QWidget* over, const FileQuestion& question);

} // namespace voxmate::qt
