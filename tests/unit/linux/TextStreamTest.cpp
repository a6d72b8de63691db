#include "OrdinaryUser.h"
#include "platform/linux/files/LinuxFileSystem.h"
#include "platform/linux/files/LinuxTextStream.h"

#include "base/RuntimeError.h"
#include "base/Text.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// The size of the blocks in which the stream reads.
constexpr std::size_t block = 65536;

class TextStreamTest : public ::testing::Test
{
protected:
    fs::path folder;
    LinuxFileSystem files;

    TextStreamTest()
    {
        std::string name = (fs::temp_directory_path() / "voxmate-text-XXXXXX").string();
        folder = ::mkdtemp(name.data());
        fs::permissions(folder, fs::perms(0755));
    }
    ~TextStreamTest() override { fs::remove_all(folder); }

    std::string Path(const std::string& name = "notes.txt") const { return (folder / name).string(); }

    void Write(const std::string& content) const
    {
        std::ofstream(Path(), std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
    }
    static Lines LinesOf(TextStream& stream)
    {
        Lines lines;
        while (!stream.AtEndOfStream())
            lines.push_back(stream.ReadLine());
        return lines;
    }
    /// The first line of a file, decoded with the user's code page where nothing else fits.
    std::string FirstLine(const std::string& content)
    {
        Write(content);
        return files.OpenTextFile(Path())->ReadLine();
    }
    /// The lines of a file as they are read with this code page.
    Lines LinesOf(const std::string& content, const char* codePage = "CP1252") const
    {
        Write(content);
        const CodePage page(codePage);
        LinuxTextStream stream(Path(), page);
        return LinesOf(stream);
    }
    /// The number and description of the error that opening raises, or "none".
    std::string ErrorOf(const std::string& path)
    {
        try {
            files.OpenTextFile(path);
            return "none";
        } catch (const RuntimeError& error) {
            return std::to_string(error.Number) + " " + error.Description;
        }
    }
};

std::string Utf16(std::u16string_view units, bool littleEndian)
{
    std::string bytes;
    for (const char16_t unit : units) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        bytes += littleEndian ? std::string{low, high} : std::string{high, low};
    }
    return bytes;
}

} // namespace

TEST_F(TextStreamTest, ATextOfUnknownEncodingIsToldAsOneInAFile)
{
    for (const char* bytes :
         {"K\xC3\xA4the and J\xC3\xBCrgen", "K\xE4the and J\xFCrgen", "K\xC3\xA4the and J\xFCrgen", "Tea"})
        EXPECT_EQ(files.DecodeText(bytes), FirstLine(bytes));
    EXPECT_EQ(files.DecodeText("K\xC3\xA4the and J\xFCrgen"), "K\xC3\xA4the and J\xC3\xBCrgen");
}

TEST_F(TextStreamTest, LinesEndWithCrLfOrLfOrCrAndTheLastNeedsNoEnd)
{
    EXPECT_EQ(LinesOf("a\r\nb\nc\rd"), (Lines{"a", "b", "c", "d"}));
    EXPECT_EQ(LinesOf("a\r\n\r\nb\n\nc\r\rd\n\re"), (Lines{"a", "", "b", "", "c", "", "d", "", "e"}));
}

TEST_F(TextStreamTest, ALineEndAtTheEndBeginsNoFurtherLine)
{
    EXPECT_EQ(LinesOf("a\r\n"), Lines{"a"});
    EXPECT_EQ(LinesOf("a\n"), Lines{"a"});
    EXPECT_EQ(LinesOf("a\r"), Lines{"a"});
    EXPECT_EQ(LinesOf("\r\n"), Lines{""});
    EXPECT_EQ(LinesOf("\n\r\n"), (Lines{"", ""}));
}

TEST_F(TextStreamTest, AnEmptyFileIsAtItsEndAtOnce)
{
    EXPECT_EQ(LinesOf(""), Lines{});
}

TEST_F(TextStreamTest, AFileOfAByteOrderMarkAloneIsEmpty)
{
    EXPECT_EQ(LinesOf("\xEF\xBB\xBF"), Lines{});
    EXPECT_EQ(LinesOf("\xFF\xFE"), Lines{});
    EXPECT_EQ(LinesOf("\xFE\xFF"), Lines{});
}

