#include "platform/linux/word/WordSource.h"
#include "platform/linux/word/WebArchive.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using namespace voxmate::linux_platform;
namespace fs = std::filesystem;

namespace
{

constexpr const char* Mark = "\xEF\xBB\xBF";

class WordSourceTest : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "voxmate-test-XXXXXX").string();
        folder_ = ::mkdtemp(name.data());
    }
    void TearDown() override { fs::remove_all(folder_); }

    std::string Path() const { return (folder_ / "document.doc").string(); }
    std::string Target() const { return (folder_ / "target.doc").string(); }

    /// What the word processor gets for a document with these bytes; "refused" when it gets nothing.
    std::string Placed(const std::string& bytes, const char* codePage = "CP1252") const
    {
        std::ofstream(Path(), std::ios::binary) << bytes;
        fs::remove(Target());
        if (!PlaceDocument(Path(), Target(), CodePage(codePage)))
            return "refused";
        std::ifstream file(Target(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    fs::path folder_;
};

} // namespace

TEST_F(WordSourceTest, AWordProcessorsDocumentStaysAsItIs)
{
    using namespace std::string_literals;
    for (const std::string& bytes : {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1 and so on\0"s, "PK\x03\x04\0\0"s,
                                     "{\\rtf1 \xE9}"s, "\xDB\xA5-\0"s, "\x31\xBE\0\0"s}) {
        EXPECT_EQ(Placed(bytes), bytes);
        EXPECT_TRUE(fs::is_symlink(Target()));
    }
}

TEST_F(WordSourceTest, ATextIsWrittenAnewAsTextFilesAreRead)
{
    EXPECT_EQ(Placed(""), Mark);
    EXPECT_EQ(Placed("Gr\xFC\xDF"
                     "e\r\n"),
              Mark + std::string("Gr\u00FC\u00DFe\r\n"));
    EXPECT_EQ(Placed("\xCF\xF0\xE8", "CP1251"), Mark + std::string("\u041F\u0440\u0438"));
    EXPECT_EQ(Placed(std::string(Mark) + "Gr\u00FC\u00DFe"), Mark + std::string("Gr\u00FC\u00DFe"));
    EXPECT_EQ(Placed(std::string("\xFF\xFEH\0i\0", 6)), Mark + std::string("Hi"));
    EXPECT_EQ(Placed("<p>na\xEFve</p>"), Mark + std::string("<p>na\u00EFve</p>"));
}

TEST_F(WordSourceTest, MarkupThatTellsItsEncodingStaysAsItIs)
{
    for (const char* text : {"<html><head><meta CHARSET=windows-1251></head>\xCF\xF0\xE8</html>",
                             " \r\n<meta http-equiv='Content-Type' content='text/html; charset=iso-8859-2'>\xB1",
                             "<?xml version='1.0' encoding='koi8-r'?><a>\xC1</a>"})
        EXPECT_EQ(Placed(text), text);
}

TEST_F(WordSourceTest, OtherBytesAreRefused)
{
    EXPECT_EQ(Placed(std::string("\x89PNG\r\n\x1A\n\0\0", 10)), "refused");
    EXPECT_EQ(Placed(std::string("\x7F"
                                 "ELF\2\1\1\0",
                                 8)),
              "refused");
    EXPECT_EQ(Placed(std::string(1000, '\0')), "refused");
    EXPECT_FALSE(fs::exists(Target()));
}

TEST_F(WordSourceTest, FoldersPipesAndWhatIsNotThereAreRefused)
{
    EXPECT_FALSE(PlaceDocument(Path(), Target()));
    EXPECT_FALSE(PlaceDocument(folder_.string(), Target()));
    ASSERT_EQ(::mkfifo(Path().c_str(), 0600), 0);
    EXPECT_FALSE(PlaceDocument(Path(), Target()));
}

TEST_F(WordSourceTest, OfAWebArchiveThePageIsTaken)
{
    const std::string head =
        "MIME-Version: 1.0\r\nContent-Type: multipart/related;\r\n\ttype=\"text/html\";\r\n\tboundary=\"--=_A; b\"\r\n"
        "\r\nThis is a message in several parts.\r\n\r\n----=_A; b\r\n";
    const std::string tail =
        "\r\n----=_A; b\r\nContent-Type: image/png\r\nContent-Transfer-Encoding: base64\r\n\r\niVBORw0KGgo=\r\n"
        "----=_A; b--\r\n";
    EXPECT_EQ(Placed(head +
                     "Content-Location: file:///C:/a.htm\r\nContent-Transfer-Encoding: quoted-printable\r\n"
                     "Content-Type: text/html; charset=\"windows-1252\"\r\n\r\n<p>Gr=FC=DF=\r\ne =3D =zz=</p>" +
                     tail),
              Mark + std::string("<p>Gr\u00FC\u00DFe = =zz=</p>\r\n"));
    EXPECT_EQ(Placed(head +
                     "Content-Type: text/html; charset=utf-8\r\nContent-Transfer-Encoding: BASE64\r\n\r\n"
                     "PHA+R3LDvMOf\r\nZTwvcD4=\r\n" +
                     tail),
              Mark + std::string("<p>Gr\u00FC\u00DFe</p>"));
    // The encoding that the page itself declares takes precedence over the message's.
    EXPECT_EQ(Placed(head + "Content-Type: text/html; charset=us-ascii\r\n\r\n<meta charset=windows-1251>\xCF" + tail),
              "<meta charset=windows-1251>\xCF\r\n");
}

TEST_F(WordSourceTest, OfAMessageThePageIsTakenBeforeTheText)
{
    const std::string text =
        "MIME-version: 1.0\nSubject: x\nContent-type: multipart/mixed; boundary=outer\n\n--outer\n"
        "Content-Type: multipart/alternative; boundary=inner\n\n--inner\nContent-Type: text/plain\n\nplain\n"
        "--inner\nContent-Type: text/html\n\n<b>page</b>\n--inner--\n--outer--\n";
    EXPECT_EQ(Placed(text), Mark + std::string("<b>page</b>\n"));
    EXPECT_EQ(Placed("MIME-Version: 1.0\nContent-Type: text/plain\n\nplain\n"), Mark + std::string("plain\n"));
    EXPECT_EQ(Placed("MIME-Version: 1.0\nContent-Type: image/png\n\nplain\n"), "refused");
    EXPECT_EQ(Placed("Note: this is a text\nContent-Type: none\n\nyes\n"),
              Mark + std::string("Note: this is a text\nContent-Type: none\n\nyes\n"));
}

TEST_F(WordSourceTest, CodedTextWithoutLineEndsIsDecodedInOneGo)
{
    // Twelve megabytes: scanning the rest of the line for each code would take hours.
    std::string text = "MIME-Version: 1.0\nContent-Type: text/plain\nContent-Transfer-Encoding: quoted-printable\n\n";
    constexpr std::size_t count = 4'000'000;
    for (std::size_t i = 0; i < count; ++i)
        text += "=41";
    EXPECT_TRUE(PageOfWebArchive(text)->content == std::string(count, 'A'));
    EXPECT_EQ(PageOfWebArchive("MIME-Version: 1.0\nContent-Type: text/plain\nContent-Transfer-Encoding: "
                               "quoted-printable\n\na= \t\r\nb=\nc=")
                  ->content,
              "abc");
}

TEST_F(WordSourceTest, ADamagedWebArchiveGivesWhatThereIsOrNothing)
{
    const std::string whole =
        "MIME-Version: 1.0\r\nContent-Type: multipart/related; boundary=\"b\"\r\n\r\n--b\r\n"
        "Content-Type: text/html; charset=\"utf-8\"\r\nContent-Transfer-Encoding: quoted-printable\r\n\r\n"
        "<p>one =C3=BC</p>\r\n--b--\r\n";
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const std::optional<WebPage> page = PageOfWebArchive(whole.substr(0, size));
        EXPECT_LE(page ? page->content.size() : 0, size);
    }
    EXPECT_EQ(PageOfWebArchive(whole.substr(0, whole.size() - 7))->content, "<p>one \u00FC</p>\r\n");
    std::string deep = "MIME-Version: 1.0\n";
    for (int i = 0; i < 100000; ++i)
        deep += "Content-Type: multipart/mixed; boundary=b\n\n--b\n";
    EXPECT_FALSE(PageOfWebArchive(deep));
    EXPECT_FALSE(PageOfWebArchive(
        "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary\n\n--\nContent-Type: text/html\n\nx"));
    EXPECT_FALSE(PageOfWebArchive(
        "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=\"\n\n--\nContent-Type: text/html\n\nx"));
}
