// A main window whose reminder editor is the real one.
#pragma once

#include "forms/frmReminder.h"
#include "tests/fakes/FakeMainWindow.h"

namespace voxmate::fakes
{

class EditorsMain : public fakes::FakeMainWindow
{
public:
    using FakeMainWindow::FakeMainWindow;
    frmReminder* form = nullptr;
    ReminderEditor& Editor() override { return *form; }
};

} // namespace voxmate::fakes
