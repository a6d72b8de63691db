#include "agent/body/Idling.h"

#include <algorithm>

namespace voxmate::agent
{

std::vector<const Animation*> StateAnimations(const AcsFile& file, const char* state)
{
    // No real character has more to choose from, and a hostile file must not take minutes to search.
    constexpr std::size_t mostNames = 100;
    std::vector<const Animation*> found;
    if (const auto* names = file.FindState(state))
        for (std::size_t i = 0; i < std::min(names->size(), mostNames); ++i)
            if (const Animation* animation = file.FindAnimation((*names)[i]); animation && !animation->frames.empty())
                found.push_back(animation);
    return found;
}

const Animation* PickAnimation(Stage& stage, const std::vector<const Animation*>& animations)
{
    if (animations.empty())
        return nullptr;
    if (animations.size() == 1)
        return animations.front();
    return animations[static_cast<std::size_t>(stage.Random(static_cast<int>(animations.size())))];
}

Idling::Idling(Stage& stage, const AcsFile& file)
    : stage_(stage), levels_{StateAnimations(file, "IdlingLevel1"), StateAnimations(file, "IdlingLevel2"),
                             StateAnimations(file, "IdlingLevel3")},
      breathes_(!StateAnimations(file, "Breathing").empty())
{
}

const std::vector<const Animation*>* Idling::LevelNow(std::int64_t since) const
{
    const std::int64_t alone = stage_.Now() - since;
    std::size_t level = alone >= Level3After ? 3 : alone >= Level2After ? 2 : 1;
    for (; level > 0; --level)
        if (!levels_[level - 1].empty())
            return &levels_[level - 1];
    return nullptr;
}

int Idling::Delay(std::int64_t since)
{
    if (LevelNow(since))
        return GapMinimum + stage_.Random(GapSpread + 1);
    // Nothing to play yet: the next wake-up is when the first level that has animations begins.
    const std::int64_t alone = stage_.Now() - since;
    for (const auto& [level, after] : {std::pair{std::size_t{2}, Level2After}, std::pair{std::size_t{3}, Level3After}})
        if (!levels_[level - 1].empty() && after > alone)
            return static_cast<int>(after - alone);
    return -1;
}

const Animation* Idling::Choose(std::int64_t since, bool blinks)
{
    const auto* level = LevelNow(since);
    if (!level || !breathes_)
        return level ? PickAnimation(stage_, *level) : nullptr;
    std::vector<const Animation*> choice = *level;
    if (blinks)
        std::erase_if(choice, [](const Animation* animation) { return animation->name == "Blink"; });
    const std::size_t shut = std::min({OthersBetween, lately_.size(), choice.empty() ? 0 : choice.size() - 1});
    std::erase_if(choice, [&](const Animation* animation) {
        return std::find(lately_.begin(), lately_.begin() + static_cast<std::ptrdiff_t>(shut), animation) !=
               lately_.begin() + static_cast<std::ptrdiff_t>(shut);
    });
    const Animation* chosen = PickAnimation(stage_, choice);
    if (chosen) {
        std::erase(lately_, chosen);
        lately_.insert(lately_.begin(), chosen);
        lately_.resize(std::min(lately_.size(), OthersBetween));
    }
    return chosen;
}

} // namespace voxmate::agent
