// Things to look at: a moving picture, a pane that sets a text off, a sample of a font.
#pragma once

#include "controls/Control.h"

#include <string>
#include <utility>

namespace voxmate
{

/// A picture box with an animated picture from the shared data (icons/NAME.gif), which plays while it is visible.
class MovingPicture : public Control
{
public:
    MovingPicture(Form* form, std::string name, std::string picture, int size)
        : Control(form, std::move(name)), Picture(std::move(picture)), SizePx(size)
    {
    }
    const std::string Picture;
    const int SizePx; ///< width and height in device-independent pixels
};

/// A picture box that holds other controls on the background of a page; the arrangement says which, as with a frame. It
/// scrolls when its content does not fit.
class Pane : public Frame
{
public:
    using Frame::Frame;
};

/// A label that shows its caption in its font on one line. A font too large for the line is drawn only as large as the
/// line; its real size is given beside the sample.
class FontSample : public Label
{
public:
    using Label::Label;
};

} // namespace voxmate
