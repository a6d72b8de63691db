// Neural voices as far as they need no runtime: what a voice's files tell, where they are found, phonemes and numbers.
#include "PiperNetwork.h"
#include "base/Text.h"
#include "speech/Engine.h"
#include "speech/engines/EspeakPhonemes.h"
#include "speech/engines/OnnxGraph.h"
#include "speech/engines/PiperModel.h"
#include "speech/engines/PiperVoiceFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>

#include <stdlib.h>
#include <sys/stat.h>

namespace voxmate::speech
{
namespace
{

namespace fs = std::filesystem;
using ::testing::ElementsAre;

class PiperTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string form = (fs::temp_directory_path() / "piperXXXXXX").string();
        ASSERT_NE(mkdtemp(form.data()), nullptr);
        folder = form;
    }
    void TearDown() override { fs::remove_all(folder); }

    static void Write(const fs::path& file, const std::string& text)
    {
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }

    // Why a voice with this description is refused; empty when it is not.
    std::string WhyNot(const std::string& description) const
    {
        const fs::path model = folder / "xx_YY-test-low.onnx";
        Write(model, "x");
        Write(model.string() + ".json", description);
        std::string why;
        const bool read = ReadPiperVoice(model, why).has_value();
        EXPECT_EQ(read, why.empty()) << why;
        const std::string begin = model.string() + ".json: ";
        EXPECT_TRUE(why.empty() || why.starts_with(begin)) << why;
        return why.empty() ? why : why.substr(begin.size());
    }

    fs::path folder;
};

std::string Description(const std::string& changed = "", const std::string& with = "")
{
    std::string text = R"({"audio": {"sample_rate": 22050, "quality": "medium"}, "espeak": {"voice": "de"},
        "inference": {"noise_scale": 0.5, "length_scale": 1.25, "noise_w": 0.75}, "phoneme_type": "espeak",
        "num_symbols": 256, "num_speakers": 1, "speaker_id_map": {},
        "phoneme_id_map": {"_": [0], "^": [1], "$": [2], "a": [14, 15], "aɪ": [161]},
        "language": {"code": "de_DE", "name_english": "German", "country_english": "Germany"}, "dataset": "otto"})";
    const std::size_t at = text.find(changed);
    EXPECT_NE(at, std::string::npos);
    return changed.empty() ? text : text.replace(at, changed.size(), with);
}

TEST_F(PiperTest, AVoicesDescriptionIsRead)
{
    const fs::path model = folder / "de_DE-otto-medium.onnx";
    Write(model, "x");
    Write(model.string() + ".json", Description());
    std::string why;
    const auto voice = ReadPiperVoice(model, why);
    ASSERT_TRUE(voice) << why;
    EXPECT_EQ(voice->name, "otto");
    EXPECT_EQ(voice->quality, "medium");
    EXPECT_EQ(voice->language, "de-de");
    EXPECT_EQ(voice->place, "German, Germany");
    EXPECT_EQ(voice->espeakVoice, "de");
    EXPECT_EQ(voice->sampleRate, 22050);
    EXPECT_EQ(voice->noiseScale, 0.5F);
    EXPECT_EQ(voice->lengthScale, 1.25F);
    EXPECT_EQ(voice->noiseWidth, 0.75F);
    EXPECT_TRUE(voice->speakers.empty());
    EXPECT_EQ(voice->numbers,
              (std::map<char32_t, std::vector<std::int64_t>>{{U'_', {0}}, {U'^', {1}}, {U'$', {2}}, {U'a', {14, 15}}}));
}

TEST_F(PiperTest, SpeakersHaveTheirNamesOrNumbers)
{
    const fs::path model = folder / "en_GB-many-low.onnx";
    Write(model, "x");
    Write(model.string() + ".json",
          Description(R"("num_speakers": 1, "speaker_id_map": {})",
                      R"("num_speakers": 3, "speaker_id_map": {"p225": 0, "p226": 2, "p227": 7, "p228": -1})"));
    std::string why;
    const auto voice = ReadPiperVoice(model, why);
    ASSERT_TRUE(voice) << why;
    EXPECT_THAT(voice->speakers, ElementsAre("p225", "1", "p226"));
}

