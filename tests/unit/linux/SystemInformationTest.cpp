#include "platform/linux/settings/SystemInformation.h"
#include "OwnFolder.h"
#include "platform/linux/files/Folders.h"
#include "platform/linux/process/LinuxProcess.h"
#include "platform/linux/settings/FileSettingsStore.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <thread>

namespace voxmate::linux_platform
{

namespace
{

namespace fs = std::filesystem;

class SystemInformationTest : public OwnFolder
{
protected:
    SystemInformationTest() { Set("PATH", (folder / "first").string() + ":" + (folder / "second").string()); }
    static std::optional<std::string> Answer(const std::string& key, const std::string& name)
    {
        const std::optional<RawValue> value = SystemInformationValue(key, name);
        if (!value)
            return std::nullopt;
        EXPECT_EQ(value->type, 1u);
        return std::string(value->data.begin(), value->data.end());
    }
    const std::string key = R"(HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Shared Tools\MSINFO)";
};

TEST_F(SystemInformationTest, NothingIsAnsweredWhereNoToolIsInstalled)
{
    Write(folder / "first" / "hardinfo", "not a program");
    fs::create_directories(folder / "second" / "kinfocenter");
    EXPECT_EQ(SystemInformationCommand(), "");
    EXPECT_EQ(Answer(key, "PATH"), std::nullopt);
}

TEST_F(SystemInformationTest, TheFirstToolThatIsInstalledIsNamed)
{
    Program(folder / "second" / "gnome-control-center");
    EXPECT_EQ(Answer(key, "PATH"), (folder / "second" / "gnome-control-center").string() + " info-overview");
    Program(folder / "second" / "kinfocenter");
    EXPECT_EQ(Answer(key, "PATH"), (folder / "second" / "kinfocenter").string());
    Program(folder / "second" / "hardinfo");
    EXPECT_EQ(Answer(key, "PATH"), (folder / "second" / "hardinfo").string());
    Program(folder / "first" / "hardinfo");
    EXPECT_EQ(Answer(key, "path"), (folder / "first" / "hardinfo").string());
    Program(folder / "second" / "hardinfo2");
    EXPECT_EQ(Answer(key, "PATH"), (folder / "second" / "hardinfo2").string());
}

TEST_F(SystemInformationTest, NoOtherValueIsAnswered)
{
    Program(folder / "first" / "hardinfo");
    EXPECT_EQ(Answer(key, "Other"), std::nullopt);
    EXPECT_EQ(Answer(R"(HKEY_LOCAL_MACHINE\SOFTWARE\Voxmate)", "PATH"), std::nullopt);
}

TEST_F(SystemInformationTest, TheSettingsStoreNamesTheToolUnlessTheUsersFileNamesAnother)
{
    Program(folder / "first" / "hardinfo");
    Set("XDG_CONFIG_HOME", (folder / "config").string());
    Set("XDG_CONFIG_DIRS", (folder / "system").string());
    const auto read = [] {
        const auto store = MakeSettingsStore();
        std::uint32_t handle = 0;
        std::uint32_t type = 0;
        std::uint32_t size = 255;
        std::vector<std::uint8_t> buffer(size);
        if (store->RegOpenKeyExA(0x80000002, "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO", 0, 0x2003F, handle) != 0 ||
            store->RegQueryValueExA(handle, "PATH", type, buffer, size) != 0)
            return std::string("nothing");
        return std::string(buffer.begin(), buffer.begin() + size);
    };
    EXPECT_EQ(read(), (folder / "first" / "hardinfo").string());
    Write(folder / "config" / "voxmate" / "registry.reg", "REGEDIT4\n\n[" + key + "]\n\"PATH\"=\"my own tool\"\n");
    EXPECT_EQ(read(), "my own tool");
    fs::remove_all(folder / "config");
    fs::remove_all(folder / "first");
    EXPECT_EQ(read(), "nothing");
}

TEST_F(SystemInformationTest, TheToolIsStartedFromAFolderWithBlanksToo)
{
    Set("PATH", (folder / "my tools").string() + ":/bin:/usr/bin");
    Program(folder / "my tools" / "hardinfo",
            "#!/bin/sh\necho \"started $#\" > '" + (folder / "done").string() + "'\n");
    Set("VOXMATE_HOME", (folder / "home").string());
    LinuxProcess process;
    EXPECT_GT(process.Shell(SystemInformationCommand(), 1), 0);
    for (int i = 0; i < 200 && Read(folder / "done").empty(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(Read(folder / "done"), "started 0\n");
}

using PlaceTipsTest = OwnFolder;

TEST_F(PlaceTipsTest, TheShippedTipsComeIntoTheProgramsFolder)
{
    Write(folder / "share" / "VoxmateTips.txt", "one\ntwo\n");
    fs::create_directories(folder / "home");
    PlaceTips((folder / "share").string(), (folder / "home").string());
    EXPECT_EQ(Read(folder / "home" / "VoxmateTips.txt"), "one\ntwo\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "home"), {}), 1);
}

TEST_F(PlaceTipsTest, TheUsersOwnFileStaysEvenAnEmptyOne)
{
    Write(folder / "share" / "VoxmateTips.txt", "one\ntwo\n");
    Write(folder / "home" / "VoxmateTips.txt", "");
    PlaceTips((folder / "share").string(), (folder / "home").string());
    EXPECT_EQ(Read(folder / "home" / "VoxmateTips.txt"), "");
    fs::remove(folder / "home" / "VoxmateTips.txt");
    fs::create_symlink(folder / "nowhere", folder / "home" / "VoxmateTips.txt");
    PlaceTips((folder / "share").string(), (folder / "home").string());
    EXPECT_TRUE(fs::is_symlink(folder / "home" / "VoxmateTips.txt"));
    EXPECT_FALSE(fs::exists(folder / "nowhere"));
}

TEST_F(PlaceTipsTest, WithoutShippedTipsNothingIsLeftBehind)
{
    fs::create_directories(folder / "home");
    PlaceTips((folder / "share").string(), (folder / "home").string());
    EXPECT_TRUE(fs::is_empty(folder / "home"));
}

} // namespace

} // namespace voxmate::linux_platform
