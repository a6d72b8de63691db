// Changes of a form's arrangement, before the form is loaded.
#pragma once

#include "controls/Layout.h"

namespace voxmate
{

/// Lets the control take the spare room, all the way from the outermost layout down to it; false when it is not there.
bool StretchTo(Layout& arrangement, const Control& control);

/// The control's item; null when it is not there.
Layout* ItemOf(Layout& arrangement, const Control& control);

/// Takes the control's item out of the arrangement; empty room when it is not there.
Layout TakeOut(Layout& arrangement, const Control& control);

/// Puts an item or layout behind the control, into the same layout; false when the control is not there.
bool PutBehind(Layout& arrangement, const Control& control, Layout what);

/// Puts an item or layout behind all that is in a frame; false when the frame is not there.
bool PutAtEnd(Layout& arrangement, const Control& frame, Layout what);

} // namespace voxmate