TEST_F(PiperTest, WhatIsNoVoicesDescriptionIsRefused)
{
    EXPECT_EQ(WhyNot(Description()), "");
    EXPECT_EQ(WhyNot(""), "it is not a voice's description.");
    EXPECT_EQ(WhyNot("[]"), "it is not a voice's description.");
    EXPECT_EQ(WhyNot(Description("\"audio\": {", "\"audio\": [")), "it is not a voice's description.");
    EXPECT_EQ(WhyNot(std::string(500000, '[')), "it is not a voice's description.");
    EXPECT_EQ(WhyNot(Description() + std::string(1 << 20, ' ')), "it is too large for a voice's description.");
    const std::string otherPhonemes = "the voice takes other phonemes than eSpeak NG's.";
    EXPECT_EQ(WhyNot(Description(R"("phoneme_type": "espeak")", R"("phoneme_type": "pinyin")")), otherPhonemes);
    EXPECT_EQ(WhyNot(Description(R"({"voice": "de"})", "{}")), otherPhonemes);
    const std::string noRate = "it does not tell the rate of the voice's samples.";
    EXPECT_EQ(WhyNot(Description("22050", "0")), noRate);
    EXPECT_EQ(WhyNot(Description("22050", "4000000000")), noRate);
    EXPECT_EQ(WhyNot(Description("22050", "\"22050\"")), noRate);
    const std::string damaged = "its table of phonemes is damaged.";
    EXPECT_EQ(WhyNot(Description("[14, 15]", "[256]")), damaged);
    EXPECT_EQ(WhyNot(Description("[14, 15]", "[-1]")), damaged);
    EXPECT_EQ(WhyNot(Description("[14, 15]", "[1e99]")), damaged);
    EXPECT_EQ(WhyNot(Description("[14, 15]", "[[[]]]")), damaged);
    EXPECT_EQ(WhyNot(Description(R"("^": [1], )", "")), damaged);
    EXPECT_EQ(WhyNot(Description("phoneme_id_map", "phonemes")), damaged);
    std::string why;
    EXPECT_FALSE(ReadPiperVoice(folder / "none.onnx", why));
    EXPECT_EQ(why, (folder / "none.onnx").string() + ": it cannot be read.");
}

TEST_F(PiperTest, ScalesThatNoVoiceHasAreReplaced)
{
    const fs::path model = folder / "de_DE-otto-medium.onnx";
    Write(model, "x");
    Write(model.string() + ".json", Description(R"("noise_scale": 0.5, "length_scale": 1.25, "noise_w": 0.75)",
                                                R"("noise_scale": -3, "length_scale": 0, "noise_w": "much")"));
    std::string why;
    const auto voice = ReadPiperVoice(model, why);
    ASSERT_TRUE(voice) << why;
    EXPECT_EQ(voice->noiseScale, 0.667F);
    EXPECT_EQ(voice->lengthScale, 1);
    EXPECT_EQ(voice->noiseWidth, 0.8F);
}

TEST(PiperNumbersTest, MarksStandAroundAndBetweenPhonemes)
{
    PiperVoiceFile voice;
    voice.numbers = {{U'_', {0}}, {U'^', {1}}, {U'$', {2}}, {U'a', {14, 15}}, {U'b', {20}}};
    std::vector<std::size_t> places;
    EXPECT_THAT(NumbersOf(voice, U"abxb", places), ElementsAre(1, 0, 14, 15, 0, 20, 0, 20, 0, 2));
    EXPECT_THAT(places, ElementsAre(2, 5, 7, 7));
    EXPECT_THAT(NumbersOf(voice, U"", places), ElementsAre(1, 0, 2));
    EXPECT_TRUE(places.empty());
}

