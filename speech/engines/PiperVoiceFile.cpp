#include "speech/engines/PiperVoiceFile.h"

#include "base/Text.h"
#include "speech/text/Languages.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>

#include <nlohmann/json.hpp>

namespace voxmate::speech
{

namespace
{

using Json = nlohmann::json;
namespace fs = std::filesystem;

constexpr std::uintmax_t LargestDescription = 1 << 20;
constexpr int DeepestFolder = 5;
constexpr std::size_t MostModels = 1000;
// The voices of one network that are offered; some have hundreds of nameless speakers, which no list can hold.
constexpr std::size_t MostSpeakers = 20;
constexpr int MostSymbols = 4096;

// What is in an object under this name; null when it is no object or has none.
const Json& Member(const Json& object, const char* name)
{
    static const Json nothing;
    if (!object.is_object())
        return nothing;
    const auto found = object.find(name);
    return found == object.end() ? nothing : *found;
}

std::string TextOf(const Json& value)
{
    return value.is_string() && value.get_ref<const std::string&>().size() <= 100 ? OneLine(value.get<std::string>())
                                                                                  : std::string();
}

// A number within the bounds, or what stands for it when it is missing or of another kind.
double NumberOf(const Json& value, double least, double most, double otherwise)
{
    const double number = value.is_number() ? value.get<double>() : otherwise;
    return number >= least && number <= most ? number : otherwise;
}

// Whether all numbers of the table are those of symbols. A key of several characters, as some voices have for
// diphthongs, is left out: its characters have numbers of their own.
bool ReadNumbers(const Json& table, PiperVoiceFile& voice)
{
    for (const auto& [key, value] : table.items()) {
        std::vector<std::int64_t> numbers;
        for (const Json& number : value) {
            if (!number.is_number_integer() || number.get<std::int64_t>() < 0 ||
                number.get<std::int64_t>() >= voice.symbols)
                return false;
            numbers.push_back(number.get<std::int64_t>());
        }
        const std::u32string symbol = DecodeUtf8(key);
        if (symbol.size() == 1 && !numbers.empty() && numbers.size() <= 16)
            voice.numbers[symbol.front()] = std::move(numbers);
    }
    return voice.numbers.contains(U'^') && voice.numbers.contains(U'$') && voice.numbers.contains(U'_');
}

// The names by their numbers; a speaker without a name is called by the number.
void ReadSpeakers(const Json& description, PiperVoiceFile& voice)
{
    const auto count = static_cast<std::size_t>(NumberOf(Member(description, "num_speakers"), 1, 100000, 1));
    if (count < 2)
        return;
    for (std::size_t i = 0; i < std::min(count, MostSpeakers); ++i)
        voice.speakers.push_back(std::to_string(i));
    const Json& names = Member(description, "speaker_id_map");
    if (!names.is_object())
        return;
    for (const auto& [name, number] : names.items())
        if (number.is_number_unsigned() && number.get<std::size_t>() < voice.speakers.size() && name.size() <= 60)
            if (std::string shown = OneLine(name); !shown.empty())
                voice.speakers[number.get<std::size_t>()] = std::move(shown);
}

// Language, name and quality: what the description tells, and else the parts of the file's name ("en_US-joe-medium").
void ReadName(const Json& description, PiperVoiceFile& voice)
{
    const Json& language = Member(description, "language");
    const auto tag = [](std::string code) {
        std::replace(code.begin(), code.end(), '_', '-');
        return LowerAscii(code);
    };
    voice.language = tag(TextOf(Member(language, "code")));
    if (voice.language.empty())
        voice.language = tag(voice.espeakVoice);
    voice.place = TextOf(Member(language, "name_english"));
    if (const std::string country = TextOf(Member(language, "country_english")); !country.empty())
        voice.place += ", " + country;
    std::string name = OneLine(voice.model.stem().string());
    const std::size_t first = name.find('-');
    if (voice.language.find('-') != std::string::npos && tag(name).starts_with(voice.language + "-"))
        name.erase(0, voice.language.size() + 1);
    else if (first != std::string::npos && LanguageFamily(tag(name.substr(0, first))) == LanguageFamily(voice.language))
        name.erase(0, first + 1);
    voice.quality = TextOf(Member(Member(description, "audio"), "quality"));
    const std::size_t last = name.rfind('-');
    const std::string end = last == std::string::npos ? name : name.substr(last + 1);
    if (end == voice.quality || end == "x_low" || end == "low" || end == "medium" || end == "high") {
        name.resize(last == std::string::npos ? 0 : last);
        if (voice.quality.empty())
            voice.quality = end;
    }
    for (const std::string& other : {TextOf(Member(description, "dataset")), OneLine(voice.model.stem().string())})
        if (name.empty())
            name = other;
    voice.name = name;
}

void FindIn(const fs::path& folder, int depth, std::vector<fs::path>& found)
{
    std::error_code error;
    std::vector<fs::path> files;
    std::vector<fs::path> folders;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code other;
        if (entry->is_directory(other) && !entry->is_symlink(other))
            folders.push_back(entry->path());
        else if (entry->path().extension() == ".onnx")
            files.push_back(entry->path());
        if (files.size() + folders.size() > MostModels)
            break;
    }
    // A folder's order is any; the list of voices has one.
    std::sort(files.begin(), files.end());
    std::sort(folders.begin(), folders.end());
    for (const fs::path& file : files)
        if (found.size() < MostModels)
            found.push_back(file);
    if (depth < DeepestFolder)
        for (const fs::path& inner : folders)
            FindIn(inner, depth + 1, found);
}

} // namespace

