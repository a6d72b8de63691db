// What the folder picker and the dialog for opening a file have in common.
#pragma once

#include <QPointer>

#include <string>
#include <vector>

class QFileDialog;
class QString;
class QWidget;

namespace voxmate::qt
{

/// Makes a modal file dialog that begins in the folder `begin`, or in the home folder when `begin` does not exist, with
/// the usual places and the folders `recent` listed at its side. It stands over the window `over` if that is visible.
/// The caller deletes it; if `over` is destroyed while the dialog is up the pointer becomes null.
QPointer<QFileDialog> NewFileDialog(QWidget* over, const QString& title, const QString& begin,
                                    const std::vector<std::string>& recent = {});

} // namespace voxmate::qt
