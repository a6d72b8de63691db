#include "speech/VoiceCatalog.h"
#include "speech/text/ModeId.h"
#include "tests/fakes/FakeEngine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <utility>

namespace voxmate::speech
{
namespace
{

std::vector<std::string> NamesFor(std::string_view desktopLanguage)
{
    std::vector<std::unique_ptr<Engine>> engines;
    engines.push_back(
        std::make_unique<fakes::FakeEngine>(std::vector<Voice>{{"e French", "1", "fr-fr", ""},
                                                               {"e English (West)", "2", "en-gb-west", ""},
                                                               {"e German", "3", "de", ""},
                                                               {"e Danish", "4", "da", ""},
                                                               {"e English (America)", "5", "en-us", ""}}));
    engines.push_back(std::make_unique<fakes::FakeEngine>(std::vector<Voice>{{"f Anna", "6", "en-us", ""}}));
    VoiceCatalog catalog(std::move(engines), desktopLanguage);
    std::vector<std::string> names;
    for (int i = 1; i <= catalog.CountEngines(); ++i)
        names.push_back(catalog.ModeName(i));
    return names;
}

using Names = std::vector<std::string>;

TEST(VoiceCatalogTest, PutsTheDesktopsLanguageFirstThenEnglishThenTheRest)
{
    EXPECT_EQ(NamesFor("de-DE"),
              (Names{"e German", "e English (America)", "e English (West)", "f Anna", "e Danish", "e French"}));
}

TEST(VoiceCatalogTest, UnderstandsTheNamesThatDesktopsGiveTheirLanguage)
{
    EXPECT_EQ(NamesFor("fr_FR.UTF-8").front(), "e French");
    EXPECT_EQ(NamesFor("DA").front(), "e Danish");
}

TEST(VoiceCatalogTest, BeginsWithEnglishWhenTheDesktopsLanguageIsUnknown)
{
    const Names english{"e English (America)", "e English (West)", "f Anna", "e Danish", "e French", "e German"};
    EXPECT_EQ(NamesFor(""), english);
    EXPECT_EQ(NamesFor("tlh"), english);
    EXPECT_EQ(NamesFor("en-GB"), english);
}

TEST(VoiceCatalogTest, PutsTheDesktopsRegionBeforeItsLanguagesOtherVoices)
{
    const auto firstFor = [](std::string_view desktop) {
        std::vector<std::unique_ptr<Engine>> engines;
        engines.push_back(
            std::make_unique<fakes::FakeEngine>(std::vector<Voice>{{"Belgian", "1", "fr-be", ""},
                                                                   {"French", "2", "fr", ""},
                                                                   {"Canadian", "3", "fr-ca", "", Voice::Origin::Added},
                                                                   {"Brazilian", "4", "pt-br", ""},
                                                                   {"Portuguese", "5", "pt", ""},
                                                                   {"Latin American", "6", "es-419", ""},
                                                                   {"Spanish", "7", "es", ""},
                                                                   {"Cantonese", "8", "yue", ""},
                                                                   {"Hakka", "9", "hak", ""},
                                                                   {"Mandarin, English", "10", "cmn", ""},
                                                                   {"Mandarin, Pinyin", "11", "cmn-latn-pinyin", ""},
                                                                   {"Bokmal", "12", "nb", ""}}));
        return VoiceCatalog(std::move(engines), desktop).ModeName(1);
    };
    EXPECT_EQ(firstFor("fr_CA"), "Canadian");
    EXPECT_EQ(firstFor("fr_BE"), "Belgian");
    EXPECT_EQ(firstFor("fr_LU"), "French");
    EXPECT_EQ(firstFor("pt_BR"), "Brazilian");
    EXPECT_EQ(firstFor("pt_PT"), "Portuguese");
    EXPECT_EQ(firstFor("es_MX"), "Latin American");
    EXPECT_EQ(firstFor("es_ES"), "Spanish");
    EXPECT_EQ(firstFor("zh_CN"), "Mandarin, Pinyin");
    EXPECT_EQ(firstFor("zh_TW"), "Mandarin, Pinyin");
    EXPECT_EQ(firstFor("zh-HK"), "Cantonese");
    EXPECT_EQ(firstFor("nn_NO"), "Bokmal");
}

// The names listed within a limit, on a German desktop.
Names NamesWithin(int limit, std::vector<Voice> voices, const std::string& chosen = "")
{
    std::vector<std::unique_ptr<Engine>> engines;
    engines.push_back(std::make_unique<fakes::FakeEngine>(std::move(voices)));
    VoiceCatalog catalog(std::move(engines), "de", limit, [chosen] { return chosen; });
    Names names;
    for (int i = 1; i <= catalog.CountEngines(); ++i)
        names.push_back(catalog.ModeName(i));
    return names;
}

const std::vector<Voice> many{{"Brazilian", "1", "pt-br", ""},
                              {"Esperanto", "2", "eo", ""},
                              {"Portuguese", "3", "pt", ""},
                              {"German", "4", "de", ""},
                              {"Belgian", "5", "fr-be", ""},
                              {"French", "6", "fr", ""},
                              {"Swiss", "7", "de-ch", ""},
                              {"English", "8", "en-us", ""},
                              {"Scottish", "9", "en-gb-scotland", ""},
                              {"Welsh", "10", "cy", ""},
                              {"Added Icelandic", "11", "is", "", Voice::Origin::Added}};

TEST(VoiceCatalogTest, LeavesOutFirstWhatTheFewestPeopleHaveAUseFor)
{
    EXPECT_EQ(NamesWithin(11, many), (Names{"German", "Swiss", "English", "Scottish", "Added Icelandic", "Belgian",
                                            "Brazilian", "Esperanto", "French", "Portuguese", "Welsh"}));
    EXPECT_EQ(NamesWithin(10, many), (Names{"German", "Swiss", "English", "Scottish", "Added Icelandic", "Belgian",
                                            "Brazilian", "French", "Portuguese", "Welsh"}));
    // Further accents go first, that of the most widely spoken language last.
    EXPECT_EQ(NamesWithin(9, many), (Names{"German", "Swiss", "English", "Scottish", "Added Icelandic", "Brazilian",
                                           "French", "Portuguese", "Welsh"}));
    EXPECT_EQ(NamesWithin(8, many),
              (Names{"German", "Swiss", "English", "Added Icelandic", "Brazilian", "French", "Portuguese", "Welsh"}));
    EXPECT_EQ(NamesWithin(7, many),
              (Names{"German", "Swiss", "English", "Added Icelandic", "Brazilian", "French", "Portuguese"}));
    EXPECT_EQ(NamesWithin(6, many), (Names{"German", "Swiss", "English", "Brazilian", "French", "Portuguese"}));
    EXPECT_EQ(NamesWithin(4, many), (Names{"German", "Swiss", "English", "French"}));
}

TEST(VoiceCatalogTest, AlwaysHasTheVoiceThatIsChosen)
{
    EXPECT_EQ(NamesWithin(4, many, "Esperanto"), (Names{"German", "Swiss", "English", "Esperanto"}));
    EXPECT_EQ(NamesWithin(1, many, "Scottish"), (Names{"Scottish"}));
    EXPECT_EQ(NamesWithin(4, many, "esperanto"), (Names{"German", "Swiss", "English", "French"}));
}

// What is installed here, as it is listed on a desktop of that locale.
class RealListTest : public ::testing::TestWithParam<std::pair<const char*, const char*>>
{
protected:
    // A real engine, shared so that its voices are looked up only once.
    struct Shared final : Engine {
        explicit Shared(Engine& of) : real(of) {}
        const std::vector<Voice>& Voices() override { return real.Voices(); }
        std::vector<Voice> VariantsOf(const Voice& voice) override { return real.VariantsOf(voice); }
        int SampleRate(const Voice& voice) override { return real.SampleRate(voice); }
        bool Synthesize(const Voice&, std::span<const Segment>, SampleSink&) override { return false; }
        Engine& real;
    };
    static std::vector<std::unique_ptr<Engine>> Engines()
    {
        static const std::unique_ptr<Engine> espeak = CreateEspeakEngine();
        static const std::unique_ptr<Engine> flite = CreateFliteEngine();
        std::vector<std::unique_ptr<Engine>> engines;
        engines.push_back(std::make_unique<Shared>(*espeak));
        engines.push_back(std::make_unique<Shared>(*flite));
        return engines;
    }
    static std::vector<const VoiceCatalog::Entry*> Listed(VoiceCatalog& catalog)
    {
        std::vector<const VoiceCatalog::Entry*> entries;
        for (int i = 1; i <= catalog.CountEngines(); ++i)
            entries.push_back(catalog.Find(catalog.ModeID(i)));
        return entries;
    }
};

TEST_P(RealListTest, BeginsWithTheDesktopsVoiceAndLeavesOutOnlySmallLanguages)
{
    const auto& [desktop, first] = GetParam();
    VoiceCatalog all(Engines(), desktop);
    VoiceCatalog catalog(Engines(), desktop, 100);
    EXPECT_GT(all.CountEngines(), 100) << "nothing is left out here";
    EXPECT_EQ(catalog.CountEngines(), 100);
    EXPECT_EQ(catalog.ModeName(1), first);
    std::set<std::string> names;
    std::set<std::string> languages;
    for (const VoiceCatalog::Entry* entry : Listed(catalog)) {
        EXPECT_TRUE(names.insert(entry->voice.name).second) << entry->voice.name;
        languages.insert(LanguageFamily(entry->voice.language));
    }
    // The smallest language that is listed, besides the desktop's own.
    double smallest = 1000;
    const std::string own = LanguageFamily(catalog.Find(catalog.ModeID(1))->voice.language);
    for (const VoiceCatalog::Entry* entry : Listed(catalog))
        if (const double millions = MillionsOfSpeakers(entry->voice.language);
            millions > 0 && LanguageFamily(entry->voice.language) != own)
            smallest = std::min(smallest, millions);
    std::set<std::string> leftOut;
    for (const VoiceCatalog::Entry* entry : Listed(all)) {
        const std::string& tag = entry->voice.language;
        if (!languages.contains(LanguageFamily(tag))) {
            // With eSpeak NG 1.52 the last of those with a million do not fit any more.
            EXPECT_LT(MillionsOfSpeakers(tag), 1.2) << tag;
            EXPECT_LE(MillionsOfSpeakers(tag), smallest) << tag;
            leftOut.insert(tag);
        }
    }
    EXPECT_TRUE(leftOut.contains("eo")) << "people's languages come before constructed ones";
    for (const char* name :
         {"eSpeak French (France)", "eSpeak German", "eSpeak Spanish (Spain)", "eSpeak Spanish (Latin America)",
          "eSpeak Portuguese (Brazil)", "eSpeak Russian", "eSpeak Arabic", "eSpeak Hindi", "eSpeak Bengali",
          "eSpeak Chinese (Mandarin, latin as Pinyin)", "eSpeak Chinese (Cantonese)", "eSpeak Hakka Chinese",
          "eSpeak Japanese", "eSpeak English (Great Britain)", "eSpeak English (America)",
          "Flite SLT (American English)"})
        EXPECT_TRUE(names.contains(name)) << name;
    // There are female variants of the desktop's first voice and of the English one.
    std::string female = first;
    if (female.ends_with(')'))
        female.pop_back();
    female += female == first ? " (female 2)" : ", female 2)";
    if (LanguageFamily(desktop) != "tlh") {
        EXPECT_TRUE(names.contains(female)) << female;
    }
    EXPECT_TRUE(std::any_of(names.begin(), names.end(), [](const std::string& name) {
        return name.starts_with("eSpeak English") && name.find("female, Steph") != std::string::npos;
    }));
    const bool english = std::string_view(desktop).starts_with("en");
    EXPECT_EQ(names.contains("eSpeak English (Scotland)"), english);
}

TEST(RealVariantsTest, AChosenOneOfAnotherLanguageIsListed)
{
    for (const char* chosen : {"eSpeak Polish (female 2)", "eSpeak English (Scotland, male 3)"}) {
        std::vector<std::unique_ptr<Engine>> engines;
        engines.push_back(CreateEspeakEngine());
        VoiceCatalog catalog(std::move(engines), "de_DE", 100, [chosen] { return chosen; });
        int found = 0;
        for (int i = 1; i <= catalog.CountEngines(); ++i)
            found += catalog.ModeName(i) == chosen;
        EXPECT_EQ(found, 1) << chosen;
    }
}

TEST_P(RealListTest, HasWhateverInstalledVoiceTheUserChose)
{
    const char* const desktop = GetParam().first;
    VoiceCatalog all(Engines(), desktop);
    for (int i = 1; i <= all.CountEngines(); ++i) {
        const std::string chosen = all.ModeName(i);
        VoiceCatalog catalog(Engines(), desktop, 100, [&] { return chosen; });
        EXPECT_EQ(catalog.Find(all.ModeID(i))->voice.name, chosen);
        EXPECT_EQ(catalog.CountEngines(), 100);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Desktops, RealListTest,
    ::testing::Values(std::pair("en_US", "eSpeak English (America)"),
                      std::pair("en_GB", "eSpeak English (Great Britain)"), std::pair("de_DE", "eSpeak German"),
                      std::pair("fr_FR", "eSpeak French (France)"), std::pair("fr_CA", "eSpeak French (France)"),
                      std::pair("zh_CN", "eSpeak Chinese (Mandarin, latin as Pinyin)"),
                      std::pair("zh_HK", "eSpeak Chinese (Cantonese)"), std::pair("ru_RU", "eSpeak Russian"),
                      std::pair("pt_BR", "eSpeak Portuguese (Brazil)"), std::pair("tlh", "eSpeak English (America)")),
    [](const auto& info) { return std::string(info.param.first); });

TEST(VoiceCatalogTest, FindsForEachLanguageTheVoiceThatIsMostLikeTheChosenOne)
{
    std::vector<std::unique_ptr<Engine>> engines;
    engines.push_back(std::make_unique<fakes::FakeEngine>(std::vector<Voice>{{"e Belgian", "1", "fr-be", ""},
                                                                             {"e French", "2", "fr", ""},
                                                                             {"e German", "3", "de", ""},
                                                                             {"e Bokmål", "4", "nb", ""},
                                                                             {"e English", "5", "en-us", ""}}));
    engines.push_back(std::make_unique<fakes::FakeEngine>(
        std::vector<Voice>{{"p German", "6", "de-DE", "", Voice::Origin::Added}, {"p Welsh", "7", "cy", ""}}));
    engines.push_back(std::make_unique<fakes::FakeEngine>(std::vector<Voice>{{"f Anna", "8", "en-us", ""}}));
    VoiceCatalog catalog(std::move(engines), "en");
    const auto speaker = [&catalog](const char* language, const char* mode) -> std::string {
        const VoiceCatalog::Entry* const entry = catalog.SpeakerOf(language, *catalog.Find(mode));
        return entry ? entry->voice.name : "nobody";
    };
    EXPECT_EQ(speaker("de", "5"), "e German");
    EXPECT_EQ(speaker("de", "7"), "p German");
    EXPECT_EQ(speaker("de", "8"), "p German"); // an added one, since its own kind has none
    EXPECT_EQ(speaker("fr", "8"), "e French");
    EXPECT_EQ(speaker("cy", "5"), "p Welsh");
    EXPECT_EQ(speaker("no", "5"), "e Bokmål");
    EXPECT_EQ(speaker("tlh", "5"), "nobody");
}

TEST(VoiceCatalogTest, HasNothingOutsideItsBounds)
{
    VoiceCatalog empty({}, "en");
    EXPECT_EQ(empty.CountEngines(), 0);
    EXPECT_EQ(empty.ModeName(1), "");
    EXPECT_EQ(empty.ModeID(0), "");
    EXPECT_EQ(empty.Find("1"), nullptr);
}

TEST(ModeIdTest, IsAGuidOfVersionEightInUpperCase)
{
    const std::string id = ModeIdOf("espeak", "gmw/en");
    std::string form;
    for (const char c : id)
        form += (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') ? 'X' : c;
    EXPECT_EQ(form, "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX");
    EXPECT_EQ(id[14], '8');
    EXPECT_NE(std::string("89AB").find(id[19]), std::string::npos);
}

TEST(ModeIdTest, OfAVoiceIsForEverTheSame)
{
    // Users' settings contain these identifiers, so they may never change.
    EXPECT_EQ(ModeIdOf("espeak", "gmw/en"), "84CB77DC-9B5D-8938-869A-7581728E342F");
    EXPECT_EQ(ModeIdOf("flite", "slt"), "AB59B8DF-AE66-8E77-A5ED-1762A50D82AD");
}

TEST(ModeIdTest, DiffersBetweenFamiliesAndKeys)
{
    const std::set<std::string> ids{ModeIdOf("espeak", "slt"), ModeIdOf("flite", "slt"), ModeIdOf("flite", "stl"),
                                    ModeIdOf("flit", "eslt")};
    EXPECT_EQ(ids.size(), 4U);
}

} // namespace
} // namespace voxmate::speech
