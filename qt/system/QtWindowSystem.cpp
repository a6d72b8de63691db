#include "qt/system/QtWindowSystem.h"

#include "base/RuntimeError.h"
#include "qt/dialogs/FolderDialog.h"
#include "qt/dialogs/FontDialog.h"
#include "qt/dialogs/MessageBox.h"
#include "qt/dialogs/OpenDialog.h"
#include "qt/forms/FormWindow.h"
#include "qt/forms/PlacedFormPeer.h"
#include "qt/forms/QtFormPeer.h"
#include "qt/system/Desktop.h"
#include "qt/widgets/QtText.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QStringDecoder>

#include <algorithm>

namespace voxmate::qt
{

namespace
{

// A format's media type, without its parameters.
QString KindOf(const QString& format)
{
    return format.section(QLatin1Char(';'), 0, 0).trimmed().toLower();
}

// The encoding that a format's charset names; UTF-8 if it names none or an unknown one.
QStringConverter::Encoding EncodingOf(const QString& format)
{
    const QString mark = QStringLiteral("charset=");
    const qsizetype at = format.indexOf(mark, 0, Qt::CaseInsensitive);
    QString name = at < 0 ? QString() : format.mid(at + mark.size()).section(QLatin1Char(';'), 0, 0);
    name.remove(QLatin1Char('"'));
    return QStringConverter::encodingForName(name.trimmed().toLatin1().constData()).value_or(QStringConverter::Utf8);
}

// The format of copied content that is plain text; null if there is none. The toolkit's hasText() is not used: it
// counts the address of a copied picture as text, and it ignores formats with a charset.
QString PlainTextFormat(const QMimeData* content)
{
    if (!content)
        return {};
    QString plain = QStringLiteral("text/plain");
    if (content->hasFormat(plain))
        return plain;
    const QStringList formats = content->formats();
    const auto found =
        std::find_if(formats.begin(), formats.end(), [&](const QString& format) { return KindOf(format) == plain; });
    return found == formats.end() ? QString() : *found;
}

} // namespace

QtWindowSystem::QtWindowSystem(const std::string& shareDirectory)
    : icons_(ToQt(shareDirectory) + QStringLiteral("/icons"))
{
    // Drawn from the event loop, because drawing all its sizes takes longer than the first window needs to come up.
    QMetaObject::invokeMethod(
        &context_, [this] { QApplication::setWindowIcon(icons_.Icon(QStringLiteral("voxmate"))); },
        Qt::QueuedConnection);
    // Remembered, because no window has the focus for a moment after a box closes, and the next box may come just then.
    QObject::connect(qApp, &QApplication::focusChanged, &context_, [this](QWidget*, QWidget* now) {
        if (auto* form = now ? dynamic_cast<FormWindow*>(now->window()) : nullptr)
            lastForm_ = form;
    });
}

std::unique_ptr<FormPeer> QtWindowSystem::CreateFormPeer(Form& form)
{
    if (auto* placed = dynamic_cast<PlacedForm*>(&form)) {
        auto peer = std::make_unique<PlacedFormPeer>(*placed);
        Register(form, peer->Window());
        return peer;
    }
    auto peer = std::make_unique<QtFormPeer>(form, icons_, main_);
    Register(form, peer->Window());
    if (!form.MenuBar.empty())
        main_ = peer->Window();
    return peer;
}

int QtWindowSystem::MsgBox(const std::string& text, int style, const std::string& title)
{
    return ShowMessageBox(Owner(), &icons_, text, style, title);
}

QWidget* QtWindowSystem::Owner() const
{
    auto* active = dynamic_cast<FormWindow*>(QApplication::activeWindow());
    if (active)
        return active;
    return lastForm_ && lastForm_->isVisible() ? lastForm_.data() : main_.data();
}

void QtWindowSystem::DoEvents()
{
    QCoreApplication::processEvents();
}

ItemList QtWindowSystem::SHBrowseForFolderA(const BrowseInfo& info)
{
    const std::string path = ShowFolderDialog(Owner(), info.title, info.start);
    if (path.empty())
        return 0;
    itemLists_[++lastItemList_] = path;
    return lastItemList_;
}

bool QtWindowSystem::SHGetPathFromIDListA(ItemList list, std::string& path)
{
    const auto found = itemLists_.find(list);
    if (found == itemLists_.end())
        return false;
    path = found->second;
    return true;
}

void QtWindowSystem::CoTaskMemFree(ItemList list)
{
    itemLists_.erase(list);
}

void QtWindowSystem::ShowOpen(CommonDialog& dialog)
{
    if (std::optional<std::string> chosen = ShowOpenDialog(Owner(), dialog, openFolder_, Recent))
        dialog.FileName = std::move(*chosen);
    else if (dialog.CancelError)
        throw CancelSelected();
}

std::string QtWindowSystem::ShowSave(const CommonDialog& dialog)
{
    return ShowSaveDialog(Owner(), dialog, saveFolder_).value_or("");
}

bool QtWindowSystem::ShowFont(FontSpec& font, int minSize, int maxSize)
{
    const std::optional<FontSpec> chosen = ShowFontDialog(Owner(), font, minSize, maxSize);
    if (chosen)
        font = *chosen;
    return chosen.has_value();
}

bool QtWindowSystem::ClipboardGetFormat(int format)
{
    return format == vbCFText && !PlainTextFormat(QGuiApplication::clipboard()->mimeData()).isNull();
}

std::string QtWindowSystem::ClipboardGetText()
{
    const QMimeData* content = QGuiApplication::clipboard()->mimeData();
    const QString format = PlainTextFormat(content);
    if (format.isNull())
        return "";
    if (!format.contains(QLatin1Char(';')))
        return FromQt(QGuiApplication::clipboard()->text());
    return FromQt(QStringDecoder(EncodingOf(format)).decode(content->data(format)));
}

void QtWindowSystem::ClipboardClear()
{
    QGuiApplication::clipboard()->clear();
}

void QtWindowSystem::ClipboardSetText(const std::string& text)
{
    QGuiApplication::clipboard()->setText(ToQt(text));
}

// Not asked of the toolkit, which keeps the first answer about notifiers until the program ends.
bool QtWindowSystem::HasNotificationArea()
{
    return TrayIsEmbedding() || TrayIsOfItems();
}

bool QtWindowSystem::Shell_NotifyIconA(std::uint32_t message, const TrayIconData& data)
{
    return tray_.Notify(message, data, main_);
}

} // namespace voxmate::qt
