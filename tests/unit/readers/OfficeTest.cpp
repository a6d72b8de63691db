#include "Blocks.h"
#include "FakeParts.h"
#include "readers/office/Docx.h"
#include "readers/office/Epub.h"
#include "readers/office/Odt.h"

#include <gtest/gtest.h>

using namespace voxmate::readers;
using namespace voxmate::readers::test;

namespace
{

constexpr const char* W = "xmlns:w='http://schemas.openxmlformats.org/wordprocessingml/2006/main' "
                          "xmlns:mc='http://schemas.openxmlformats.org/markup-compatibility/2006'";
constexpr const char* Relation = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";

FakeParts DocxParts(const std::string& body)
{
    FakeParts fake;
    const auto relations = [](const std::string& list) { return "<Relationships>" + list + "</Relationships>"; };
    const auto relation = [](const std::string& type, const std::string& target) {
        return "<Relationship Id='" + type + "' Type='" + Relation + type + "' Target='" + target + "'/>";
    };
    fake.parts["_rels/.rels"] = relations(relation("officeDocument", "/word/document.xml"));
    fake.parts["word/_rels/document.xml.rels"] =
        relations(relation("styles", "styles.xml") + relation("numbering", "numbering.xml") +
                  relation("footnotes", "footnotes.xml"));
    fake.parts["word/styles.xml"] = std::string("<w:styles ") + W +
                                    "><w:docDefaults><w:rPr><w:lang w:val='en-GB'/></w:rPr></w:docDefaults>"
                                    "<w:style w:styleId='H2'><w:name w:val='heading 2'/></w:style>"
                                    "<w:style w:styleId='Mine'><w:basedOn w:val='H2'/></w:style>"
                                    "<w:style w:styleId='Secret'><w:rPr><w:vanish/></w:rPr></w:style></w:styles>";
    fake.parts["word/numbering.xml"] =
        std::string("<w:numbering ") + W +
        "><w:abstractNum w:abstractNumId='0'><w:lvl w:ilvl='0'><w:start w:val='3'/><w:numFmt w:val='decimal'/>"
        "<w:lvlText w:val='%1.'/></w:lvl><w:lvl w:ilvl='1'><w:numFmt w:val='lowerLetter'/><w:lvlText w:val='%1.%2)'/>"
        "</w:lvl></w:abstractNum><w:num w:numId='5'><w:abstractNumId w:val='0'/></w:num></w:numbering>";
    fake.parts["word/footnotes.xml"] = std::string("<w:footnotes ") + W +
                                       "><w:footnote w:type='separator' w:id='-1'><w:p/></w:footnote>"
                                       "<w:footnote w:id='1'><w:p><w:r><w:t>The note.</w:t></w:r></w:p></w:footnote>"
                                       "</w:footnotes>";
    fake.parts["word/document.xml"] = std::string("<w:document ") + W + "><w:body>" + body + "</w:body></w:document>";
    return fake;
}

Lines Docx(const std::string& body)
{
    const FakeParts parts = DocxParts(body);
    return LinesOf([&](const BlockSink& sink) { ReadDocx(parts, sink); });
}

std::string P(const std::string& text, const std::string& properties = "")
{
    return "<w:p><w:pPr>" + properties + "</w:pPr><w:r><w:t>" + text + "</w:t></w:r></w:p>";
}

Lines Odt(const std::string& body, const std::string& styles = "")
{
    std::string names;
    for (const std::string name : {"office", "text", "table", "style"})
        names += " xmlns:" + name + "='urn:oasis:names:tc:opendocument:xmlns:" + name + ":1.0'";
    names += " xmlns:fo='urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0'"
             " xmlns:draw='urn:oasis:names:tc:opendocument:xmlns:drawing:1.0'";
    FakeParts fake;
    fake.parts["content.xml"] = "<office:document-content" + names + "><office:automatic-styles>" + styles +
                                "</office:automatic-styles><office:body><office:text>" + body +
                                "</office:text></office:body></office:document-content>";
    return LinesOf([&](const BlockSink& sink) { ReadOdt(fake, sink); });
}

FakeParts Book()
{
    FakeParts fake;
    fake.parts["META-INF/container.xml"] =
        "<container><rootfiles><rootfile full-path='OPS/book.opf'/></rootfiles></container>";
    fake.parts["OPS/book.opf"] =
        "<package "
        "xmlns:dc='http://purl.org/dc/elements/1.1/'><metadata><dc:language>fr</dc:language></metadata><manifest>"
        "<item id='n' href='nav.xhtml' properties='nav' media-type='application/xhtml+xml'/>"
        "<item id='a' href='t/one%20a.xhtml' media-type='application/xhtml+xml'/>"
        "<item id='b' href='t/two.xhtml' media-type='application/xhtml+xml'/>"
        "<item id='x' href='notes.xhtml' media-type='application/xhtml+xml'/></manifest>"
        "<spine><itemref idref='n'/><itemref idref='x' linear='no'/><itemref idref='b'/><itemref "
        "idref='a'/></spine></package>";
    fake.parts["OPS/nav.xhtml"] =
        "<html xmlns='http://www.w3.org/1999/xhtml'><nav><a href='t/two.xhtml#x'>Chapter Two</a>"
        "<a href='t/one%20a.xhtml'>Chapter One</a></nav></html>";
    fake.parts["OPS/t/one a.xhtml"] = "<html xmlns='http://www.w3.org/1999/xhtml'><body><p>Un.</p></body></html>";
    fake.parts["OPS/t/two.xhtml"] = "<html xmlns='http://www.w3.org/1999/xhtml'><body><h1>Deux</h1></body></html>";
    fake.parts["OPS/notes.xhtml"] = "<html xmlns='http://www.w3.org/1999/xhtml'><body><p>Notes.</p></body></html>";
    return fake;
}

} // namespace

