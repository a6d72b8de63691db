#include "platform/speech/VoiceCatalog.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

namespace voxmate::speech
{

namespace
{

// Constructed and ancient languages (ISO 639).
constexpr std::array<std::string_view, 16> notNative{"eo",  "ia",   "ie",  "io",  "jbo", "la",  "lfn", "ldn",
                                                     "grc", "piqd", "qdb", "qya", "sjn", "tlh", "tok", "vo"};

// "de-DE", "de_DE.UTF-8" and "DE" are all "de".
std::string PrimaryLanguage(std::string_view tag)
{
    std::string primary(tag.substr(0, tag.find_first_of("-_.@")));
    for (char& c : primary)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return primary;
}

} // namespace

VoiceCatalog::VoiceCatalog(std::vector<std::unique_ptr<Engine>> engines, std::string_view desktopLanguage, int limit)
    : engines_(std::move(engines)), language_(PrimaryLanguage(desktopLanguage)), limit_(static_cast<std::size_t>(limit))
{
}

// Where there are more voices than fit, every language that people speak keeps one: those left out are first languages
// that nobody grows up with, then further regions of a language.
void VoiceCatalog::KeepWhatFits()
{
    if (entries_.size() <= limit_)
        return;
    enum Rank { Wanted, OneALanguage, AnotherRegion, NobodysOwn };
    std::vector<std::string> seen;
    std::vector<std::pair<Rank, std::size_t>> ranked;
    // A tag without a region speaks for its language before one with.
    std::stable_sort(entries_.begin(), entries_.end(),
                     [](const Entry& a, const Entry& b) { return a.voice.language.size() < b.voice.language.size(); });
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        const std::string language = PrimaryLanguage(entries_[i].voice.language);
        Rank rank = OneALanguage;
        if (language == language_ || language == "en")
            rank = Wanted;
        else if (std::find(notNative.begin(), notNative.end(), language) != notNative.end())
            rank = NobodysOwn;
        else if (std::find(seen.begin(), seen.end(), language) != seen.end())
            rank = AnotherRegion;
        seen.push_back(language);
        ranked.emplace_back(rank, i);
    }
    std::sort(ranked.begin(), ranked.end());
    std::vector<Entry> kept;
    for (std::size_t i = 0; i < limit_; ++i)
        kept.push_back(entries_[ranked[i].second]);
    entries_ = std::move(kept);
}

const std::vector<VoiceCatalog::Entry>& VoiceCatalog::Entries()
{
    if (listed_)
        return entries_;
    listed_ = true;
    for (const auto& engine : engines_)
        for (const Voice& voice : engine->Voices())
            entries_.push_back({voice, engine.get()});
    KeepWhatFits();
    const auto key = [this](const Entry& entry) {
        const std::string language = PrimaryLanguage(entry.voice.language);
        const int group = language == language_ ? 0 : language == "en" ? 1 : 2;
        return std::make_tuple(group, UCase(entry.voice.name));
    };
    std::stable_sort(entries_.begin(), entries_.end(),
                     [&key](const Entry& a, const Entry& b) { return key(a) < key(b); });
    return entries_;
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

} // namespace voxmate::speech
