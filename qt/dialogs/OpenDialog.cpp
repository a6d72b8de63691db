#include "qt/dialogs/OpenDialog.h"

#include "qt/dialogs/DesktopFileDialog.h"
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
#include <QTimer>

namespace voxmate::qt
{

namespace
{

/// The kinds of files in "Text Files (*.txt;*.log)|*.txt;*.log|…".
QList<FileQuestion::Kind> Kinds(const std::string& filter)
{
    const QStringList parts = ToQt(filter).split(u'|');
    QList<FileQuestion::Kind> kinds;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString patterns = parts[i + 1].trimmed();
        QString name = parts[i].trimmed();
        if (const QString inBrackets = u'(' + patterns + u')'; name.endsWith(inBrackets))
            name = name.chopped(inBrackets.size()).trimmed();
        kinds.append({name, patterns.split(u';')});
    }
    return kinds;
}

/// In the toolkit's form: "Text Files (*.txt *.log)".
QStringList NameFilters(const QList<FileQuestion::Kind>& kinds)
{
    QStringList filters;
    for (const FileQuestion::Kind& kind : kinds)
        filters << kind.name + QStringLiteral(" (") + kind.patterns.join(u' ') + u')';
    return filters;
}

/// Deselects everything but what the typed text names. While a path is typed, the toolkit selects each folder on the
/// way, and deselects it only if the field has the focus, which is not always so: a list of completions may be opening
/// below it. A folder left selected takes precedence over the text, so that the button is disabled or Enter opens that
/// folder.
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
        // While nothing is typed, a folder chosen by the mouse stays selected.
        if (text.isEmpty())
            return;
        for (const QModelIndex& row : files->selectionModel()->selectedRows()) {
            if (row.data(QFileSystemModel::FilePathRole).toString() != meant)
                files->selectionModel()->select(row, QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
        }
    });
}

/// Tells which file the button would open now, once it has been selected or its name typed for a moment. Moving through
/// a list or typing passes many files by.
void TellSelected(QFileDialog& dialog, const std::function<void(const std::string& file)>& tell)
{
    constexpr int moment = 250; // milliseconds
    auto* const rest = new QTimer(&dialog);
    rest->setSingleShot(true);
    rest->setInterval(moment);
    QObject::connect(rest, &QTimer::timeout, &dialog, [&dialog, tell] {
        const QStringList files = dialog.selectedFiles();
        if (!files.isEmpty() && QFileInfo(files.front()).isFile())
            tell(FromQt(QDir::toNativeSeparators(files.front())));
    });
    QObject::connect(&dialog, &QFileDialog::currentChanged, rest, qOverload<>(&QTimer::start));
    if (const auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit")))
        QObject::connect(name, &QLineEdit::textChanged, rest, qOverload<>(&QTimer::start));
}

/// Begins in the documents folder where `folder` does not exist.
void Settle(std::string& folder)
{
    if (folder.empty() || !QDir(ToQt(folder)).exists())
        folder = FromQt(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
}

/// Lets the user choose in the toolkit's dialog, and sets `folder` to the one it was left in. Empty: cancelled.
QString AskToolkit(QWidget* over, const FileQuestion& question, const CommonDialog& settings, QString& folder,
                   const RecentFolders& recent)
{
    const QPointer<QFileDialog> dialog = NewFileDialog(over, question.title, question.folder, recent.Existing());
    dialog->setObjectName(QStringLiteral("Open"));
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    // Names of missing files are allowed, because the program itself reports that a file does not exist.
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setNameFilters(NameFilters(question.kinds));
    SelectOnlyWhatIsTyped(*dialog);
    if (settings.Selected)
        TellSelected(*dialog, settings.Selected);
    if (!settings.FileName.empty())
        dialog->selectFile(ToQt(settings.FileName));
    QString chosen;
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (dialog) {
        folder = dialog->directory().absolutePath();
        if (const QStringList files = dialog->selectedFiles(); accepted && !files.isEmpty())
            chosen = files.front();
    }
    delete dialog;
    return chosen;
}

} // namespace

std::optional<std::string> ShowOpenDialog(QWidget* over, const CommonDialog& settings, std::string& folder,
                                          RecentFolders& recent)
{
    Settle(folder);
    QString left = ToQt(folder);
    const FileQuestion question{ToQt(settings.DialogTitle), left, Kinds(settings.Filter), false};
    std::optional<QString> path = AskDesktop(over, question);
    if (!path)
        path = AskToolkit(over, question, settings, left, recent);
    if (!path->isEmpty())
        left = QFileInfo(*path).absolutePath();
    folder = FromQt(left);
    if (path->isEmpty())
        return std::nullopt;
    if (QFileInfo(*path).isFile())
        recent.Put(folder);
    return FromQt(QDir::toNativeSeparators(*path));
}

std::optional<std::string> ShowSaveDialog(QWidget* over, const CommonDialog& settings, std::string& folder)
{
    Settle(folder);
    const FileQuestion question{ToQt(settings.DialogTitle), ToQt(folder), Kinds(settings.Filter), false,
                                ToQt(settings.FileName)};
    std::optional<QString> path = AskDesktop(over, question);
    if (!path) {
        const QPointer<QFileDialog> dialog = NewFileDialog(over, question.title, question.folder);
        dialog->setObjectName(QStringLiteral("Save"));
        dialog->setAcceptMode(QFileDialog::AcceptSave);
        dialog->setFileMode(QFileDialog::AnyFile);
        dialog->setNameFilters(NameFilters(question.kinds));
        if (!question.kinds.isEmpty())
            dialog->setDefaultSuffix(QFileInfo(question.kinds.front().patterns.front()).suffix());
        dialog->selectFile(question.saveAs);
        const bool accepted = dialog->exec() == QDialog::Accepted;
        path = accepted && dialog && !dialog->selectedFiles().isEmpty() ? dialog->selectedFiles().front() : QString();
        delete dialog;
    }
    if (path->isEmpty())
        return std::nullopt;
    folder = FromQt(QFileInfo(*path).absolutePath());
    return FromQt(QDir::toNativeSeparators(*path));
}

} // namespace voxmate::qt