TEST_F(PiperTest, WhatStandsForADescriptionButIsNoneIsRefusedUnread)
{
    const fs::path model = folder / "xx_YY-test-low.onnx";
    const fs::path description = model.string() + ".json";
    const auto why = [&] {
        std::string told;
        EXPECT_FALSE(ReadPiperVoice(model, told));
        return told;
    };
    EXPECT_EQ(why(), model.string() + ": it cannot be read.");
    Write(model, "x");
    EXPECT_EQ(why(), description.string() + ": it cannot be read.");
    // Nobody writes into this pipe, and nothing ends the other: reading them would take for ever.
    ASSERT_EQ(mkfifo(description.c_str(), 0600), 0);
    EXPECT_EQ(why(), description.string() + ": it cannot be read.");
    fs::remove(description);
    fs::create_symlink("/dev/zero", description);
    EXPECT_EQ(why(), description.string() + ": it cannot be read.");
    fs::remove(description);
    // A file of the system's, whose size is told as 0 and which may have no end.
    fs::create_symlink("/proc/self/maps", description);
    EXPECT_EQ(why(), description.string() + ": it is not a voice's description.");
    fs::remove(description);
    fs::create_symlink(description, description);
    EXPECT_EQ(why(), description.string() + ": it cannot be read.");
    fs::remove(description);
    Write(description, "");
    fs::resize_file(description, std::uintmax_t{1} << 30U);
    EXPECT_EQ(why(), description.string() + ": it is too large for a voice's description.");
}

TEST_F(PiperTest, ANameHasOneLineAndNoPartsOfLetters)
{
    const auto read = [&](const std::string& stem, const std::string& changed = "", const std::string& with = "") {
        const fs::path model = folder / (stem + ".onnx");
        Write(model, "x");
        Write(model.string() + ".json", Description(changed, with));
        std::string why;
        std::optional<PiperVoiceFile> voice = ReadPiperVoice(model, why);
        EXPECT_TRUE(voice) << why;
        return voice.value_or(PiperVoiceFile());
    };
    EXPECT_EQ(read("de_DE-ot\nto-medium").name, "ot to");
    EXPECT_EQ(read("de_DE-ott\xff-medium").name, "ott\ufffd");
    EXPECT_EQ(read("de_DE-otto-medium", R"("quality": "medium")", R"("quality": "me\ndium")").quality, "me dium");
    EXPECT_EQ(read("de_DE-otto-medium", "\"Germany\"", R"("Ger\tmany\u0000")").place, "German, Ger many");
    const PiperVoiceFile many = read("de_DE-otto-medium", R"("num_speakers": 1, "speaker_id_map": {})",
                                     R"("num_speakers": 2, "speaker_id_map": {"first\r\nspeaker": 0, " \n ": 1})");
    EXPECT_THAT(many.speakers, ElementsAre("first speaker", "1"));
    // What refuses a voice is told in one line, too.
    const fs::path model = folder / "a\nb.onnx";
    Write(model, "x");
    std::string why;
    EXPECT_FALSE(ReadPiperVoice(model, why));
    EXPECT_EQ(why, (folder / "a b.onnx.json").string() + ": it cannot be read.");
}

TEST_F(PiperTest, AFilesNameIsThatOfTheVoiceWithoutLanguageAndQuality)
{
    const auto read = [&](const std::string& stem, bool language) {
        const fs::path model = folder / (stem + ".onnx");
        Write(model, "x");
        Write(model.string() + ".json", language ? Description() : Description("\"language\":", "\"languages\":"));
        std::string why;
        const std::optional<PiperVoiceFile> voice = ReadPiperVoice(model, why);
        EXPECT_TRUE(voice) << why;
        return voice ? voice->name + " " + voice->language : why;
    };
    EXPECT_EQ(read("de_DE-otto-medium", true), "otto de-de");
    EXPECT_EQ(read("de-de-otto-medium", true), "otto de-de");
    EXPECT_EQ(read("de-otto", true), "otto de-de");
    EXPECT_EQ(read("de_AT-otto-medium", true), "otto de-de");
    EXPECT_EQ(read("joe-medium", true), "joe de-de");
    EXPECT_EQ(read("my-own-voice", true), "my-own-voice de-de");
    EXPECT_EQ(read("de_DE-a-b-c-medium", true), "a-b-c de-de");
    EXPECT_EQ(read("medium", true), "otto de-de");
    EXPECT_EQ(read("de-medium", true), "otto de-de");
    // Older descriptions tell no language but that of the phonemes.
    EXPECT_EQ(read("de_DE-otto-medium", false), "otto de");
    EXPECT_EQ(read("joe-medium", false), "joe de");
}

