#include "readers/Reading.h"
#include "Blocks.h"
#include "tests/fakes/FakeHelper.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <sys/stat.h>
#include <unistd.h>
#include <zip.h>

using namespace voxmate;
using namespace voxmate::readers;
using namespace voxmate::readers::test;
using namespace std::chrono_literals;

namespace
{

Lines All(Reading& reading)
{
    Lines lines;
    const auto patience = std::chrono::steady_clock::now() + 60s;
    while (!reading.AtEnd() && std::chrono::steady_clock::now() < patience)
        if (const std::optional<Block> block = reading.Next(1s))
            lines.push_back(Line(*block));
    if (!reading.Sentence().empty())
        lines.push_back(reading.Sentence());
    return lines;
}

class ReadingTest : public testing::Test
{
protected:
    ReadingTest() { std::filesystem::create_directory(folder_); }
    ~ReadingTest() override
    {
        std::error_code error;
        std::filesystem::remove_all(folder_, error);
    }

    std::string File(const std::string& name, const std::string& content) const
    {
        std::ofstream(folder_ / name, std::ios::binary) << content;
        return folder_ / name;
    }
    Lines Read(const std::string& name, const std::string& content) const
    {
        Reading reading(File(name, content));
        return All(reading);
    }
    std::string Zip(const std::string& name, const std::map<std::string, std::string>& parts) const
    {
        const std::string path = folder_ / name;
        zip_t* const archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
        for (const auto& [part, content] : parts) {
            zip_source_t* const source = zip_source_buffer(archive, content.data(), content.size(), 0);
            zip_file_add(archive, part.c_str(), source, ZIP_FL_ENC_UTF_8);
        }
        zip_close(archive);
        return path;
    }

    std::filesystem::path folder_ = std::filesystem::temp_directory_path() / ("reading-" + std::to_string(getpid()));
};

// A file of one page with a line of text in a font that every reader of PDF has.
std::string PdfFile(const std::string& text)
{
    const std::string content = "BT /F1 12 Tf 72 700 Td (" + text + ") Tj ET";
    const std::vector<std::string> objects{
        "<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Contents 4 0 R "
        "/Resources << /Font << /F1 << /Type /Font /Subtype /Type1 /BaseFont /Helvetica >> >> >> >>",
        "<< /Length " + std::to_string(content.size()) + " >>\nstream\n" + content + "\nendstream"};
    std::string file = "%PDF-1.4\n";
    std::string table;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        std::string offset = std::to_string(file.size());
        table += std::string(10 - offset.size(), '0') + offset + " 00000 n \n";
        file += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const std::string start = std::to_string(file.size());
    return file + "xref\n0 5\n0000000000 65535 f \n" + table + "trailer\n<< /Size 5 /Root 1 0 R >>\nstartxref\n" +
           start + "\n%%EOF\n";
}

} // namespace

TEST_F(ReadingTest, BlocksComeAsTheyArriveAndTheKindBefore)
{
    auto helper = std::make_unique<fakes::FakeHelper>();
    const std::string block = EncodeFrame(Block{BlockKind::Paragraph, 0, "", "One.", ""});
    helper->pieces = {EncodeFrame(Kind::Docx) + block.substr(0, 5), "", block.substr(5), EncodeFrame(Refusal::None)};
    Reading reading("x", std::move(helper));
    EXPECT_FALSE(reading.Next(0ms));
    EXPECT_EQ(reading.DocumentKind(), Kind::Docx);
    EXPECT_EQ(Line(reading.Next(0ms).value()), "paragraph: One.");
    EXPECT_FALSE(reading.Next(0ms));
    EXPECT_TRUE(reading.AtEnd());
    EXPECT_EQ(reading.Sentence(), "");
}

TEST_F(ReadingTest, AReaderThatCrashesRunsOutOfTimeOrLiesLeavesASentence)
{
    const auto outcome = [](std::deque<std::string> pieces, Helper::End end) {
        auto helper = std::make_unique<fakes::FakeHelper>();
        helper->pieces = std::move(pieces);
        helper->end = end;
        Reading reading("/a/b/File.pdf", std::move(helper));
        return All(reading);
    };
    const std::string block = EncodeFrame(Block{BlockKind::Paragraph, 0, "", "One.", ""});
    EXPECT_EQ(outcome({}, Helper::End::Crashed), (Lines{"\"File.pdf\" cannot be read: it is damaged."}));
    EXPECT_EQ(outcome({block}, Helper::End::Crashed),
              (Lines{"paragraph: One.", "\"File.pdf\" cannot be read to its end: it is damaged."}));
    EXPECT_EQ(outcome({block}, Helper::End::OutOfTime),
              (Lines{"paragraph: One.", "\"File.pdf\" cannot be read to its end: it takes too long."}));
    const std::string page = EncodeFrame(Block{BlockKind::Page, 0, "1", "", ""});
    EXPECT_EQ(outcome({page, EncodeFrame(Refusal::NoText)}, Helper::End::Well),
              (Lines{"page 1", "\"File.pdf\" cannot be read: there is no text in it."}));
    EXPECT_EQ(outcome({"nonsense that is no frame"}, Helper::End::Well),
              (Lines{"\"File.pdf\" cannot be read: it is damaged."}));
}

