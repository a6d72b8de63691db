#include "platform/linux/word/FlatText.h"

#include <cstdlib>
#include <fstream>
#include <new>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

using voxmate::linux_platform::MainText;

namespace
{

// A document with this body and these automatic styles.
std::string Document(const std::string& body, const std::string& styles = {})
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n\n<office:document office:version=\"1.3\">\n"
           " <office:meta><dc:title>A title</dc:title></office:meta>\n"
           " <office:automatic-styles>" +
           styles +
           "</office:automatic-styles>\n"
           " <office:master-styles><style:master-page><style:header><text:p>Header</text:p></style:header>"
           "<style:footer><text:p>Footer</text:p></style:footer></style:master-page></office:master-styles>\n"
           " <office:body>\n  <office:text>\n   " +
           body + "\n  </office:text>\n </office:body>\n</office:document>\n";
}

std::string TextOf(const std::string& body, const std::string& styles = {})
{
    return MainText(Document(body, styles)).value_or("not a document");
}

std::string Style(const std::string& family, const std::string& name, const std::string& display,
                  const std::string& parent = {})
{
    std::string style = "<style:style style:name=\"" + name + "\" style:family=\"" + family + "\"";
    if (!parent.empty())
        style += " style:parent-style-name=\"" + parent + "\"";
    if (display.empty())
        return style + "/>";
    return style + "><style:text-properties text:display=\"" + display + "\"/></style:style>";
}

} // namespace

TEST(FlatTextTest, EndsEveryParagraphAndHeadingWithOneCharacter)
{
    EXPECT_EQ(TextOf("<text:h text:outline-level=\"1\">Title</text:h>\n   <text:p>One.</text:p><text:p/>"
                     "<text:p>Two.</text:p>"),
              "Title\rOne.\r\rTwo.\r");
}

TEST(FlatTextTest, LeavesHeadersFootersAndPropertiesOut)
{
    EXPECT_EQ(TextOf("<text:p>Body</text:p>"), "Body\r");
}

TEST(FlatTextTest, HasNothingOfADocumentWithoutParagraphs)
{
    EXPECT_EQ(TextOf(""), "");
}

TEST(FlatTextTest, TakesEntitiesCharacterNumbersAndData)
{
    EXPECT_EQ(TextOf("<text:p>a &lt;b&gt; &amp; &quot;c&quot; &apos;d&apos; &#228;&#x1F600;<![CDATA[<e>]]>"
                     "<!-- not <this> --></text:p>"),
              "a <b> & \"c\" 'd' ä😀<e>\r");
}

TEST(FlatTextTest, KeepsLettersOfEveryKind)
{
    EXPECT_EQ(TextOf("<text:p>Äöüß Ж 漢 𝄞</text:p>"), "Äöüß Ж 漢 𝄞\r");
}

TEST(FlatTextTest, MakesOneBlankOfTheFilesOwnWhiteSpace)
{
    EXPECT_EQ(TextOf("<text:p>\n  one \n\t two<text:span> three </text:span> four</text:p>"), "one two three four\r");
}

TEST(FlatTextTest, KeepsSpacesTabsAndLineBreaks)
{
    EXPECT_EQ(TextOf("<text:p><text:s/>a<text:s text:c=\"3\"/>b<text:tab/>c<text:line-break/>d</text:p>"),
              " a   b\tc\vd\r");
}

TEST(FlatTextTest, LeavesNotesAndCommentsOut)
{
    EXPECT_EQ(TextOf("<text:p>Word<text:note text:note-class=\"footnote\"><text:note-citation>1</text:note-citation>"
                     "<text:note-body><text:p>Foot</text:p></text:note-body></text:note> goes"
                     "<office:annotation><dc:creator>Ann</dc:creator><text:p>Comment</text:p></office:annotation>"
                     " on<office:annotation-end/>.</text:p>"),
              "Word goes on.\r");
}

TEST(FlatTextTest, TakesAFieldsResultAndNotItsCode)
{
    EXPECT_EQ(TextOf("<text:p>By <text:author-name>Ann</text:author-name>, <field:fieldmark-start field:type=\"x\">"
                     "<field:param field:name=\"code\" field:value=\"IF 2 > 1\"/></field:fieldmark-start>CODE"
                     "<field:fieldmark-separator/>result<field:fieldmark-end/>.</text:p>"),
              "By Ann, result.\r");
}

