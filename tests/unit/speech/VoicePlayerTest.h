// A player over a fake engine and a fake sound output, and what it has told.
#pragma once

#include "speech/player/VoicePlayer.h"
#include "tests/fakes/Eventually.h"
#include "tests/fakes/FakeAudioOutput.h"
#include "tests/fakes/FakeEngine.h"
#include "tests/unit/speech/Segments.h"

#include <gtest/gtest.h>

namespace voxmate::speech
{

class VoicePlayerTest : public ::testing::Test
{
protected:
    VoicePlayerTest()
    {
        auto owned = std::make_unique<fakes::FakeEngine>(
            std::vector<Voice>{{"Anna", "11111111-0000-8000-8000-000000000000", "en-gb", "anna"},
                               {"Bert", "22222222-0000-8000-8000-000000000000", "en-gb", "bert"}});
        engine = owned.get();
        std::vector<std::unique_ptr<Engine>> engines;
        engines.push_back(std::move(owned));
        catalog = std::make_unique<VoiceCatalog>(std::move(engines), "en-GB");
        player = std::make_unique<VoicePlayer>(*catalog, output);
    }

    VoiceEvents Log()
    {
        VoiceEvents events;
        events.Started = [this] { log.push_back("started"); };
        events.Word = [this](int word) { log.push_back("word " + std::to_string(word)); };
        events.Mouth = [this](int mouth) { log.push_back("mouth " + std::to_string(mouth)); };
        events.Bookmark = [this](int number) { log.push_back("bookmark " + std::to_string(number)); };
        events.Ended = [this](bool ok) { log.push_back(ok ? "ended well" : "ended badly"); };
        return events;
    }

    Utterance Say(std::string text, std::string modeId = {})
    {
        Utterance utterance;
        utterance.modeId = std::move(modeId);
        utterance.segments.push_back(Text(std::move(text)));
        return utterance;
    }

    using Lines = std::vector<std::string>;

    fakes::FakeAudioOutput output;
    fakes::FakeEngine* engine = nullptr;
    std::unique_ptr<VoiceCatalog> catalog;
    std::unique_ptr<VoicePlayer> player;
    Lines log;
};

} // namespace voxmate::speech
