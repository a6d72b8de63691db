// A desktop that is asked whether the user wants to be left alone, and answers when the test does.
#pragma once

#include "platform/Quiet.h"

namespace voxmate::fakes
{

class FakeQuiet : public Quiet
{
public:
    int asked = 0;

    void Ask() override { ++asked; }
};

} // namespace voxmate::fakes