TEST(DocxTest, HeadingsComeFromStylesAndListsHaveTheirLabels)
{
    EXPECT_EQ(Docx(P("Head", "<w:pStyle w:val='Mine'/>") +
                   P("c", "<w:numPr><w:ilvl w:val='0'/><w:numId w:val='5'/></w:numPr>") +
                   P("deep", "<w:numPr><w:ilvl w:val='1'/><w:numId w:val='5'/></w:numPr>") +
                   P("d", "<w:numPr><w:ilvl w:val='0'/><w:numId w:val='5'/></w:numPr>") + P("plain")),
              (Lines{"heading 2: Head", "item 1: 3. c", "item 2: 3.a) deep", "item 1: 4. d", "paragraph: plain"}));
}

TEST(DocxTest, AFootnoteFollowsItsParagraph)
{
    EXPECT_EQ(Docx("<w:p><w:r><w:t>One</w:t></w:r><w:r><w:footnoteReference w:id='1'/></w:r><w:r><w:t> two.</w:t></w:r>"
                   "</w:p>" +
                   P("Next.")),
              (Lines{"paragraph: One two.", "note 1: The note.", "paragraph: Next."}));
}

TEST(DocxTest, WhatIsDeletedHiddenOrAFieldsCodeIsNotRead)
{
    EXPECT_EQ(
        Docx("<w:p><w:r><w:t>a</w:t></w:r><w:del><w:r><w:delText>b</w:delText></w:r></w:del>"
             "<w:r><w:rPr><w:vanish/></w:rPr><w:t>c</w:t></w:r><w:r><w:rPr><w:rStyle w:val='Secret'/></w:rPr>"
             "<w:t>d</w:t></w:r><w:r><w:fldChar w:fldCharType='begin'/></w:r><w:r><w:instrText>PAGE</w:instrText></w:r>"
             "<w:r><w:t>e</w:t></w:r><w:r><w:fldChar w:fldCharType='separate'/></w:r><w:r><w:t>7</w:t></w:r>"
             "<w:r><w:fldChar w:fldCharType='end'/></w:r><w:r><w:tab/><w:t>z</w:t></w:r></w:p>"),
        (Lines{"paragraph: a7 z"}));
}

TEST(DocxTest, TablesAndTextBoxes)
{
    EXPECT_EQ(Docx("<w:tbl><w:tr><w:tc>" + P("a") + "</w:tc><w:tc>" + P("b") +
                   "</w:tc></w:tr></w:tbl>"
                   "<w:p><w:r><w:t>Before</w:t></w:r><w:r><mc:AlternateContent><mc:Choice><w:txbxContent>" +
                   P("Box") + "</w:txbxContent></mc:Choice><mc:Fallback>" + P("Box again") +
                   "</mc:Fallback></mc:AlternateContent></w:r><w:r><w:t> after</w:t></w:r></w:p>"),
              (Lines{"row: a | b", "paragraph: Before after", "paragraph: Box"}));
}

TEST(DocxTest, TheLanguageIsTheRunsOrTheDocuments)
{
    const FakeParts parts =
        DocxParts(P("a") + "<w:p><w:r><w:rPr><w:lang w:val='de-DE'/></w:rPr><w:t>b</w:t></w:r></w:p>" + P("c"));
    std::vector<std::string> languages;
    LinesOf([&](const BlockSink& sink) { ReadDocx(parts, sink); }, &languages);
    EXPECT_EQ(languages, (Lines{"en-GB", "de-DE", "en-GB"}));
}

TEST(DocxTest, ADocumentThatIsCutOffIsDamagedAfterWhatWasRead)
{
    FakeParts parts = DocxParts(P("whole"));
    std::string& text = parts.parts["word/document.xml"];
    text.resize(text.size() - 10);
    EXPECT_EQ(LinesOf([&](const BlockSink& sink) { ReadDocx(parts, sink); }),
              (Lines{"paragraph: whole", "refused: \"F\" cannot be read: it is damaged."}));
}

