#include "qt/widgets/FileDrops.h"

#include "base/FileName.h"
#include "base/Text.h"

#include <QDropEvent>

#include <algorithm>
#include <string_view>
#include <utility>

namespace voxmate::qt
{

// Not by QMimeData::urls(), because a path may have bytes that are no text.
std::vector<std::string> FilesIn(const QMimeData* data)
{
    const QString format = QStringLiteral("text/uri-list");
    if (!data || !data->hasFormat(format))
        return {};
    const std::string lines = data->data(format).toStdString();
    std::vector<std::string> files;
    for (std::size_t begin = 0; begin < lines.size();) {
        const std::size_t end = std::min(lines.find('\n', begin), lines.size());
        const std::string_view line =
            Trimmed(std::string_view(lines).substr(begin, end - begin), std::string_view(" \t\r\0", 4));
        begin = end + 1;
        if (line.empty() || line.starts_with('#'))
            continue;
        if (LowerAscii(line.substr(0, 5)) != "file:")
            return {};
        files.push_back(PathOfAddress(std::string(line)));
    }
    return files;
}

FileDrops::FileDrops(QWidget& widget, Act act) : act_(std::move(act))
{
    widget.setAcceptDrops(true);
    widget.installEventFilter(this);
}

bool FileDrops::eventFilter(QObject* /*watched*/, QEvent* event)
{
    if (event->type() != QEvent::DragEnter && event->type() != QEvent::DragMove && event->type() != QEvent::Drop)
        return false;
    auto& drop = static_cast<QDropEvent&>(*event);
    std::vector<std::string> files = FilesIn(drop.mimeData());
    if (files.empty())
        return false;
    // A file manager that proposes to move a file would delete it.
    if (!drop.possibleActions().testFlag(Qt::CopyAction) && !drop.possibleActions().testFlag(Qt::LinkAction)) {
        drop.ignore();
        return true;
    }
    drop.setDropAction(drop.possibleActions().testFlag(Qt::CopyAction) ? Qt::CopyAction : Qt::LinkAction);
    drop.accept();
    // Not within the drop, for whose end the other program waits.
    if (event->type() == QEvent::Drop)
        QMetaObject::invokeMethod(
            this, [act = act_, files = std::move(files)] { act(files); }, Qt::QueuedConnection);
    return true;
}

} // namespace voxmate::qt
