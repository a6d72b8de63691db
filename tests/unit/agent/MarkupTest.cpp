#include "agent/text/Markup.h"
#include "agent/text/SpokenForm.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <vector>

namespace voxmate::agent
{
namespace
{

using speech::Segment;

/// A segment as one line: its text, and all that differs from the defaults.
std::string Written(const Segment& segment)
{
    if (segment.kind == Segment::Kind::Pause)
        return "pause " + std::to_string(segment.milliseconds);
    if (segment.kind == Segment::Kind::Bookmark)
        return "bookmark " + std::to_string(segment.bookmark);
    std::string text = "'" + segment.text + "' @" + std::to_string(segment.firstWord);
    if (segment.shownWords >= 0)
        text += "+" + std::to_string(segment.shownWords);
    const speech::Prosody usual;
    if (segment.prosody.pitchHz != usual.pitchHz)
        text += " pit" + std::to_string(segment.prosody.pitchHz);
    if (segment.prosody.wordsPerMinute != usual.wordsPerMinute)
        text += " spd" + std::to_string(segment.prosody.wordsPerMinute);
    if (segment.prosody.volume != usual.volume)
        text += " vol" + std::to_string(segment.prosody.volume);
    if (segment.prosody.whisper)
        text += " whisper";
    if (segment.prosody.monotone)
        text += " monotone";
    if (segment.emphasis)
        text += " emp";
    return text;
}

using Lines = std::vector<std::string>;

Lines Spoken(const std::string& text)
{
    Lines lines;
    for (const Segment& segment : ParseMarkup(text).segments)
        lines.push_back(Written(segment));
    return lines;
}

std::string Shown(const std::string& text)
{
    return ParseMarkup(text).shown;
}

TEST(MarkupTest, PlainTextIsOneSegmentAndIsShownAsItIs)
{
    EXPECT_EQ(Spoken("Hello, world."), (Lines{"'Hello, world.' @0"}));
    EXPECT_EQ(Shown("Hello, world."), "Hello, world.");
}

TEST(MarkupTest, NothingIsSpokenOfAnEmptyOrBlankText)
{
    EXPECT_EQ(Spoken(""), Lines{});
    EXPECT_EQ(Spoken(" \r\n "), Lines{});
    EXPECT_EQ(Shown(" \r\n "), "");
}

TEST(MarkupTest, TheVoicePrefixSetsWhisperPitchAndSpeedAndLeavesNoTraceInTheBalloon)
{
    const std::string text = "\\Chr=\"WHISPER\"\\ \\Pit=40\\ \\Spd=400\\Hello";
    EXPECT_EQ(Spoken(text), (Lines{"'Hello' @0 pit40 spd400 whisper"}));
    EXPECT_EQ(Shown(text), "Hello");
}

TEST(MarkupTest, TagsFollowingEachOtherDirectlyAreNoLiteralBackslash)
{
    EXPECT_EQ(Spoken("\\Pit=50\\\\Spd=156\\Hi"), (Lines{"'Hi' @0 pit50 spd156"}));
    EXPECT_EQ(Shown("\\Pit=50\\\\Spd=156\\Hi"), "Hi");
}

TEST(MarkupTest, TwoBackslashesAreOneLiteralBackslash)
{
    EXPECT_EQ(Shown("\\Spd=156\\C:\\\\a\\\\b"), "C:\\a\\b");
    EXPECT_EQ(Spoken("\\Spd=156\\\\\\x"), (Lines{"'\\x' @0 spd156"}));
    EXPECT_EQ(Shown("\\\\Pit=50\\\\"), "\\Pit=50\\");
}

TEST(MarkupTest, TagNamesAndTheirWordsAreComparedWithoutCase)
{
    EXPECT_EQ(Spoken("\\PIT=100\\a"), (Lines{"'a' @0 pit100"}));
    EXPECT_EQ(Spoken("\\pit=100\\a"), (Lines{"'a' @0 pit100"}));
    EXPECT_EQ(Spoken("\\chr=\"mOnOtOnE\"\\a"), (Lines{"'a' @0 monotone"}));
}

TEST(MarkupTest, AVoiceCharacterReplacesTheOneBefore)
{
    EXPECT_EQ(Spoken("\\Chr=\"Whisper\"\\a \\Chr=\"Monotone\"\\b \\Chr=\"Normal\"\\c"),
              (Lines{"'a ' @0 whisper", "'b ' @1 monotone", "'c' @2"}));
}

TEST(MarkupTest, PitchSpeedAndVolumeHoldUntilTheyAreChangedOrReset)
{
    EXPECT_EQ(Spoken("a \\Pit=80\\b \\Vol=100\\c \\Spd=200\\d \\Rst\\e"),
              (Lines{"'a ' @0", "'b ' @1 pit80", "'c ' @2 pit80 vol100", "'d ' @3 pit80 spd200 vol100", "'e' @4"}));
}

TEST(MarkupTest, AVolumeAbove65535Means65535AndZeroIsSilence)
{
    EXPECT_EQ(Spoken("\\Vol=70000\\a \\Vol=0\\b"), (Lines{"'a ' @0", "'b' @1 vol0"}));
}

TEST(MarkupTest, PitchAndSpeedOfZeroAreMalformed)
{
    EXPECT_EQ(Spoken("\\Pit=0\\\\Spd=0\\a"), (Lines{"'a' @0"}));
}

TEST(MarkupTest, PausesAreBroughtIntoTheirRangeAndAPauseOfZeroIsNone)
{
    EXPECT_EQ(Spoken("a\\Pau=300\\b"), (Lines{"'a' @0", "pause 300", "'b' @0"}));
    EXPECT_EQ(Spoken("\\Pau=10\\\\Pau=9\\\\Pau=1\\"), (Lines{"pause 10", "pause 10", "pause 10"}));
    EXPECT_EQ(Spoken("\\Pau=2550\\\\Pau=2551\\\\Pau=999999\\"), (Lines{"pause 2550", "pause 2550", "pause 2550"}));
    EXPECT_EQ(Spoken("\\Pau=0\\"), Lines{});
}

TEST(MarkupTest, BookmarksStandWhereTheyAreInTheText)
{
    EXPECT_EQ(Spoken("one \\Mrk=7\\two\\Mrk=0\\"), (Lines{"'one ' @0", "bookmark 7", "'two' @1", "bookmark 0"}));
    EXPECT_EQ(Shown("one \\Mrk=7\\two"), "one two");
}

TEST(MarkupTest, EmphasisIsOnTheNextWordWhateverTagsLieBetween)
{
    EXPECT_EQ(Spoken("a \\Emp\\b c"), (Lines{"'a ' @0", "'b c' @1 emp"}));
    EXPECT_EQ(Spoken("\\Emp\\ \\Pit=50\\ b"), (Lines{"' b' @0 pit50 emp"}));
    EXPECT_EQ(Spoken("\\Emp\\\\Map=\"x\"=\"y\"\\ z"), (Lines{"'x' @0+1 emp", "' z' @1"}));
    EXPECT_EQ(Spoken("a\\Emp\\"), (Lines{"'a' @0"}));
}

TEST(MarkupTest, AMapSaysOneThingAndShowsAnotherAndWordsAreCountedAsShown)
{
    const std::string text = "It is \\Map=\"half past three\"=\"3:30\"\\ now";
    EXPECT_EQ(Spoken(text), (Lines{"'It is ' @0", "'half past three' @2+1", "' now' @3"}));
    EXPECT_EQ(Shown(text), "It is 3:30 now");
}

TEST(MarkupTest, AMapMaySaySomethingForSeveralWordsOrForNone)
{
    EXPECT_EQ(Spoken("\\Map=\"NATO\"=\"the old alliance\"\\ x"), (Lines{"'NATO' @0+3", "' x' @3"}));
    EXPECT_EQ(Spoken("a \\Map=\"psst\"=\"\"\\b"), (Lines{"'a ' @0", "'psst' @1+0", "'b' @1"}));
    EXPECT_EQ(Shown("a \\Map=\"\"=\"unheard\"\\ b"), "a unheard b");
    EXPECT_EQ(Spoken("a \\Map=\"\"=\"unheard\"\\ b"), (Lines{"'a ' @0", "' b' @2"}));
}

TEST(MarkupTest, AWordPartedByATagIsStillOneWord)
{
    EXPECT_EQ(Spoken("un\\Emp\\believable story"), (Lines{"'un' @0", "'believable story' @0 emp"}));
    EXPECT_EQ(Spoken("x\\Map=\"a\"=\"b\"\\y z"), (Lines{"'x' @0", "'a' @0+1", "'y z' @0"}));
}

TEST(MarkupTest, AMapMayHoldBackslashesAndEqualSigns)
{
    EXPECT_EQ(Shown("\\Map=\"see\"=\"C:\\\\x=1\"\\"), "C:\\x=1");
}

TEST(MarkupTest, AnUnknownTagIsDroppedWithItsValue)
{
    EXPECT_EQ(Spoken("a \\Foo\\b"), (Lines{"'a b' @0"}));
    EXPECT_EQ(Spoken("a \\Foo=3\\b"), (Lines{"'a b' @0"}));
    EXPECT_EQ(Spoken("a \\x-y!\\b"), (Lines{"'a b' @0"}));
    EXPECT_EQ(Shown("a \\Foo=\"two words\"\\b"), "a b");
}

TEST(MarkupTest, AMalformedTagIsDroppedAndChangesNothing)
{
    for (const char* tag :
         {"\\Pit=abc\\",      "\\Pit=\\",    "\\Pit\\",          "\\Pit=-5\\",       "\\Pit=99999999999\\",
          "\\Pit=\"50\"\\",   "\\Pit=1=2\\", "\\Emp=1\\",        "\\Rst=\"x\"\\",    "\\Chr=Whisper\\",
          "\\Chr=\"Loud\"\\", "\\Chr\\",     "\\Map=\"a\"\\",    "\\Map=a=b\\",      "\\Map\\",
          "\\Mrk\\",          "\\Mrk=x\\",   "\\Pau=\"long\"\\", "\\Ctx=\"Moon\"\\", "\\Vol=\\"}) {
        EXPECT_EQ(Spoken("one " + std::string(tag) + "two")[0].substr(0, 4), "'one") << tag;
        std::string all;
        for (const std::string& line : Spoken("one " + std::string(tag) + "two"))
            all += line;
        EXPECT_TRUE(all == "'one two' @0" || all == "'one ' @0'two' @1") << tag << ": " << all;
        EXPECT_EQ(Shown("one " + std::string(tag) + "two"), "one two") << tag;
    }
}

TEST(MarkupTest, BlanksAroundTheNameMakeATagMalformed)
{
    for (const char* tag : {"\\ Pit=50\\", "\\Pit =50\\", "\\Pit= 50\\", "\\Pit=50 \\", "\\ Emp \\", "\\ Rst\\"}) {
        EXPECT_EQ(Spoken("one " + std::string(tag) + "two"), (Lines{"'one two' @0"})) << tag;
    }
}

TEST(MarkupTest, ASingleBackslashSwallowsNothing)
{
    EXPECT_EQ(Shown("this \\ that"), "this \\ that");
    EXPECT_EQ(Shown("either \\ or \\ both"), "either \\ or \\ both");
    EXPECT_EQ(Shown("path C:\\temp and more"), "path C:\\temp and more");
    EXPECT_EQ(Shown("the end\\"), "the end\\");
    EXPECT_EQ(Shown("a\\\r\nb\\c d"), "a\\\r\nb\\c d");
    EXPECT_EQ(Shown("C:\\map of the world\\x"), "C:\\map of the world\\x");
}

/// How a caller escapes a text: it doubles the backslashes, but stops at the length that the text had before.
std::string EscapedUpToItsLength(std::string text)
{
    const std::size_t length = text.size();
    for (std::size_t i = 0; i < length; ++i)
        if (text[i] == '\\')
            text.insert(i++, "\\");
    return text;
}

TEST(MarkupTest, WhatTheCallersEscapingLeavesSingleKeepsTheTextBehindIt)
{
    EXPECT_EQ(EscapedUpToItsLength("a\\b"), "a\\\\b");
    EXPECT_EQ(EscapedUpToItsLength("\\\\\\\\"), "\\\\\\\\\\\\");
    const auto shown = [](const std::string& text) { return Shown("\\Spd=156\\" + EscapedUpToItsLength(text)); };
    EXPECT_EQ(shown("\\\\a b"), "\\\\a b");
    EXPECT_EQ(shown("ends in \\\\"), "ends in \\\\");
    EXPECT_EQ(shown("\\\\\\"), "\\\\\\");
    EXPECT_EQ(shown("\\\\\\\\\\\\\\x y"), "\\\\\\\\\\\\x y");
}

TEST(MarkupTest, ATagThatIsNeverClosedIsDroppedAndTheTextBehindItStays)
{
    EXPECT_EQ(Spoken("\\Pit=50 Hello there"), (Lines{"' Hello there' @0"}));
    EXPECT_EQ(Spoken("\\Pit=50 Hello \\Emp\\there"), (Lines{"' Hello ' @0", "'there' @1 emp"}));
    EXPECT_EQ(Spoken("\\Map=\"a b\"=\"c d\" rest"), (Lines{"' rest' @0"}));
}

TEST(MarkupTest, ATagThatIsBrokenOffBehindItsEqualSignIsDroppedAndNoWordWithIt)
{
    EXPECT_EQ(Spoken("Hello \\Pit="), (Lines{"'Hello ' @0"}));
    EXPECT_EQ(Shown("Hello \\Pit="), "Hello");
    EXPECT_EQ(Shown("\\Pit= Hello there"), "Hello there");
    EXPECT_EQ(Shown("\\Map=\"a\"= Hello there"), "Hello there");
    EXPECT_EQ(Shown("Hello \\Chr=\"Whis"), "Hello");
    EXPECT_EQ(Shown("Hello \\Mrk=\r\nthere"), "Hello \r\nthere");
}

TEST(MarkupTest, AnEqualSignWithoutAValueMakesATagMalformed)
{
    EXPECT_EQ(Spoken("\\Pit=80\\\\Emp=\\one \\Rst=\\two"), (Lines{"'one two' @0 pit80"}));
    EXPECT_EQ(Spoken("one \\Mrk=\\\\Pau=\\\\Map=\\two"), (Lines{"'one two' @0"}));
    EXPECT_EQ(Shown("one \\Pit==50\\two"), "one two");
}

TEST(MarkupTest, QuotesInsideTheTextsOfAMapBelongToThem)
{
    const std::string text = "He \\Map=\"says \"hi\" twice\"=\"said \"hi\" \"hi\"\"\\ then";
    EXPECT_EQ(Shown(text), "He said \"hi\" \"hi\" then");
    EXPECT_EQ(Spoken(text), (Lines{"'He ' @0", "'says \"hi\" twice' @1+3", "' then' @4"}));
    EXPECT_EQ(Shown("\\Chr=\"Whis\"per\"\\one"), "one");
}

TEST(MarkupTest, AQuoteThatIsNeverClosedDoesNotReachIntoTheNextTag)
{
    EXPECT_EQ(Spoken("\\Map=\"a\"=\"b\" and \\Chr=\"Whisper\"\\more"), (Lines{"' and ' @0", "'more' @1 whisper"}));
    EXPECT_EQ(Shown("\\Map=\"a\"=\"b\" and\n\"c\"\\ more"), "and\n\"c\"\\ more");
}

TEST(MarkupTest, BookmarksAreNumbersFromZeroToTheLargestOfThirtyTwoBits)
{
    EXPECT_EQ(Spoken("\\Mrk=0\\\\Mrk=2147483647\\"), (Lines{"bookmark 0", "bookmark 2147483647"}));
    EXPECT_EQ(Spoken("\\Mrk=-1\\\\Mrk=2147483648\\\\Mrk=99999999999999999999\\\\Mrk=+1\\\\Mrk=1.5\\"), Lines{});
}

TEST(MarkupTest, EachBookmarkKnowsTheShownWordItStandsBefore)
{
    std::vector<int> words;
    const ParsedText marked = ParseMarkup("\\Mrk=1\\one \\Mrk=2\\two th\\Mrk=3\\ree \\Map=\"x\"=\"y z\"\\ \\Mrk=4\\");
    for (const Segment& segment : marked.segments)
        if (segment.kind == Segment::Kind::Bookmark)
            words.push_back(segment.firstWord);
    EXPECT_EQ(words, (std::vector<int>{0, 1, 3, 5}));
    EXPECT_EQ(marked.words, 5);
    EXPECT_EQ(ParseMarkup(" \\Rst\\ ").words, 0);
}

TEST(MarkupTest, TheLastTextIsSaidAgainOnlyWhenItsTagIsAlone)
{
    EXPECT_TRUE(ParseMarkup("\\Lst\\").sayLastAgain);
    EXPECT_TRUE(ParseMarkup("  \\lst\\ ").sayLastAgain);
    EXPECT_TRUE(ParseMarkup("\\Lst\\\r\n").sayLastAgain);
    EXPECT_TRUE(ParseMarkup("\t\u00A0\\LST\\").sayLastAgain);
    EXPECT_FALSE(ParseMarkup("\\Lst=1\\").sayLastAgain);
    EXPECT_FALSE(ParseMarkup("\\Lst\\ more").sayLastAgain);
    EXPECT_FALSE(ParseMarkup("\\Pit=50\\\\Lst\\").sayLastAgain);
    EXPECT_EQ(Shown("\\Lst\\ more"), "more");
}

TEST(MarkupTest, InTheContextOfAnEmailSymbolsAreSaid)
{
    EXPECT_EQ(Spoken("Write to \\Ctx=\"E-mail\"\\ann_b@x.org. \\Ctx=\"Unknown\"\\now"),
              (Lines{"'Write to ' @0", "'ann underscore b at x dot org.' @2+1", "'now' @3"}));
    EXPECT_EQ(Shown("\\Ctx=\"E-mail\"\\a@b.c"), "a@b.c");
}

TEST(MarkupTest, InTheContextOfAnAddressAbbreviationsAreSaidInFull)
{
    EXPECT_EQ(Spoken("\\Ctx=\"Address\"\\12 Oak St., Apt. #5 \\Rst\\St. Paul"),
              (Lines{"'12 Oak ' @0", "'Street,' @2+1", "'Apartment' @3+1", "'number 5' @4+1", "'St. Paul' @5"}));
}

TEST(MarkupTest, SpokenFormsLeaveOrdinaryWordsAlone)
{
    for (const auto context : {SpeechContext::Unknown, SpeechContext::Address, SpeechContext::Email}) {
        EXPECT_EQ(SpokenForm("house", context), "house");
        EXPECT_EQ(SpokenForm("end.", context), "end.");
        EXPECT_EQ(SpokenForm("...", context), "...");
    }
}

TEST(MarkupTest, Utf8TextPassesThroughUnharmed)
{
    EXPECT_EQ(Shown("\\Pit=50\\Grüße, 世界 \\Emp\\🦊"), "Grüße, 世界 🦊");
    EXPECT_EQ(Spoken("ä ö \\Emp\\ü"), (Lines{"'ä ö ' @0", "'ü' @2 emp"}));
}

TEST(MarkupTest, NoBreakSpacesAndControlCharactersPartWordsAsBlanksDo)
{
    EXPECT_EQ(Spoken("10\u00A0km \\Emp\\on"), (Lines{"'10\u00A0km ' @0", "'on' @2 emp"}));
    EXPECT_EQ(Spoken("a\x01z \\Emp\\b"), (Lines{"'a\x01z ' @0", "'b' @2 emp"}));
    EXPECT_EQ(Spoken("\uFEFFa \\Emp\\b"), (Lines{"'\uFEFFa ' @0", "'b' @1 emp"}));
    EXPECT_EQ(Shown("\uFEFF\u00A0a\u00A0"), "a");
}

TEST(MarkupTest, BytesThatAreNotUtf8AreReplaced)
{
    EXPECT_EQ(Shown("a \xFF"
                    "b"),
              "a \uFFFDb");
    EXPECT_EQ(Spoken("caf\xE9 \\Emp\\x"), (Lines{"'caf\uFFFD ' @0", "'x' @1 emp"}));
}

TEST(MarkupTest, ATextOfTagsWithoutEndIsReadQuickly)
{
    // Each of these could begin a tag that goes on to the end of the text.
    std::string text;
    for (int i = 0; i < 20000; ++i)
        text += "\\x=a\"=\"";
    const std::clock_t start = std::clock();
    EXPECT_EQ(ParseMarkup(text).segments.size(), 1u);
    EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC);
}

TEST(MarkupTest, NoTextOfBackslashesQuotesAndNamesIsFatalOrLosesPlainWords)
{
    // For every text of up to five of these pieces, reading ends; and the word "keep" on the line behind the text is
    // shown, unless the text holds a quote.
    const std::vector<std::string> pieces{"\\", "\"", "=", " ", "Pit", "50", "Map", "x"};
    std::vector<std::string> texts{""};
    for (int length = 0; length < 5; ++length) {
        std::vector<std::string> longer;
        for (const std::string& text : texts)
            for (const std::string& piece : pieces)
                longer.push_back(text + piece);
        for (const std::string& text : longer) {
            const std::string shown = Shown(text + "\nkeep");
            ASSERT_TRUE(shown.find("keep") != std::string::npos || text.find('"') != std::string::npos) << text;
        }
        texts = std::move(longer);
    }
}

} // namespace
} // namespace voxmate::agent
