#include "speech/VoiceCatalog.h"

#include "base/Text.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace voxmate::speech
{

namespace
{

// A language with at least this many million speakers gets a voice on the list before any voice the user added for
// another language.
constexpr double LargeLanguage = 50;

// Whether a voice is one of the English ones that every list has: those in the two main accents, British and American,
// and any the user added.
bool IsMainEnglish(const Voice& voice)
{
    return voice.origin == Voice::Origin::Added || voice.language == "en" || voice.language == "en-gb" ||
           voice.language == "en-us";
}

} // namespace

VoiceCatalog::VoiceCatalog(std::vector<std::unique_ptr<Engine>> engines, std::string_view desktop, int limit,
                           std::function<std::string()> chosen)
    : engines_(std::move(engines)), family_(LanguageFamily(desktop)), wanted_(WantedTag(desktop)),
      limit_(static_cast<std::size_t>(limit)), chosen_(std::move(chosen))
{
}

bool VoiceCatalog::IsOwn(const Voice& voice) const
{
    return LanguageFamily(voice.language) == family_;
}

/// How far a voice is from the one the desktop wants, or for another language from the one most of its speakers expect:
/// 0 to 2.
int VoiceCatalog::Strangeness(const Voice& voice) const
{
    if (voice.language == wanted_)
        return 0;
    return voice.language == MainTag(voice.language) ? 1 : 2;
}

/// Adds the variants of the desktop's first voice and of the first English one, and of any other voice the one variant
/// that the user has chosen.
void VoiceCatalog::AddVariants(std::vector<Entry>& installed) const
{
    const std::string chosen = chosen_ ? chosen_() : std::string();
    const auto firstOf = [&](const auto& condition) {
        const Entry* first = nullptr;
        for (const Entry& entry : installed)
            if (entry.voice.origin == Voice::Origin::Engine && condition(entry.voice) &&
                (!first || Strangeness(entry.voice) < Strangeness(first->voice)) &&
                !entry.engine->VariantsOf(entry.voice).empty())
                first = &entry;
        return first;
    };
    const Entry* const own = firstOf([this](const Voice& voice) { return IsOwn(voice); });
    const Entry* const english =
        firstOf([](const Voice& voice) { return PrimaryLanguage(voice.language) == "en" && IsMainEnglish(voice); });
    std::vector<Entry> variants;
    for (const Entry& entry : installed)
        for (Voice& variant : entry.engine->VariantsOf(entry.voice))
            if (&entry == own || &entry == english || variant.name == chosen)
                variants.push_back({std::move(variant), entry.engine});
    installed.insert(installed.end(), variants.begin(), variants.end());
}

std::vector<VoiceCatalog::Entry> VoiceCatalog::Installed()
{
    std::vector<Entry> installed;
    for (const auto& engine : engines_)
        for (const Voice& voice : engine->Voices())
            installed.push_back({voice, engine.get()});
    AddVariants(installed);
    return installed;
}

/// Chooses which voices stay when there are more than fit: those that more people have a use for. The order is: the
/// voice the user chose, the desktop's language, two accents of English (the program's own phrases are English), the
/// large languages, voices the user added, variants, one voice of each further language by its number of speakers,
/// further accents, and finally languages that are nobody's mother tongue.
std::vector<VoiceCatalog::Entry> VoiceCatalog::KeepWhatFits(const std::vector<Entry>& installed) const
{
    enum Rank { Chosen, Own, English, Large, Added, Variant, Language, Accent, NobodysOwn };
    const std::string chosen = chosen_ ? chosen_() : std::string();
    // The voice that stands for each language, or for an accent that counts as a language.
    std::map<std::string, std::size_t> speakers;
    const auto nameOf = [](const Voice& voice) {
        return CountsByItself(voice.language) && voice.language != MainTag(voice.language)
                   ? voice.language
                   : PrimaryLanguage(voice.language);
    };
    for (std::size_t i = 0; i < installed.size(); ++i) {
        const Voice& voice = installed[i].voice;
        if (voice.origin != Voice::Origin::Engine)
            continue;
        const auto [known, isNew] = speakers.emplace(nameOf(voice), i);
        if (!isNew && Strangeness(voice) < Strangeness(installed[known->second].voice))
            known->second = i;
    }
    const auto rankOf = [&](std::size_t i) {
        const Voice& voice = installed[i].voice;
        if (!chosen.empty() && voice.name == chosen)
            return Chosen;
        if (voice.origin == Voice::Origin::Variant)
            return Variant;
        if (IsOwn(voice))
            return Own;
        if (PrimaryLanguage(voice.language) == "en")
            return IsMainEnglish(voice) ? English : Accent;
        if (voice.origin == Voice::Origin::Added)
            return Added;
        const double millions = MillionsOfSpeakers(voice.language);
        if (millions == 0)
            return NobodysOwn;
        if (speakers.at(nameOf(voice)) != i)
            return Accent;
        return millions >= LargeLanguage ? Large : Language;
    };
    std::vector<std::tuple<Rank, double, std::size_t>> ranked;
    for (std::size_t i = 0; i < installed.size(); ++i)
        ranked.emplace_back(rankOf(i), -MillionsOfSpeakers(installed[i].voice.language), i);
    std::sort(ranked.begin(), ranked.end());
    std::vector<Entry> kept;
    for (std::size_t i = 0; i < std::min(limit_, ranked.size()); ++i)
        kept.push_back(installed[std::get<std::size_t>(ranked[i])]);
    return kept;
}

void VoiceCatalog::ChooseReaders(const std::vector<Entry>& installed)
{
    const auto key = [this](const Voice& voice) {
        return std::make_tuple(!IsOwn(voice), -MillionsOfSpeakers(voice.language), Strangeness(voice));
    };
    for (int i = static_cast<int>(Script::Latin); i <= static_cast<int>(Script::Han); ++i) {
        const auto script = static_cast<Script>(i);
        const Entry* best = nullptr;
        for (const Entry& entry : installed)
            if (entry.voice.origin == Voice::Origin::Engine && CanSay(entry.voice.language, script) &&
                (!best || key(entry.voice) < key(best->voice)))
                best = &entry;
        if (best)
            readers_.emplace(script, *best);
    }
}

void VoiceCatalog::SortByLanguage(const std::vector<Entry>& installed)
{
    for (const Entry& entry : installed)
        if (entry.voice.origin != Voice::Origin::Variant)
            speakers_[LanguageFamily(entry.voice.language)].push_back(entry);
    const auto key = [this](const Entry& entry) {
        const Voice& voice = entry.voice;
        return std::make_tuple(Strangeness(voice), PrimaryLanguage(voice.language) == "en" && !IsMainEnglish(voice),
                               -MillionsOfSpeakers(voice.language));
    };
    for (auto& [language, entries] : speakers_)
        std::stable_sort(entries.begin(), entries.end(),
                         [&key](const Entry& a, const Entry& b) { return key(a) < key(b); });
}

const std::vector<VoiceCatalog::Entry>& VoiceCatalog::Entries()
{
    if (listed_)
        return entries_;
    listed_ = true;
    const std::vector<Entry> installed = Installed();
    ChooseReaders(installed);
    SortByLanguage(installed);
    entries_ = KeepWhatFits(installed);
    const auto key = [this](const Entry& entry) {
        const bool own = IsOwn(entry.voice);
        const int group = own ? 0 : PrimaryLanguage(entry.voice.language) == "en" ? 1 : 2;
        return std::make_tuple(group, own ? Strangeness(entry.voice) : 0, UCase(entry.voice.name));
    };
    std::stable_sort(entries_.begin(), entries_.end(),
                     [&key](const Entry& a, const Entry& b) { return key(a) < key(b); });
    return entries_;
}

void VoiceCatalog::Rest() const
{
    for (const auto& engine : engines_)
        engine->Rest();
}

int VoiceCatalog::CountEngines()
{
    return static_cast<int>(Entries().size());
}

std::string VoiceCatalog::ModeName(int index)
{
    return index >= 1 && index <= CountEngines() ? entries_[static_cast<std::size_t>(index) - 1].voice.name
                                                 : std::string();
}

std::string VoiceCatalog::ModeID(int index)
{
    return index >= 1 && index <= CountEngines() ? entries_[static_cast<std::size_t>(index) - 1].voice.modeId
                                                 : std::string();
}

const VoiceCatalog::Entry* VoiceCatalog::Find(std::string_view modeId)
{
    if (modeId.starts_with('{') && modeId.ends_with('}'))
        modeId = modeId.substr(1, modeId.size() - 2);
    const std::vector<Entry>& entries = Entries();
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](const Entry& entry) { return EqualNoCase(entry.voice.modeId, modeId); });
    if (found != entries.end())
        return &*found;
    return entries.empty() ? nullptr : &entries.front();
}

const VoiceCatalog::Entry* VoiceCatalog::ReaderOf(Script script) const
{
    const auto found = readers_.find(script);
    return found == readers_.end() ? nullptr : &found->second;
}

const VoiceCatalog::Entry* VoiceCatalog::SpeakerOf(const std::string& language, const Entry& like) const
{
    const auto found = speakers_.find(language);
    if (found == speakers_.end())
        return nullptr;
    const std::vector<Entry>& entries = found->second;
    auto best = std::find_if(entries.begin(), entries.end(),
                             [&like](const Entry& entry) { return entry.engine == like.engine; });
    if (best == entries.end())
        best = std::find_if(entries.begin(), entries.end(),
                            [](const Entry& entry) { return entry.voice.origin == Voice::Origin::Added; });
    return best == entries.end() ? &entries.front() : &*best;
}

} // namespace voxmate::speech
