// How the reader's process tells the program what it finds. The program trusts nothing of it.
#pragma once

#include "readers/Block.h"
#include "readers/Kind.h"
#include "readers/Refusal.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace voxmate::readers
{

/// What a frame tells: first the document's kind, then its blocks, at last how it ended.
using Frame = std::variant<Kind, Block, Refusal>;

/// The bytes of a frame: the length of what follows (four bytes, the lowest first), the frame's type, its fields. A
/// block longer than a block may be is cut.
std::string EncodeFrame(const Frame& frame);

/// Takes frames from bytes that come in pieces.
class FrameDecoder
{
public:
    void Add(std::string_view bytes);
    /// The next whole frame; nothing while there is none. After a wrong one there are no more.
    std::optional<Frame> Next();
    /// Whether the bytes are no frames.
    bool Wrong() const { return wrong_; }

private:
    std::string bytes_;
    std::size_t at_ = 0;
    bool wrong_ = false;
};

} // namespace voxmate::readers