TEST_F(PiperTest, VoicesAreFoundWhereOthersPutThem)
{
    EXPECT_THAT(PiperFolders("/own", "/data", "/home/a"),
                ElementsAre("/own", "/data/piper", "/data/piper-voices", "/data/pied/models",
                            "/home/a/.var/app/com.mikeasoft.pied/data/pied/models", "/home/a/snap/pied/common/models",
                            "/usr/share/piper-voices", "/usr/share/piper/voices", "/usr/local/share/piper-voices"));
}

TEST_F(PiperTest, NetworksAreFoundInTheOrderOfFoldersAndNames)
{
    for (const char* name : {"own/b.onnx", "own/a.onnx", "own/other.txt", "own/c.onnx.json",
                             "piper/en/en_US/joe/medium/c.onnx", "piper/b.onnx", "piper/1/2/3/4/5/deep.onnx"})
        Write(folder / name, "x");
    fs::create_directory_symlink(folder, folder / "piper/loop");
    fs::create_symlink("itself.onnx", folder / "piper/itself.onnx");
    EXPECT_THAT(FindPiperModels({folder / "own", folder / "piper", folder / "missing"}),
                ElementsAre(folder / "own/a.onnx", folder / "own/b.onnx", folder / "piper/b.onnx",
                            folder / "piper/itself.onnx", folder / "piper/en/en_US/joe/medium/c.onnx"));
}

/// The list of voices. For that, a runtime only has to be there.
class PiperListTest : public PiperTest
{
protected:
    void SetUp() override
    {
        PiperTest::SetUp();
        Write(folder / "own/runtime/libonnxruntime.so.1", "");
        if (!PiperModel::Available(folder / "own/runtime"))
            GTEST_SKIP() << "Built without neural voices.";
    }
    void Put(const std::string& place, const std::string& description)
    {
        Write(folder / (place + ".onnx"), "x");
        Write(folder / (place + ".onnx.json"), description);
    }
    std::vector<std::string> Names()
    {
        const auto engine = CreatePiperEngine(
            folder / "own", folder / "data", folder, [&](const std::string& why) { told.push_back(why); },
            [&](const std::string& why) { ADD_FAILURE() << why; });
        std::vector<std::string> names;
        for (const Voice& voice : engine->Voices())
            names.push_back(voice.name);
        return names;
    }

    std::vector<std::string> told;
};

TEST_F(PiperListTest, AVoiceIsListedOnceAndADamagedOneHidesNone)
{
    Put("own/de_DE-otto-medium", Description());
    Put("own/de_DE-emma-medium", "damaged");
    Put("data/piper/de_DE-otto-medium", "damaged, but never looked at");
    Put("data/piper/de_DE-emma-medium", Description());
    Put("data/piper-voices/de_DE-emma-medium", Description());
    EXPECT_THAT(Names(), ElementsAre("Piper otto (German, Germany, medium)", "Piper emma (German, Germany, medium)"));
    EXPECT_THAT(told, ElementsAre((folder / "own/de_DE-emma-medium.onnx.json").string() +
                                  ": it is not a voice's description."));
}

