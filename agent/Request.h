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
    explicit Request(RequestKind ofKind, bool isFast = false) : kind(ofKind), fast(isFast) {}
    RequestStatus Status() const override { return status; }

    const RequestKind kind;
    const bool fast;          ///< Show, Hide: without an animation
    std::uint64_t number = 0; ///< rises with every request, over all characters
    RequestStatus status = RequestStatus::Pending;
    bool byUser = false;   ///< Hide: chosen in the menu, not by the program, so it raises no request events
    std::string animation; ///< Play
    std::string text;      ///< Speak: kept until its turn comes
    std::string url;       ///< Speak: path of a wave file to be played instead, or empty
};
using RequestPtr = std::shared_ptr<Request>;

/// The kinds of request that StopAll is to stop.
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

/// Numbers the requests of all characters in the order in which they are made, and limits which of them StopAll
/// reaches.
class RequestOrder
{
public:
    /// The number of a new request, higher than all before it.
    std::uint64_t Next() { return ++last_; }
    /// Whether StopAll, called now, may touch the request with this number.
    bool Reaches(std::uint64_t number) const { return number < end_; }
    /// Runs `action`. A StopAll within it reaches only requests made before request `number`.
    void RunBefore(std::uint64_t number, const std::function<void()>& action);

private:
    std::uint64_t last_ = 0;
    std::uint64_t end_ = std::numeric_limits<std::uint64_t>::max();
};

/// Reads a comma-separated list of "Move", "Play", "Speak", "Visibility" and "Get"; case, and blanks around a word, do
/// not matter. An empty list means all types. "Move" and "Get" select nothing, as no such requests exist here; unknown
/// words are ignored.
StopTypes ParseStopTypes(std::string_view types);

} // namespace voxmate::agent
