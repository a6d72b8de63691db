// All voices of all engines in one list, in the order in which they are offered.
#pragma once

#include "platform/SpeechControl.h"
#include "platform/speech/Engine.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate::speech
{

class VoiceCatalog final : public SpeechControl
{
public:
    struct Entry {
        Voice voice;
        Engine* engine = nullptr;
    };

    /// Takes the engines; asks none of them anything yet. `desktopLanguage` is a BCP 47 tag ("de-DE"): its voices come
    /// first, then the English ones, then the rest, each group by name.
    /// Where there are more than `limit` voices, further regions and constructed languages are left out.
    VoiceCatalog(std::vector<std::unique_ptr<Engine>> engines, std::string_view desktopLanguage, int limit = 1000);

    int CountEngines() override;
    /// Empty for an index outside 1 to CountEngines.
    std::string ModeName(int index) override;
    std::string ModeID(int index) override;

    /// The voice with this mode identifier (case does not matter, braces may be there), else the first one; null when
    /// there is no voice at all.
    const Entry* Find(std::string_view modeId);

private:
    const std::vector<Entry>& Entries();
    void KeepWhatFits();

    std::vector<std::unique_ptr<Engine>> engines_;
    std::string language_;
    std::size_t limit_;
    bool listed_ = false;
    std::vector<Entry> entries_;
};

} // namespace voxmate::speech