TEST_F(PiperListTest, TwentySpeakersOfANetworkAreListed)
{
    Put("own/de_DE-many-low", Description(R"("num_speakers": 1, "speaker_id_map": {})",
                                          R"("num_speakers": 904, "speaker_id_map": {"p1": 0, "p904": 903})"));
    const std::vector<std::string> names = Names();
    ASSERT_EQ(names.size(), 20U);
    EXPECT_EQ(names.front(), "Piper many p1 (German, Germany, medium)");
    EXPECT_EQ(names.back(), "Piper many 19 (German, Germany, medium)");
}

std::string Node(const std::string& kind, const std::string& input)
{
    return network::Node(kind, "", {input}, {"out"});
}

TEST(OnnxGraphTest, TheValueThatIsRoundedUpIsFound)
{
    const std::string version{0x08, 0x07}; // a number before the graph
    const std::string model =
        version + network::Field(7, Node("Add", "x") + Node("Ceil", "lengths") + Node("Mul", "y"));
    EXPECT_EQ(InputOfOnly(model, "Ceil"), "lengths");
    EXPECT_EQ(InputOfOnly(model, "Floor"), std::nullopt);
    EXPECT_EQ(InputOfOnly(network::Field(7, Node("Ceil", "a") + Node("Ceil", "b")), "Ceil"), std::nullopt);
    EXPECT_EQ(InputOfOnly(network::Field(7, Node("Ceil", "")), "Ceil"), std::nullopt);
    EXPECT_EQ(InputOfOnly("", "Ceil"), std::nullopt);
    EXPECT_EQ(InputOfOnly("This is no network.", "Ceil"), std::nullopt);
}

TEST(OnnxGraphTest, AFileThatBreaksOffIsRefused)
{
    const std::string model = network::Field(7, Node("Add", "x") + Node("Ceil", "lengths"));
    for (std::size_t size = 1; size < model.size(); ++size)
        EXPECT_EQ(InputOfOnly(std::string_view(model).substr(0, size), "Ceil"), std::nullopt) << size;
    // Lengths of more bytes than there are, and numbers without an end.
    EXPECT_EQ(InputOfOnly(std::string("\x3a\xff\xff\xff\xff\xff\xff\xff\xff\x7f"), "Ceil"), std::nullopt);
    EXPECT_EQ(InputOfOnly(std::string(20, '\xff'), "Ceil"), std::nullopt);
}

TEST(OnnxGraphTest, AnOutputIsAddedBehindTheFile)
{
    EXPECT_EQ(AsOutput("lengths"), network::Field(7, network::Field(12, network::Field(1, "lengths"))));
    const std::string model = network::Field(7, Node("Ceil", "lengths"));
    EXPECT_EQ(InputOfOnly(model + AsOutput("lengths"), "Ceil"), "lengths");
    EXPECT_EQ(AsOutput(std::string(200, 'n')).size(), 200 + 3 * 3U);
}

TEST(EspeakPhonemesTest, NotesOfLanguagesAreLeftOutAndLettersDecomposed)
{
    EXPECT_EQ(PlainPhonemes("(en)hˈaʊs(de) bˈɪld"), U"hˈaʊs bˈɪld");
    EXPECT_EQ(PlainPhonemes("\u026a\u00e7 \u00e3"), U"\u026ac\u0327 a\u0303");
}

// Where each word's phonemes begin, when the words are said like this one by one.
std::vector<std::size_t> Sources(std::u32string_view phonemes, std::u32string_view text,
                                 const std::map<std::u32string, std::u32string>& spoken)
{
    return SourcesOf(phonemes, text, 0, text.size(),
                     [&](std::u32string_view word) { return spoken.at(std::u32string(word)); });
}

