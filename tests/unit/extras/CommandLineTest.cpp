#include "extras/CommandLine.h"

#include "base/FileName.h"

#include <gtest/gtest.h>

#include <vector>

namespace voxmate
{

namespace
{

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
              (std::vector<std::string>{"/home/ada/a.txt", "/home/b c.txt", "/etc/d", "/tmp/ä b.txt", "/x",
                                        "sftp://host/e", "/home/ada/notes:2", "/home/ada/--quiet"}));
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
        EXPECT_EQ(PathOfAddress(AddressOfPath(path)), path);
    EXPECT_EQ(AddressOfPath("/tmp/a b%"), "file:///tmp/a%20b%25");
    EXPECT_EQ(AddressOfPath("C:/a"), "file:///C:/a");
}

TEST(AddressTest, AnAddressOfAnotherComputerStaysAnAddress)
{
    for (const char* address :
         {"http://host/a.txt", "file://elsewhere/a.txt", "file:relative", "file:///a%00b", "plain"})
        EXPECT_EQ(PathOfAddress(address), address);
    EXPECT_EQ(PathOfAddress("FILE://localhost/a"), "/a");
    EXPECT_EQ(PathOfAddress("file:///a%4"), "/a%4");
    EXPECT_EQ(PathOfAddress("file:///a%zz"), "/a%zz");
    EXPECT_EQ(PathOfAddress("file:///a?x=1"), "/a");
}

} // namespace

} // namespace voxmate
