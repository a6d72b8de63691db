// A form without frame and title that sets its own place, moves by itself and places its labels by pixels.
#pragma once

#include "controls/Form.h"

#include <cstdint>

namespace voxmate
{

class PlacedForm : public Form
{
public:
    using Form::Form;

    /// The place and size of the window on the screen, in twips; right and down are positive. They are valid before the
    /// form is loaded, too.
    std::int32_t Left() const { return left_; }
    std::int32_t Top() const { return top_; }
    std::int32_t Width() const { return width_; }
    std::int32_t Height() const { return height_; }
    void Move(std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height)
    {
        left_ = left;
        top_ = top;
        width_ = width;
        height_ = height;
        Changed(Property::Place);
    }
    void SetTop(std::int32_t top) { Move(left_, top, width_, height_); }
    void SetHeight(std::int32_t height) { Move(left_, top_, width_, height); }

    /// The user clicked where no control stands.
    void UserClick() { Form_Click(); }

protected:
    virtual void Form_Click() {}

private:
    std::int32_t left_ = 0;
    std::int32_t top_ = 0;
    std::int32_t width_ = 0;
    std::int32_t height_ = 0;
};

} // namespace voxmate
