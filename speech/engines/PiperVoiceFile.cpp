#include "speech/engines/PiperVoiceFile.h"

#include "base/Text.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
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
    return value.is_string() && value.get_ref<const std::string&>().size() <= 100 ? value.get<std::string>()
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
            voice.speakers[number.get<std::size_t>()] = name;
}

// The parts of a file's name: language, name and quality ("en_US-joe-medium").
void ReadName(const Json& description, PiperVoiceFile& voice)
{
    const std::string file = voice.model.stem().string();
    const std::size_t first = file.find('-');
    const std::size_t last = file.rfind('-');
    const Json& language = Member(description, "language");
    std::string code = TextOf(Member(language, "code"));
    if (code.empty())
        code = first == std::string::npos ? voice.espeakVoice : file.substr(0, first);
    std::replace(code.begin(), code.end(), '_', '-');
    voice.language = LowerAscii(code);
    voice.place = TextOf(Member(language, "name_english"));
    if (const std::string country = TextOf(Member(language, "country_english")); !country.empty())
        voice.place += ", " + country;
    voice.quality = TextOf(Member(Member(description, "audio"), "quality"));
    if (voice.quality.empty() && last != first)
        voice.quality = file.substr(last + 1);
    voice.name = TextOf(Member(description, "dataset"));
    if (first != std::string::npos)
        voice.name = file.substr(first + 1, last == first ? std::string::npos : last - first - 1);
    else if (voice.name.empty())
        voice.name = file;
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
        else if (entry->path().extension() == ".onnx" && entry->is_regular_file(other))
            files.push_back(entry->path());
        if (files.size() + folders.size() > MostModels)
            break;
    }
    // A folder's order is any; the list of voices has one.
    std::sort(files.begin(), files.end());
    std::sort(folders.begin(), folders.end());
    for (const fs::path& file : files)
        if (found.size() < MostModels && fs::is_regular_file(file.string() + ".json", error))
            found.push_back(file);
    if (depth < DeepestFolder)
        for (const fs::path& inner : folders)
            FindIn(inner, depth + 1, found);
}

} // namespace

std::optional<PiperVoiceFile> ReadPiperVoice(const fs::path& model, std::string& why)
{
    const fs::path file = model.string() + ".json";
    const auto refuse = [&](const char* reason) {
        why = file.string() + ": " + reason;
        return std::nullopt;
    };
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    if (error)
        return refuse("it cannot be read.");
    if (size > LargestDescription)
        return refuse("it is too large for a voice's description.");
    std::ifstream stream(file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
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

std::vector<fs::path> PiperFolders(const fs::path& own)
{
    std::vector<fs::path> folders{own};
    // Where Piper's users put them, and the voice manager Pied: as a program of its own, as a Flatpak, as a Snap. The
    // command voxmate-voices has the same list.
    if (own.parent_path().filename() == "voxmate") {
        const fs::path data = own.parent_path().parent_path();
        for (const char* const name : {"piper", "piper-voices", "pied/models"})
            folders.push_back(data / name);
        if (data.filename() == "share" && data.parent_path().filename() == ".local") {
            const fs::path home = data.parent_path().parent_path();
            folders.push_back(home / ".var/app/com.mikeasoft.pied/data/pied/models");
            folders.push_back(home / "snap/pied/common/models");
        }
    }
    for (const char* const shared :
         {"/usr/share/piper-voices", "/usr/share/piper/voices", "/usr/local/share/piper-voices"})
        folders.emplace_back(shared);
    return folders;
}

std::vector<fs::path> FindPiperModels(const std::vector<fs::path>& folders)
{
    std::vector<fs::path> found;
    for (const fs::path& folder : folders)
        FindIn(folder, 1, found);
    std::set<std::string> names;
    std::erase_if(found, [&](const fs::path& model) { return !names.insert(model.filename().string()).second; });
    return found;
}

} // namespace voxmate::speech
