#include "qt/dialogs/OpenDialog.h"

#include "qt/dialogs/FileDialog.h"
#include "qt/widgets/QtText.h"

#include <QAbstractItemView>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QStandardPaths>
#include <QStringList>

namespace voxmate::qt
{

namespace
{

/// "Text Files (*.txt;*.log)|*.txt;*.log|…" as the toolkit has it: "Text Files (*.txt *.log)" each.
QStringList NameFilters(const std::string& filter)
{
    const QStringList parts = ToQt(filter).split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString pattern = parts[i + 1].trimmed();
        QString description = parts[i].trimmed();
        if (const QString inBrackets = u'(' + pattern + u')'; description.endsWith(inBrackets))
            description = description.chopped(inBrackets.size()).trimmed();
        filters << description + QStringLiteral(" (") + QString(pattern).replace(u';', u' ') + u')';
    }
    return filters;
}

/// While a path is typed the toolkit selects each folder on its way, and lets go of it again only if the field has the
/// keyboard, which it has not at every moment: a list of names may just open below it. What is left selected counts
/// more than what was typed, so that the button is off or Enter goes into a folder. Lets go of all that is not meant.
void SelectOnlyWhatIsTyped(const QFileDialog& dialog)
{
    const auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    const auto* files = dialog.findChild<QAbstractItemView*>(QStringLiteral("listView"));
    if (!name || !files)
        return;
    QObject::connect(name, &QLineEdit::textChanged, files, [&dialog, files](const QString& text) {
        QString typed = text;
        if (typed == QLatin1String("~") || typed.startsWith(QLatin1String("~/")))
            typed.replace(0, 1, QDir::homePath());
        const QString meant = QDir::cleanPath(dialog.directory().absoluteFilePath(typed));
        // A folder that was chosen by the mouse while nothing is typed stays.
        if (text.isEmpty())
            return;
        for (const QModelIndex& row : files->selectionModel()->selectedRows()) {
            if (row.data(QFileSystemModel::FilePathRole).toString() != meant)
                files->selectionModel()->select(row, QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
        }
    });
}

} // namespace

std::optional<std::string> ShowOpenDialog(QWidget* over, const CommonDialog& settings, std::string& folder)
{
    if (folder.empty() || !QDir(ToQt(folder)).exists())
        folder = FromQt(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    const QPointer<QFileDialog> dialog = NewFileDialog(over, ToQt(settings.DialogTitle), ToQt(folder));
    dialog->setObjectName(QStringLiteral("Open"));
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    // Not only files that exist: it is for the program to say that it does not find one.
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setNameFilters(NameFilters(settings.Filter));
    SelectOnlyWhatIsTyped(*dialog);
    if (!settings.FileName.empty())
        dialog->selectFile(ToQt(settings.FileName));
    std::optional<std::string> chosen;
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (dialog) {
        folder = FromQt(dialog->directory().absolutePath());
        if (const QStringList files = dialog->selectedFiles(); accepted && !files.isEmpty()) {
            folder = FromQt(QFileInfo(files.front()).absolutePath());
            chosen = FromQt(QDir::toNativeSeparators(files.front()));
        }
    }
    delete dialog;
    return chosen;
}

} // namespace voxmate::qt
