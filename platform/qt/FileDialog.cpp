#include "platform/qt/FileDialog.h"

#include "platform/qt/ModalWindows.h"

#include <QDir>
#include <QFileDialog>
#include <QStandardPaths>
#include <QUrl>

namespace voxmate::qt
{

QPointer<QFileDialog> NewFileDialog(QWidget* over, const QString& title, const QString& begin)
{
    const QString folder = !begin.isEmpty() && QDir(begin).exists() ? begin : QDir::homePath();
    const QPointer<QFileDialog> dialog =
        new QFileDialog(over && over->isVisible() && !over->isMinimized() ? over : nullptr, title, folder);
    // The desktop's own dialog would be a window of another program, beside which the character cannot live.
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setSidebarUrls({QUrl::fromLocalFile(QDir::homePath()),
                            QUrl::fromLocalFile(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)),
                            QUrl::fromLocalFile(QDir::rootPath())});
    dialog->setWindowModality(Qt::ApplicationModal);
    LetCharacterLiveBeside(*dialog);
    return dialog;
}

} // namespace voxmate::qt