TEST_F(ReadingTest, EveryKindIsReadByItsContentWhateverItsName)
{
    EXPECT_EQ(Read("a.pdf", "Plain text."), (Lines{"paragraph: Plain text."}));
    EXPECT_EQ(Read("b", "# Title\n\nText.\n"), (Lines{"heading 1: Title", "paragraph: Text."}));
    EXPECT_EQ(Read("c.txt", "<!doctype html><h2>Page</h2>"), (Lines{"heading 2: Page"}));
    EXPECT_EQ(Read("d.doc", "{\\rtf1 Rich\\par}"), (Lines{"paragraph: Rich"}));
    EXPECT_EQ(Read("e.docx", PdfFile("Printed words")), (Lines{"page 1", "paragraph: Printed words"}));
    const std::string names = "xmlns:office='urn:oasis:names:tc:opendocument:xmlns:office:1.0' "
                              "xmlns:text='urn:oasis:names:tc:opendocument:xmlns:text:1.0'";
    const std::string body = "<office:body><office:text><text:p>Open</text:p></office:text></office:body>";
    EXPECT_EQ(Read("f", "<?xml version='1.0'?><office:document " + names + ">" + body + "</office:document>"),
              (Lines{"paragraph: Open"}));
    Reading odt(Zip(
        "g.epub", {{"mimetype", "application/vnd.oasis.opendocument.text"},
                   {"content.xml", "<office:document-content " + names + ">" + body + "</office:document-content>"}}));
    EXPECT_EQ(All(odt), (Lines{"paragraph: Open"}));
    EXPECT_EQ(odt.DocumentKind(), Kind::Odt);
}

TEST_F(ReadingTest, WhatCannotBeReadIsNamedWithItsReason)
{
    EXPECT_EQ(Read("empty.txt", ""), (Lines{"\"empty.txt\" cannot be read: there is no text in it."}));
    EXPECT_EQ(Read("x.bin", std::string("\x7F"
                                        "ELF\0\1\2\3",
                                        8)),
              (Lines{"\"x.bin\" cannot be read: it is of no kind that Voxmate knows."}));
    EXPECT_EQ(Read("x.wav", std::string("RIFF\0\0\0\0WAVEfmt ", 16)),
              (Lines{"\"x.wav\" cannot be read: it is a recording."}));
    EXPECT_EQ(Read("x.pdf", "%PDF-1.4\nnothing more"), (Lines{"\"x.pdf\" cannot be read: it is damaged."}));
    EXPECT_EQ(Read("x.docx", "PK\x03\x04 and nothing more"), (Lines{"\"x.docx\" cannot be read: it is damaged."}));
    const auto compound = [](const std::string& name) {
        std::string text = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
        for (const char c : name)
            text += {c, '\0'};
        return text;
    };
    EXPECT_EQ(Read("x.doc", compound("WordDocument")),
              (Lines{"\"x.doc\" cannot be read: only the word processor can read it."}));
    EXPECT_EQ(Read("y.docx", compound("EncryptedPackage")),
              (Lines{"\"y.docx\" cannot be read: it is protected by a password or against copying."}));
    Reading missing(folder_ / "missing.txt");
    EXPECT_EQ(All(missing), (Lines{"\"missing.txt\" cannot be read: there is no such file."}));
    Reading folder(folder_.string());
    EXPECT_EQ(All(folder).back(),
              "\"" + folder_.filename().string() + "\" cannot be read: it is no file that may be read.");
    ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    Reading pipe(folder_ / "pipe");
    EXPECT_EQ(All(pipe), (Lines{"\"pipe\" cannot be read: it is no file that may be read."}));
}

TEST_F(ReadingTest, AFileOfFourGigabytesIsRefusedAtOnceWhateverItsName)
{
    for (const std::string ending : {"txt", "md", "html", "pdf", "docx", "odt", "fodt", "epub", "rtf", "doc", "wav"}) {
        const std::string name = "huge." + ending;
        const std::string path = File(name, "text");
        std::filesystem::resize_file(path, std::uintmax_t{4} << 30);
        Reading reading(path);
        EXPECT_EQ(All(reading), (Lines{"\"" + name + "\" cannot be read: it is too large."}));
        std::filesystem::remove(path);
    }
}

TEST_F(ReadingTest, WhatIsNoFileIsNamedWithItsReason)
{
    Reading device("/dev/zero");
    EXPECT_EQ(All(device), (Lines{"\"zero\" cannot be read: it is no file that may be read."}));
    Reading terminal("/dev/tty");
    EXPECT_EQ(All(terminal), (Lines{"\"tty\" cannot be read: it is no file that may be read."}));
    Reading endless("/proc/self/mem");
    EXPECT_EQ(All(endless).size(), 1u);
}

