// Files that other programs hand over by a drop or on the clipboard.
#pragma once

#include <QMimeData>
#include <QObject>
#include <QWidget>

#include <functional>
#include <string>
#include <vector>

namespace voxmate::qt
{

/// The paths of the files that `data` names ("text/uri-list"), in order; the address of a file on another computer as
/// it is. Empty when it names none, or when not all it names are files.
std::vector<std::string> FilesIn(const QMimeData* data);

/// Takes the files that are dropped on a widget, which are copied and never moved, and hands them to `act` from the
/// event loop, as long as this object lives. Everything else that is dropped goes on to the widget.
class FileDrops : public QObject
{
public:
    using Act = std::function<void(const std::vector<std::string>& files)>;

    FileDrops(QWidget& widget, Act act);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Act act_;
};

} // namespace voxmate::qt
