#include "agent/CommandList.h"

namespace voxmate::agent
{

void CommandList::Add(const std::string& name, const std::string& caption, const std::string& voice, bool enabled,
                      bool visible)
{
    commands_.push_back({name, caption, voice, enabled, visible});
}

std::vector<MenuEntry> CommandList::Menu() const
{
    std::vector<MenuEntry> entries;
    for (const Command& command : commands_)
        if (command.visible)
            entries.push_back({command.name, command.caption, command.enabled});
    if (!entries.empty())
        entries.push_back({"", "-", true});
    entries.push_back({HideName, "Hide", true});
    return entries;
}

} // namespace voxmate::agent
