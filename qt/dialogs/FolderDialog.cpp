#include "qt/dialogs/FolderDialog.h"

#include "qt/dialogs/DesktopFileDialog.h"
#include "qt/dialogs/FileDialog.h"
#include "qt/widgets/QtText.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

#include <optional>

namespace voxmate::qt
{

std::string ShowFolderDialog(QWidget* over, const std::string& prompt, const std::string& start)
{
    if (const std::optional<QString> answer = AskDesktop(over, {ToQt(prompt), ToQt(start), {}, true})) {
        // Old portals let a file be chosen instead.
        const bool file = !answer->isEmpty() && !QFileInfo(*answer).isDir();
        return FromQt(QDir::toNativeSeparators(file ? QFileInfo(*answer).absolutePath() : *answer));
    }
    const QPointer<QFileDialog> dialog = NewFileDialog(over, ToQt(prompt), ToQt(start));
    dialog->setObjectName(QStringLiteral("BrowseForFolder"));
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    const bool chosen = dialog->exec() == QDialog::Accepted;
    const QString path = chosen && dialog && !dialog->selectedFiles().isEmpty() ? dialog->selectedFiles().front() : "";
    delete dialog;
    return FromQt(QDir::toNativeSeparators(path));
}

} // namespace voxmate::qt
