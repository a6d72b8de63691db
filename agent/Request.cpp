#include "agent/Request.h"

#include "base/Text.h"

#include <algorithm>
#include <utility>

namespace voxmate::agent
{

void RequestOrder::RunBefore(std::uint64_t number, const std::function<void()>& action)
{
    struct Restore {
        std::uint64_t& end;
        const std::uint64_t before;
        ~Restore() { end = before; }
    } const restore{end_, std::exchange(end_, number)};
    action();
}

StopTypes ParseStopTypes(std::string_view types)
{
    if (Trim(types).empty())
        return {true, true, true};
    StopTypes wanted;
    for (std::size_t at = 0; at <= types.size();) {
        const std::size_t end = std::min(types.find(',', at), types.size());
        const std::string word = Trim(types.substr(at, end - at));
        wanted.play = wanted.play || EqualNoCase(word, "Play");
        wanted.speak = wanted.speak || EqualNoCase(word, "Speak");
        wanted.visibility = wanted.visibility || EqualNoCase(word, "Visibility");
        at = end + 1;
    }
    return wanted;
}

} // namespace voxmate::agent
