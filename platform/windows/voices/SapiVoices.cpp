#include "platform/windows/voices/SapiVoices.h"

#include "base/Text.h"
#include "platform/windows/system/ComObject.h"
#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"
#include "platform/windows/voices/SpeechOutput.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include <sapi.h>

namespace voxmate::windows_platform
{

namespace
{

/// Where voices are written down: those for all programs, the machine's and the user's, then Windows' own.
struct TokenList {
    HKEY root;
    const char* rootName;
    const wchar_t* path;
};
constexpr const wchar_t* Usual = L"SOFTWARE\\Microsoft\\Speech\\Voices\\Tokens";
constexpr const wchar_t* OneCore = L"SOFTWARE\\Microsoft\\Speech_OneCore\\Voices\\Tokens";
const std::array<TokenList, 4> Lists{{{HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE", Usual},
                                      {HKEY_CURRENT_USER, "HKEY_CURRENT_USER", Usual},
                                      {HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE", OneCore},
                                      {HKEY_CURRENT_USER, "HKEY_CURRENT_USER", OneCore}}};

/// COM on this thread, for as long as this object is there; any kind that the thread has already will do.
class Apartment
{
public:
    Apartment() : opened_(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {}
    ~Apartment()
    {
        if (opened_)
            ::CoUninitialize();
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;

private:
    const bool opened_;
};

/// A text of the registry; empty when there is none.
std::string TextOf(HKEY key, const std::wstring& path, const wchar_t* name)
{
    std::array<wchar_t, 512> text{};
    auto size = static_cast<DWORD>(sizeof text);
    const LSTATUS read = ::RegGetValueW(key, path.c_str(), name, RRF_RT_REG_SZ, nullptr, text.data(), &size);
    return read == 0 ? Narrow(text.data()) : std::string();
}

// "809" or "409;9": language numbers in hexadecimal, the first counts.
std::string LanguageOf(const std::string& attribute)
{
    const auto number = static_cast<LCID>(std::strtoul(attribute.c_str(), nullptr, 16));
    std::array<wchar_t, LOCALE_NAME_MAX_LENGTH> name{};
    if (number == 0 || ::LCIDToLocaleName(number, name.data(), static_cast<int>(name.size()), 0) == 0)
        return {};
    return LowerAscii(Narrow(name.data()));
}

void AddVoices(const TokenList& list, std::vector<SystemVoices::Voice>& voices)
{
    HKEY key = nullptr;
    if (::RegOpenKeyExW(list.root, list.path, 0, KEY_READ, &key) != 0)
        return;
    constexpr DWORD longest = 256; // of a key's name, with its end
    std::array<wchar_t, longest> name{};
    DWORD length = longest;
    for (DWORD i = 0; ::RegEnumKeyExW(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) == 0;
         ++i, length = longest) {
        const std::wstring token = name.data();
        SystemVoices::Voice voice;
        voice.Key = std::string(list.rootName) + "\\" + Narrow(list.path) + "\\" + Narrow(token);
        voice.Name = TextOf(key, token, nullptr);
        voice.Language = LanguageOf(TextOf(key, token + L"\\Attributes", L"Language"));
        const bool known =
            std::any_of(voices.begin(), voices.end(), [&](const auto& each) { return each.Name == voice.Name; });
        // What speaks is named by its class.
        if (!voice.Name.empty() && !known && !TextOf(key, token, L"CLSID").empty())
            voices.push_back(std::move(voice));
    }
    ::RegCloseKey(key);
}

} // namespace

struct SapiVoices::Loaded {
    Apartment apartment;
    std::string key;
    ComObject<ISpVoice> voice;
};

SapiVoices::SapiVoices() = default;
SapiVoices::~SapiVoices() = default;

// Read from the registry, for which no library has to be loaded at the program's start.
std::vector<SystemVoices::Voice> SapiVoices::List()
{
    std::vector<Voice> voices;
    for (const auto& list : Lists)
        AddVoices(list, voices);
    return voices;
}

bool SapiVoices::Speak(const std::string& key, std::u16string_view text, Output& output)
{
    if (!loaded_ || loaded_->key != key) {
        loaded_.reset();
        auto loaded = std::make_unique<Loaded>();
        loaded->key = key;
        ComObject<ISpObjectToken> token;
        if (FAILED(::CoCreateInstance(CLSID_SpVoice, nullptr, CLSCTX_ALL, __uuidof(ISpVoice), Out(loaded->voice))) ||
            FAILED(::CoCreateInstance(CLSID_SpObjectToken, nullptr, CLSCTX_INPROC_SERVER, __uuidof(ISpObjectToken),
                                      Out(token))) ||
            FAILED(token->SetId(nullptr, Wide(key).c_str(), FALSE)) || FAILED(loaded->voice->SetVoice(token.get())))
            return false;
        loaded_ = std::move(loaded);
    }
    const ComObject<SpeechOutput> stream(new SpeechOutput(output, Rate));
    // The output keeps its format, so that the speech interface converts what the voice makes.
    if (FAILED(loaded_->voice->SetOutput(static_cast<ISpStreamFormat*>(stream.get()), FALSE)))
        return false;
    const std::wstring wide(text.begin(), text.end());
    const HRESULT spoken = loaded_->voice->Speak(wide.c_str(), SPF_IS_NOT_XML, nullptr);
    stream->Detach();
    loaded_->voice->SetOutput(nullptr, FALSE);
    return SUCCEEDED(spoken) || stream->Stopped();
}

void SapiVoices::Rest()
{
    loaded_.reset();
}

} // namespace voxmate::windows_platform
