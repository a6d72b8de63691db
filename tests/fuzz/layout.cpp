// Fuzzing of printed pages. Each word takes eight bytes: place, length, size and looks; the word's text is made of
// them. A page ends with a word of length 0.
#include "documents.h"

#include "readers/pdf/Layout.h"

#include <array>
#include <map>
#include <string>

using namespace voxmate::readers;

namespace
{

constexpr std::size_t WordSize = 8;
constexpr std::array<const char*, 16> Texts{"word",
                                            "1",
                                            "1.",
                                            "\xE2\x80\xA2",
                                            "exam-",
                                            "ple",
                                            "The",
                                            "end.",
                                            "\xC2\xAD",
                                            "12",
                                            "-",
                                            "*",
                                            "Stra\xC3\x9F"
                                            "e",
                                            "iv",
                                            "Page",
                                            "longer"};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::map<std::string, int> headings{{"the end.", 2}, {"1. word", 1}};
    voxmate::fuzz::ReadAndCheck("pages are composed", [&](const BlockSink& sink) {
        Layout layout(sink, headings);
        PdfPage page;
        int number = 1;
        const auto end = [&] {
            page.label = std::to_string(number++);
            layout.Add(page);
            page.words.clear();
        };
        for (; size >= WordSize; data += WordSize, size -= WordSize) {
            if (data[4] % 16 == 0) {
                end();
                continue;
            }
            PdfWord word;
            word.text = Texts.at(data[4] / 16U);
            word.left = data[0] * 2.5 + data[1] / 256.0;
            word.bottom = data[2] * 3 + data[3] / 64.0;
            word.size = data[5] % 24 + 1;
            word.right = word.left + word.size * (data[4] % 16) / 3;
            word.top = word.bottom - word.size;
            word.bold = (data[6] & 1) != 0;
            word.blank = (data[6] & 2) != 0;
            // Files say anything about places.
            if (data[7] == 0xFF)
                word.right = -word.right * 1e9;
            if (data[7] == 0xFE)
                word.size = 0;
            page.words.push_back(word);
        }
        end();
        layout.Finish();
    });
    return 0;
}
