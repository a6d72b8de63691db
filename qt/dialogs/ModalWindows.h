// Keeps modal windows from blocking the character, which belongs to no window.
#pragma once

class QDialog;

namespace voxmate::qt
{

/// Lets the character and its balloon take the mouse while the dialog is up; when it closes they stay usable beside the
/// modal dialog below it, if any. The dialog appears centred on its owner, beside the character where there is room.
void LetCharacterLiveBeside(QDialog& dialog);

} // namespace voxmate::qt
