#include "platform/linux/WordSignature.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using voxmate::linux_platform::IsWordDocument;

namespace
{

constexpr std::uint32_t End = 0xFFFFFFFE;
constexpr std::uint32_t None = 0xFFFFFFFF;

void Put(std::string& bytes, std::size_t at, std::uint32_t value, std::size_t size = 4)
{
    for (std::size_t i = 0; i < size; ++i)
        bytes[at + i] = static_cast<char>(value >> (8 * i) & 0xFF);
}

struct Entry {
    std::string name;
    int type; ///< 1 storage, 2 stream, 5 root
    std::uint32_t left = None;
    std::uint32_t right = None;
    std::uint32_t child = None;
};

// Entries of a compound file's directory, as many as fill its sectors.
std::string Directory(const std::vector<Entry>& entries)
{
    std::string bytes(entries.size() * 128, '\0');
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::size_t at = i * 128;
        for (std::size_t c = 0; c < entries[i].name.size(); ++c)
            bytes[at + 2 * c] = entries[i].name[c];
        Put(bytes, at + 64, static_cast<std::uint32_t>(2 * entries[i].name.size() + 2), 2);
        bytes[at + 66] = static_cast<char>(entries[i].type);
        Put(bytes, at + 68, entries[i].left);
        Put(bytes, at + 72, entries[i].right);
        Put(bytes, at + 76, entries[i].child);
    }
    return bytes;
}

std::string Header(std::uint32_t shift, std::uint32_t directory)
{
    std::string header(512, '\0');
    header.replace(0, 8, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    Put(header, 30, shift, 2);
    Put(header, 48, directory);
    Put(header, 68, End);
    for (std::size_t i = 0; i < 109; ++i)
        Put(header, 76 + 4 * i, None);
    return header;
}

// A compound file: its table of sectors in sector 0, its directory in those that follow.
std::string Compound(const std::vector<Entry>& entries, std::uint32_t shift = 9)
{
    const std::size_t sector = std::size_t{1} << shift;
    std::string directory = Directory(entries);
    directory.resize((directory.size() + sector - 1) / sector * sector);
    const std::size_t count = directory.size() / sector;
    std::string header = Header(shift, 1);
    Put(header, 76, 0);
    header.resize(sector);
    std::string table(sector, '\xFF');
    Put(table, 0, 0xFFFFFFFD);
    for (std::size_t i = 1; i <= count; ++i)
        Put(table, 4 * i, i == count ? End : static_cast<std::uint32_t>(i + 1));
    return header + table + directory;
}

std::string Archive(const std::vector<std::string>& names, const std::string& comment = {})
{
    std::string files;
    std::string directory;
    for (const std::string& name : names) {
        std::string entry(46, '\0');
        entry.replace(0, 4, "PK\x01\x02");
        Put(entry, 28, static_cast<std::uint32_t>(name.size()), 2);
        Put(entry, 30, 4, 2);
        Put(entry, 42, static_cast<std::uint32_t>(files.size()));
        directory += entry + name + "extr";
        std::string file(30, '\0');
        file.replace(0, 4, "PK\x03\x04");
        Put(file, 26, static_cast<std::uint32_t>(name.size()), 2);
        files += file + name;
    }
    std::string end(22, '\0');
    end.replace(0, 4, "PK\x05\x06");
    Put(end, 12, static_cast<std::uint32_t>(directory.size()));
    Put(end, 16, static_cast<std::uint32_t>(files.size()));
    Put(end, 20, static_cast<std::uint32_t>(comment.size()), 2);
    return files + directory + end + comment;
}

class WordSignature : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string name = (std::filesystem::temp_directory_path() / "voxmate-test-XXXXXX").string();
        folder_ = ::mkdtemp(name.data());
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::string Path() const { return (folder_ / "document.doc").string(); }

    bool Accepts(const std::string& bytes)
    {
        std::ofstream(Path(), std::ios::binary) << bytes;
        return IsWordDocument(Path());
    }

    std::filesystem::path folder_;
};

} // namespace

TEST_F(WordSignature, AcceptsACompoundFileWithAWordDocument)
{
    const std::vector<Entry> entries{
        {"Root Entry", 5, None, None, 2}, {"1Table", 2}, {"Data", 2, 1, 3, None}, {"WordDocument", 2}};
    EXPECT_TRUE(Accepts(Compound(entries)));
    EXPECT_TRUE(Accepts(Compound(entries, 12)));
}