TEST(FlatTextTest, TakesAFormFieldThatHasNoCode)
{
    EXPECT_EQ(TextOf("<text:p>a <field:fieldmark-start/>filled in<field:fieldmark-end/> b</text:p>"),
              "a filled in b\r");
}

TEST(FlatTextTest, LeavesTextHiddenByItsOwnStyleOut)
{
    EXPECT_EQ(TextOf("<text:p>Seen <text:span text:style-name=\"T1\">hidden </text:span>and seen.</text:p>",
                     Style("text", "T1", "none")),
              "Seen and seen.\r");
}

TEST(FlatTextTest, LeavesTextHiddenByAParentStyleOut)
{
    EXPECT_EQ(TextOf("<text:p>Seen <text:span text:style-name=\"T1\">hidden</text:span></text:p>",
                     Style("text", "Secret", "none") + Style("text", "Middle", "", "Secret") +
                         Style("text", "T1", "", "Middle")),
              "Seen \r");
}

TEST(FlatTextTest, ShowsWhatAHiddenParagraphHasShownAgain)
{
    EXPECT_EQ(
        TextOf("<text:p text:style-name=\"P1\">hidden <text:span text:style-name=\"T1\">shown</text:span></text:p>",
               Style("paragraph", "P1", "none") + Style("text", "T1", "true")),
        "shown\r");
}

TEST(FlatTextTest, LeavesWholeHiddenParagraphsOutWithTheirEnds)
{
    EXPECT_EQ(
        TextOf("<text:p>One</text:p><text:p text:style-name=\"P1\">hidden</text:p><text:p text:style-name=\"P1\"/>"
               "<text:p><text:span text:style-name=\"T1\">hidden</text:span></text:p><text:p/><text:p>Two</text:p>",
               Style("paragraph", "P1", "none") + Style("text", "T1", "none")),
        "One\r\rTwo\r");
}

TEST(FlatTextTest, AStyleOfAnotherFamilyHidesNothing)
{
    EXPECT_EQ(TextOf("<text:p text:style-name=\"X\">Seen</text:p>", Style("text", "X", "none")), "Seen\r");
}

TEST(FlatTextTest, StylesInACircleDoNotHang)
{
    EXPECT_EQ(TextOf("<text:p text:style-name=\"A\">Seen</text:p>",
                     Style("paragraph", "A", "", "B") + Style("paragraph", "B", "", "A")),
              "Seen\r");
}

TEST(FlatTextTest, LeavesHiddenSectionsOut)
{
    EXPECT_EQ(TextOf("<text:section text:display=\"none\"><text:p>hidden</text:p></text:section><text:p>Seen</text:p>"),
              "Seen\r");
}

TEST(FlatTextTest, TakesEveryCellOfATableAndOfATableInIt)
{
    EXPECT_EQ(
        TextOf("<table:table>\n <table:table-row>\n  <table:table-cell>\n   <text:p>A1</text:p>\n</table:table-cell>"
               "<table:table-cell><table:table><table:table-row><table:table-cell><text:p>in</text:p>"
               "</table:table-cell></table:table-row></table:table><text:p>B1</text:p><text:p>again</text:p>"
               "</table:table-cell></table:table-row></table:table><text:p>Behind</text:p>"),
        "A1\rin\rB1\ragain\rBehind\r");
}

TEST(FlatTextTest, TakesListItemsWithoutTheirLabels)
{
    EXPECT_EQ(TextOf("<text:list><text:list-item><text:number>1.</text:number><text:p>one</text:p><text:list>"
                     "<text:list-item><text:p>deep</text:p></text:list-item></text:list></text:list-item></text:list>"),
              "one\rdeep\r");
}

TEST(FlatTextTest, TakesATableOfContentsButNotItsTemplate)
{
    EXPECT_EQ(
        TextOf("<text:table-of-content><text:table-of-content-source><text:index-title-template><text:p>no</text:p>"
               "</text:index-title-template></text:table-of-content-source><text:index-body><text:p>Intro"
               "<text:tab/>1</text:p></text:index-body></text:table-of-content>"),
        "Intro\t1\r");
}