TEST_F(TextStreamTest, ReadingPastTheEndRaisesAnErrorEveryTime)
{
    Write("a");
    const auto stream = files.OpenTextFile(Path());
    EXPECT_EQ(stream->ReadLine(), "a");
    for (int i = 0; i < 2; ++i) {
        try {
            stream->ReadLine();
            FAIL() << "no error";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number, 62);
            EXPECT_EQ(error.Description, "Input past end of file");
        }
    }
}

TEST_F(TextStreamTest, ALineIsAppendedToWhatIsThere)
{
    Write("one\r\ntwo");
    const auto stream = files.OpenTextFile(Path());
    std::string text = ">";
    stream->AppendLine(text);
    stream->AppendLine(text);
    EXPECT_EQ(text, ">onetwo");
    EXPECT_THROW(stream->AppendLine(text), RuntimeError);
    EXPECT_EQ(text, ">onetwo");
}

TEST_F(TextStreamTest, LinesCanBeReadWithoutAskingForTheEnd)
{
    Write("a\r\n\r\nb");
    const auto stream = files.OpenTextFile(Path());
    EXPECT_EQ(stream->ReadLine(), "a");
    EXPECT_EQ(stream->ReadLine(), "");
    EXPECT_EQ(stream->ReadLine(), "b");
    EXPECT_TRUE(stream->AtEndOfStream());
}

TEST_F(TextStreamTest, BlanksTabsAndNulsAreText)
{
    EXPECT_EQ(LinesOf(std::string(" a\0\tb \n\0\n", 9)), (Lines{std::string(" a\0\tb ", 6), std::string(1, '\0')}));
}

TEST_F(TextStreamTest, Utf8IsReadAsItIsWithoutItsMark)
{
    EXPECT_EQ(LinesOf("Gr\u00FC\u00DFe \u20AC\n\U0001F600"), (Lines{"Gr\u00FC\u00DFe \u20AC", "\U0001F600"}));
    EXPECT_EQ(LinesOf("\xEF\xBB\xBFGr\u00FC\u00DFe\r\nb"), (Lines{"Gr\u00FC\u00DFe", "b"}));
}

TEST_F(TextStreamTest, OnlyTheFirstMarkIsNoText)
{
    EXPECT_EQ(LinesOf("\xEF\xBB\xBF\xEF\xBB\xBF"
                      "a\n\xEF\xBB\xBF"),
              (Lines{"\uFEFF"
                     "a",
                     "\uFEFF"}));
}

TEST_F(TextStreamTest, AFileThatIsNotUtf8IsWindows1252)
{
    EXPECT_EQ(LinesOf("Gr\xFC\xDF"
                      "e \x80\x85\n\x81\xFF"),
              (Lines{"Gr\u00FC\u00DFe \u20AC\u2026", "\u0081\u00FF"}));
}

TEST_F(TextStreamTest, OneByteAnywhereDecidesForAFileWithoutOtherSigns)
{
    const std::string much(3 * block, 'x');
    EXPECT_EQ(LinesOf(much + "\xE9"), Lines{much + "\u00E9"});
    EXPECT_EQ(LinesOf(much + "\xC3\xA9"), Lines{much + "\u00E9"});
}

TEST_F(TextStreamTest, AStrayByteDoesNotMakeUtf8Windows1252)
{
    const std::string much(3 * block, 'x');
    EXPECT_EQ(LinesOf("\u00E9\n" + much + "\xE9"), (Lines{"\u00E9", much + "\u00E9"}));
    EXPECT_EQ(LinesOf("Gr\u00FC\u00DFe \xFC\x80\xFF \u20AC\u0416"),
              Lines{"Gr\u00FC\u00DFe \u00FC\u20AC\u00FF \u20AC\u0416"});
    // An incomplete character at the end counts as stray bytes, too.
    EXPECT_EQ(LinesOf("\u00E4\u00F6\u20AC\xE2\x82"), Lines{"\u00E4\u00F6\u20AC\u00E2\u201A"});
    // If most bytes are stray, the valid UTF-8 characters are there by chance.
    EXPECT_EQ(LinesOf("\xC3\xA9\xE9\xE8"), Lines{"\u00C3\u00A9\u00E9\u00E8"});
}

