#include "platform/windows/voices/SpeechOutput.h"

#include <cstring>
#include <vector>

namespace voxmate::windows_platform
{

namespace
{

constexpr std::uint64_t BytesASample = 2;
/// SPDFID_WaveFormatEx of sapi.h, as a value: only the system's own library has it.
constexpr GUID WaveFormat{0xC31ADBAE, 0x527F, 0x4FF5, {0xA2, 0x30, 0xF7, 0xD2, 0xEC, 0xF0, 0xF8, 0x91}};

constexpr ULONGLONG Flag(int event)
{
    return ULONGLONG{1} << static_cast<unsigned>(event);
}

} // namespace

void SpeechOutput::Detach()
{
    const std::lock_guard lock(mutex_);
    output_ = nullptr;
}

HRESULT SpeechOutput::QueryInterface(REFIID type, void** object)
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (type == __uuidof(ISpEventSink))
        *object = static_cast<ISpEventSink*>(this);
    else if (type == __uuidof(IUnknown) || type == __uuidof(ISequentialStream) || type == __uuidof(IStream) ||
             type == __uuidof(ISpStreamFormat))
        *object = static_cast<ISpStreamFormat*>(this);
    else
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG SpeechOutput::Release()
{
    const ULONG left = --references_;
    if (left == 0)
        delete this;
    return left;
}

HRESULT SpeechOutput::GetFormat(GUID* type, WAVEFORMATEX** format)
{
    if (!type || !format)
        return E_POINTER;
    auto* const made = static_cast<WAVEFORMATEX*>(::CoTaskMemAlloc(sizeof(WAVEFORMATEX)));
    if (!made)
        return E_OUTOFMEMORY;
    *made = {};
    made->wFormatTag = WAVE_FORMAT_PCM;
    made->nChannels = 1;
    made->nSamplesPerSec = static_cast<DWORD>(samplesPerSecond_);
    made->wBitsPerSample = 8 * BytesASample;
    made->nBlockAlign = BytesASample;
    made->nAvgBytesPerSec = made->nSamplesPerSec * made->nBlockAlign;
    *type = WaveFormat;
    *format = made;
    return S_OK;
}

HRESULT SpeechOutput::Write(const void* bytes, ULONG count, ULONG* written)
{
    if (written)
        *written = 0;
    const std::lock_guard lock(mutex_);
    if (!output_ || stopped_)
        return E_ABORT;
    std::vector<std::int16_t> samples(count / BytesASample);
    std::memcpy(samples.data(), bytes, samples.size() * BytesASample);
    written_ += count;
    stopped_ = !output_->Samples(samples);
    if (written)
        *written = count;
    return stopped_ ? E_ABORT : S_OK;
}

// A stream to be written on: it can tell where it is, and nothing else.
HRESULT SpeechOutput::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* place)
{
    const std::lock_guard lock(mutex_);
    if (origin == STREAM_SEEK_SET ? static_cast<std::uint64_t>(move.QuadPart) != written_ : move.QuadPart != 0)
        return E_NOTIMPL;
    if (place)
        place->QuadPart = written_;
    return S_OK;
}

HRESULT SpeechOutput::AddEvents(const SPEVENT* events, ULONG count)
{
    const std::lock_guard lock(mutex_);
    for (ULONG i = 0; output_ && i < count; ++i) {
        const SPEVENT& event = events[i];
        const auto sample = static_cast<std::int64_t>(event.ullAudioStreamOffset / BytesASample);
        // A word's place in the text is the last parameter. A mouth that begins is the low word of it; the first
        // parameter is that of the mouth after it, and how long this one lasts.
        if (event.eEventId == SPEI_WORD_BOUNDARY)
            output_->Word(static_cast<std::size_t>(event.lParam), sample);
        else if (event.eEventId == SPEI_VISEME)
            output_->Viseme(LOWORD(event.lParam), sample);
    }
    return S_OK;
}

HRESULT SpeechOutput::GetEventInterest(ULONGLONG* interest)
{
    if (!interest)
        return E_POINTER;
    *interest = Flag(SPEI_WORD_BOUNDARY) | Flag(SPEI_VISEME) | Flag(SPEI_RESERVED1) | Flag(SPEI_RESERVED2);
    return S_OK;
}

} // namespace voxmate::windows_platform
