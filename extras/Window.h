// The main window's size, place and first focus.
#pragma once

#include "controls/Form.h"
#include "platform/StateStore.h"

namespace voxmate
{

/// Lets the user resize a form that has a fixed size; the room goes to `growing`. Only before the form is loaded.
void MakeSizable(Form& form, const Control& growing);

/// Keeps the form's size and place from run to run under `name`. Only before the form is loaded.
void KeepGeometry(Form& form, StateStore& state, const std::string& name);

} // namespace voxmate