TEST_F(TextStreamTest, StrayBytesAndCharactersMayLieAcrossTheEndsOfBlocks)
{
    for (std::size_t before = 0; before < 4; ++before) {
        std::string text(before, 'a');
        std::string expected = text;
        while (text.size() < 3 * block) {
            text += "\u20AC\u20AC\xE9";
            expected += "\u20AC\u20AC\u00E9";
        }
        EXPECT_TRUE(LinesOf(text) == Lines{expected}) << before;
    }
}

TEST_F(TextStreamTest, WhatIsNotUtf8IsInTheCodePageOfTheUsersLanguage)
{
    const std::string cyrillic = "\xCF\xF0\xE8\xE2\xE5\xF2, \xEC\xE8\xF0";
    EXPECT_EQ(LinesOf(cyrillic, "CP1251"), Lines{"\u041F\u0440\u0438\u0432\u0435\u0442, \u043C\u0438\u0440"});
    EXPECT_EQ(LinesOf("za\xBF\xF3\xB3\xE6", "CP1250"), Lines{"za\u017C\u00F3\u0142\u0107"});
    EXPECT_EQ(LinesOf("\xF0\xD2\xC9", "KOI8-R"), Lines{"\u041F\u0440\u0438"});
    // The same for stray bytes.
    EXPECT_EQ(LinesOf("\u041F\u0440\u0438 \xE8", "CP1251"), Lines{"\u041F\u0440\u0438 \u0438"});
    // A code page unknown to the system is read as the Western one.
    EXPECT_EQ(LinesOf("\xE9\x80", "NO-SUCH-PAGE"), Lines{"\u00E9\u20AC"});
}

TEST_F(TextStreamTest, CodePagesMayHaveCharactersOfSeveralBytesAlsoAcrossTheEndsOfBlocks)
{
    for (std::size_t before = 0; before < 2; ++before) {
        std::string text(before, 'a');
        std::string expected = text;
        while (text.size() < 2 * block) {
            text += "\x93\xFA\x96\x7B";
            expected += "\u65E5\u672C";
        }
        EXPECT_TRUE(LinesOf(text, "CP932") == Lines{expected}) << before;
    }
    EXPECT_EQ(LinesOf("\xC4\xE3\xBA\xC3\r\n\xD6\xD0\xCE\xC4", "CP936"), (Lines{"\u4F60\u597D", "\u4E2D\u6587"}));
    EXPECT_EQ(LinesOf("\x93\xFA\x93", "CP932"), Lines{"\u65E5\uFFFD"});
    EXPECT_EQ(LinesOf("\x93\xFA\xFF-", "CP932"), Lines{"\u65E5\uFFFD-"});
}

TEST_F(TextStreamTest, ALocaleHasItsOwnCodePageOrThatOfItsLanguage)
{
    for (const auto& [locale, name] :
         std::vector<std::pair<const char*, const char*>>{{"", "CP1252"},
                                                          {"C", "CP1252"},
                                                          {"C.UTF-8", "CP1252"},
                                                          {"de_DE.UTF-8", "CP1252"},
                                                          {"ru_RU.utf8", "CP1251"},
                                                          {"ru", "CP1251"},
                                                          {"pl_PL.UTF-8@x", "CP1250"},
                                                          {"el_GR", "CP1253"},
                                                          {"tr_TR.UTF-8", "CP1254"},
                                                          {"ja_JP.UTF-8", "CP932"},
                                                          {"zh_CN.UTF-8", "CP936"},
                                                          {"zh_TW.UTF-8", "CP950"},
                                                          {"zh_HK", "CP950"},
                                                          {"sr_RS.UTF-8@latin", "CP1250"},
                                                          {"sr_RS.UTF-8", "CP1251"},
                                                          {"ru_RU.KOI8-R", "KOI8-R"},
                                                          {"de_DE.ISO-8859-1", "CP1252"},
                                                          {"de_DE.ISO-8859-15@euro", "ISO-8859-15"},
                                                          {"fr_FR@euro", "CP1252"}})
        EXPECT_EQ(CodePage::NameFor(locale), name) << locale;
}

