#include "platform/linux/process/XdgAutostart.h"

#include "OrdinaryUser.h"
#include "OwnFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace voxmate::linux_platform
{

namespace
{

namespace fs = std::filesystem;

class AutostartTest : public OwnFolder
{
protected:
    const fs::path user = folder / "config" / "autostart" / XdgAutostart::FileName;
    const fs::path system = folder / "etc" / "autostart" / XdgAutostart::FileName;

    XdgAutostart Entry(const std::string& program = "/usr/bin/voxmate") const
    {
        return {(folder / "config").string(), {(folder / "none").string(), (folder / "etc").string()}, program};
    }
};

const std::string on = "[Desktop Entry]\nType=Application\nName=Voxmate\nComment=A desktop assistant that talks\n"
                       "Icon=voxmate\nExec=/usr/bin/voxmate --quiet\n";

TEST_F(AutostartTest, TurningItOnWritesAnEntryAndOffRemovesIt)
{
    EXPECT_FALSE(Entry().IsOn());
    EXPECT_TRUE(Entry().Turn(true));
    EXPECT_EQ(Read(user), on);
    EXPECT_TRUE(Entry().IsOn());
    EXPECT_TRUE(Entry().Turn(false));
    EXPECT_FALSE(fs::exists(user));
    EXPECT_FALSE(Entry().IsOn());
    EXPECT_TRUE(Entry().Turn(false));
    EXPECT_EQ(Entry().Path(), user.string());
}

TEST_F(AutostartTest, AnEntryOfTheSystemsIsHiddenAndShownAgain)
{
    Write(system, on);
    EXPECT_TRUE(Entry().IsOn());
    EXPECT_TRUE(Entry().Turn(false));
    EXPECT_EQ(Read(user), on + "Hidden=true\n");
    EXPECT_EQ(Read(system), on);
    EXPECT_FALSE(Entry().IsOn());
    EXPECT_TRUE(Entry().Turn(true));
    EXPECT_EQ(Read(user), on);
    EXPECT_TRUE(Entry().IsOn());
}

TEST_F(AutostartTest, WhatOtherProgramsHaveWrittenCounts)
{
    Write(user, on + "Hidden = true \r\n");
    EXPECT_FALSE(Entry().IsOn());
    Write(user, on + "Hidden=false\n");
    EXPECT_TRUE(Entry().IsOn());
    Write(user, on + "X-GNOME-Autostart-enabled=false\n");
    EXPECT_FALSE(Entry().IsOn());
    // A key of another group says nothing about the entry.
    Write(user, on + "[Desktop Action x]\nHidden=true\n");
    EXPECT_TRUE(Entry().IsOn());
    Write(user, on + "TryExec=/nonexistent\n");
    EXPECT_FALSE(Entry().IsOn());
    Write(user, on + "TryExec=sh\n");
    EXPECT_TRUE(Entry().IsOn());
    Write(user, "Exec=voxmate\n");
    EXPECT_FALSE(Entry().IsOn());
    Write(user, std::string("\0\xFF[", 3));
    EXPECT_FALSE(Entry().IsOn());
    // Switching it on repairs what was not understood.
    EXPECT_TRUE(Entry().Turn(true));
    EXPECT_EQ(Read(user), on);
}

TEST_F(AutostartTest, TheUsersEntryHidesTheSystemsWhateverItSays)
{
    Write(system, on);
    Write(user, "");
    EXPECT_FALSE(Entry().IsOn());
}

TEST_F(AutostartTest, ALinkToTheEntryInTheMenusIsReplacedAndThatEntryStays)
{
    const fs::path menus = folder / "applications" / XdgAutostart::FileName;
    Write(menus, "[Desktop Entry]\nExec=voxmate %U\n");
    Write(system, on);
    fs::create_directories(user.parent_path());
    fs::create_symlink(menus, user);
    EXPECT_TRUE(Entry().IsOn());
    EXPECT_TRUE(Entry().Turn(false));
    EXPECT_EQ(Read(user), on + "Hidden=true\n");
    EXPECT_EQ(Read(menus), "[Desktop Entry]\nExec=voxmate %U\n");
}

TEST_F(AutostartTest, AFolderThatCannotBeWrittenIsToldOf)
{
    Write(folder / "config", "a file in its place");
    EXPECT_FALSE(Entry().Turn(true));
    EXPECT_FALSE(Entry().IsOn());
    fs::remove(folder / "config");
    Write(user, on);
    fs::permissions(folder, fs::perms(0755));
    const OrdinaryUser ordinary;
    EXPECT_FALSE(Entry().Turn(false));
    EXPECT_TRUE(Entry().IsOn());
}

TEST_F(AutostartTest, AnyPathIsQuotedAsTheEntryNeedsIt)
{
    EXPECT_EQ(ExecArgument("/usr/bin/voxmate"), "/usr/bin/voxmate");
    EXPECT_EQ(ExecArgument("/opt/my programs/voxmate"), "\"/opt/my programs/voxmate\"");
    EXPECT_EQ(ExecArgument("/a\"b`c$d"), R"("/a\\"b\\`c\\$d")");
    EXPECT_EQ(ExecArgument("/a\\b"), R"("/a\\\\b")");
    EXPECT_EQ(ExecArgument("/100%"), "\"/100%%\"");
    EXPECT_EQ(ExecArgument(""), "\"\"");
}

TEST_F(AutostartTest, TheEntryIsInTheConfigurationFolderAndStartsThisVeryProgram)
{
    Set("XDG_CONFIG_HOME", (folder / "config").string());
    Set("XDG_CONFIG_DIRS", (folder / "etc").string());
    EXPECT_TRUE(MakeAutostart().Turn(true));
    EXPECT_NE(Read(user).find("Exec=" + fs::read_symlink("/proc/self/exe").string() + " --quiet\n"), std::string::npos);
}

} // namespace

} // namespace voxmate::linux_platform
