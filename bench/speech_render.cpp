// Renders a text with a voice into a wave file, without a sound device, and prints its word and mouth events: kind,
// sample, value.
//
// Usage: speech_render VOICE PITCH SPEED WHISPER TEXT OUT.wav [FOLDER_OF_NEURAL_VOICES]
#include "speech/text/Relay.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <vector>

using namespace voxmate::speech;

namespace
{

class Collect : public SampleSink
{
public:
    std::vector<std::int16_t> samples;
    bool Samples(std::span<const std::int16_t> block) override
    {
        samples.insert(samples.end(), block.begin(), block.end());
        return true;
    }
    void Event(const SpeechEvent& event) override
    {
        if (event.kind != SpeechEvent::Kind::Bookmark)
            std::cout << (event.kind == SpeechEvent::Kind::Word ? "word " : "mouth ") << event.sample << " "
                      << event.value << "\n";
    }
};

template <class Number>
void Put(std::ofstream& out, Number number)
{
    for (unsigned i = 0; i < sizeof number; ++i)
        out.put(static_cast<char>(static_cast<std::uint64_t>(number) >> (8 * i)));
}

// A canonical RIFF wave file: mono, 16-bit.
void WriteWave(const char* path, const std::vector<std::int16_t>& samples, std::uint32_t rate)
{
    const auto bytes = static_cast<std::uint32_t>(samples.size() * 2);
    std::ofstream out(path, std::ios::binary);
    out << "RIFF";
    Put(out, bytes + 36);
    out << "WAVEfmt ";
    Put(out, std::uint32_t{16});
    Put(out, std::uint16_t{1});
    Put(out, std::uint16_t{1});
    Put(out, rate);
    Put(out, rate * 2);
    Put(out, std::uint16_t{2});
    Put(out, std::uint16_t{16});
    out << "data";
    Put(out, bytes);
    for (const std::int16_t sample : samples)
        Put(out, static_cast<std::uint16_t>(sample));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 7 && argc != 8) {
        std::cerr << "usage: speech_render VOICE PITCH SPEED WHISPER TEXT OUT.wav [FOLDER_OF_NEURAL_VOICES]\n";
        return 2;
    }
    std::vector<std::unique_ptr<Engine>> engines;
    engines.push_back(CreateEspeakEngine());
    engines.push_back(CreateFliteEngine());
    const auto tell = [](const std::string& why) { std::cerr << why << "\n"; };
    if (argc == 8)
        engines.push_back(CreatePiperEngine(argv[7], argv[7], argv[7], tell, tell));
    VoiceCatalog catalog(std::move(engines), "en");
    for (int i = 1; i <= catalog.CountEngines(); ++i) {
        if (catalog.ModeName(i) != argv[1])
            continue;
        const VoiceCatalog::Entry& entry = *catalog.Find(catalog.ModeID(i));
        Segment segment;
        segment.text = argv[5];
        segment.prosody.pitchHz = std::atoi(argv[2]);
        segment.prosody.wordsPerMinute = std::atoi(argv[3]);
        segment.prosody.whisper = std::atoi(argv[4]) != 0;
        Collect sink;
        if (!SpeakInTurns(catalog, entry, {&segment, 1}, sink)) {
            std::cerr << "the engine failed\n";
            return 1;
        }
        WriteWave(argv[6], sink.samples, static_cast<std::uint32_t>(entry.engine->SampleRate(entry.voice)));
        return 0;
    }
    std::cerr << "no such voice: " << argv[1] << "\n";
    return 1;
}
