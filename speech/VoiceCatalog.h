// All voices of all engines in one list, in the order in which they are offered.
#pragma once

#include "platform/SpeechControl.h"
#include "speech/Engine.h"
#include "speech/text/Languages.h"

#include <functional>
#include <map>
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

    /// Takes the engines and queries none of them yet. `desktop` is the desktop's locale ("de-DE", "pt_BR"): voices of
    /// its language come first, the voice of its region before all others, then the English voices, then the rest by
    /// name. At most `limit` voices are listed; KeepWhatFits decides which. `chosen` is called when the list is made
    /// and returns the name of the voice the user chose; that voice is always listed if it is installed.
    VoiceCatalog(std::vector<std::unique_ptr<Engine>> engines, std::string_view desktop, int limit = 1000,
                 std::function<std::string()> chosen = {});

    int CountEngines() override;
    /// Empty for an index outside 1 to CountEngines.
    std::string ModeName(int index) override;
    std::string ModeID(int index) override;

    /// The voice with this mode identifier (case does not matter, braces may be there), else the first one; null when
    /// there is no voice at all.
    const Entry* Find(std::string_view modeId);

    /// The installed voice that reads this script, whether it is listed or not: preferably one of the desktop's
    /// language, otherwise one of the language with most speakers. Null when there is none. Callable from any thread,
    /// but only after Find has been called once.
    const Entry* ReaderOf(Script script) const;

    /// The installed voice that speaks a language (as LanguageFamily names it), whether it is listed or not: preferably
    /// one of `like`'s kind, then one that the user has added, then the language's main one. Null when there is none.
    /// Callable like ReaderOf.
    const Entry* SpeakerOf(const std::string& language, const Entry& like) const;

    /// Has the engines give back the memory that they can have again. On the thread that speaks.
    void Rest() const;

private:
    const std::vector<Entry>& Entries();
    std::vector<Entry> Installed();
    void SortByLanguage(const std::vector<Entry>& installed);
    void ChooseReaders(const std::vector<Entry>& installed);
    std::vector<Entry> KeepWhatFits(const std::vector<Entry>& installed) const;
    void AddVariants(std::vector<Entry>& installed) const;
    int Strangeness(const Voice& voice) const;
    bool IsOwn(const Voice& voice) const;

    std::vector<std::unique_ptr<Engine>> engines_;
    std::string family_;
    std::string wanted_;
    std::size_t limit_;
    std::function<std::string()> chosen_;
    bool listed_ = false;
    std::vector<Entry> entries_;
    std::map<Script, Entry> readers_;
    std::map<std::string, std::vector<Entry>> speakers_; ///< by their languages, the main ones first
};

} // namespace voxmate::speech
