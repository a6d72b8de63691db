// Tells what the program makes of texts with a neural voice, for comparing that with others that speak such voices:
//
//   voice_reference NETWORK.onnx RUNTIME_FOLDER SAMPLES < TEXTS
//
// The texts are a list in JSON. What is told is a list as well: of each text its sentences, each with its phonemes,
// their numbers, and how many samples the network makes of these without any chance in it. The samples go to the file
// SAMPLES one after the other (32-bit floating point).
#include "base/Text.h"
#include "speech/engines/EspeakPhonemes.h"
#include "speech/engines/PiperModel.h"
#include "speech/engines/PiperVoiceFile.h"

#include <nlohmann/json.hpp>

#include <fstream>
#include <iostream>
#include <string>
#include <vector>

using namespace voxmate;
using namespace voxmate::speech;
using nlohmann::json;

namespace
{

std::vector<std::u32string> Sentences(const json& text, const std::string& espeakVoice)
{
    std::vector<std::u32string> sentences;
    if (text.is_array()) {
        for (const json& sentence : text)
            sentences.push_back(DecodeUtf8(sentence.get<std::string>()));
        return sentences;
    }
    bool open = false;
    for (const Clause& clause : ClausesOf(espeakVoice, DecodeUtf8(text.get<std::string>()))) {
        if (!open)
            sentences.emplace_back();
        sentences.back() += clause.phonemes;
        open = !clause.endsSentence;
    }
    return sentences;
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 4) {
        std::cerr << "usage: voice_reference NETWORK.onnx RUNTIME_FOLDER SAMPLES < TEXTS\n";
        return 2;
    }
    std::string why;
    const auto voice = ReadPiperVoice(arguments[1], why);
    const auto model = voice ? PiperModel::Load(arguments[1], arguments[2], why) : nullptr;
    if (!model) {
        std::cerr << why << "\n";
        return 1;
    }
    std::ofstream samples(arguments[3], std::ios::binary);
    json told = json::array();
    for (const json& text : json::parse(std::cin)) {
        json sentences = json::array();
        for (const std::u32string& sentence : Sentences(text, voice->espeakVoice)) {
            std::vector<std::size_t> places;
            const std::vector<std::int64_t> numbers = NumbersOf(*voice, sentence, places);
            std::size_t length = 0;
            const bool spoken = model->Speak(
                numbers, {0, 1, 0}, 0, [] { return true; },
                [&](const PiperModel::Piece& piece) {
                    length += piece.samples.size();
                    samples.write(reinterpret_cast<const char*>(piece.samples.data()),
                                  static_cast<std::streamsize>(piece.samples.size_bytes()));
                    return true;
                });
            if (!spoken) {
                std::cerr << "the network failed\n";
                return 1;
            }
            sentences.push_back({{"phonemes", EncodeUtf8(sentence)}, {"numbers", numbers}, {"samples", length}});
        }
        told.push_back(sentences);
    }
    std::cout << told.dump() << "\n";
    return samples.flush() ? 0 : 1;
}
