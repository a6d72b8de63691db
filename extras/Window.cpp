#include "extras/Window.h"

#include <algorithm>

namespace voxmate
{

namespace
{

// Gives all spare room along the way from `layout` down to the control; false when the control is not in there.
bool StretchTo(Layout& layout, const Control& control)
{
    const bool found =
        layout.control == &control || std::any_of(layout.children.begin(), layout.children.end(),
                                                  [&control](Layout& child) { return StretchTo(child, control); });
    if (found)
        layout.stretch = std::max(layout.stretch, 1);
    return found;
}

} // namespace

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
