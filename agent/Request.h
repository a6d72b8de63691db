// One entry of a character's request queue.
#pragma once

#include "platform/Agent.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

namespace voxmate::agent
{

enum class RequestKind { Show, Hide, Play, Speak };

class Request : public AgentRequest
{
public:
    explicit Request(RequestKind requestKind) : kind(requestKind) {}
    RequestStatus Status() const override { return status; }

    const RequestKind kind;
    std::uint64_t number = 0; ///< in the order of asking, over all characters
    RequestStatus status = RequestStatus::Pending;
    bool fast = false;     ///< Show, Hide: without an animation
    bool byUser = false;   ///< Hide: from the menu; no request of the program, so no request events
    std::string animation; ///< Play
    std::string text;      ///< Speak: until its turn comes
    std::string url;       ///< Speak: a wave file to be played instead, or empty
};
using RequestPtr = std::shared_ptr<Request>;

/// Which kinds StopAll is to stop.
struct StopTypes {
    bool play = false;
    bool speak = false;
    bool visibility = false;

    bool Includes(RequestKind kind) const
    {
        if (kind == RequestKind::Play)
            return play;
        return kind == RequestKind::Speak ? speak : visibility;
    }
};

/// The order in which requests are made, of all characters, and how far along it StopAll reaches.
class RequestOrder
{
public:
    /// The number of a new request, higher than all before.
    std::uint64_t Next() { return ++last_; }
    /// Whether StopAll, called now, may touch the request of that number.
    bool Reaches(std::uint64_t number) const { return number < end_; }
    /// Runs `action`; what StopAll does in it reaches only requests made before the one of `number`.
    void RunBefore(std::uint64_t number, const std::function<void()>& action);

private:
    std::uint64_t last_ = 0;
    std::uint64_t end_ = std::numeric_limits<std::uint64_t>::max();
};

/// Reads a comma-separated list of "Move", "Play", "Speak", "Visibility" and "Get", without regard to case and blanks;
/// an empty list means all. No request of the types Move and Get exists here; unknown words mean nothing.
StopTypes ParseStopTypes(std::string_view types);

} // namespace voxmate::agent
