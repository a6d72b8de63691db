#include "qt/dialogs/FileDialog.h"

#include "qt/dialogs/ModalWindows.h"
#include "qt/widgets/FontScale.h"
#include "qt/widgets/QtText.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QScreen>
#include <QStandardPaths>
#include <QStringList>
#include <QTreeView>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace voxmate::qt
{

namespace
{

/// Makes room to show the places at the side, names and dates in full. The type column is hidden, because icon and name
/// already tell the type.
void MakeRoom(QFileDialog& dialog)
{
    constexpr int typeColumn = 2;
    constexpr int WidestPlaces = 200;
    constexpr qreal MostOfScreen = 0.8;
    if (auto* places = dialog.findChild<QListView*>(QStringLiteral("sidebar"))) {
        // All of the toolkit's icons exist in this size, so that all names begin at the same position.
        places->setIconSize(QSize(16, 16) * FontScale());
        places->setMinimumWidth(
            std::min(places->sizeHintForColumn(0) + 4 * places->frameWidth(), Scaled(WidestPlaces)));
    }
    if (auto* files = dialog.findChild<QTreeView*>(QStringLiteral("treeView"))) {
        files->setColumnHidden(typeColumn, true);
        files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        files->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    }
    const QSize room = (dialog.parentWidget() ? dialog.parentWidget() : &dialog)->screen()->availableSize();
    dialog.resize((dialog.size() * FontScale()).boundedTo(room * MostOfScreen));
}

/// Gives accessible names to the parts that the toolkit leaves without.
void NameParts(const QFileDialog& dialog)
{
    const std::pair<const char*, const char*> names[] = {{"sidebar", "Places"},    {"listView", "Files"},
                                                         {"treeView", "Files"},    {"frame", "Folder"},
                                                         {"splitter", "Contents"}, {"buttonBox", "Buttons"}};
    for (const auto& [part, name] : names) {
        if (auto* widget = dialog.findChild<QWidget*>(QString::fromLatin1(part)))
            widget->setAccessibleName(QString::fromLatin1(name));
    }
    // A drop-down list takes its name from its label.
    for (const auto& [label, field] : {std::pair{"lookInLabel", "lookInCombo"}, {"fileTypeLabel", "fileTypeCombo"}}) {
        auto* text = dialog.findChild<QLabel*>(QString::fromLatin1(label));
        auto* list = dialog.findChild<QWidget*>(QString::fromLatin1(field));
        if (text && list)
            text->setBuddy(list);
    }
}

/// Enters a folder whose path is typed, and then clears the field: left there, the path would be taken for a file's
/// name, which cannot be opened.
class Dialog : public QFileDialog
{
public:
    using QFileDialog::QFileDialog;

protected:
    void showEvent(QShowEvent* event) override
    {
        // No icons, as on all other windows' buttons. Done here, because setting the kind of dialog later makes the
        // buttons anew.
        if (const auto* buttons = findChild<QDialogButtonBox*>()) {
            for (QAbstractButton* button : buttons->buttons())
                button->setIcon({});
        }
        QFileDialog::showEvent(event);
    }

    void accept() override
    {
        const QStringList chosen = selectedFiles();
        const bool folder = chosen.size() == 1 && QFileInfo(chosen.front()).isDir();
        const QPointer<Dialog> self = this;
        QFileDialog::accept();
        if (!self || !folder || !isVisible())
            return;
        auto* name = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        if (!name)
            return;
        name->clear();
        // Closes the list of completions, which offers names for the text just cleared.
        if (QCompleter* completer = name->completer())
            completer->popup()->hide();
    }
};

} // namespace

QPointer<QFileDialog> NewFileDialog(QWidget* over, const QString& title, const QString& begin,
                                    const std::vector<std::string>& recent)
{
    const QString folder = !begin.isEmpty() && QDir(begin).exists() ? begin : QDir::homePath();
    QPointer<QFileDialog> dialog =
        new Dialog(over && over->isVisible() && !over->isMinimized() ? over : nullptr, title, folder);
    // A platform theme's dialog would block the character, too. The desktop's own is asked for first, see
    // DesktopFileDialog.
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    QList<QUrl> places{QUrl::fromLocalFile(QDir::homePath()),
                       QUrl::fromLocalFile(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)),
                       QUrl::fromLocalFile(QDir::rootPath())};
    for (const std::string& path : recent) {
        const QUrl place = QUrl::fromLocalFile(ToQt(path));
        if (!places.contains(place))
            places.append(place);
    }
    dialog->setSidebarUrls(places);
    dialog->setWindowModality(Qt::ApplicationModal);
    LetCharacterLiveBeside(*dialog);
    MakeRoom(*dialog);
    NameParts(*dialog);
    return dialog;
}

} // namespace voxmate::qt