std::string OneLine(const std::string& text)
{
    std::string shown;
    for (const char32_t c : DecodeUtf8(text)) {
        const bool blank = c <= U' ' || (c >= 0x7F && c <= 0xA0) || c == 0x2028 || c == 0x2029;
        if (!blank)
            AppendUtf8(shown, c);
        else if (!shown.empty() && shown.back() != ' ')
            shown += ' ';
    }
    return Trim(std::move(shown));
}

std::optional<PiperVoiceFile> ReadPiperVoice(const fs::path& model, std::string& why)
{
    const fs::path file = model.string() + ".json";
    const auto refuse = [&](const char* reason) {
        why = OneLine(file.string()) + ": " + reason;
        return std::nullopt;
    };
    std::error_code error;
    // Reading a pipe or a device could take for ever.
    if (!fs::is_regular_file(model, error)) {
        why = OneLine(model.string()) + ": it cannot be read.";
        return std::nullopt;
    }
    if (!fs::is_regular_file(file, error))
        return refuse("it cannot be read.");
    const std::uintmax_t size = fs::file_size(file, error);
    if (error)
        return refuse("it cannot be read.");
    if (size > LargestDescription)
        return refuse("it is too large for a voice's description.");
    // Not more than that: some of the system's files are told to have no size, and have no end.
    std::string text(static_cast<std::size_t>(size), '\0');
    if (!std::ifstream(file, std::ios::binary).read(text.data(), std::ssize(text)))
        return refuse("it cannot be read.");
    const Json description = Json::parse(text, nullptr, false);
    if (!description.is_object())
        return refuse("it is not a voice's description.");
    const std::string kind = TextOf(Member(description, "phoneme_type"));
    PiperVoiceFile voice;
    voice.model = model;
    voice.espeakVoice = TextOf(Member(Member(description, "espeak"), "voice"));
    if ((!kind.empty() && kind != "espeak") || voice.espeakVoice.empty())
        return refuse("the voice takes other phonemes than eSpeak NG's.");
    voice.sampleRate = static_cast<int>(NumberOf(Member(Member(description, "audio"), "sample_rate"), 8000, 48000, 0));
    if (voice.sampleRate == 0)
        return refuse("it does not tell the rate of the voice's samples.");
    const Json& inference = Member(description, "inference");
    voice.noiseScale = static_cast<float>(NumberOf(Member(inference, "noise_scale"), 0, 2, 0.667));
    voice.lengthScale = static_cast<float>(NumberOf(Member(inference, "length_scale"), 0.2, 5, 1));
    voice.noiseWidth = static_cast<float>(NumberOf(Member(inference, "noise_w"), 0, 2, 0.8));
    voice.symbols = static_cast<int>(NumberOf(Member(description, "num_symbols"), 1, MostSymbols, 256));
    const Json& table = Member(description, "phoneme_id_map");
    if (!table.is_object() || !ReadNumbers(table, voice))
        return refuse("its table of phonemes is damaged.");
    ReadSpeakers(description, voice);
    ReadName(description, voice);
    return voice;
}

std::vector<std::int64_t> NumbersOf(const PiperVoiceFile& voice, std::u32string_view phonemes,
                                    std::vector<std::size_t>& places)
{
    std::vector<std::int64_t> numbers;
    const auto add = [&](char32_t symbol) {
        const auto found = voice.numbers.find(symbol);
        if (found == voice.numbers.end())
            return false;
        numbers.insert(numbers.end(), found->second.begin(), found->second.end());
        return true;
    };
    add(U'^');
    add(U'_');
    places.clear();
    for (const char32_t phoneme : phonemes) {
        places.push_back(numbers.size());
        if (add(phoneme))
            add(U'_');
    }
    add(U'$');
    return numbers;
}

std::vector<fs::path> PiperFolders(const fs::path& own, const fs::path& data, const fs::path& home)
{
    // Where Piper's users put them, and the voice manager Pied: as a program of its own, as a Flatpak, as a Snap. The
    // command voxmate-voices has the same list.
    return {own,
            data / "piper",
            data / "piper-voices",
            data / "pied/models",
            home / ".var/app/com.mikeasoft.pied/data/pied/models",
            home / "snap/pied/common/models",
            "/usr/share/piper-voices",
            "/usr/share/piper/voices",
            "/usr/local/share/piper-voices"};
}

std::vector<fs::path> FindPiperModels(const std::vector<fs::path>& folders)
{
    std::vector<fs::path> found;
    for (const fs::path& folder : folders)
        FindIn(folder, 1, found);
    return found;
}

} // namespace voxmate::speech
