// The voices of Windows' speech interface: which are listed, and what a voice that stands in for one gives its
// listener.
#include "platform/windows/voices/SapiVoices.h"

#include "platform/windows/system/ComObject.h"
#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <sapi.h>

namespace voxmate::windows_platform
{
namespace
{

using ::testing::ElementsAre;
using ::testing::IsSupersetOf;

constexpr const char* Token = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Speech\\Voices\\Tokens\\VoxmateTest";

/// What stands in for the speech interface's voice.
struct Spoken {
    std::wstring text;
    std::wstring token;
    DWORD flags = 0;
    bool formatMayChange = true;
    HRESULT result = S_OK;
    ComObject<IUnknown> kept; ///< the output, kept beyond the speaking
};
Spoken* spoken = nullptr;

class StandIn final : public ISpVoice
{
public:
    virtual ~StandIn() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID type, void** object) override
    {
        if (type != __uuidof(IUnknown) && type != __uuidof(ISpVoice))
            return E_NOINTERFACE;
        *object = this;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG left = --references_;
        if (left == 0)
            delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE SetVoice(ISpObjectToken* token) override
    {
        wchar_t* id = nullptr;
        token->GetId(&id);
        spoken->token = id ? id : L"";
        ::CoTaskMemFree(id);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetOutput(IUnknown* output, WINBOOL formatMayChange) override
    {
        output_.reset();
        if (!output)
            return S_OK;
        spoken->formatMayChange = formatMayChange;
        return output->QueryInterface(__uuidof(ISpStreamFormat), Out(output_));
    }
    // Three samples for each character, in pieces of a word, each word told of before it and its mouth after it.
    HRESULT STDMETHODCALLTYPE Speak(LPCWSTR text, DWORD flags, ULONG*) override
    {
        spoken->text = text;
        spoken->flags = flags;
        ComObject<ISpEventSink> events;
        GUID kind{};
        WAVEFORMATEX* format = nullptr;
        if (!output_ || output_->QueryInterface(__uuidof(ISpEventSink), Out(events)) != S_OK ||
            output_->GetFormat(&kind, &format) != S_OK)
            return E_FAIL;
        const bool good = format->nChannels == 1 && format->wBitsPerSample == 16 && format->nSamplesPerSec == 22050;
        ::CoTaskMemFree(format);
        ComObject<IUnknown> kept;
        output_->QueryInterface(__uuidof(IUnknown), Out(kept));
        spoken->kept = std::move(kept);
        std::wstring rest = spoken->text + L" ";
        ULONGLONG bytes = 0;
        LPARAM at = 0;
        for (std::size_t end = rest.find(L' '); good && end != std::wstring::npos; end = rest.find(L' ')) {
            SPEVENT word{};
            word.eEventId = SPEI_WORD_BOUNDARY;
            word.ullAudioStreamOffset = bytes;
            word.lParam = at;
            events->AddEvents(&word, 1);
            const std::vector<std::int16_t> samples(3 * (end + 1), static_cast<std::int16_t>(at + 1));
            const auto size = static_cast<ULONG>(2 * samples.size());
            if (const HRESULT result = output_->Write(samples.data(), size, nullptr); FAILED(result))
                return result;
            SPEVENT mouth{};
            mouth.eEventId = SPEI_VISEME;
            mouth.ullAudioStreamOffset = bytes + 2;
            mouth.lParam = MAKELONG(11, 0);
            events->AddEvents(&mouth, 1);
            bytes += size;
            at += static_cast<LPARAM>(end) + 1;
            rest.erase(0, end + 1);
        }
        return spoken->result;
    }

    // What the program does not call.
    HRESULT STDMETHODCALLTYPE SetNotifySink(ISpNotifySink*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetNotifyWindowMessage(HWND, UINT, WPARAM, LPARAM) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetNotifyCallbackFunction(SPNOTIFYCALLBACK*, WPARAM, LPARAM) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetNotifyCallbackInterface(ISpNotifyCallback*, WPARAM, LPARAM) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetNotifyWin32Event() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE WaitForNotifyEvent(DWORD) override { return E_NOTIMPL; }
    HANDLE STDMETHODCALLTYPE GetNotifyEventHandle() override { return nullptr; }
    HRESULT STDMETHODCALLTYPE SetInterest(ULONGLONG, ULONGLONG) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetEvents(ULONG, SPEVENT*, ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetInfo(SPEVENTSOURCEINFO*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetOutputObjectToken(ISpObjectToken**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetOutputStream(ISpStreamFormat**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Pause() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Resume() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetVoice(ISpObjectToken**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SpeakStream(IStream*, DWORD, ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetStatus(SPVOICESTATUS*, LPWSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Skip(LPCWSTR, LONG, ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetPriority(SPVPRIORITY) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPriority(SPVPRIORITY*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetAlertBoundary(SPEVENTENUM) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetAlertBoundary(SPEVENTENUM*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetRate(LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetRate(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetVolume(USHORT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetVolume(USHORT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE WaitUntilDone(ULONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetSyncSpeakTimeout(ULONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSyncSpeakTimeout(ULONG*) override { return E_NOTIMPL; }
    HANDLE STDMETHODCALLTYPE SpeakCompleteEvent() override { return nullptr; }
    HRESULT STDMETHODCALLTYPE IsUISupported(LPCWSTR, void*, ULONG, WINBOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DisplayUI(HWND, LPCWSTR, LPCWSTR, void*, ULONG) override { return E_NOTIMPL; }

private:
    ULONG references_ = 1;
    ComObject<ISpStreamFormat> output_;
};

class Factory final : public IClassFactory
{
public:
    virtual ~Factory() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID type, void** object) override
    {
        if (type != __uuidof(IUnknown) && type != __uuidof(IClassFactory))
            return E_NOINTERFACE;
        *object = this;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID type, void** object) override
    {
        const ComObject<StandIn> made(new StandIn);
        return made->QueryInterface(type, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(WINBOOL) override { return S_OK; }
};

struct Heard final : SystemVoices::Output {
    std::vector<std::int16_t> samples;
    std::vector<std::pair<std::size_t, std::int64_t>> words;
    std::vector<std::pair<int, std::int64_t>> visemes;
    std::size_t most = SIZE_MAX;

    bool Samples(std::span<const std::int16_t> more) override
    {
        samples.insert(samples.end(), more.begin(), more.end());
        return samples.size() < most;
    }
    void Word(std::size_t unit, std::int64_t sample) override { words.emplace_back(unit, sample); }
    void Viseme(int number, std::int64_t sample) override { visemes.emplace_back(number, sample); }
};

class SapiVoicesTest : public ::testing::Test
{
protected:
    Spoken record;
    Heard heard;

    SapiVoicesTest()
    {
        spoken = &record;
        ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        EXPECT_EQ(
            ::CoRegisterClassObject(CLSID_SpVoice, &factory_, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registered_),
            S_OK);
        for (const auto& [key, name, text] :
             {std::tuple(L"", L"", L"Test voice"), std::tuple(L"", L"CLSID", L"{00000000-0000-0000-0000-000000000000}"),
              std::tuple(L"\\Attributes", L"Language", L"407;9")}) {
            const std::wstring path = std::wstring(L"SOFTWARE\\Microsoft\\Speech\\Voices\\Tokens\\VoxmateTest") + key;
            ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, path.c_str(), name, REG_SZ, text,
                              static_cast<DWORD>((std::wcslen(text) + 1) * sizeof(wchar_t)));
        }
    }
    ~SapiVoicesTest() override
    {
        ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Speech\\Voices\\Tokens\\VoxmateTest");
        record.kept.reset();
        ::CoRevokeClassObject(registered_);
        ::CoUninitialize();
        spoken = nullptr;
    }

private:
    Factory factory_;
    DWORD registered_ = 0;
};

TEST_F(SapiVoicesTest, AnInstalledVoiceIsListedWithItsNameAndLanguage)
{
    std::vector<std::tuple<std::string, std::string, std::string>> listed;
    for (const SystemVoices::Voice& voice : SapiVoices().List())
        listed.emplace_back(voice.Key, voice.Name, voice.Language);
    EXPECT_THAT(listed,
                IsSupersetOf({std::tuple<std::string, std::string, std::string>(Token, "Test voice", "de-de")}));
}

TEST_F(SapiVoicesTest, SamplesWordsAndMouthsReachTheListener)
{
    SapiVoices voices;
    ASSERT_TRUE(voices.Speak(Token, u"ab c <d>", heard));
    EXPECT_EQ(record.text, L"ab c <d>");
    EXPECT_EQ(Narrow(record.token), Token);
    EXPECT_EQ(record.flags, static_cast<DWORD>(SPF_IS_NOT_XML));
    EXPECT_FALSE(record.formatMayChange);
    EXPECT_EQ(heard.samples.size(), 27u);
    EXPECT_EQ(heard.samples.front(), 1);
    EXPECT_EQ(heard.samples.back(), 6);
    EXPECT_THAT(heard.words, ElementsAre(std::pair(0u, 0), std::pair(3u, 9), std::pair(5u, 15)));
    EXPECT_THAT(heard.visemes, ElementsAre(std::pair(11, 1), std::pair(11, 10), std::pair(11, 16)));
}

TEST_F(SapiVoicesTest, AStopEndsTheVoiceAndIsNoFailure)
{
    SapiVoices voices;
    heard.most = 9;
    EXPECT_TRUE(voices.Speak(Token, u"ab c d", heard));
    EXPECT_EQ(heard.samples.size(), 9u);
}

TEST_F(SapiVoicesTest, AFailureIsTold)
{
    SapiVoices voices;
    record.result = E_FAIL;
    EXPECT_FALSE(voices.Speak(Token, u"ab", heard));
    record.result = S_OK;
    EXPECT_TRUE(voices.Speak(Token, u"ab", heard));
}

TEST_F(SapiVoicesTest, WhatIsWrittenAfterTheSpeakingGoesNowhere)
{
    SapiVoices voices;
    ASSERT_TRUE(voices.Speak(Token, u"ab", heard));
    const std::size_t before = heard.samples.size();
    ComObject<ISpStreamFormat> output;
    ASSERT_EQ(record.kept->QueryInterface(__uuidof(ISpStreamFormat), Out(output)), S_OK);
    const std::int16_t sample = 1;
    EXPECT_EQ(output->Write(&sample, 2, nullptr), E_ABORT);
    EXPECT_EQ(heard.samples.size(), before);
}

} // namespace
} // namespace voxmate::windows_platform