TEST(EspeakPhonemesTest, EachPhonemeKnowsItsWord)
{
    EXPECT_THAT(Sources(U"wʌn tu.", U"one two.", {{U"one", U"wʌn"}, {U"two.", U"tu"}}),
                ElementsAre(0, 0, 0, 0, 4, 4, 4));
    // "of the" is said in one, and a number in several words.
    EXPECT_THAT(Sources(U"ʌvðə fɔti tu", U"of the 42", {{U"of", U"ʌv"}, {U"the", U"ðə"}, {U"42", U"fɔti tu"}}),
                ElementsAre(0, 0, 3, 3, 3, 7, 7, 7, 7, 7, 7, 7));
    // A word that is said in another way in its sentence.
    EXPECT_THAT(Sources(U"ə hˈaʊs", U"a house", {{U"a", U"ˈeɪ"}, {U"house", U"hˈaʊs"}}),
                ElementsAre(0, 0, 2, 2, 2, 2, 2));
    EXPECT_THAT(Sources(U"a", U"  ", {}), ElementsAre(2));
    EXPECT_TRUE(Sources(U"", U"silent", {{U"silent", U""}}).empty());
}

TEST(EspeakPhonemesTest, ATextIsDividedIntoClausesWithTheirMarks)
{
    const std::u32string text = U"Hello there, my friend. How are you? Fine!";
    const std::vector<Clause> clauses = ClausesOf("en-us", text);
    ASSERT_EQ(clauses.size(), 4U);
    const auto last = [&](std::size_t i) { return clauses[i].phonemes.substr(clauses[i].phonemes.size() - 2); };
    EXPECT_EQ(last(0), U", ");
    EXPECT_EQ(clauses[1].phonemes.back(), U'.');
    EXPECT_EQ(clauses[2].phonemes.back(), U'?');
    EXPECT_EQ(clauses[3].phonemes.back(), U'!');
    std::vector<bool> ends;
    std::vector<std::size_t> words;
    for (const Clause& clause : clauses) {
        ends.push_back(clause.endsSentence);
        ASSERT_EQ(clause.source.size(), clause.phonemes.size());
        for (const std::size_t source : clause.source)
            if (words.empty() || words.back() != source)
                words.push_back(source);
    }
    EXPECT_EQ(ends, (std::vector<bool>{false, true, true, true}));
    EXPECT_THAT(words, ElementsAre(0, 6, 13, 16, 24, 28, 32, 37));
    EXPECT_TRUE(ClausesOf("no-such-voice", text).empty());
}

TEST(EspeakPhonemesTest, ALongTextWithoutAMarkIsDividedBetweenWords)
{
    const std::u32string words = U"the council keeps our library open until nine ";
    std::u32string text;
    for (int i = 0; i < 20; ++i)
        text += words;
    const std::vector<Clause> clauses = ClausesOf("en-us", text);
    EXPECT_GT(clauses.size(), 3U);
    std::size_t before = 0;
    for (const Clause& clause : clauses) {
        EXPECT_LE(clause.phonemes.size(), LongestClause);
        EXPECT_EQ(clause.source.size(), clause.phonemes.size());
        // None begins within a word.
        if (&clause != &clauses.front()) {
            EXPECT_NE(clause.source.front(), before);
            EXPECT_NE(clause.phonemes.front(), U' ');
        }
        before = clause.source.back();
    }
    // A word without an end is cut somewhere, but not before a mark of a sound.
    std::size_t phonemes = 0;
    for (const Clause& clause : ClausesOf("en-us", std::u32string(1000, U'7'))) {
        EXPECT_LE(clause.phonemes.size(), LongestClause);
        EXPECT_NE(clause.phonemes.front(), U'ː');
        phonemes += clause.phonemes.size();
    }
    EXPECT_GT(phonemes, 1000U);
}

TEST(EspeakPhonemesTest, VeryManyPhonemesAreSharedEvenly)
{
    std::u32string text;
    for (int i = 0; i < 1000; ++i)
        text += U"x ";
    const std::u32string phonemes(20000, U'a');
    const std::vector<std::size_t> sources =
        SourcesOf(phonemes, text, 0, text.size(), [](std::u32string_view) { return std::u32string(20, U'a'); });
    ASSERT_EQ(sources.size(), phonemes.size());
    EXPECT_EQ(sources.front(), 0U);
    EXPECT_EQ(sources[10000], 1000U);
    EXPECT_EQ(sources.back(), 1998U);
}

} // namespace
} // namespace voxmate::speech
