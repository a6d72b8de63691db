// A program at work that writes what it was told to.
#pragma once

#include "platform/Helper.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <span>
#include <string>

namespace voxmate::fakes
{

class FakeHelper : public Helper
{
public:
    std::deque<std::string> pieces; ///< an empty one: nothing for a while
    End end = End::Well;

    std::size_t Read(std::span<char> buffer, std::chrono::milliseconds /*wait*/) override
    {
        if (pieces.empty())
            return 0;
        const std::size_t count = std::min(buffer.size(), pieces.front().size());
        std::copy_n(pieces.front().begin(), count, buffer.begin());
        pieces.front().erase(0, count);
        if (pieces.front().empty())
            pieces.pop_front();
        return count;
    }
    bool AtEnd() const override { return pieces.empty(); }
    End Ending() override { return end; }
};

} // namespace voxmate::fakes