TEST_F(ReadingTest, AnArchiveInAnArchiveIsNoDocument)
{
    const std::string zeros(std::size_t{64} << 20, '\0');
    std::string inner = Zip("0.zip", {{"zeros", zeros}});
    for (int depth = 1; depth < 4; ++depth) {
        std::ifstream file(inner, std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(file)), {});
        inner = Zip(std::to_string(depth) + ".zip", {{"inner.zip", bytes}, {"word/document.xml", bytes}});
    }
    Reading reading(inner);
    EXPECT_EQ(All(reading), (Lines{"\"3.zip\" cannot be read: it is of no kind that Voxmate knows."}));
}

TEST_F(ReadingTest, NothingThatADocumentRefersToIsFetched)
{
    const std::string secret = File("secret.txt", "A secret.");
    const std::string names = "xmlns:office='urn:oasis:names:tc:opendocument:xmlns:office:1.0' "
                              "xmlns:text='urn:oasis:names:tc:opendocument:xmlns:text:1.0'";
    Reading odt(Zip("x.odt", {{"mimetype", "application/vnd.oasis.opendocument.text"},
                              {"content.xml", "<!DOCTYPE x [<!ENTITY e SYSTEM 'file://" + secret +
                                                  "'><!ENTITY % p SYSTEM "
                                                  "'http://127.0.0.1:9/x.dtd'>%p;]><office:document-content " +
                                                  names +
                                                  "><office:body><office:text><text:p>Open &e;</text:p></office:text>"
                                                  "</office:body></office:document-content>"}}));
    for (const std::string& line : All(odt))
        EXPECT_EQ(line.find("secret"), std::string::npos) << line;
    const Lines page =
        Read("x.html", "<!doctype html><p>Page<script src='file://" + secret + "'></script><iframe src='" + secret +
                           "'></iframe><object data='" + secret + "'></object>");
    EXPECT_EQ(page, Lines{"paragraph: Page"});
    EXPECT_EQ(Read("x.rtf", "{\\rtf1 Rich{\\field{\\*\\fldinst INCLUDETEXT \"" + secret + "\"}{\\fldrslt }}\\par}"),
              Lines{"paragraph: Rich"});
}

TEST_F(ReadingTest, APrintedFileWithoutAnEndEnds)
{
    // A tree of pages that is its own branch, and one that says that it has more pages than there are.
    const auto pdf = [](const std::string& pages) {
        const std::vector<std::string> objects{"<< /Type /Catalog /Pages 2 0 R >>", pages};
        std::string file = "%PDF-1.4\n";
        for (std::size_t i = 0; i < objects.size(); ++i)
            file += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
        return file + "trailer\n<< /Size 3 /Root 1 0 R >>\n%%EOF\n";
    };
    for (const char* pages :
         {"<< /Type /Pages /Kids [2 0 R 2 0 R] /Count 2000000000 >>", "<< /Type /Pages /Kids [] /Count 2000000000 >>",
          "<< /Type /Pages /Kids [2 0 R] /Parent 2 0 R /Count -1 >>"})
        EXPECT_EQ(Read("x.pdf", pdf(pages)), Lines{"\"x.pdf\" cannot be read: it is damaged."}) << pages;
}

TEST_F(ReadingTest, AnArchiveThatUnpacksToMoreThanAnyDocumentIsRefused)
{
    std::map<std::string, std::string> parts{{"mimetype", "application/vnd.oasis.opendocument.text"}};
    parts["content.xml"] = "<a>" + std::string(std::size_t{600} << 20, ' ');
    const std::string path = Zip("bomb.odt", parts);
    parts.clear();
    Reading reading(path);
    EXPECT_EQ(All(reading), (Lines{"\"bomb.odt\" cannot be read: it is too large."}));
}

TEST_F(ReadingTest, EntitiesThatMultiplyAreNotReplaced)
{
    std::string declarations = "<!ENTITY a0 'aaaaaaaaaa'>";
    for (int i = 1; i < 12; ++i) {
        declarations += "<!ENTITY a" + std::to_string(i) + " '";
        for (int j = 0; j < 10; ++j)
            declarations += "&a" + std::to_string(i - 1) + ";";
        declarations += "'>";
    }
    Reading reading(Zip("x.odt", {{"mimetype", "application/vnd.oasis.opendocument.text"},
                                  {"content.xml", "<!DOCTYPE x [" + declarations + "]><x>&a11;</x>"}}));
    EXPECT_EQ(All(reading), (Lines{"\"x.odt\" cannot be read: it is damaged."}));
}

TEST_F(ReadingTest, GivingUpEndsTheReaderAndLeavesNothing)
{
    std::string text;
    for (int i = 0; i < 200'000; ++i)
        text += "A paragraph that nobody will ever read to its end.\n\n";
    const std::string path = File("long.txt", text);
    const auto start = std::chrono::steady_clock::now();
    {
        Reading reading(path);
        while (!reading.Next(1s) && !reading.AtEnd()) {
        }
        EXPECT_FALSE(reading.AtEnd());
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), std::filesystem::directory_iterator()), 1);
}