TEST_F(WordSignature, RefusesASpreadsheetEvenOneThatHoldsAWordDocument)
{
    EXPECT_FALSE(Accepts(Compound({{"Root Entry", 5, None, None, 1}, {"Workbook", 2}})));
    EXPECT_FALSE(Accepts(Compound({{"Root Entry", 5, None, None, 1},
                                   {"Workbook", 2, None, 2, None},
                                   {"MBD0001", 1, None, None, 3},
                                   {"WordDocument", 2}})));
}

TEST_F(WordSignature, RefusesAnEncryptedXmlDocumentAndAStorageOfThatName)
{
    EXPECT_FALSE(Accepts(Compound({{"Root Entry", 5, None, None, 1}, {"EncryptedPackage", 2}})));
    EXPECT_FALSE(Accepts(Compound({{"Root Entry", 5, None, None, 1}, {"WordDocument", 1}})));
}

TEST_F(WordSignature, ADirectoryThatRunsInCirclesDoesNotHang)
{
    EXPECT_FALSE(Accepts(Compound({{"Root Entry", 5, None, None, 1}, {"a", 2, 2, 2, None}, {"b", 2, 1, 1, None}})));
    std::string circle = Compound({{"Root Entry", 5, None, None, 1}, {"a", 2}, {"b", 2}, {"c", 2}});
    Put(circle, 512 + 4, 1);
    EXPECT_FALSE(Accepts(circle));
}

TEST_F(WordSignature, FindsADirectoryThatOnlyTheFurtherTableReaches)
{
    // With sectors of 512 bytes the header's 109 parts of the table reach 13952 sectors.
    constexpr std::uint32_t first = 109 * 128 + 5;
    const std::string directory = Directory({{"Root Entry", 5, None, None, 4}, {"", 0}, {"", 0}, {"", 0}}) +
                                  Directory({{"WordDocument", 2}, {"", 0}, {"", 0}, {"", 0}});
    std::string header = Header(9, first);
    Put(header, 68, 0);
    std::string list(512, '\xFF');
    Put(list, 0, 1);
    std::string table(512, '\xFF');
    Put(table, 4 * (first % 128), first + 1);
    Put(table, 4 * (first % 128 + 1), End);
    std::ofstream file(Path(), std::ios::binary);
    file << header << list << table;
    file.seekp((std::streamoff{first} + 1) * 512);
    file << directory;
    file.close();
    EXPECT_TRUE(IsWordDocument(Path()));
}

TEST_F(WordSignature, RefusesACompoundFileThatIsCutOff)
{
    const std::string whole = Compound({{"Root Entry", 5, None, None, 1}, {"WordDocument", 2}});
    for (const std::size_t size : {std::size_t{8}, std::size_t{511}, std::size_t{600}, std::size_t{1024}})
        EXPECT_FALSE(Accepts(whole.substr(0, size))) << size;
}

TEST_F(WordSignature, AcceptsAnArchiveWithWordsMainPart)
{
    EXPECT_TRUE(Accepts(Archive({"[Content_Types].xml", "word/styles.xml", "word/document.xml"})));
    EXPECT_TRUE(Accepts(Archive({"[Content_Types].xml", "word/document2.xml"}, "a comment")));
}

TEST_F(WordSignature, RefusesOtherArchivesAndBrokenOnes)
{
    EXPECT_FALSE(Accepts(Archive({"[Content_Types].xml", "xl/workbook.xml"})));
    EXPECT_FALSE(Accepts(Archive({"mimetype", "content.xml"})));
    const std::string whole = Archive({"[Content_Types].xml", "word/document.xml"});
    EXPECT_FALSE(Accepts(whole.substr(0, whole.size() / 2)));
    std::string far = whole;
    Put(far, far.size() - 6, 0x7FFFFFFF);
    EXPECT_FALSE(Accepts(far));
    std::string large = whole;
    Put(large, large.size() - 10, 0x7FFFFFFF);
    EXPECT_FALSE(Accepts(large));
}

TEST_F(WordSignature, AcceptsRichText)
{
    EXPECT_TRUE(Accepts("{\\rtf1\\ansi Hello.}"));
    EXPECT_FALSE(Accepts("{\\rt"));
}

TEST_F(WordSignature, RefusesTextPicturesAndNothing)
{
    EXPECT_FALSE(Accepts(""));
    EXPECT_FALSE(Accepts("Just a text, long enough to be one."));
    EXPECT_FALSE(Accepts("\x89PNG\r\n\x1A\n and so on"));
}

TEST_F(WordSignature, RefusesFoldersPipesAndWhatIsNotThere)
{
    EXPECT_FALSE(IsWordDocument(Path()));
    EXPECT_FALSE(IsWordDocument(folder_.string()));
    ASSERT_EQ(::mkfifo(Path().c_str(), 0600), 0);
    EXPECT_FALSE(IsWordDocument(Path()));
}
