#include "ModuleTest.h"

namespace voxmate
{

namespace
{

constexpr const char* key = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Voxmate";

class RegistryTest : public ModuleTest
{
protected:
    RegistryTest() { fake.store.logCalls = true; }
};

TEST_F(RegistryTest, RootKeysAreFoundByTheirExactNames)
{
    EXPECT_EQ(GetRootKey("HKEY_CLASSES_ROOT"), 0x80000000u);
    EXPECT_EQ(GetRootKey("HKEY_CURRENT_USER"), 0x80000001u);
    EXPECT_EQ(GetRootKey("HKEY_LOCAL_MACHINE"), 0x80000002u);
    EXPECT_EQ(GetRootKey("HKEY_USERS"), 0x80000003u);
    EXPECT_EQ(GetRootKey("HKEY_PERFORMANCE_DATA"), 0x80000004u);
    EXPECT_EQ(GetRootKey("HKEY_CURRENT_CONFIG"), 0x80000005u);
    EXPECT_EQ(GetRootKey("HKEY_DYN_DATA"), 0x80000006u);
    EXPECT_EQ(GetRootKey("hkey_local_machine"), 0u);
    EXPECT_EQ(GetRootKey(""), 0u);
}

TEST_F(RegistryTest, AKeyPathIsSplitAtItsFirstBackslash)
{
    std::string path = key;
    std::uint32_t root = 0;
    ParseKeyPath(path, root);
    EXPECT_EQ(BadKeyName, False);
    EXPECT_EQ(root, 0x80000002u);
    EXPECT_EQ(path, "SOFTWARE\\Voxmate");
    EXPECT_EQ(LastRegResult, 19);
}

TEST_F(RegistryTest, AHiveAloneHasAnEmptySubKey)
{
    std::string path = "HKEY_USERS";
    std::uint32_t root = 0;
    ParseKeyPath(path, root);
    EXPECT_EQ(BadKeyName, False);
    EXPECT_EQ(root, 0x80000003u);
    EXPECT_EQ(path, "");
    EXPECT_EQ(LastRegResult, 0);
}

TEST_F(RegistryTest, APathThatIsNoKeyOrEndsInABackslashIsBad)
{
    for (const std::string bad : {"SOFTWARE\\Voxmate", "HKEY", "hkey_users\\x", "HKEY_USERS\\", ""}) {
        std::string path = bad;
        std::uint32_t root = 7;
        ParseKeyPath(path, root);
        EXPECT_EQ(BadKeyName, True) << bad;
        EXPECT_EQ(path, bad);
        EXPECT_EQ(root, 7u);
    }
}

TEST_F(RegistryTest, CreatingAKeyClosesIt)
{
    CreateRegKey(key);
    EXPECT_EQ(fake.log, (Lines{"RegCreateKeyA 0x80000002 SOFTWARE\\Voxmate", "RegCloseKey"}));
    EXPECT_EQ(RegFailed, False);
    EXPECT_EQ(fake.store.openHandles, 0);
}

TEST_F(RegistryTest, AKeyThatCannotBeCreatedFailsAndHasNothingToClose)
{
    fake.store.failures["RegCreateKeyA"] = 5;
    CreateRegKey(key);
    EXPECT_EQ(fake.log, (Lines{"RegCreateKeyA 0x80000002 SOFTWARE\\Voxmate"}));
    EXPECT_EQ(RegFailed, True);
    EXPECT_EQ(LastRegResult, 5);
}

TEST_F(RegistryTest, WritingAnIntegerCreatesTheKeyOpensItSetsAndCloses)
{
    WriteRegDword(key, "Pitch", -2);
    EXPECT_EQ(fake.log, (Lines{"RegCreateKeyA 0x80000002 SOFTWARE\\Voxmate", "RegCloseKey",
                               "RegOpenKeyExA 0x80000002 SOFTWARE\\Voxmate 0 0x20006",
                               "RegSetValueExA Pitch 0 4 4 bytes", "RegCloseKey"}));
    EXPECT_EQ(fake.store.At("Pitch"), (fakes::FakeSettingsStore::Value{4, "\xFE\xFF\xFF\xFF"}));
    EXPECT_EQ(RegFailed, False);
    EXPECT_EQ(fake.store.openHandles, 0);
}

TEST_F(RegistryTest, WritingATextLeavesOutTheTerminatingNul)
{
    WriteRegString(key, "UserName", "Buddy");
    EXPECT_EQ(fake.log.at(3), "RegSetValueExA UserName 0 1 5 bytes");
    EXPECT_EQ(fake.store.At("UserName"), (fakes::FakeSettingsStore::Value{1, "Buddy"}));
}

TEST_F(RegistryTest, WritingTheEmptyTextStoresNoBytes)
{
    WriteRegString(key, "UserName", "");
    EXPECT_EQ(fake.store.At("UserName"), (fakes::FakeSettingsStore::Value{1, ""}));
}

TEST_F(RegistryTest, ALetterOutsideAsciiIsStoredWhole)
{
    WriteRegString(key, "UserName", "Zo\xC3\xAB");
    EXPECT_EQ(fake.store.At("UserName").data, "Zo\xC3\xAB");
    EXPECT_EQ(std::get<std::string>(ReadRegString(key, "UserName")), "Zo\xC3\xAB");
}

TEST_F(RegistryTest, AKeyThatCannotBeOpenedForWritingStopsTheWrite)
{
    fake.store.failures["RegOpenKeyExA"] = 5;
    WriteRegDword(key, "Pitch", 50);
    EXPECT_EQ(fake.log.back(), "RegOpenKeyExA 0x80000002 SOFTWARE\\Voxmate 0 0x20006");
    EXPECT_EQ(RegFailed, True);
    EXPECT_EQ(LastRegResult, 5);
}

TEST_F(RegistryTest, AValueThatCannotBeSetFailsAndTheKeyIsClosed)
{
    fake.store.failures["RegSetValueExA"] = 5;
    WriteRegString(key, "UserName", "Buddy");
    EXPECT_EQ(fake.log.back(), "RegCloseKey");
    EXPECT_EQ(RegFailed, True);
    EXPECT_EQ(fake.store.openHandles, 0);
}

TEST_F(RegistryTest, NothingIsCalledForABadPathOrAnUnknownHive)
{
    WriteRegDword("SOFTWARE\\Voxmate", "Pitch", 1);
    WriteRegString("HKEY_NOWHERE\\Voxmate", "UserName", "x");
    CreateRegKey("HKEY_USERS\\");
    EXPECT_TRUE(fake.log.empty());
    EXPECT_EQ(RegFailed, False);
}

TEST_F(RegistryTest, AReadOfABadPathGivesZeroAndFails)
{
    EXPECT_EQ(ReadRegDword("SOFTWARE\\Voxmate", "Pitch"), Variant(std::int32_t{0}));
    EXPECT_EQ(RegFailed, True);
    RegFailed = False;
    EXPECT_EQ(ReadRegString("SOFTWARE\\Voxmate", "UserName"), Variant(std::int32_t{0}));
    EXPECT_EQ(RegFailed, True);
    EXPECT_TRUE(fake.log.empty());
}

TEST_F(RegistryTest, AReadOfAnUnknownHiveGivesNothingAndLeavesTheFlag)
{
    RegFailed = True;
    EXPECT_EQ(ReadRegDword("HKEY_NOWHERE\\Voxmate", "Pitch"), Variant());
    EXPECT_EQ(RegFailed, True);
    RegFailed = False;
    EXPECT_EQ(ReadRegDword("HKEY_NOWHERE\\Voxmate", "Pitch"), Variant());
    EXPECT_EQ(RegFailed, False);
    EXPECT_EQ(ReadRegString("HKEY_NOWHERE\\Voxmate", "UserName"), Variant());
    EXPECT_EQ(RegFailed, False);
}

TEST_F(RegistryTest, AnIntegerIsReadAsSigned32Bits)
{
    fake.store.SetDword("Pitch", 0xFFFFFFFF);
    EXPECT_EQ(ReadRegDword(key, "Pitch"), Variant(std::int32_t{-1}));
    EXPECT_EQ(fake.log, (Lines{"RegOpenKeyExA 0x80000002 SOFTWARE\\Voxmate 0 0x20019", "RegQueryValueExA Pitch 4 4",
                               "RegCloseKey"}));
}

TEST_F(RegistryTest, AMissingIntegerGivesZeroFailsAndLeavesTheKeyOpen)
{
    fake.store.SetDword("Speed", 1);
    EXPECT_EQ(ReadRegDword(key, "Pitch"), Variant(std::int32_t{0}));
    EXPECT_EQ(RegFailed, True);
    EXPECT_EQ(LastRegResult, 2);
    EXPECT_EQ(fake.store.openHandles, 1);
}

TEST_F(RegistryTest, AMissingKeyGivesZeroAndFails)
{
    EXPECT_EQ(ReadRegDword(key, "Pitch"), Variant(std::int32_t{0}));
    EXPECT_EQ(RegFailed, True);
    EXPECT_EQ(fake.store.openHandles, 0);
    EXPECT_EQ(fake.log.size(), 1u);
}

TEST_F(RegistryTest, ReadingAnIntegerDoesNotClearAnEarlierFailure)
{
    fake.store.SetDword("Pitch", 50);
    RegFailed = True;
    EXPECT_EQ(ReadRegDword(key, "Pitch"), Variant(std::int32_t{50}));
    EXPECT_EQ(RegFailed, True);
}

TEST_F(RegistryTest, TheTypeOfAnIntegerIsNotChecked)
{
    fake.store.SetText("Pitch", "AB");
    fake.store.SetDword("Speed", 0);
    ReadRegDword(key, "Speed");
    EXPECT_EQ(ReadRegDword(key, "Pitch"), Variant(std::int32_t{0x4241}));
    fake.store.SetText("Pitch", "ABCDE");
    EXPECT_EQ(ReadRegDword(key, "Pitch"), Variant(std::int32_t{0}));
    EXPECT_EQ(RegFailed, True);
    EXPECT_EQ(LastRegResult, 234);
}

TEST_F(RegistryTest, ATextIsReadWithoutBlanksRoundItUpToItsFirstNul)
{
    fake.store.SetText("UserName", std::string("  Zoe \0 rest", 12));
    EXPECT_EQ(ReadRegString(key, "UserName"), Variant(std::string("Zoe ")));
    EXPECT_EQ(RegFailed, False);
    EXPECT_EQ(fake.log, (Lines{"RegOpenKeyExA 0x80000002 SOFTWARE\\Voxmate 0 0x20019",
                               "RegQueryValueExA UserName 1 255", "RegCloseKey"}));
}

TEST_F(RegistryTest, ATextWithoutANulIsTakenWhole)
{
    fake.store.SetText("UserName", "Buddy");
    EXPECT_EQ(ReadRegString(key, "UserName"), Variant(std::string("Buddy")));
}

TEST_F(RegistryTest, ALoneNulIsTheEmptyTextAndZeroLengthIsAFailure)
{
    fake.store.SetText("UserName", std::string(1, '\0'));
    EXPECT_EQ(ReadRegString(key, "UserName"), Variant(std::string()));
    EXPECT_EQ(RegFailed, False);
    for (const std::string data : {"", "   "}) {
        fake.store.SetText("UserName", data);
        EXPECT_EQ(ReadRegString(key, "UserName"), Variant(std::int32_t{0}));
        EXPECT_EQ(RegFailed, True);
        EXPECT_EQ(fake.log.back(), "RegCloseKey");
    }
}

TEST_F(RegistryTest, ATextOf254BytesIsReadAndOneOf255Fails)
{
    fake.store.SetText("UserName", std::string(254, 'x'));
    EXPECT_EQ(ReadRegString(key, "UserName"), Variant(std::string(254, 'x')));
    for (const std::size_t length : {255u, 256u, 5000u}) {
        fake.store.SetText("UserName", std::string(length, 'x'));
        EXPECT_EQ(ReadRegString(key, "UserName"), Variant(std::int32_t{0})) << length;
        EXPECT_EQ(RegFailed, True);
        EXPECT_EQ(LastRegResult, 234);
        EXPECT_NE(fake.log.back(), "RegCloseKey");
    }
}

TEST_F(RegistryTest, ReadingATextClearsAnEarlierFailure)
{
    fake.store.SetText("UserName", "Buddy");
    RegFailed = True;
    ReadRegString(key, "UserName");
    EXPECT_EQ(RegFailed, False);
}

} // namespace

} // namespace voxmate
