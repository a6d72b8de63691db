// The commands a program has added to a character, and the right-click menu they make.
#pragma once

#include "agent/Stage.h"
#include "platform/Agent.h"

#include <string>
#include <vector>

namespace voxmate::agent
{

class CommandList : public AgentCommands
{
public:
    void Add(const std::string& name, const std::string& caption, const std::string& voice, bool enabled,
             bool visible) override;

    /// The visible commands in the order in which they were added, then a rule and "Hide"; only "Hide" when there are
    /// none.
    std::vector<MenuEntry> Menu() const;

    /// The name of the menu's own entry. Entries are told apart by name alone, so this is one that no program is likely
    /// to give to a command.
    static constexpr const char* HideName = "<Hide>";

private:
    struct Command {
        std::string name;
        std::string caption;
        std::string voice; ///< kept as given; there is no speech input
        bool enabled = true;
        bool visible = true;
    };
    std::vector<Command> commands_;
};

} // namespace voxmate::agent
