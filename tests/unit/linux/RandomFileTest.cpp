#include "FileHolder.h"
#include "OrdinaryUser.h"
#include "platform/linux/files/LinuxFileSystem.h"
#include "platform/linux/process/LinuxProcess.h"

#include "base/RuntimeError.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

namespace fs = std::filesystem;

class RandomFileTest : public ::testing::Test
{
protected:
    fs::path folder;
    LinuxFileSystem files;

    RandomFileTest()
    {
        std::string name = (fs::temp_directory_path() / "voxmate-random-XXXXXX").string();
        folder = ::mkdtemp(name.data());
        fs::permissions(folder, fs::perms(0777));
    }
    ~RandomFileTest() override { fs::remove_all(folder); }

    std::string Path(const std::string& name = "slots") const { return (folder / name).string(); }
    void Write(const std::string& bytes, const std::string& name = "slots") const
    {
        std::ofstream(folder / name, std::ios::binary) << bytes;
    }
    std::string Content(const std::string& name = "slots") const
    {
        std::ifstream in(folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    /// The number of the run-time error that `body` raises; 0 for none.
    template <class Body>
    static int ErrorOf(Body body)
    {
        try {
            body();
        } catch (const RuntimeError& error) {
            return error.Number;
        }
        return 0;
    }
    int OpenError(const std::string& name = "slots")
    {
        return ErrorOf([&] { files.OpenRandom(Path(name), 8); });
    }
};

TEST_F(RandomFileTest, AMissingFileIsCreatedEmptyForItsUserAlone)
{
    files.OpenRandom(Path(), 8)->Close();
    EXPECT_TRUE(fs::exists(Path()));
    EXPECT_EQ(Content(), "");
    EXPECT_EQ(fs::status(Path()).permissions(), fs::perms(0600));
}

TEST_F(RandomFileTest, AFileThatIsOnlyToBeReadIsNotMade)
{
    EXPECT_EQ(ErrorOf([&] { files.OpenRandomExisting(Path(), 8); }), 53);
    EXPECT_EQ(ErrorOf([&] { files.OpenRandomExisting(Path("nowhere/slots"), 8); }), 76);
    EXPECT_TRUE(fs::is_empty(folder));
    Write("abcdefgh");
    EXPECT_EQ(files.OpenRandomExisting(Path(), 8)->Get(1), "abcdefgh");
}

TEST_F(RandomFileTest, ANewFileHasItsNameOnlyWhenItIsWhole)
{
    Write("half of one that a crash has left", "slots.new");
    {
        const auto file = files.OpenRandom(Path(), 8);
        file->Put(1, "a");
        EXPECT_FALSE(fs::exists(Path()));
    }
    EXPECT_TRUE(fs::is_empty(folder));
    const auto file = files.OpenRandom(Path(), 8);
    file->Put(1, "a");
    file->Flush();
    EXPECT_EQ(Content(), std::string("a\0\0\0\0\0\0\0", 8));
    file->Put(2, "b");
    file->Close();
    EXPECT_EQ(Content(), std::string("a\0\0\0\0\0\0\0b\0\0\0\0\0\0\0", 16));
    EXPECT_FALSE(fs::exists(Path("slots.new")));
}

TEST_F(RandomFileTest, AFileThatSomebodyElseHasMadeMeanwhileIsNotReplaced)
{
    const auto file = files.OpenRandom(Path(), 8);
    file->Put(1, "mine");
    Write("another");
    EXPECT_EQ(ErrorOf([&] { file->Flush(); }), 70);
    EXPECT_EQ(Content(), "another");
}

TEST_F(RandomFileTest, ALockIsHadByOneProcessAtATimeAndLetGoOfWhenThatEnds)
{
    const auto others = [&] {
        const pid_t process = ::fork();
        if (process == 0)
            ::_exit(ErrorOf([&] { files.Lock(Path()); }));
        int status = 0;
        ::waitpid(process, &status, 0);
        return WEXITSTATUS(status);
    };
    {
        const auto lock = files.Lock(Path());
        EXPECT_TRUE(lock);
        EXPECT_FALSE(fs::exists(Path())) << "locking makes the file";
        EXPECT_EQ(others(), 70);
    }
    EXPECT_EQ(others(), 0);
    // A killed process no longer holds a lock.
    const pid_t process = ::fork();
    if (process == 0) {
        const auto lock = files.Lock(Path());
        ::kill(::getpid(), SIGKILL);
    }
    ::waitpid(process, nullptr, 0);
    EXPECT_TRUE(files.Lock(Path()));
}

TEST_F(RandomFileTest, WhatIsHeldIsWaitedForBeforeItIsRefused)
{
    using namespace std::chrono_literals;
    const auto waited = [](const auto& refused) {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(ErrorOf(refused), 70);
        return std::chrono::steady_clock::now() - begin;
    };
    Write("abcdefgh");
    const FileHolder holder(Path());
    EXPECT_GE(waited([&] { files.OpenRandom(Path(), 8); }), 500ms);
    EXPECT_GE(waited([&] { files.DeleteFile(Path()); }), 500ms);
    const auto lock = files.Lock(Path());
    EXPECT_GE(waited([&] { files.Lock(Path()); }), 2000ms);
}

TEST_F(RandomFileTest, AFolderThatMayNotBeWrittenTakesNoLock)
{
    fs::permissions(folder, fs::perms(0555));
    const OrdinaryUser user;
    EXPECT_FALSE(files.Lock(Path()));
    EXPECT_FALSE(files.Lock(Path("nowhere/slots")));
}

TEST_F(RandomFileTest, ALinkIsFollowedToItsEndThoughNothingIsThere)
{
    EXPECT_EQ(files.LinkTarget(Path()), Path());
    fs::create_symlink("second", Path("first"));
    fs::create_symlink(Path("third"), Path("second"));
    EXPECT_EQ(files.LinkTarget(Path("first")), Path("third"));
    Write("x", "third");
    EXPECT_EQ(files.LinkTarget(Path("first")), Path("third"));
    fs::create_symlink("round", Path("round"));
    EXPECT_EQ(files.LinkTarget(Path("round")), Path("round"));
}

TEST_F(RandomFileTest, ASlotIsReadAsFarAsTheFileHasIt)
{
    Write("abcdefghABCD");
    const auto file = files.OpenRandom(Path(), 8);
    EXPECT_EQ(file->Get(1), "abcdefgh");
    EXPECT_EQ(file->Get(2), "ABCD");
    EXPECT_EQ(file->Get(3), "");
    EXPECT_EQ(file->Get(2000000000), "");
    EXPECT_EQ(file->Get(1), "abcdefgh");
    EXPECT_EQ(ErrorOf([&] { file->Get(0); }), 63);
}

TEST_F(RandomFileTest, ARecordIsFilledUpWithZerosAndWrittenToItsSlotAlone)
{
    Write("abcdefghABCDEFGHxyz");
    const auto file = files.OpenRandom(Path(), 8);
    file->Put(2, "new");
    EXPECT_EQ(file->Get(2), std::string("new\0\0\0\0\0", 8));
    EXPECT_EQ(file->Get(1), "abcdefgh");
    file->Close();
    EXPECT_EQ(Content(), std::string("abcdefghnew\0\0\0\0\0xyz", 19));
}

TEST_F(RandomFileTest, ARecordPutFarBehindLeavesZerosBetween)
{
    const auto file = files.OpenRandom(Path(), 8);
    file->Put(3, "c");
    file->Put(1, "a");
    file->Close();
    std::string bytes(24, '\0');
    bytes[0] = 'a';
    bytes[16] = 'c';
    EXPECT_EQ(Content(), bytes);
}

TEST_F(RandomFileTest, ATooLongRecordRaisesBadRecordLengthBeforeAnythingIsTouched)
{
    Write("abcdefgh");
    const auto file = files.OpenRandom(Path(), 8);
    try {
        file->Put(1, "123456789");
        ADD_FAILURE() << "nothing raised";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number, 59);
        EXPECT_EQ(error.Description, "Bad record length");
    }
    EXPECT_EQ(ErrorOf([&] { file->Put(0, "x"); }), 63);
    file->Close();
    EXPECT_EQ(Content(), "abcdefgh");
}

TEST_F(RandomFileTest, ManySlotsGoThroughTheBlocksWhole)
{
    std::string bytes;
    {
        const auto file = files.OpenRandom(Path(), 100); // does not divide a block evenly
        for (int i = 1; i <= 3000; ++i) {
            std::string record = std::to_string(i) + " " + std::string(static_cast<std::size_t>(i % 90), 'x');
            file->Put(i, record);
            record.resize(100, '\0');
            bytes += record;
        }
        file->Flush();
        EXPECT_EQ(Content(), bytes);
        file->Close();
    }
    const auto file = files.OpenRandom(Path(), 100);
    for (int i = 1; i <= 3000; ++i)
        ASSERT_EQ(file->Get(i), std::string_view(bytes).substr(static_cast<std::size_t>(i - 1) * 100, 100));
    EXPECT_EQ(file->Get(3001), "");
    for (int i = 3000; i >= 1; i -= 7)
        ASSERT_EQ(file->Get(i), std::string_view(bytes).substr(static_cast<std::size_t>(i - 1) * 100, 100));
}

TEST_F(RandomFileTest, WhatIsNotClosedIsNotWritten)
{
    Write("abcdefgh");
    files.OpenRandom(Path(), 8)->Put(1, "lost");
    EXPECT_EQ(Content(), "abcdefgh");
}

TEST_F(RandomFileTest, AFileHeldByAnotherProcessIsRefused)
{
    Write("abcdefgh");
    {
        const FileHolder holder(Path());
        EXPECT_EQ(OpenError(), 70);
        EXPECT_EQ(ErrorOf([&] { files.DeleteFile(Path()); }), 70);
        EXPECT_EQ(ErrorOf([&] { files.CreateTextFile(Path()); }), 70);
        EXPECT_EQ(Content(), "abcdefgh");
    }
    EXPECT_EQ(OpenError(), 0);
    files.DeleteFile(Path());
    EXPECT_FALSE(fs::exists(Path()));
}

TEST_F(RandomFileTest, AnOpenFileHoldsItAgainstOtherProcesses)
{
    const auto file = files.OpenRandom(Path(), 8);
    const auto others = [&] {
        const pid_t process = ::fork();
        if (process == 0)
            ::_exit(OpenError());
        int status = 0;
        ::waitpid(process, &status, 0);
        return WEXITSTATUS(status);
    };
    EXPECT_EQ(others(), 70);
    file->Close();
    EXPECT_EQ(others(), 0);
}

TEST_F(RandomFileTest, WhatIsNoFileOrInNoFolderIsRefused)
{
    fs::create_directory(folder / "folder");
    ASSERT_EQ(::mkfifo(Path("pipe").c_str(), 0666), 0);
    EXPECT_EQ(OpenError("folder"), 75);
    EXPECT_EQ(OpenError("pipe"), 75);
    EXPECT_EQ(OpenError("nowhere/slots"), 76);
    EXPECT_EQ(OpenError(std::string(300, 'n')), 75);
    EXPECT_EQ(ErrorOf([&] { files.DeleteFile(Path("folder")); }), 70);
    EXPECT_EQ(ErrorOf([&] { files.DeleteFile(Path("pipe")); }), 70);
    EXPECT_EQ(ErrorOf([&] { files.DeleteFile(Path("nothing")); }), 53);
    EXPECT_EQ(ErrorOf([&] { files.CreateTextFile(Path("folder")); }), 75);
    EXPECT_TRUE(fs::exists(Path("pipe")));
}

TEST_F(RandomFileTest, AReadOnlyFileIsReadAndNotWrittenOrDeleted)
{
    Write("abcdefgh");
    fs::permissions(Path(), fs::perms(0444));
    const OrdinaryUser user;
    const auto file = files.OpenRandom(Path(), 8);
    EXPECT_EQ(file->Get(1), "abcdefgh");
    EXPECT_EQ(ErrorOf([&] { file->Put(1, "x"); }), 75);
    file->Close();
    EXPECT_EQ(ErrorOf([&] { files.DeleteFile(Path()); }), 70);
    EXPECT_EQ(ErrorOf([&] { files.CreateTextFile(Path()); }), 75);
    EXPECT_EQ(Content(), "abcdefgh");
}

TEST_F(RandomFileTest, AReadOnlyFolderTakesNoFileAndLosesNone)
{
    Write("abcdefgh");
    fs::permissions(Path(), fs::perms(0666));
    fs::permissions(folder, fs::perms(0555));
    const OrdinaryUser user;
    EXPECT_EQ(OpenError("new"), 75);
    EXPECT_EQ(OpenError(), 0);
    EXPECT_EQ(ErrorOf([&] { files.CreateTextFile(Path("new")); }), 75);
    EXPECT_EQ(ErrorOf([&] { files.DeleteFile(Path()); }), 70);
    EXPECT_EQ(ErrorOf([&] { files.MoveFile(Path(), Path("new")); }), 70);
    EXPECT_EQ(Content(), "abcdefgh");
}

TEST_F(RandomFileTest, AFileIsMovedToANameThatIsFree)
{
    Write("abc", "old");
    files.MoveFile(Path("old"), Path("new"));
    EXPECT_EQ(Content("new"), "abc");
    EXPECT_FALSE(fs::exists(Path("old")));
    Write("def", "old");
    EXPECT_EQ(ErrorOf([&] { files.MoveFile(Path("old"), Path("new")); }), 58);
    EXPECT_EQ(Content("new"), "abc");
    EXPECT_EQ(Content("old"), "def");
    EXPECT_EQ(ErrorOf([&] { files.MoveFile(Path("nothing"), Path("free")); }), 53);
}

TEST_F(RandomFileTest, ACreatedFileIsEmptyWhateverWasThere)
{
    Write("abc");
    files.CreateTextFile(Path());
    EXPECT_EQ(Content(), "");
    files.CreateTextFile(Path("fresh"));
    EXPECT_TRUE(fs::exists(Path("fresh")));
}

TEST_F(RandomFileTest, TheCaseOfTheExtensionDoesNotMatter)
{
    Write("abcdefgh", "Slots.TXT");
    EXPECT_EQ(files.OpenRandom(Path("Slots.txt"), 8)->Get(1), "abcdefgh");
    EXPECT_FALSE(fs::exists(Path("Slots.txt")));
    files.DeleteFile(Path("Slots.txt"));
    EXPECT_FALSE(fs::exists(Path("Slots.TXT")));
}

TEST_F(RandomFileTest, AFullDiskRaisesDiskFullAndTheFileHasItsSizeAgain)
{
    // The process's file size limit falls in the middle of the third record, like the end of a full disk.
    const pid_t process = ::fork();
    if (process == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{20, 20};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const auto file = files.OpenRandom(Path(), 8);
        file->Put(1, "a");
        file->Flush();
        file->Put(2, "b");
        file->Put(3, "c");
        int error = ErrorOf([&] { file->Flush(); });
        if (file->Get(1) != std::string("a\0\0\0\0\0\0\0", 8) || !file->Get(2).empty())
            error = 99;
        file->Put(2, "b");
        file->Put(3, "c");
        const int atClose = ErrorOf([&] { file->Close(); });
        ::_exit(atClose == error ? error : 98);
    }
    int status = 0;
    ::waitpid(process, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 61);
    EXPECT_EQ(Content(), std::string("a\0\0\0\0\0\0\0", 8));
}

} // namespace

} // namespace voxmate::linux_platform