TEST(FlatTextTest, LeavesTextBoxesShapesAndPicturesOut)
{
    EXPECT_EQ(
        TextOf("<text:p>a<draw:frame text:anchor-type=\"char\"><draw:text-box><text:p>box</text:p></draw:text-box>"
               "</draw:frame><draw:custom-shape><text:p>shape</text:p></draw:custom-shape><draw:frame "
               "text:anchor-type=\"as-char\"><draw:image/><svg:desc>a cat</svg:desc></draw:frame>b</text:p>"),
        "ab\r");
}

TEST(FlatTextTest, TakesPositionedParagraphsAndFloatingTablesBeforeTheParagraphTheyStandAt)
{
    EXPECT_EQ(TextOf("<text:p><draw:frame text:anchor-type=\"paragraph\">\n <draw:text-box>\n  <table:table>"
                     "<table:table-row><table:table-cell><text:p>cell</text:p></table:table-cell></table:table-row>"
                     "</table:table>\n  <text:p>framed</text:p>\n </draw:text-box>\n</draw:frame>Around</text:p>"),
              "cell\rframed\rAround\r");
}

TEST(FlatTextTest, AHiddenParagraphHidesNothingOfTheFrameThatStandsAtIt)
{
    EXPECT_EQ(
        TextOf("<text:p text:style-name=\"P1\"><draw:frame text:anchor-type=\"paragraph\"><draw:text-box><text:p>framed"
               "</text:p></draw:text-box></draw:frame>hidden</text:p>",
               Style("paragraph", "P1", "none")),
        "framed\r");
}

TEST(FlatTextTest, LeavesDeletedTextOutAndKeepsInsertedText)
{
    const std::string changes =
        "<text:tracked-changes><text:changed-region text:id=\"c1\"><text:deletion><office:change-info><dc:creator>x"
        "</dc:creator></office:change-info><text:p>kept aside</text:p></text:deletion></text:changed-region>"
        "<text:changed-region text:id=\"c2\"><text:insertion/></text:changed-region></text:tracked-changes>";
    EXPECT_EQ(TextOf(changes +
                     "<text:p>One <text:change-start text:change-id=\"c1\"/>gone</text:p><text:p>gone"
                     "<text:change-end text:change-id=\"c1\"/>two <text:change-start text:change-id=\"c2\"/>new"
                     "<text:change-end text:change-id=\"c2\"/></text:p>"),
              "One two new\r");
}

TEST(FlatTextTest, TakesTheBaseOfAnnotatedCharacters)
{
    EXPECT_EQ(TextOf("<text:p><text:ruby><text:ruby-base>base</text:ruby-base><text:ruby-text>above</text:ruby-text>"
                     "</text:ruby></text:p>"),
              "base\r");
}

TEST(FlatTextTest, RefusesWhatIsCutOffOrNoDocument)
{
    const std::string whole = Document("<text:p>Text</text:p>");
    for (const std::size_t size : {std::size_t{0}, std::size_t{5}, whole.size() / 2, whole.size() - 20})
        EXPECT_FALSE(MainText(std::string_view(whole).substr(0, size))) << size;
    EXPECT_FALSE(MainText("plain text"));
    EXPECT_FALSE(MainText("</a>"));
}

// Reads a document when there are only 16 MB of memory left, and ends the process: 0 when that is told.
[[noreturn]] void ReadWithLittleMemory(const std::string& document)
{
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t most = pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + (rlim_t{16} << 20);
    const rlimit limit{most, most};
    ::setrlimit(RLIMIT_AS, &limit);
    try {
        std::_Exit(MainText(document) ? 1 : 2);
    } catch (const std::bad_alloc&) {
        std::_Exit(0);
    }
}

TEST(FlatTextDeathTest, LackOfMemoryIsToldAsSuchAndNotAsADocumentThatCannotBeRead)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer ends the program when memory runs out";
#endif
    const std::string large(std::size_t{64} << 20, 'x');
    // The one needs the memory here, the other in the parser.
    for (const std::string& body : {"<text:p>" + large + "</text:p>", "<text:p text:style-name=\"" + large + "\"/>"})
        EXPECT_EXIT(ReadWithLittleMemory(Document(body)), ::testing::ExitedWithCode(0), "") << body.substr(0, 20);
}
