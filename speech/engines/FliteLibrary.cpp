#include "speech/engines/FliteLibrary.h"

#include "platform/SharedLibrary.h"
#include "platform/Trial.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string_view>

namespace voxmate::speech
{

namespace
{

// The library is in several files, all of one version.
std::string PartOfLibrary(const std::string& name)
{
    return SharedLibrary::FileName(name, 1);
}

const std::optional<SharedLibrary>& CoreLibrary()
{
    static const std::optional<SharedLibrary> library = SharedLibrary::Load(PartOfLibrary("flite"));
    return library;
}

/// Reads the elements of a voice file; converts to false for good once one is missing.
class FlitevoxReader
{
public:
    explicit FlitevoxReader(const std::filesystem::path& path) : file_(path, std::ios::binary) {}

    explicit operator bool() const { return static_cast<bool>(file_); }

    std::int32_t Number()
    {
        std::array<char, 4> bytes{};
        file_.read(bytes.data(), bytes.size());
        std::int32_t number = 0; // in this machine's byte order, as the library writes it
        std::memcpy(&number, bytes.data(), bytes.size());
        return file_ ? number : 0;
    }

    /// Reads a length, which includes the terminator, and then the text.
    std::string Text()
    {
        constexpr std::int32_t longest = 4096;
        const std::int32_t length = Number();
        if (length < 1 || length > longest)
            file_.setstate(std::ios::failbit);
        if (!file_)
            return {};
        std::string text(static_cast<std::size_t>(length), '\0');
        file_.read(text.data(), length);
        text.pop_back();
        return text;
    }

    bool Begins(std::string_view mark)
    {
        std::string text(mark.size() + 1, '\0');
        file_.read(text.data(), static_cast<std::streamsize>(text.size()));
        const bool begins = file_ && text.starts_with(mark) && text.back() == '\0';
        if (Number() != 1) // the file was written on a machine with another byte order
            file_.setstate(std::ios::failbit);
        return begins;
    }

private:
    std::ifstream file_;
};

} // namespace

std::optional<FlitevoxHead> ReadFlitevoxHead(const std::filesystem::path& file)
{
    FlitevoxReader in(file);
    FlitevoxHead head;
    if (!in.Begins("CMU_FLITE_CG_VOXDATA-v2.0"))
        return std::nullopt;
    constexpr int mostFeatures = 1000;
    std::string name;
    for (int i = 0; i < mostFeatures && in && name != "end_of_features"; ++i) {
        name = in.Text();
        const std::string value = in.Text();
        if (name == "language")
            head.language = value;
        if (name == "country")
            head.country = value;
    }
    in.Text(); // the database's name
    const std::int32_t types = in.Number();
    for (std::int32_t i = 0; i < types && in; ++i)
        in.Text();
    if (in.Number() != types) // the count is stored twice
        return std::nullopt;
    head.sampleRate = in.Number();
    constexpr int lowestRate = 8000;
    constexpr int highestRate = 48000;
    if (!in || name != "end_of_features" || head.sampleRate < lowestRate || head.sampleRate > highestRate)
        return std::nullopt;
    return head;
}

std::filesystem::path FliteLibrary::Folder()
{
    return CoreLibrary() ? CoreLibrary()->Folder() : std::filesystem::path();
}

bool FliteLibrary::HasVoice(const std::string& key)
{
    const std::filesystem::path folder = Folder();
    std::error_code error;
    return !folder.empty() && std::filesystem::exists(folder / PartOfLibrary("flite_cmu_us_" + key), error);
}

bool FliteLibrary::Load()
{
    const std::optional<SharedLibrary>& library = CoreLibrary();
    if (!library)
        return false;
    bool complete = true;
    const auto load = [&]<typename Function>(Function& function, const char* name) {
        function = library->Find<Function>(name);
        complete = complete && function;
    };
    load(voiceLoad, "flite_voice_load");
    load(addLanguage, "flite_add_lang");
    load(init, "flite_init");
    load(synthText, "flite_synth_text");
    load(deleteUtterance, "delete_utterance");
    load(featSet, "feat_set");
    load(featSetFloat, "feat_set_float");
    load(featPresent, "feat_present");
    load(featVal, "feat_val");
    load(valCgDb, "val_cg_db");
    load(cgDbVal, "cg_db_val");
    load(newStreamingInfo, "new_audio_streaming_info");
    load(streamingInfoVal, "audio_streaming_info_val");
    load(uttRelation, "utt_relation");
    load(relationHead, "relation_head");
    load(itemNext, "item_next");
    load(featureString, "flite_ffeature_string");
    load(featureFloat, "flite_ffeature_float");
    load(featureInt, "flite_ffeature_int");
    if (complete)
        init();
    return complete;
}

bool FliteLibrary::LoadEnglish()
{
    if (english_)
        return true;
    const auto rulesLibrary = SharedLibrary::Load(Folder() / PartOfLibrary("flite_usenglish"));
    const auto lexiconLibrary = SharedLibrary::Load(Folder() / PartOfLibrary("flite_cmulex"));
    if (!rulesLibrary || !lexiconLibrary)
        return false;
    const auto rules = rulesLibrary->Find<void (*)(cst_voice*)>("usenglish_init");
    const auto lexicon = lexiconLibrary->Find<cst_lexicon* (*)()>("cmulex_init");
    english_ = rules && lexicon && addLanguage("eng", rules, lexicon);
    return english_;
}

std::optional<bool> FliteLibrary::SpeaksWell(const std::filesystem::path& file,
                                             const std::function<bool()>& wanted) const
{
    constexpr TrialLimits limits{std::chrono::seconds(20), std::uint64_t{1} << 32};
    return TryInProcess(
        [&] {
            cst_voice* const voice = voiceLoad(file.string().c_str());
            return voice && synthText("The old clock has stopped, has it?", voice) != nullptr;
        },
        limits, wanted);
}

cst_voice* FliteLibrary::LoadFile(const std::filesystem::path& file, const std::function<bool()>& wanted)
{
    if (damaged_.contains(file) || !LoadEnglish())
        return nullptr;
    const std::optional<bool> speaks = SpeaksWell(file, wanted);
    if (!speaks)
        return nullptr;
    cst_voice* const voice = *speaks ? voiceLoad(file.string().c_str()) : nullptr;
    if (!voice)
        damaged_.insert(file);
    return voice;
}

cst_voice* FliteLibrary::LoadVoice(const std::string& key) const
{
    const std::optional<SharedLibrary> library = SharedLibrary::Load(Folder() / PartOfLibrary("flite_cmu_us_" + key));
    if (!library)
        return nullptr;
    using Register = cst_voice* (*)(const char* folder);
    const auto registerVoice = library->Find<Register>(("register_cmu_us_" + key).c_str());
    return registerVoice ? registerVoice(nullptr) : nullptr;
}

} // namespace voxmate::speech
