#include "agent/Server.h"

#include "base/FileName.h"
#include "base/RuntimeError.h"

#include <utility>

namespace voxmate::agent
{

namespace
{

// The classic Basic run-time's numbers for "Invalid file format" and "This key is already associated with an element of
// this collection".
constexpr std::int32_t kInvalidFile = 321;
constexpr std::int32_t kNameTaken = 457;

std::shared_ptr<const AcsFile> ReadFile(const std::string& path)
{
    return AcsFile::Open(InAnyExtensionCase(path));
}

} // namespace

Server::Server(Stage& stage, speech::VoiceOutput& voice, Reader reader)
    : stage_(stage), voice_(voice), reader_(reader ? std::move(reader) : ReadFile), events_(stage)
{
    turn_.Freed = [this] {
        for (const auto& [name, character] : characters_)
            character->Wake();
    };
    stage_.ScreensChanged = [this] {
        for (const auto& [name, character] : characters_)
            character->ScreensChanged();
    };
}

Server::~Server()
{
    turn_.Freed = nullptr;
    stage_.ScreensChanged = nullptr;
}

void Server::Load(const std::string& name, const std::string& path)
{
    if (characters_.contains(name))
        throw RuntimeError(kNameTaken, "The character \"" + name + "\" is loaded already.");
    std::shared_ptr<const AcsFile> file;
    try {
        file = reader_(path);
    } catch (const AcsError& error) {
        throw RuntimeError(kInvalidFile, error.what());
    }
    auto character =
        std::make_unique<Character>(Shared{stage_, voice_, turn_, order_, events_, *this}, name, std::move(file));
    character->SetSoundEffectsOn(soundEffectsOn_);
    character->SetIdleLife(life_);
    if (feet_)
        character->StandAt(*std::exchange(feet_, std::nullopt));
    if (aside_)
        character->StandAsideAt(*std::exchange(aside_, std::nullopt));
    characters_.emplace(name, std::move(character));
}

void Server::Unload(const std::string& name)
{
    const auto found = characters_.find(name);
    if (found == characters_.end())
        return;
    // Removed from the collection first, so that it is not woken while it goes.
    const std::unique_ptr<Character> leaving = std::move(found->second);
    characters_.erase(found);
    if (const auto feet = leaving->Feet())
        feet_ = feet;
    aside_ = leaving->FeetAside();
}

AgentCharacter& Server::Characters(const std::string& name)
{
    const auto found = characters_.find(name);
    if (found == characters_.end())
        throw SubscriptOutOfRange();
    return *found->second;
}

AudioStatus Server::AudioOutputStatus()
{
    return voice_.Status();
}

void Server::SetSoundEffectsOn(bool on)
{
    soundEffectsOn_ = on;
    for (const auto& [name, character] : characters_)
        character->SetSoundEffectsOn(on);
}

void Server::SetIdleLife(IdleLife life)
{
    life_ = life;
    for (const auto& [name, character] : characters_)
        character->SetIdleLife(life);
}

} // namespace voxmate::agent
