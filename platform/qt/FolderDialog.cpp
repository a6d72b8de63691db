#include "platform/qt/FolderDialog.h"

#include "platform/qt/ModalWindows.h"
#include "platform/qt/QtText.h"

#include <QDir>
#include <QFileDialog>
#include <QPointer>
#include <QStandardPaths>
#include <QUrl>

namespace voxmate::qt
{

std::string ShowFolderDialog(QWidget* over, const std::string& prompt, const std::string& start)
{
    const QString begin = !start.empty() && QDir(ToQt(start)).exists() ? ToQt(start) : QDir::homePath();
    // On the heap: while the dialog is up its owner may go, and takes it along.
    const QPointer<QFileDialog> dialog =
        new QFileDialog(over && over->isVisible() && !over->isMinimized() ? over : nullptr, ToQt(prompt), begin);
    dialog->setObjectName(QStringLiteral("BrowseForFolder"));
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    // The desktop's own dialog would be a window of another program, beside which the character cannot live.
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setSidebarUrls({QUrl::fromLocalFile(QDir::homePath()),
                            QUrl::fromLocalFile(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)),
                            QUrl::fromLocalFile(QDir::rootPath())});
    dialog->setWindowModality(Qt::ApplicationModal);
    LetCharacterLiveBeside(*dialog);
    const bool chosen = dialog->exec() == QDialog::Accepted;
    const QString path = chosen && dialog && !dialog->selectedFiles().isEmpty() ? dialog->selectedFiles().front() : "";
    delete dialog;
    return QDir::toNativeSeparators(path).toStdString();
}

} // namespace voxmate::qt
