// Stands in for the program that makes the sound of MBROLA voices, as eSpeak NG starts and feeds it: it reads phonemes
// with their lengths and pitches from standard input and writes an endless wave file to standard output, in which each
// phoneme is a tone of that length and pitch. So its sound is exactly what eSpeak NG asks of such a voice.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr int Rate = 16000;

void PutHeader()
{
    const auto number = [](std::uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            std::fputc(static_cast<int>(value >> (8 * i) & 0xFF), stdout);
    };
    std::fputs("RIFF", stdout);
    number(0x7FFFFFFF, 4);
    std::fputs("WAVEfmt ", stdout);
    number(16, 4);
    number(1, 2);
    number(1, 2);
    number(Rate, 4);
    number(Rate * 2, 4);
    number(2, 2);
    number(16, 2);
    std::fputs("data", stdout);
    number(0x7FFFFFFF, 4);
    std::fflush(stdout);
}

struct Voice {
    double hertz = 100; ///< the pitch last asked for
    double phase = 0;

    void Say(const std::string& line)
    {
        std::istringstream in(line);
        std::string phoneme;
        double milliseconds = 0;
        if (!(in >> phoneme >> milliseconds))
            return;
        std::vector<std::pair<double, double>> points;
        for (double percent = 0, value = 0; in >> percent >> value;)
            points.emplace_back(percent / 100, value);
        const int count = static_cast<int>(milliseconds * Rate / 1000);
        std::size_t next = 0;
        std::pair<double, double> before{0, hertz};
        for (int i = 0; i < count; ++i) {
            const double at = static_cast<double>(i) / count;
            while (next < points.size() && points[next].first <= at)
                before = points[next++];
            hertz = before.second;
            if (next < points.size())
                hertz +=
                    (points[next].second - before.second) * (at - before.first) / (points[next].first - before.first);
            phase += hertz / Rate;
            double value = 0;
            if (phoneme != "_")
                for (int harmonic = 1; harmonic <= 4; ++harmonic)
                    value += std::sin(2 * 3.14159265358979 * harmonic * phase) / harmonic;
            const auto sample = static_cast<std::uint16_t>(static_cast<std::int16_t>(6000 * value));
            std::fputc(sample & 0xFF, stdout);
            std::fputc(sample >> 8, stdout);
        }
        if (!points.empty())
            hertz = points.back().second;
    }
};

} // namespace

int main()
{
    PutHeader();
    Voice voice;
    for (std::string line; std::getline(std::cin, line);) {
        if (!line.empty() && line[0] != '#' && line[0] != ';')
            voice.Say(line);
        std::fflush(stdout);
    }
}
