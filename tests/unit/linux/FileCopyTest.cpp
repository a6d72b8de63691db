// Copies, links and folders, as installing a character needs them.
#include "OrdinaryUser.h"
#include "OwnFolder.h"
#include "platform/linux/files/LinuxFileSystem.h"

#include "base/RuntimeError.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>

namespace voxmate::linux_platform
{

namespace
{

namespace fs = std::filesystem;

class FileCopyTest : public OwnFolder
{
protected:
    LinuxFileSystem files;

    FileCopyTest() { fs::permissions(folder, fs::perms(0777)); }
    std::string Path(const std::string& name) const { return (folder / name).string(); }
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
};

TEST_F(FileCopyTest, ACopyHasTheSameBytesAndReplacesAnOlderOne)
{
    std::string bytes;
    while (bytes.size() < 3'000'000)
        bytes += std::string("any ") + '\0' + " bytes";
    Write(folder / "a.acs", bytes);
    Write(folder / "b.acs", "old");
    files.CopyFile(Path("a.acs"), Path("b.acs"));
    EXPECT_EQ(Read(folder / "b.acs"), bytes);
    files.CopyFile(Path("a.acs"), Path("c.acs"));
    EXPECT_EQ(Read(folder / "c.acs"), bytes);
    Write(folder / "empty", "");
    files.CopyFile(Path("empty"), Path("d"));
    EXPECT_EQ(Read(folder / "d"), "");
    EXPECT_FALSE(fs::exists(folder / "b.acs.new"));
}

TEST_F(FileCopyTest, WhatCannotBeCopiedIsRefusedAndTheOldFileStays)
{
    Write(folder / "old", "old");
    EXPECT_EQ(ErrorOf([&] { files.CopyFile(Path("nothing"), Path("old")); }), 53);
    EXPECT_EQ(ErrorOf([&] { files.CopyFile(folder.string(), Path("old")); }), 70);
    ASSERT_EQ(::mkfifo(Path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(ErrorOf([&] { files.CopyFile(Path("pipe"), Path("old")); }), 70);
    EXPECT_EQ(ErrorOf([&] { files.CopyFile(Path("old"), Path("no folder/new")); }), 76);
    EXPECT_EQ(Read(folder / "old"), "old");
}

TEST_F(FileCopyTest, ACopyThatDoesNotFitLeavesNothing)
{
    Write(folder / "old", "old");
    Write(folder / "large", std::string(100'000, 'x'));
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = before;
    small.rlim_cur = 1000;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const int error = ErrorOf([&] { files.CopyFile(Path("large"), Path("old")); });
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_NE(error, 0);
    EXPECT_EQ(Read(folder / "old"), "old");
    EXPECT_FALSE(fs::exists(folder / "old.new"));
}

TEST_F(FileCopyTest, ALinkIsAnotherNameAndTakesNoNameThatIsTaken)
{
    Write(folder / "a.acs", "bytes");
    files.LinkFile(Path("a.acs"), Path("b.acs"));
    EXPECT_EQ(Read(folder / "b.acs"), "bytes");
    EXPECT_EQ(files.LinkTarget(Path("b.acs")), Path("a.acs"));
    EXPECT_EQ(ErrorOf([&] { files.LinkFile(Path("a.acs"), Path("b.acs")); }), 58);
    EXPECT_EQ(files.ListFiles(folder.string() + "/", "*.acs"), (std::vector<std::string>{"a.acs", "b.acs"}));
    fs::remove(folder / "a.acs");
    EXPECT_EQ(files.ListFiles(folder.string() + "/", "*.acs"), (std::vector<std::string>{}));
}

TEST_F(FileCopyTest, FoldersAreMadeWithThoseAboveThem)
{
    files.CreateFolder(Path("x/y/z/"));
    EXPECT_TRUE(fs::is_directory(folder / "x" / "y" / "z"));
    files.CreateFolder(Path("x/y/z/"));
    Write(folder / "file", "");
    EXPECT_NE(ErrorOf([&] { files.CreateFolder(Path("file/x/")); }), 0);
    EXPECT_NE(ErrorOf([&] { files.CreateFolder(Path("file")); }), 0);
}

TEST_F(FileCopyTest, OnlyAFolderOfTheUsersIsWritable)
{
    files.CreateFolder(Path("others/"));
    files.CreateFolder(Path("mine/"));
    fs::permissions(folder / "others", fs::perms(0555));
    fs::permissions(folder / "mine", fs::perms(0777));
    Write(folder / "file", "");
    const OrdinaryUser ordinary;
    EXPECT_FALSE(files.FolderWritable(Path("others/")));
    EXPECT_TRUE(files.FolderWritable(Path("mine/")));
    EXPECT_FALSE(files.FolderWritable(Path("nothing/")));
    EXPECT_FALSE(files.FolderWritable(Path("file")));
    EXPECT_EQ(ErrorOf([&] { files.CopyFile(Path("file"), Path("others/new")); }), 75);
    EXPECT_EQ(ErrorOf([&] { files.LinkFile(Path("file"), Path("others/new")); }), 70);
    EXPECT_EQ(ErrorOf([&] { files.CreateFolder(Path("others/new/")); }), 70);
}

} // namespace

} // namespace voxmate::linux_platform
