#include "extras/Window.h"

#include "extras/Arranging.h"

namespace voxmate
{

void MakeSizable(Form& form, const Control& growing)
{
    form.Border = BorderStyle::Sizable;
    StretchTo(form.Arrangement, growing);
}

void KeepGeometry(Form& form, StateStore& state, const std::string& name)
{
    form.Geometry = state.Get(name);
    form.GeometryChanged = [&form, &state, name] { state.Set(name, form.Geometry); };
}

} // namespace voxmate
