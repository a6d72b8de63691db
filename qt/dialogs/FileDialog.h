// What the folder picker and the dialog for opening a file have in common.
#pragma once

#include <QPointer>

class QFileDialog;
class QString;
class QWidget;

namespace voxmate::qt
{

/// A modal dialog over files and folders that begins in the folder `begin`, or at home when there is no such folder,
/// with the places people keep things in at its side. It stands over the window `over` while that is to be seen, and
/// may go with it while it is up. The caller deletes it.
QPointer<QFileDialog> NewFileDialog(QWidget* over, const QString& title, const QString& begin);

} // namespace voxmate::qt