TEST_F(TextStreamTest, Utf16IsKnownWithoutItsMark)
{
    const std::u16string longText = [] {
        std::u16string text;
        while (text.size() < 2 * block)
            text += u"\u041F\u0440\u0438 \U0001F600\u4E00\r\n";
        return text;
    }();
    for (const std::u16string& text :
         {std::u16string(u"Hello"), std::u16string(u"a\r\nb"),
          std::u16string(u"Gr\u00FC\u00DFe \u20AC\r\n\r\nEnde.\r\n"),
          std::u16string(u"\u041F\u0440\u0438\u0432\u0435\u0442, \u043C\u0438\u0440!\r\n"),
          std::u16string(u"\u3000\u4E00\u4E8C\u4E09\u3002\u4E00\u3000\r\n\u4F60\u597D\r\n"),
          std::u16string(u"\u0645\u0631\u062D\u0628\u0627 \u0628\u0643\r\n"), longText})
        for (const bool littleEndian : {true, false}) {
            std::string expected;
            for (const std::string& line : LinesOf("\xEF\xBB\xBF" + Utf16ToUtf8(text)))
                expected += line + "\n";
            std::string got;
            for (const std::string& line : LinesOf(Utf16(text, littleEndian)))
                got += line + "\n";
            EXPECT_TRUE(got == expected) << Utf16ToUtf8(text).substr(0, 40) << " " << littleEndian;
        }
}

TEST_F(TextStreamTest, TextsInBytesAreNotTakenForUtf16)
{
    for (const std::string& text :
         {std::string("an even number"), std::string("hello\0world!", 12), std::string("\0\0", 2),
          std::string("a\0", 2) + std::string("b c d e f g h i j k l m"), std::string("\x01\x02", 2)})
        EXPECT_EQ(LinesOf(text), Lines{text});
    EXPECT_EQ(LinesOf("Gr\xFC\xDF"
                      "e!"),
              Lines{"Gr\u00FC\u00DFe!"});
    EXPECT_EQ(LinesOf("\xC4\xE3\xBA\xC3\r\n", "CP936"), Lines{"\u4F60\u597D"});
}

TEST_F(TextStreamTest, AStringIsDecodedAsAFileIs)
{
    const CodePage western("CP1252");
    for (const std::string& text :
         {std::string(), std::string("plain"), std::string("\xEF\xBB\xBFGr\u00FC\u00DFe"), std::string("na\xEFve"),
          std::string("\u20AC \x80"), "\xFF\xFE" + Utf16(u"Gr\u00FC\u00DFe", true), Utf16(u"Hello you", false)}) {
        const Lines lines = LinesOf(text);
        EXPECT_EQ(DecodeText(text, western), lines.empty() ? "" : lines.front());
    }
    EXPECT_EQ(DecodeText("\xCF\xF0\xE8", CodePage("CP1251")), "\u041F\u0440\u0438");
}

TEST_F(TextStreamTest, AMarkInFrontOfWhatIsNotUtf8IsStillNoText)
{
    EXPECT_EQ(LinesOf("\xEF\xBB\xBFna\xEFve"), Lines{"na\u00EFve"});
}

TEST_F(TextStreamTest, CharactersMayLieAcrossTheEndsOfBlocks)
{
    for (const char* character : {"\u00E9", "\u20AC", "\U0001F600"})
        for (std::size_t before = 0; before < 4; ++before) {
            std::string text(before, 'a');
            while (text.size() < 3 * block)
                text += character;
            EXPECT_TRUE(LinesOf(text) == Lines{text}) << character << " behind " << before;
        }
}

TEST_F(TextStreamTest, Utf16IsReadInEitherOrderOfBytes)
{
    const std::u16string text = u"Gr\u00FC\u00DFe \u20AC\r\n\u010D\U0001F600\n\u0A0D\u0D0A";
    const Lines lines{"Gr\u00FC\u00DFe \u20AC", "\u010D\U0001F600", "\u0A0D\u0D0A"};
    EXPECT_EQ(LinesOf("\xFF\xFE" + Utf16(text, true)), lines);
    EXPECT_EQ(LinesOf("\xFE\xFF" + Utf16(text, false)), lines);
}

