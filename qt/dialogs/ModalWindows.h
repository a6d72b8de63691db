// Modal windows and the character: it is nobody's window to block.
#pragma once

class QDialog;

namespace voxmate::qt
{

/// Lets the character and its balloon take the mouse while the dialog is up, and beside the one below when it goes. The
/// dialog comes up in the middle of its owner, beside the character where there is room.
void LetCharacterLiveBeside(QDialog& dialog);

} // namespace voxmate::qt
