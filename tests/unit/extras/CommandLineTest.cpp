#include "extras/CommandLine.h"

#include "base/FileName.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace voxmate
{

namespace
{

constexpr bool HasDrives = std::filesystem::path::preferred_separator == '\\';

// A path as it is written on this system.
std::string Native(std::string path)
{
    if (HasDrives)
        std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

CommandLine Parse(const std::vector<const char*>& arguments)
{
    return ParseCommandLine(arguments, "/home/ada");
}

TEST(CommandLineTest, WithoutArgumentsItIsAnOrdinaryStart)
{
    const CommandLine line = Parse({});
    EXPECT_FALSE(line.Quiet || line.Help || line.Version);
    EXPECT_TRUE(line.Call.Files.empty());
    EXPECT_EQ(line.Call.Action, "");
    EXPECT_EQ(line.NotUnderstood, "");
}

TEST(CommandLineTest, OptionsAreReadInAnyOrder)
{
    const CommandLine line = Parse({"--action", "stop", "--quiet", "-v", "--help"});
    EXPECT_TRUE(line.Quiet && line.Help && line.Version);
    EXPECT_EQ(line.Call.Action, "stop");
    EXPECT_EQ(line.NotUnderstood, "");
}

TEST(CommandLineTest, FilesBecomeFullPathsAndAddressesOfThisComputersFilesToo)
{
    const CommandLine line = Parse({"a.txt", "../b c.txt", "/etc/d", "file:///tmp/%C3%A4%20b.txt", "file:/x",
                                    "sftp://host/e", "notes:2", "--", "--quiet"});
    EXPECT_EQ(line.Call.Files,
              (std::vector<std::string>{Native("/home/ada/a.txt"), Native("/home/b c.txt"), Native("/etc/d"),
                                        Native("/tmp/ä b.txt"), Native("/x"), "sftp://host/e",
                                        Native("/home/ada/notes:2"), Native("/home/ada/--quiet")}));
    EXPECT_FALSE(line.Quiet);
}

TEST(CommandLineTest, TheFirstUnknownOptionIsNamed)
{
    EXPECT_EQ(Parse({"a", "--loud", "--quiet", "-x"}).NotUnderstood, "--loud");
    // An action needs its name.
    EXPECT_EQ(Parse({"--action"}).NotUnderstood, "--action");
}

TEST(AddressTest, APathAndItsAddressSayTheSame)
{
    for (const char* path : {"/", "/tmp/a b", "/100%", "/ä/\xFF\n", "/a?b#c", "/%41"})
        EXPECT_EQ(PathOfAddress(AddressOfPath(path)), Native(path));
    EXPECT_EQ(AddressOfPath("/tmp/a b%"), "file:///tmp/a%20b%25");
    EXPECT_EQ(AddressOfPath("C:/a"), "file:///C:/a");
}

TEST(AddressTest, AnAddressOfAnotherComputerStaysAnAddress)
{
    for (const char* address : {"http://host/a.txt", "file:relative", "file:///a%00b", "plain"})
        EXPECT_EQ(PathOfAddress(address), address);
    EXPECT_EQ(PathOfAddress("FILE://localhost/a"), Native("/a"));
    EXPECT_EQ(PathOfAddress("file:///a%4"), Native("/a%4"));
    EXPECT_EQ(PathOfAddress("file:///a%zz"), Native("/a%zz"));
    EXPECT_EQ(PathOfAddress("file:///a?x=1"), Native("/a"));
}

TEST(AddressTest, DrivesAndPathsOfTheNetworkHaveAddressesWhereThereAreSuch)
{
    constexpr const char* elsewhere = "file://elsewhere/a%20b.txt";
    if (!HasDrives) {
        EXPECT_EQ(PathOfAddress(elsewhere), elsewhere);
        EXPECT_EQ(PathOfAddress("file:///C:/a"), "/C:/a");
        return;
    }
    EXPECT_EQ(PathOfAddress(elsewhere), "\\\\elsewhere\\a b.txt");
    EXPECT_EQ(PathOfAddress("file:///C:/a"), "C:\\a");
    EXPECT_EQ(AddressOfPath("C:\\Users\\Ada L\\ä.txt"), "file:///C:/Users/Ada%20L/%C3%A4.txt");
    EXPECT_EQ(AddressOfPath("\\\\host\\share\\a.txt"), "file://host/share/a.txt");
}

} // namespace

} // namespace voxmate
