#include "platform/linux/settings/FileStateStore.h"

#include "HangingDisk.h"
#include "OrdinaryUser.h"
#include "OwnFolder.h"

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

namespace voxmate::linux_platform
{

namespace
{

namespace fs = std::filesystem;

/// How long to wait for something that must happen.
constexpr std::chrono::minutes Long{1};

class StateFileTest : public OwnFolder
{
protected:
    const fs::path file = folder / "state" / "voxmate" / "state";

    FileStateStore Store() const { return FileStateStore(file.string()); }
};

TEST_F(StateFileTest, WhatIsSetIsThereInTheNextRun)
{
    {
        FileStateStore store = Store();
        EXPECT_EQ(store.Get("main.place"), "");
        store.Set("main.place", "here");
        store.Set("login.greeting", "1");
        store.Set("main.place", "there");
        EXPECT_EQ(store.Get("main.place"), "there");
    }
    EXPECT_EQ(Read(file), "main.place=there\nlogin.greeting=1\n");
    struct stat info {
    };
    ASSERT_EQ(::stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777u, 0600u);
    EXPECT_FALSE(fs::exists(file.string() + ".new"));
    FileStateStore store = Store();
    EXPECT_EQ(store.Get("main.place"), "there");
    EXPECT_EQ(store.Get("main"), "");
}

TEST_F(StateFileTest, AnyTextComesBackAsItWas)
{
    const std::string text = "C:\\new\\readme = \"x\"\r\n\\n\xFF\t ";
    {
        FileStateStore store = Store();
        store.Set("a", text);
        store.Set("b", "");
    }
    FileStateStore store = Store();
    EXPECT_EQ(store.Get("a"), text);
    EXPECT_EQ(store.Get("b"), "");
}

TEST_F(StateFileTest, LinesOfOthersAreKeptAndTheLastOfSeveralCounts)
{
    const std::string damage("\xFF\x01nothing\0=known", 16);
    Write(file, "# by hand\n" + damage + "\n\na=1\nlater=x\\\na=2\nno end");
    {
        FileStateStore store = Store();
        EXPECT_EQ(store.Get("a"), "2");
        EXPECT_EQ(store.Get("later"), "x\\");
        store.Set("a", "3");
        store.Set("b", "4");
    }
    EXPECT_EQ(Read(file), "# by hand\n" + damage + "\n\na=1\nlater=x\\\na=3\nno end\nb=4\n");
}

TEST_F(StateFileTest, WhatIsSetToItsOldValueIsNotSaved)
{
    Write(file, "a=1");
    {
        FileStateStore store = Store();
        store.Set("a", "1");
    }
    EXPECT_EQ(Read(file), "a=1");
}

TEST_F(StateFileTest, AFileThatCannotBeWrittenStopsNothing)
{
    // A folder stands in its place.
    fs::create_directories(file);
    FileStateStore store = Store();
    EXPECT_EQ(store.Get("a"), "");
    store.Set("a", "1");
    EXPECT_TRUE(store.Flush(Long));
    EXPECT_EQ(store.Get("a"), "1");
    EXPECT_TRUE(fs::is_directory(file));
}

TEST_F(StateFileTest, AReadOnlyFileStaysAsItIs)
{
    Write(file, "a=1\n");
    fs::permissions(folder, fs::perms::all);
    fs::permissions(file.parent_path(), fs::perms::all);
    fs::permissions(file, fs::perms(0444));
    const OrdinaryUser ordinary;
    FileStateStore store = Store();
    EXPECT_EQ(store.Get("a"), "1");
    store.Set("a", "2");
    EXPECT_TRUE(store.Flush(Long));
    EXPECT_EQ(Read(file), "a=1\n");
}

TEST_F(StateFileTest, AnEnormousFileIsLeftAlone)
{
    const std::string enormous(FileStateStore::LargestFile + 1, 'x');
    Write(file, enormous);
    {
        FileStateStore store = Store();
        store.Set("a", "1");
        EXPECT_EQ(store.Get("a"), "1");
    }
    EXPECT_EQ(Read(file), enormous);
}

TEST_F(StateFileTest, ADiskThatDoesNotAnswerHoldsUpNeitherTheProgramNorItsEnd)
{
    FileStateStore store = Store();
    const HangingDisk disk;
    const auto begin = std::chrono::steady_clock::now();
    store.Set("a", "1");
    EXPECT_FALSE(store.Flush(std::chrono::milliseconds(200)));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
    store.Set("a", "2");
    EXPECT_EQ(store.Get("a"), "2");
}

TEST_F(StateFileTest, TheFileIsInTheFolderForState)
{
    Set("XDG_STATE_HOME", (folder / "elsewhere").string());
    MakeStateStore()->Set("a", "1");
    EXPECT_EQ(Read(folder / "elsewhere" / "voxmate" / "state"), "a=1\n");
    Set("XDG_STATE_HOME", "relative");
    Set("HOME", folder.string());
    MakeStateStore()->Set("a", "2");
    EXPECT_EQ(Read(folder / ".local" / "state" / "voxmate" / "state"), "a=2\n");
}

} // namespace

} // namespace voxmate::linux_platform