TEST_F(TextStreamTest, HalvesOfUtf16CharactersBecomeReplacementCharacters)
{
    EXPECT_EQ(LinesOf("\xFF\xFE" + Utf16(u"a", true) + "b"), Lines{"a\uFFFD"});
    EXPECT_EQ(LinesOf("\xFF\xFE"
                      "b"),
              Lines{"\uFFFD"});
    const std::u16string lone{u'a', 0xD83D, u'b', 0xDE00, u'\n', 0xD83D};
    EXPECT_EQ(LinesOf("\xFE\xFF" + Utf16(lone, false)), (Lines{"a\uFFFDb\uFFFD", "\uFFFD"}));
}

TEST_F(TextStreamTest, SurrogatePairsMayLieAcrossTheEndsOfBlocks)
{
    for (std::size_t before = 0; before < 2; ++before) {
        std::u16string text(before, u'a');
        std::string expected(before, 'a');
        while (text.size() < 2 * block) {
            text += u"\U0001F600";
            expected += "\U0001F600";
        }
        EXPECT_TRUE(LinesOf("\xFF\xFE" + Utf16(text, true)) == Lines{expected}) << before;
    }
}

TEST_F(TextStreamTest, LineEndsMayLieAcrossTheEndsOfBlocks)
{
    for (std::size_t length = block - 2; length <= block + 1; ++length) {
        const std::string line(length, 'x');
        EXPECT_TRUE(LinesOf(line + "\r\n\r\ny") == (Lines{line, "", "y"})) << length;
        EXPECT_TRUE(LinesOf(line + "\r\n") == Lines{line}) << length;
        EXPECT_TRUE(LinesOf(line + "\r\ry") == (Lines{line, "", "y"})) << length;
    }
}

TEST_F(TextStreamTest, LongTextsOfRandomLinesAreReadAsTheyWereWritten)
{
    std::mt19937 random(20260301);
    const Lines pieces{"", "a", "word ", "\u00E9", "\u20AC", "\U0001F600", std::string(70000, 'x')};
    const Lines ends{"\r\n", "\n", "\r"};
    for (int round = 0; round < 20; ++round) {
        std::string text;
        Lines expected;
        while (text.size() < 4 * block) {
            std::string line;
            for (std::size_t i = random() % 60; i > 0; --i)
                line += pieces[random() % (pieces.size() - (i == 7 ? 0 : 1))];
            const bool belongsToTheEndBefore = line.empty() && text.ends_with('\r');
            text += line + ends[belongsToTheEndBefore ? 0 : random() % ends.size()];
            expected.push_back(std::move(line));
        }
        ASSERT_TRUE(LinesOf(text) == expected) << "round " << round;
    }
}

TEST_F(TextStreamTest, WhatIsNoReadableFileRaisesTheErrorOfItsKind)
{
    Write("x");
    ASSERT_EQ(::mkfifo(Path("pipe.txt").c_str(), 0666), 0);
    EXPECT_EQ(ErrorOf(Path("none.txt")), "53 File not found");
    EXPECT_EQ(ErrorOf(""), "53 File not found");
    EXPECT_EQ(ErrorOf(Path() + "/none.txt"), "53 File not found");
    EXPECT_EQ(ErrorOf(Path(std::string(300, 'x'))), "53 File not found");
    EXPECT_EQ(ErrorOf(folder.string()), "70 Permission denied");
    EXPECT_EQ(ErrorOf(Path("pipe.txt")), "70 Permission denied");
    EXPECT_EQ(ErrorOf("/dev/zero"), "70 Permission denied");
}

TEST_F(TextStreamTest, AFileThatMayNotBeReadIsAPermissionDenied)
{
    Write("x");
    fs::permissions(Path(), fs::perms::none);
    const OrdinaryUser user;
    EXPECT_EQ(ErrorOf(Path()), "70 Permission denied");
}

