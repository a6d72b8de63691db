// Where Windows' speech interface writes what a voice says: a stream of samples that takes its events, too.
#pragma once

#include "platform/SystemVoices.h"
#include "platform/windows/system/WindowsApi.h"

#include <atomic>
#include <mutex>

#include <sapi.h>

namespace voxmate::windows_platform
{

/// Counts its references; made with one. The speech interface may keep it for longer than the speaking lasts, and calls
/// it from threads of its own.
class SpeechOutput final : public ISpStreamFormat, public ISpEventSink
{
public:
    SpeechOutput(SystemVoices::Output& output, int samplesPerSecond)
        : output_(&output), samplesPerSecond_(samplesPerSecond)
    {
    }
    virtual ~SpeechOutput() = default;
    SpeechOutput(const SpeechOutput&) = delete;
    SpeechOutput& operator=(const SpeechOutput&) = delete;

    /// Nothing more is passed on from now on.
    void Detach();
    /// Whether the output wanted no more.
    bool Stopped() const { return stopped_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID type, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE GetFormat(GUID* type, WAVEFORMATEX** format) override;
    HRESULT STDMETHODCALLTYPE Write(const void* bytes, ULONG count, ULONG* written) override;
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* place) override;
    HRESULT STDMETHODCALLTYPE AddEvents(const SPEVENT* events, ULONG count) override;

    HRESULT STDMETHODCALLTYPE Commit(DWORD /*flags*/) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetEventInterest(ULONGLONG* interest) override;
    HRESULT STDMETHODCALLTYPE Read(void* /*bytes*/, ULONG /*count*/, ULONG* /*read*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER /*size*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream* /*stream*/, ULARGE_INTEGER /*count*/, ULARGE_INTEGER* /*read*/,
                                     ULARGE_INTEGER* /*written*/) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER /*from*/, ULARGE_INTEGER /*count*/, DWORD /*type*/) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER /*from*/, ULARGE_INTEGER /*count*/, DWORD /*type*/) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* /*about*/, DWORD /*flags*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IStream** /*stream*/) override { return E_NOTIMPL; }

private:
    std::mutex mutex_;
    SystemVoices::Output* output_; ///< nullptr once it was detached
    const int samplesPerSecond_;
    std::atomic<ULONG> references_ = 1;
    std::atomic<bool> stopped_ = false;
    std::uint64_t written_ = 0; ///< bytes
};

} // namespace voxmate::windows_platform
