#include "platform/speech/VoiceCatalog.h"
#include "Fakes.h"
#include "platform/speech/ModeId.h"

#include <gtest/gtest.h>

#include <set>

namespace voxmate::speech
{
namespace
{

std::vector<std::string> NamesFor(std::string_view desktopLanguage)
{
    std::vector<std::unique_ptr<Engine>> engines;
    engines.push_back(std::make_unique<FakeEngine>(std::vector<Voice>{{"e French", "1", "fr-fr", ""},
                                                                      {"e English (West)", "2", "en-gb-west", ""},
                                                                      {"e German", "3", "de", ""},
                                                                      {"e Danish", "4", "da", ""},
                                                                      {"e English (America)", "5", "en-us", ""}}));
    engines.push_back(std::make_unique<FakeEngine>(std::vector<Voice>{{"f Anna", "6", "en-us", ""}}));
    VoiceCatalog catalog(std::move(engines), desktopLanguage);
    std::vector<std::string> names;
    for (int i = 1; i <= catalog.CountEngines(); ++i)
        names.push_back(catalog.ModeName(i));
    return names;
}

using Names = std::vector<std::string>;

TEST(VoiceCatalog, PutsTheDesktopsLanguageFirstThenEnglishThenTheRest)
{
    EXPECT_EQ(NamesFor("de-DE"),
              (Names{"e German", "e English (America)", "e English (West)", "f Anna", "e Danish", "e French"}));
}

TEST(VoiceCatalog, UnderstandsTheNamesThatDesktopsGiveTheirLanguage)
{
    EXPECT_EQ(NamesFor("fr_FR.UTF-8").front(), "e French");
    EXPECT_EQ(NamesFor("DA").front(), "e Danish");
}

TEST(VoiceCatalog, BeginsWithEnglishWhenTheDesktopsLanguageIsUnknown)
{
    const Names english{"e English (America)", "e English (West)", "f Anna", "e Danish", "e French", "e German"};
    EXPECT_EQ(NamesFor(""), english);
    EXPECT_EQ(NamesFor("tlh"), english);
    EXPECT_EQ(NamesFor("en-GB"), english);
}

TEST(VoiceCatalog, LeavesOutRegionsAndConstructedLanguagesWhereThereAreMoreVoicesThanFit)
{
    const auto namesWithin = [](int limit) {
        std::vector<std::unique_ptr<Engine>> engines;
        engines.push_back(std::make_unique<FakeEngine>(std::vector<Voice>{{"Brazilian", "1", "pt-br", ""},
                                                                          {"Esperanto", "2", "eo", ""},
                                                                          {"Portuguese", "3", "pt", ""},
                                                                          {"German", "4", "de", ""},
                                                                          {"Swiss", "5", "de-ch", ""},
                                                                          {"English", "6", "en-us", ""},
                                                                          {"Welsh", "7", "cy", ""}}));
        VoiceCatalog catalog(std::move(engines), "de", limit);
        Names names;
        for (int i = 1; i <= catalog.CountEngines(); ++i)
            names.push_back(catalog.ModeName(i));
        return names;
    };
    EXPECT_EQ(namesWithin(7), (Names{"German", "Swiss", "English", "Brazilian", "Esperanto", "Portuguese", "Welsh"}));
    EXPECT_EQ(namesWithin(6), (Names{"German", "Swiss", "English", "Brazilian", "Portuguese", "Welsh"}));
    EXPECT_EQ(namesWithin(5), (Names{"German", "Swiss", "English", "Portuguese", "Welsh"}));
}

TEST(VoiceCatalog, HasNothingOutsideItsBounds)
{
    VoiceCatalog empty({}, "en");
    EXPECT_EQ(empty.CountEngines(), 0);
    EXPECT_EQ(empty.ModeName(1), "");
    EXPECT_EQ(empty.ModeID(0), "");
    EXPECT_EQ(empty.Find("1"), nullptr);
}

TEST(ModeId, IsAGuidOfVersionEightInUpperCase)
{
    const std::string id = ModeIdOf("espeak", "gmw/en");
    std::string form;
    for (const char c : id)
        form += (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') ? 'X' : c;
    EXPECT_EQ(form, "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX");
    EXPECT_EQ(id[14], '8');
    EXPECT_NE(std::string("89AB").find(id[19]), std::string::npos);
}

TEST(ModeId, OfAVoiceIsForEverTheSame)
{
    // Users' settings hold these: they may never change.
    EXPECT_EQ(ModeIdOf("espeak", "gmw/en"), "84CB77DC-9B5D-8938-869A-7581728E342F");
    EXPECT_EQ(ModeIdOf("flite", "slt"), "AB59B8DF-AE66-8E77-A5ED-1762A50D82AD");
}

TEST(ModeId, DiffersBetweenFamiliesAndKeys)
{
    const std::set<std::string> ids{ModeIdOf("espeak", "slt"), ModeIdOf("flite", "slt"), ModeIdOf("flite", "stl"),
                                    ModeIdOf("flit", "eslt")};
    EXPECT_EQ(ids.size(), 4U);
}

} // namespace
} // namespace voxmate::speech
