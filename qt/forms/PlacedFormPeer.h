// The window of a form that places itself, with a widget for each of its labels.
#pragma once

#include "controls/PlacedForm.h"
#include "qt/alerts/PlacedWindow.h"
#include "qt/forms/ControlPeers.h"

#include <memory>
#include <vector>

namespace voxmate::qt
{

class PlacedFormPeer : public FormPeer
{
public:
    /// Makes peers for the form's labels and timers; other controls are not supported on such a form.
    explicit PlacedFormPeer(PlacedForm& form);
    ~PlacedFormPeer() override;

    void Show() override;
    void Hide() override;
    void Update(Property property) override;
    void Activate() override;
    void PopupMenu(Menu& menu, Control* at) override;

    PlacedWindow* Window() const { return window_; }

private:
    PlacedForm& form_;
    PlacedWindow* window_;
    std::vector<std::unique_ptr<Peer>> peers_;
};

} // namespace voxmate::qt