TEST(OdtTest, HeadingsListsNotesAndTables)
{
    EXPECT_EQ(
        Odt("<text:h text:outline-level='2'>Head</text:h><text:p>One<text:note text:note-class='footnote'>"
            "<text:note-citation>1</text:note-citation><text:note-body><text:p>Note.</text:p></text:note-body>"
            "</text:note> two<text:s/>x<text:line-break/>y</text:p><text:list text:style-name='L'><text:list-item>"
            "<text:p>a</text:p><text:list><text:list-item><text:p>deep</text:p></text:list-item></text:list>"
            "</text:list-item><text:list-item><text:p>b</text:p><text:p>more</text:p></text:list-item></text:list>"
            "<table:table><table:table-row><table:table-cell><text:p>c</text:p></table:table-cell>"
            "<table:table-cell><text:p>d</text:p></table:table-cell></table:table-row></table:table>",
            "<text:list-style style:name='L'><text:list-level-style-number text:level='1' style:num-format='A' "
            "style:num-suffix=')'/><text:list-level-style-bullet text:level='2'/></text:list-style>"),
        (Lines{"heading 2: Head", "paragraph: One two x / y", "note 1: Note.", "item 1: A) a",
               "item 2: \xE2\x80\xA2 deep", "item 1: B) b", "paragraph: more", "row: c | d"}));
}

TEST(OdtTest, WhatIsDeletedHiddenOrACommentIsNotRead)
{
    EXPECT_EQ(
        Odt("<text:tracked-changes><text:p>no</text:p></text:tracked-changes><text:p>a<text:span text:style-name='H'>no"
            "</text:span><office:annotation><text:p>no</text:p></office:annotation>b</text:p>"
            "<text:p text:style-name='P'>no</text:p>",
            "<style:style style:name='H' style:family='text'><style:text-properties text:display='none'/></style:style>"
            "<style:style style:name='P' style:family='paragraph'><style:text-properties text:display='none'/>"
            "</style:style>"),
        (Lines{"paragraph: ab"}));
}

TEST(OdtTest, AnEncryptedTextIsProtected)
{
    FakeParts fake;
    fake.parts["content.xml"] = "\x01\x02";
    fake.parts["META-INF/manifest.xml"] =
        "<m:manifest xmlns:m='urn:oasis:names:tc:opendocument:xmlns:manifest:1.0'><m:file-entry "
        "m:full-path='content.xml'>"
        "<m:encryption-data/></m:file-entry></m:manifest>";
    EXPECT_EQ(LinesOf([&](const BlockSink& sink) { ReadOdt(fake, sink); }),
              (Lines{"refused: \"F\" cannot be read: it is protected by a password or against copying."}));
}

TEST(EpubTest, ChaptersComeInTheBooksOrderWithTheirTitles)
{
    const FakeParts book = Book();
    std::vector<std::string> languages;
    EXPECT_EQ(LinesOf([&](const BlockSink& sink) { ReadEpub(book, sink); }, &languages),
              (Lines{"chapter Chapter Two", "heading 1: Deux", "chapter Chapter One", "paragraph: Un.", "chapter ",
                     "paragraph: Notes."}));
    EXPECT_EQ(languages, Lines(6, "fr"));
}

TEST(EpubTest, AnEncryptedChapterIsProtectedAndAnEncryptedFontIsNot)
{
    FakeParts book = Book();
    const auto encrypt = [&](const std::string& part) {
        book.parts["META-INF/encryption.xml"] =
            "<encryption xmlns:e='http://www.w3.org/2001/04/xmlenc#'><e:CipherReference URI='" + part +
            "'/></encryption>";
    };
    encrypt("OPS/font.otf");
    EXPECT_EQ(LinesOf([&](const BlockSink& sink) { ReadEpub(book, sink); }).size(), 6U);
    encrypt("OPS/t/two.xhtml");
    EXPECT_EQ(LinesOf([&](const BlockSink& sink) { ReadEpub(book, sink); }),
              (Lines{"refused: \"F\" cannot be read: it is protected by a password or against copying."}));
}

TEST(PackageTest, ReferencesLeadToPartsAndNotOutOfThePackage)
{
    EXPECT_EQ(PartName("text/x.xhtml", "a%20b.xhtml#c"), "text/a b.xhtml");
    EXPECT_EQ(PartName("a/b/c.xml", "../d.xml"), "a/d.xml");
    EXPECT_EQ(PartName("a.xml", "../../../etc/passwd"), "etc/passwd");
    EXPECT_EQ(PartName("a/b.xml", "/c.xml"), "c.xml");
}
