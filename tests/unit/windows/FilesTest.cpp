// Files and folders: what the system's own rules on names, sharing and rights mean to the program.
#include "platform/windows/files/WindowsFileSystem.h"

#include "OwnFolder.h"
#include "platform/windows/system/WindowsApi.h"

#include <thread>

namespace voxmate::windows_platform
{
namespace
{

class FilesTest : public OwnFolder
{
protected:
    WindowsFileSystem files;

    /// Keeps a file open as another program would, without letting others have it.
    struct Holder {
        explicit Holder(const std::string& path, DWORD shared = 0)
            : handle(::CreateFileW(SystemPath(path).c_str(), GENERIC_READ, shared, nullptr, OPEN_EXISTING, 0, nullptr))
        {
            EXPECT_NE(handle, INVALID_HANDLE_VALUE);
        }
        ~Holder() { ::CloseHandle(handle); }
        Holder(const Holder&) = delete;
        Holder& operator=(const Holder&) = delete;
        void* handle;
    };
    static void MakeReadOnly(const std::string& path, bool on = true)
    {
        ::SetFileAttributesW(SystemPath(path).c_str(), on ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL);
    }
    std::string Line(const std::string& path)
    {
        const auto stream = files.OpenTextFile(path);
        return stream->ReadLine();
    }
};

TEST_F(FilesTest, NamesAreTakenApart)
{
    EXPECT_EQ(files.GetBaseName("C:\\a.b\\Bo.acs"), "Bo");
    EXPECT_EQ(files.GetBaseName("C:/a.b/Bo"), "Bo");
    EXPECT_EQ(files.GetBaseName("\\\\server\\share\\x.y.txt"), "x.y");
    EXPECT_EQ(files.GetBaseName(".txt"), ".txt");
    EXPECT_EQ(files.GetExtensionName("C:\\a.b\\Bo.ACS"), "ACS");
    EXPECT_EQ(files.GetExtensionName("C:\\a.b\\Bo"), "");
    EXPECT_EQ(files.GetExtensionName(".txt"), "txt");
}

TEST_F(FilesTest, CapitalAndSmallLettersNameTheSameFile)
{
    Write(Path("Bo.ACS"), "x");
    EXPECT_TRUE(files.FileExists(Path("bo.acs")));
    EXPECT_FALSE(files.FolderExists(Path("bo.acs")));
    EXPECT_TRUE(files.FolderExists(folder));
    EXPECT_TRUE(files.FolderExists(folder + "\\"));
    EXPECT_FALSE(files.FileExists(folder));
    EXPECT_FALSE(files.FileExists(Path("none")));
}

TEST_F(FilesTest, NamesOutsideTheCodePageAreListedAndOpened)
{
    const std::string greek = "\xCE\x9A\xCE\xB1\xCE\xBB\xCE\xB7.txt";
    const std::string face = "\xF0\x9F\x98\x80.txt";
    Write(Path(greek), "one\r\n");
    Write(Path(face), "two\r\n");
    EXPECT_EQ(files.ListFiles(folder, "*.txt"), (std::vector<std::string>{greek, face}));
    EXPECT_EQ(Line(Path(greek)), "one");
    EXPECT_EQ(Line(Path(face)), "two");
}

TEST_F(FilesTest, ListsByPatternInOrderAndWithoutFolders)
{
    for (const char* name : {"b.acs", "A.ACS", "c.acsx", "x-2004-01-02.txt", "x-2004-ab-02.txt"})
        Write(Path(name), "");
    files.CreateFolder(Path("folder.acs"));
    EXPECT_EQ(files.ListFiles(folder, "*.acs"), (std::vector<std::string>{"A.ACS", "b.acs"}));
    EXPECT_EQ(files.ListFiles(folder + "\\", "*-[0-9][0-9]-[0-9][0-9].txt"),
              (std::vector<std::string>{"x-2004-01-02.txt"}));
    EXPECT_TRUE(files.ListFiles(Path("none"), "*").empty());
}

TEST_F(FilesTest, APathLongerThanTheSystemsOldLimitIsLikeAnyOther)
{
    std::string deep = folder;
    while (deep.size() < 400)
        deep += "\\a-folder-with-a-long-name-of-its-own";
    files.CreateFolder(deep);
    EXPECT_TRUE(files.FolderExists(deep));
    EXPECT_TRUE(files.FolderWritable(deep));
    const std::string path = deep + "\\file.txt";
    files.CreateTextFile(path);
    Write(path, "far down\n");
    EXPECT_EQ(Line(path), "far down");
    EXPECT_EQ(files.ListFiles(deep, "*"), std::vector<std::string>{"file.txt"});
    files.CopyFile(path, deep + "\\copy.txt");
    files.MoveFile(path, deep + "\\moved.txt");
    files.DeleteFile(deep + "\\copy.txt");
    EXPECT_EQ(files.ListFiles(deep, "*"), std::vector<std::string>{"moved.txt"});
}

TEST_F(FilesTest, PathsOfOtherComputersAndLongOnesGetTheirPrefix)
{
    const std::string name(250, 'n');
    EXPECT_EQ(SystemPath("C:/a/b"), L"C:\\a\\b");
    EXPECT_EQ(SystemPath("C:\\a/../" + name), L"\\\\?\\C:\\" + Wide(name));
    EXPECT_EQ(SystemPath("\\\\server\\share\\" + name), L"\\\\?\\UNC\\server\\share\\" + Wide(name));
    EXPECT_EQ(SystemPath("\\\\?\\C:\\" + name), L"\\\\?\\C:\\" + Wide(name));
}

TEST_F(FilesTest, ATextIsReadLineByLineInAnyEncoding)
{
    Write(Path("t.txt"), "one\r\ntwo\rthree\n\nfour");
    const auto stream = files.OpenTextFile(Path("t.txt"));
    EXPECT_GE(stream->SizeHint(), std::string("one\r\ntwo\r\nthree\r\n\r\nfour\r\n").size());
    std::vector<std::string> lines;
    while (!stream->AtEndOfStream())
        lines.push_back(stream->ReadLine());
    EXPECT_EQ(lines, (std::vector<std::string>{"one", "two", "three", "", "four"}));
    EXPECT_EQ(ErrorOf([&] { stream->ReadLine(); }), 62);
    Write(Path("t.txt"), "\xEF\xBB\xBFZo\xC3\xAB\n");
    EXPECT_EQ(Line(Path("t.txt")), "Zo\xC3\xAB");
    Write(Path("t.txt"), std::string("\xFF\xFEZ\0o\0\xEB\0\n\0", 10));
    EXPECT_EQ(Line(Path("t.txt")), "Zo\xC3\xAB");
    Write(Path("t.txt"), "Zo\xEB \x80\n");
    EXPECT_EQ(Line(Path("t.txt")), "Zo\xC3\xAB \xE2\x82\xAC");
}

TEST_F(FilesTest, WhatIsNoTextFileIsRefused)
{
    EXPECT_EQ(ErrorOf([&] { files.OpenTextFile(Path("none.txt")); }), 53);
    EXPECT_EQ(ErrorOf([&] { files.OpenTextFile(Path("none\\none.txt")); }), 53);
    EXPECT_EQ(ErrorOf([&] { files.OpenTextFile(Path("a?b.txt")); }), 53);
    EXPECT_EQ(ErrorOf([&] { files.OpenTextFile(folder); }), 70);
    EXPECT_EQ(ErrorOf([&] { files.OpenTextFile("NUL"); }), 70);
    Write(Path("held.txt"), "x");
    const Holder holder(Path("held.txt"));
    EXPECT_EQ(ErrorOf([&] { files.OpenTextFile(Path("held.txt")); }), 70);
}

TEST_F(FilesTest, ANewFileOfSlotsGetsItsNameAtTheFirstFlush)
{
    const std::string path = Path("slots.txt");
    auto slots = files.OpenRandom(path, 4);
    slots->Put(1, "ab");
    EXPECT_FALSE(files.FileExists(path));
    slots->Flush();
    EXPECT_TRUE(files.FileExists(path));
    slots->Put(3, "wxyz");
    EXPECT_EQ(slots->Count(), 3);
    EXPECT_EQ(slots->Get(1), std::string_view("ab\0\0", 4));
    EXPECT_EQ(slots->Get(3), "wxyz");
    EXPECT_EQ(slots->Get(4), "");
    EXPECT_EQ(ErrorOf([&] { slots->Put(1, "12345"); }), 59);
    EXPECT_EQ(ErrorOf([&] { slots->Get(0); }), 63);
    slots->Close();
    slots.reset();
    EXPECT_EQ(Read(path), std::string("ab\0\0\0\0\0\0wxyz", 12));
    EXPECT_EQ(files.ListFiles(folder, "*"), std::vector<std::string>{"slots.txt"});
}

TEST_F(FilesTest, ANewFileOfSlotsThatIsNotFlushedLeavesNothing)
{
    files.OpenRandom(Path("slots.txt"), 4)->Put(1, "ab");
    EXPECT_TRUE(files.ListFiles(folder, "*").empty());
}

TEST_F(FilesTest, AFileOfSlotsBelongsToOneProgram)
{
    const std::string path = Path("slots.txt");
    Write(path, "abcd");
    {
        const Holder holder(path);
        EXPECT_EQ(ErrorOf([&] { files.OpenRandom(path, 4); }), 70);
        EXPECT_EQ(ErrorOf([&] { files.DeleteFile(path); }), 70);
        EXPECT_EQ(ErrorOf([&] { files.CreateTextFile(path); }), 70);
    }
    const auto slots = files.OpenRandomExisting(path, 4);
    EXPECT_EQ(ErrorOf([&] { files.OpenRandom(path, 4); }), 70);
    EXPECT_EQ(slots->Get(1), "abcd");
}

TEST_F(FilesTest, AProgramThatOnlyLooksAtAFileIsWaitedFor)
{
    const std::string path = Path("slots.txt");
    Write(path, "abcd");
    auto holder = std::make_unique<Holder>(path);
    std::thread lets([&holder] {
        ::Sleep(100);
        holder.reset();
    });
    EXPECT_EQ(ErrorOf([&] { EXPECT_EQ(files.OpenRandom(path, 4)->Get(1), "abcd"); }), 0);
    lets.join();
}

TEST_F(FilesTest, AReadOnlyFileIsReadAndStays)
{
    const std::string path = Path("slots.txt");
    Write(path, "abcd");
    MakeReadOnly(path);
    {
        const auto slots = files.OpenRandom(path, 4);
        EXPECT_EQ(slots->Get(1), "abcd");
        EXPECT_EQ(ErrorOf([&] { slots->Put(1, "x"); }), 75);
        slots->Flush();
    }
    EXPECT_EQ(ErrorOf([&] { files.DeleteFile(path); }), 70);
    EXPECT_EQ(ErrorOf([&] { files.CreateTextFile(path); }), 75);
    MakeReadOnly(path, false);
    files.DeleteFile(path);
    EXPECT_FALSE(files.FileExists(path));
}

TEST_F(FilesTest, SlotsWithoutAFileOrAFolderAreRefused)
{
    EXPECT_EQ(ErrorOf([&] { files.OpenRandomExisting(Path("none.txt"), 4); }), 53);
    EXPECT_EQ(ErrorOf([&] { files.OpenRandomExisting(Path("none\\none.txt"), 4); }), 76);
    EXPECT_EQ(ErrorOf([&] { files.OpenRandom(Path("none\\none.txt"), 4); }), 76);
    EXPECT_EQ(ErrorOf([&] { files.OpenRandom(folder, 4); }), 75);
}

TEST_F(FilesTest, FilesAreRenamedCopiedAndDeleted)
{
    Write(Path("a.txt"), "a");
    Write(Path("b.txt"), "b");
    EXPECT_EQ(ErrorOf([&] { files.MoveFile(Path("a.txt"), Path("b.txt")); }), 58);
    EXPECT_EQ(Read(Path("b.txt")), "b");
    EXPECT_EQ(ErrorOf([&] { files.MoveFile(Path("none.txt"), Path("c.txt")); }), 53);
    files.MoveFile(Path("a.txt"), Path("c.txt"));
    EXPECT_EQ(Read(Path("c.txt")), "a");
    files.CopyFile(Path("c.txt"), Path("b.txt"));
    EXPECT_EQ(Read(Path("b.txt")), "a");
    EXPECT_EQ(ErrorOf([&] { files.CopyFile(Path("none.txt"), Path("d.txt")); }), 53);
    EXPECT_EQ(ErrorOf([&] { files.CopyFile(Path("c.txt"), Path("none\\d.txt")); }), 76);
    files.DeleteFile(Path("c.txt"));
    EXPECT_EQ(ErrorOf([&] { files.DeleteFile(Path("c.txt")); }), 53);
    EXPECT_EQ(ErrorOf([&] { files.DeleteFile(folder); }), 70);
    EXPECT_EQ(files.ListFiles(folder, "*"), std::vector<std::string>{"b.txt"});
}

TEST_F(FilesTest, ALinkIsAnotherNameOfItsFile)
{
    Write(Path("a.txt"), "a");
    files.LinkFile(Path("a.txt"), Path("b.txt"));
    EXPECT_EQ(Read(Path("b.txt")), "a");
    Write(Path("a.txt"), "changed");
    EXPECT_EQ(Read(Path("b.txt")), "changed");
    EXPECT_EQ(ErrorOf([&] { files.LinkFile(Path("a.txt"), Path("b.txt")); }), 58);
    EXPECT_EQ(files.LinkTarget(Path("a.txt")), Path("a.txt"));
    EXPECT_EQ(files.LinkTarget(Path("none.txt")), Path("none.txt"));
}

TEST_F(FilesTest, ALockKeepsOthersOutUntilItIsGone)
{
    auto lock = files.Lock(Path("a.txt"));
    ASSERT_TRUE(lock);
    EXPECT_EQ(ErrorOf([&] { files.Lock(Path("a.txt")); }), 70);
    std::thread lets([&lock] {
        ::Sleep(100);
        lock.reset();
    });
    EXPECT_TRUE(files.Lock(Path("a.txt")));
    lets.join();
    EXPECT_FALSE(files.Lock(Path("none\\a.txt")));
}

TEST_F(FilesTest, AFolderIsMadeWithThoseAboveIt)
{
    files.CreateFolder(Path("a\\b\\c"));
    EXPECT_TRUE(files.FolderExists(Path("a\\b\\c")));
    files.CreateFolder(Path("a\\b\\c"));
    Write(Path("file"), "");
    EXPECT_EQ(ErrorOf([&] { files.CreateFolder(Path("file")); }), 58);
    EXPECT_TRUE(files.FolderWritable(Path("a")));
    EXPECT_FALSE(files.FolderWritable(Path("none")));
    EXPECT_FALSE(files.FolderWritable(Path("file")));
}

TEST(WideTest, HalfASurrogatePairInANameSurvives)
{
    const std::wstring odd = std::wstring(L"a") + wchar_t{0xD83D} + L"b" + wchar_t{0xDE00};
    EXPECT_EQ(Wide(Narrow(odd)), odd);
    EXPECT_EQ(Narrow(L"\xD83D\xDE00"), "\xF0\x9F\x98\x80");
    EXPECT_EQ(Wide("\xF0\x9F\x98\x80"), L"\xD83D\xDE00");
    EXPECT_EQ(Wide("a\xFF"
                   "b"),
              L"a\xFFFD"
              L"b");
}

} // namespace
} // namespace voxmate::windows_platform
