#include "speech/sound/SoundWriter.h"

#include "speech/sound/Resampler.h"
#include "speech/sound/SoundFileLibrary.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace voxmate::speech
{

namespace
{

/// A rate that every kind knows.
constexpr int CommonRate = 48000;
/// Samples handed over at a time: the Vorbis encoder of libsndfile keeps what it is given on its stack.
constexpr std::size_t MostAtATime = 4096;
/// Of 0 to 1; speech of one channel then takes some 45 to 60 kbit/s.
constexpr double VorbisQuality = 0.4;
/// Of 0, the best, to 1: MP3 with a bit rate that follows the sound, some 50 kbit/s for speech.
constexpr double Mp3Compression = 0.4;
constexpr int Mp3Format = SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;

struct Kind {
    const char* extension;
    int format;
};
constexpr std::array<Kind, 4> Kinds{{{"ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS},
                                     {"mp3", Mp3Format},
                                     {"flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
                                     {"wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16}}};

bool CanWrite(int format, int rate)
{
    const SF_INFO info{0, rate, 1, format, 0, 0};
    return SoundFiles() && SoundFiles().Checks(&info) == SF_TRUE;
}

class Writer final : public SoundWriter
{
public:
    Writer(SNDFILE* file, int from, int to) : file_(file)
    {
        if (from != to)
            resampler_.emplace(from, to);
    }
    ~Writer() override { Close(); }

    bool Write(std::span<const std::int16_t> samples) override
    {
        if (!resampler_)
            return Put(samples);
        made_.clear();
        resampler_->Push(samples, made_);
        return Put(made_);
    }

    bool Close() override
    {
        if (!file_)
            return good_;
        if (resampler_) {
            made_.clear();
            resampler_->Flush(made_);
            Put(made_);
        }
        good_ = SoundFiles().Close(std::exchange(file_, nullptr)) == SF_ERR_NO_ERROR && good_;
        return good_;
    }

private:
    bool Put(std::span<const std::int16_t> samples)
    {
        while (good_ && !samples.empty()) {
            const std::span<const std::int16_t> piece = samples.first(std::min(samples.size(), MostAtATime));
            const auto count = static_cast<sf_count_t>(piece.size());
            good_ = file_ && SoundFiles().Write(file_, piece.data(), count) == count &&
                    SoundFiles().Error(file_) == SF_ERR_NO_ERROR;
            samples = samples.subspan(piece.size());
        }
        return good_;
    }

    SNDFILE* file_;
    std::optional<Resampler> resampler_;
    std::vector<std::int16_t> made_;
    bool good_ = true;
};

} // namespace

std::vector<std::string> WritableSounds()
{
    std::vector<std::string> extensions;
    for (const Kind& kind : Kinds)
        if (CanWrite(kind.format, CommonRate))
            extensions.emplace_back(kind.extension);
    return extensions;
}

std::unique_ptr<SoundWriter> SoundWriter::Create(const std::string& path, std::string_view kind, int samplesPerSecond,
                                                 const SoundLabels& labels)
{
    const auto* const known =
        std::find_if(Kinds.begin(), Kinds.end(), [&](const Kind& k) { return kind == k.extension; });
    if (known == Kinds.end() || !CanWrite(known->format, CommonRate))
        return nullptr;
    SF_INFO info{0, CanWrite(known->format, samplesPerSecond) ? samplesPerSecond : CommonRate, 1, known->format, 0, 0};
    SNDFILE* file = SoundFiles().OpenFile(path.c_str(), SFM_WRITE, &info);
    // What a kind can write in general it may refuse at some rates.
    if (!file && info.samplerate != CommonRate) {
        info = {0, CommonRate, 1, known->format, 0, 0};
        file = SoundFiles().OpenFile(path.c_str(), SFM_WRITE, &info);
    }
    if (!file)
        return nullptr;
    auto writer = std::make_unique<Writer>(file, samplesPerSecond, info.samplerate);
    // What of this a kind does not know is refused without harm.
    double quality = VorbisQuality;
    int mode = SF_BITRATE_MODE_VARIABLE;
    double compression = Mp3Compression;
    if (known->format == Mp3Format) {
        SoundFiles().Command(file, SFC_SET_BITRATE_MODE, &mode, sizeof mode);
        SoundFiles().Command(file, SFC_SET_COMPRESSION_LEVEL, &compression, sizeof compression);
    } else if ((known->format & SF_FORMAT_TYPEMASK) == SF_FORMAT_OGG) {
        SoundFiles().Command(file, SFC_SET_VBR_ENCODING_QUALITY, &quality, sizeof quality);
    }
    const auto label = [file](int which, const std::string& text) {
        if (!text.empty())
            SoundFiles().SetString(file, which, text.c_str());
    };
    label(SF_STR_TITLE, labels.title);
    label(SF_STR_ALBUM, labels.album);
    label(SF_STR_SOFTWARE, "Voxmate");
    if (labels.track > 0)
        label(SF_STR_TRACKNUMBER, std::to_string(labels.track));
    return writer;
}

} // namespace voxmate::speech
