// The settings in the registry: result codes, raw values, and who may write where.
#include "platform/windows/settings/RegistrySettingsStore.h"

#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"

#include <sddl.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace voxmate::windows_platform
{
namespace
{

constexpr std::uint32_t userRoot = 0x80000001;
constexpr std::uint32_t machineRoot = 0x80000002;
const std::string key = "SOFTWARE\\VoxmateTest";

class RegistrySettingsTest : public ::testing::Test
{
protected:
    RegistrySettingsStore store;

    RegistrySettingsTest() { RemoveKeys(); }
    ~RegistrySettingsTest() override { RemoveKeys(); }

    static void RemoveKeys()
    {
        Protect("D:(A;;KA;;;WD)");
        for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
            ::RegDeleteTreeW(root, L"SOFTWARE\\VoxmateTest");
    }
    /// Gives the machine's key other rights (in the words of sddl.h).
    static bool Protect(const char* rights)
    {
        HKEY handle = nullptr;
        if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\VoxmateTest", 0, WRITE_DAC, &handle) != 0)
            return false;
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        const bool good =
            ::ConvertStringSecurityDescriptorToSecurityDescriptorW(Wide(rights).c_str(), 1, &descriptor, nullptr) &&
            ::RegSetKeySecurity(handle, DACL_SECURITY_INFORMATION, descriptor) == 0;
        ::LocalFree(descriptor);
        ::RegCloseKey(handle);
        return good;
    }
    /// What another program writes: texts with the NUL at their end.
    static void WriteText(HKEY root, const wchar_t* name, const std::wstring& text)
    {
        ::RegSetKeyValueW(root, L"SOFTWARE\\VoxmateTest", name, REG_SZ, text.c_str(),
                          static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }

    std::int32_t Set(const std::string& name, std::uint32_t type, const std::string& data,
                     std::uint32_t root = machineRoot)
    {
        std::uint32_t handle = 0;
        std::int32_t code = store.RegCreateKeyA(root, key, handle);
        if (code != 0)
            return code;
        store.RegCloseKey(handle);
        code = store.RegOpenKeyExA(root, key, 0, KEY_WRITE, handle);
        if (code != 0)
            return code;
        code = store.RegSetValueExA(handle, name, 0, type,
                                    {reinterpret_cast<const std::uint8_t*>(data.data()), data.size()});
        store.RegCloseKey(handle);
        return code;
    }
    struct Answer {
        std::int32_t code = 0;
        std::uint32_t type = 0;
        std::string data;
        std::uint32_t size = 0;
    };
    Answer Get(const std::string& name, std::uint32_t root = machineRoot, std::uint32_t room = 255)
    {
        std::uint32_t handle = 0;
        Answer answer;
        answer.size = room;
        answer.code = store.RegOpenKeyExA(root, key, 0, KEY_READ, handle);
        if (answer.code != 0)
            return answer;
        std::vector<std::uint8_t> buffer(room, '#');
        answer.code = store.RegQueryValueExA(handle, name, answer.type, buffer, answer.size);
        store.RegCloseKey(handle);
        answer.data.assign(buffer.begin(), buffer.end());
        if (answer.code == 0)
            answer.data.resize(answer.size);
        return answer;
    }
};

TEST_F(RegistrySettingsTest, ValuesOfBothTypesAreKeptWithTheirBytes)
{
    EXPECT_EQ(Set("Pitch", REG_DWORD, std::string("\x32\0\0\0", 4)), 0);
    EXPECT_EQ(Get("Pitch").type, REG_DWORD);
    EXPECT_EQ(Get("Pitch").data, std::string("\x32\0\0\0", 4));
    const std::vector<std::string> texts{
        "", "Buddy", std::string("ends in NUL\0", 12), "line\r\nend\ttab", "Zo\xC3\xAB \xF0\x9F\x98\x80", " blanks "};
    for (const std::string& text : texts) {
        EXPECT_EQ(Set("UserName", REG_SZ, text), 0);
        EXPECT_EQ(Get("UserName").type, REG_SZ);
        EXPECT_EQ(Get("UserName").data, text);
    }
}

TEST_F(RegistrySettingsTest, TheRegistrysOwnCodesAreAnswered)
{
    EXPECT_EQ(Get("Pitch").code, ERROR_FILE_NOT_FOUND);
    std::uint32_t handle = 0;
    EXPECT_EQ(store.RegCreateKeyA(0x1234, key, handle), ERROR_INVALID_HANDLE);
    EXPECT_EQ(store.RegOpenKeyExA(0x80000007, key, 0, KEY_READ, handle), ERROR_INVALID_HANDLE);
    EXPECT_EQ(store.RegCloseKey(4711), ERROR_INVALID_HANDLE);
    ASSERT_EQ(Set("UserName", REG_SZ, "Buddy"), 0);
    EXPECT_EQ(Get("Pitch").code, ERROR_FILE_NOT_FOUND);
    const Answer small = Get("UserName", machineRoot, 3);
    EXPECT_EQ(small.code, ERROR_MORE_DATA);
    EXPECT_EQ(small.size, 5U);
    EXPECT_EQ(small.data, "###");
    ASSERT_EQ(store.RegOpenKeyExA(machineRoot, key, 0, KEY_READ, handle), 0);
    EXPECT_EQ(store.RegSetValueExA(handle, "UserName", 0, REG_SZ, {}), ERROR_ACCESS_DENIED);
    EXPECT_EQ(store.RegCloseKey(handle), 0);
    EXPECT_EQ(store.RegCloseKey(handle), ERROR_INVALID_HANDLE);
    ASSERT_EQ(store.RegOpenKeyExA(machineRoot, key, 0, KEY_WRITE, handle), 0);
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    EXPECT_EQ(store.RegQueryValueExA(handle, "UserName", type, {}, size), ERROR_ACCESS_DENIED);
}

TEST_F(RegistrySettingsTest, AKeyThatIsLeftOpenIsOpenedAgainUnderTheSameHandle)
{
    ASSERT_EQ(Set("UserName", REG_SZ, "Buddy"), 0);
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    ASSERT_EQ(store.RegOpenKeyExA(machineRoot, key, 0, KEY_READ, first), 0);
    ASSERT_EQ(store.RegOpenKeyExA(machineRoot, key, 0, KEY_READ, second), 0);
    EXPECT_EQ(first, second);
}

TEST_F(RegistrySettingsTest, WhatAnotherProgramChangesIsSeen)
{
    ASSERT_EQ(Set("UserName", REG_SZ, "Buddy"), 0);
    std::uint32_t handle = 0;
    ASSERT_EQ(store.RegOpenKeyExA(machineRoot, key, 0, KEY_READ, handle), 0); // and stays open
    WriteText(HKEY_LOCAL_MACHINE, L"UserName", L"Zo\xEB");
    EXPECT_EQ(Get("UserName").data, std::string("Zo\xC3\xAB\0", 5));
    RemoveKeys();
    EXPECT_EQ(Get("UserName").code, ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistrySettingsTest, WhereTheMachinesMayBeWrittenItIs)
{
    ASSERT_EQ(Set("UserName", REG_SZ, "Buddy"), 0);
    EXPECT_EQ(::RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\VoxmateTest", L"UserName", RRF_RT_REG_SZ, nullptr, nullptr,
                             nullptr),
              0);
    EXPECT_EQ(Get("UserName", userRoot).code, ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistrySettingsTest, WhereItMayNotTheUsersOwnIsAndTheMachinesIsForWhatIsMissing)
{
    ASSERT_EQ(Set("UserName", REG_SZ, "Buddy"), 0);
    ASSERT_EQ(Set("Character", REG_SZ, "Nalu"), 0);
    ASSERT_TRUE(Protect("D:(A;;KRWD;;;WD)"));
    EXPECT_EQ(Get("UserName").data, "Buddy");
    EXPECT_EQ(Set("UserName", REG_SZ, "Zoe"), 0);
    EXPECT_EQ(Get("UserName").data, "Zoe");
    EXPECT_EQ(Get("Character").data, "Nalu");
    EXPECT_EQ(Get("UserName", userRoot).data, "Zoe");
    EXPECT_EQ(Get("Character", userRoot).code, ERROR_FILE_NOT_FOUND);
    WriteText(HKEY_CURRENT_USER, L"Character", L"Tock");
    EXPECT_EQ(Get("Character").data, std::string("Tock\0", 5));
}

TEST_F(RegistrySettingsTest, AValueThatCannotBeSetIsToldOfUnlessItHolds)
{
    int told = 0;
    store.NotSaved = [&told] { ++told; };
    ASSERT_EQ(Set("UserName", REG_SZ, "Buddy"), 0);
    EXPECT_EQ(told, 0);
    std::uint32_t handle = 0;
    ASSERT_EQ(store.RegOpenKeyExA(machineRoot, key, 0, KEY_READ, handle), 0);
    const std::string same = "Buddy";
    store.RegSetValueExA(handle, "UserName", 0, REG_SZ, {reinterpret_cast<const std::uint8_t*>(same.data()), 5});
    EXPECT_EQ(told, 0);
    store.RegSetValueExA(handle, "UserName", 0, REG_SZ, {reinterpret_cast<const std::uint8_t*>(same.data()), 3});
    EXPECT_EQ(told, 1);
}

TEST_F(RegistrySettingsTest, WhatTheRegistryLacksMayBeSuppliedForReading)
{
    store.Lookup = [](const std::string& path, const std::string& name) -> std::optional<RawValue> {
        return path == "HKEY_LOCAL_MACHINE\\SOFTWARE\\VoxmateTest" && name == "PATH"
                   ? std::optional(RawValue{REG_SZ, {'t', 'o', 'o', 'l'}})
                   : std::nullopt;
    };
    EXPECT_EQ(Get("PATH").data, "tool");
    EXPECT_EQ(Get("PATH").type, REG_SZ);
    EXPECT_EQ(Get("Other").code, ERROR_FILE_NOT_FOUND);
    ASSERT_EQ(Set("PATH", REG_SZ, "own"), 0);
    EXPECT_EQ(Get("PATH").data, "own");
}

TEST_F(RegistrySettingsTest, WhatShipsWithTheProgramStandsInForWhatTheRegistryLacks)
{
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "VoxmateTestShare";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "registry.reg") << "REGEDIT4\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\VoxmateTest]\n"
                                              "\"Pitch\"=dword:000000be\n";
    const std::unique_ptr<RegistrySettingsStore> made = MakeSettingsStore(folder.string());
    std::filesystem::remove_all(folder);
    const auto get = [&made](const std::string& path, const std::string& name) {
        std::uint32_t handle = 0;
        std::uint32_t type = 0;
        std::array<std::uint8_t, 300> data{};
        auto size = static_cast<std::uint32_t>(data.size());
        EXPECT_EQ(made->RegOpenKeyExA(machineRoot, path, 0, KEY_READ, handle), 0);
        EXPECT_EQ(made->RegQueryValueExA(handle, name, type, data, size), 0);
        return std::string(data.begin(), data.begin() + size);
    };
    EXPECT_EQ(get(key, "Pitch"), std::string("\xBE\0\0\0", 4));
    ASSERT_EQ(Set("Pitch", REG_DWORD, std::string("\x50\0\0\0", 4)), 0);
    EXPECT_EQ(get(key, "Pitch"), std::string("\x50\0\0\0", 4));
    EXPECT_EQ(get("SOFTWARE\\Voxmate", "CharacterPath"), folder.string() + "\\msagent\\chars\\");
}

} // namespace
} // namespace voxmate::windows_platform