TEST_F(TextStreamTest, AFileThatCannotBeReadThroughIsADeviceError)
{
    // A process's memory; address 0 is not mapped.
    EXPECT_EQ(ErrorOf("/proc/self/mem"), "57 Device I/O error");
}

TEST_F(TextStreamTest, AFileMadeUpByTheSystemIsReadThoughItHasNoSize)
{
    const Lines lines = LinesOf(*files.OpenTextFile("/proc/self/status"));
    ASSERT_FALSE(lines.empty());
    EXPECT_TRUE(lines.front().starts_with("Name:")) << lines.front();
}

TEST_F(TextStreamTest, AFileRemovedMeanwhileIsReadToItsEnd)
{
    const std::string line(3 * block, 'x');
    Write(line + "\nend");
    const auto stream = files.OpenTextFile(Path());
    fs::remove(Path());
    EXPECT_TRUE(LinesOf(*stream) == (Lines{line, "end"}));
}

TEST_F(TextStreamTest, AFileCutShortMeanwhileEndsWhereItEndsNow)
{
    for (const std::string& mark : {std::string(), std::string("\xFF\xFE")}) {
        Write(mark + std::string(4 * block, '\n'));
        const auto stream = files.OpenTextFile(Path());
        stream->ReadLine();
        fs::resize_file(Path(), block + 1);
        EXPECT_LE(LinesOf(*stream).size(), block);
    }
}

TEST_F(TextStreamTest, AFileLargerThanATextCanBeIsRefusedBeforeItIsRead)
{
    Write("x");
    fs::resize_file(Path(), static_cast<std::uintmax_t>(LargestTextFile));
    EXPECT_EQ(ErrorOf(Path()), "none");
    for (const std::int64_t size : {LargestTextFile + 1, std::int64_t{4} << 30}) {
        fs::resize_file(Path(), static_cast<std::uintmax_t>(size));
        EXPECT_EQ(ErrorOf(Path()), "7 Out of memory");
    }
}

TEST_F(TextStreamTest, TheJoinedLinesAreNeverLargerThanWasToldBefore)
{
    const std::string euros(2 * block, '\x80');
    for (const std::string& content :
         {std::string(), std::string("a"),
          std::string("\xFF\xFE"
                      "a"),
          std::string(2 * block, '\n'), euros, euros + "\n" + euros,
          "\xFF\xFE" + Utf16(std::u16string(block, u'\u20AC'), true), "\xFF\xFE" + std::string(2 * block + 1, 'x')}) {
        Write(content);
        const auto stream = files.OpenTextFile(Path());
        std::vector<std::size_t> hints{stream->SizeHint()};
        std::vector<std::size_t> sizes;
        while (!stream->AtEndOfStream()) {
            sizes.push_back(stream->ReadLine().size() + 2);
            hints.push_back(stream->SizeHint());
        }
        std::size_t ahead = 0;
        for (std::size_t line = sizes.size(); line > 0; --line) {
            ahead += sizes[line - 1];
            ASSERT_LE(ahead, hints[line - 1]) << "line " << line << " of " << sizes.size();
        }
        EXPECT_LE(hints.front(), 3 * content.size() + 2);
    }
}

TEST_F(TextStreamTest, TheExtensionMayBeInAnotherCaseThanAskedFor)
{
    Write("x");
    EXPECT_EQ(LinesOf(*files.OpenTextFile(Path("notes.TXT"))), Lines{"x"});
}

TEST_F(TextStreamTest, TheExtensionIsWhatFollowsTheLastDotOfTheFileName)
{
    EXPECT_EQ(files.GetExtensionName("/a/notes.TXT"), "TXT");
    EXPECT_EQ(files.GetExtensionName("notes.tar.txt"), "txt");
    EXPECT_EQ(files.GetExtensionName("/a.b/notes"), "");
    EXPECT_EQ(files.GetExtensionName("/a.b/notes."), "");
    EXPECT_EQ(files.GetExtensionName("/a/.txt"), "txt");
    EXPECT_EQ(files.GetExtensionName(""), "");
}

} // namespace voxmate::linux_platform
