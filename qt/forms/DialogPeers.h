// Peers of the controls that dialogs are made of: option buttons, tabs, pictures, samples.
#pragma once

#include "qt/forms/ControlPeers.h"

#include <memory>

namespace voxmate::qt
{

/// Makes the widget of such a control, as CreateWidgetPeer does; nullptr for any other control.
std::unique_ptr<WidgetPeer> CreateDialogPeer(Control& control, const IconSet& icons, QWidget* parent);

} // namespace voxmate::qt
