#include "qt/dialogs/FolderDialog.h"

#include "qt/dialogs/FileDialog.h"
#include "qt/widgets/QtText.h"

#include <QDir>
#include <QFileDialog>

namespace voxmate::qt
{

std::string ShowFolderDialog(QWidget* over, const std::string& prompt, const std::string& start)
{
    const QPointer<QFileDialog> dialog = NewFileDialog(over, ToQt(prompt), ToQt(start));
    dialog->setObjectName(QStringLiteral("BrowseForFolder"));
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    const bool chosen = dialog->exec() == QDialog::Accepted;
    const QString path = chosen && dialog && !dialog->selectedFiles().isEmpty() ? dialog->selectedFiles().front() : "";
    delete dialog;
    return QDir::toNativeSeparators(path).toStdString();
}

} // namespace voxmate::qt
