#include "base/FileName.h"
#include "platform/linux/files/LinuxFileSystem.h"
#include "platform/linux/settings/FileSettingsStore.h"

#include "HangingDisk.h"
#include "OwnFolder.h"
#include "base/RuntimeError.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

namespace fs = std::filesystem;

constexpr std::uint32_t machine = 0x80000002;
const std::string key = "SOFTWARE\\Voxmate";
/// How long to wait for something that must happen.
constexpr std::chrono::minutes Long{1};

const std::string header = "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Voxmate]\n";

class SettingsFileTest : public OwnFolder
{
protected:
    const fs::path file = folder / "config" / "voxmate" / "registry.reg";

    ~SettingsFileTest() override
    {
        std::error_code error;
        fs::permissions(file, fs::perms::owner_all, error);
    }
    FileSettingsStore Store() { return {file.string(), {}}; }

    // Sets a value and waits until it is saved, so that the file can be checked.
    static std::int32_t Set(FileSettingsStore& store, const std::string& name, std::uint32_t type,
                            const std::string& data)
    {
        std::uint32_t handle = 0;
        if (const std::int32_t code = store.RegCreateKeyA(machine, key, handle); code != ERROR_SUCCESS)
            return code;
        store.RegCloseKey(handle);
        if (const std::int32_t code = store.RegOpenKeyExA(machine, key, 0, KEY_WRITE, handle); code != ERROR_SUCCESS)
            return code;
        const std::int32_t code = store.RegSetValueExA(
            handle, name, 0, type, {reinterpret_cast<const std::uint8_t*>(data.data()), data.size()});
        store.RegCloseKey(handle);
        EXPECT_TRUE(store.Flush(Long));
        return code;
    }
    struct Answer {
        std::int32_t code;
        std::uint32_t type;
        std::string data;
        std::uint32_t size;
    };
    static Answer Get(SettingsStore& store, const std::string& name, std::uint32_t room = 255)
    {
        std::uint32_t handle = 0;
        Answer answer{store.RegOpenKeyExA(machine, key, 0, KEY_READ, handle), 0, {}, room};
        if (answer.code != ERROR_SUCCESS)
            return answer;
        std::vector<std::uint8_t> buffer(room, '#');
        answer.code = store.RegQueryValueExA(handle, name, answer.type, buffer, answer.size);
        store.RegCloseKey(handle);
        if (answer.code == ERROR_SUCCESS)
            answer.data.assign(buffer.begin(), buffer.begin() + answer.size);
        return answer;
    }
};

TEST_F(SettingsFileTest, ValuesOfBothTypesAreKept)
{
    FileSettingsStore store = Store();
    EXPECT_EQ(Set(store, "Pitch", REG_DWORD, std::string("\x32\0\0\0", 4)), 0);
    EXPECT_EQ(Set(store, "UserName", REG_SZ, "Buddy"), 0);
    EXPECT_EQ(Read(file), header + "\"Pitch\"=dword:00000032\n\"UserName\"=\"Buddy\"\n");
    FileSettingsStore again = Store();
    EXPECT_EQ(Get(again, "Pitch").data, std::string("\x32\0\0\0", 4));
    EXPECT_EQ(Get(again, "Pitch").type, REG_DWORD);
    EXPECT_EQ(Get(again, "UserName").data, "Buddy");
    EXPECT_EQ(Get(again, "UserName").type, REG_SZ);
}

TEST_F(SettingsFileTest, EveryTextSurvivesWithItsBytes)
{
    const std::vector<std::string> texts{"",
                                         std::string(1, '\0'),
                                         "plain",
                                         "with \"quotes\" and \\backslashes\\",
                                         std::string("ends in NUL\0", 12),
                                         std::string("a\0b", 3),
                                         "line\r\nend\ttab",
                                         "Zo\xC3\xAB \xF0\x9F\x98\x80",
                                         "bad \xFF byte",
                                         " blanks ",
                                         "; [not a key]"};
    FileSettingsStore store = Store();
    for (std::size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(Set(store, "T" + std::to_string(i), REG_SZ, texts[i]), 0);
    FileSettingsStore again = Store();
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const Answer answer = Get(again, "T" + std::to_string(i));
        EXPECT_EQ(answer.code, 0) << i;
        EXPECT_EQ(answer.type, REG_SZ) << i;
        EXPECT_EQ(answer.data, texts[i]) << i;
    }
}

TEST_F(SettingsFileTest, ZeroLengthTextAndALoneNulAreToldApartInTheFile)
{
    FileSettingsStore store = Store();
    Set(store, "None", REG_SZ, "");
    Set(store, "Nul", REG_SZ, std::string(1, '\0'));
    EXPECT_EQ(Read(file), header + "\"None\"=hex(1):\n\"Nul\"=\"\"\n");
}

TEST_F(SettingsFileTest, OtherTypesAndLongContinuedValuesAreRead)
{
    Write(file, header + "\"Bytes\"=hex:01,ff\n\"Multi\"=hex(7):41,00,\\\n  "
                         "42,00,00\n\"Text\"=hex(1):42,75\n\"D\"=dword:fFfFfFfF\n");
    FileSettingsStore store = Store();
    EXPECT_EQ(Get(store, "Bytes").type, 3u);
    EXPECT_EQ(Get(store, "Bytes").data, "\x01\xFF");
    EXPECT_EQ(Get(store, "Multi").type, 7u);
    EXPECT_EQ(Get(store, "Multi").data, std::string("A\0B\0\0", 5));
    EXPECT_EQ(Get(store, "Text").data, "Bu");
    EXPECT_EQ(Get(store, "D").data, "\xFF\xFF\xFF\xFF");
    Set(store, "D", REG_DWORD, std::string(4, '\0'));
    EXPECT_EQ(Read(file), header + "\"Bytes\"=hex:01,ff\n\"Multi\"=hex(7):41,00,\\\n  42,00,00\n\"Text\"=hex(1):42,75\n"
                                   "\"D\"=dword:00000000\n");
}

TEST_F(SettingsFileTest, MissingValuesKeysAndTooSmallBuffersHaveTheirCodes)
{
    FileSettingsStore store = Store();
    EXPECT_EQ(Get(store, "Pitch").code, ERROR_FILE_NOT_FOUND);
    Set(store, "UserName", REG_SZ, "Buddy");
    EXPECT_EQ(Get(store, "Pitch").code, ERROR_FILE_NOT_FOUND);
    const Answer small = Get(store, "UserName", 4);
    EXPECT_EQ(small.code, ERROR_MORE_DATA);
    EXPECT_EQ(small.size, 5u);
    EXPECT_EQ(Get(store, "UserName", 5).code, ERROR_SUCCESS);
    std::uint32_t handle = 0;
    EXPECT_EQ(store.RegOpenKeyExA(machine, "SOFTWARE\\Other", 0, KEY_READ, handle), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(store.RegOpenKeyExA(12, key, 0, KEY_READ, handle), ERROR_INVALID_HANDLE);
    EXPECT_EQ(store.RegCloseKey(99), ERROR_INVALID_HANDLE);
}

TEST_F(SettingsFileTest, AKeyOpenedForReadingRefusesWritesAndTheOtherWayRound)
{
    FileSettingsStore store = Store();
    Set(store, "UserName", REG_SZ, "Buddy");
    std::uint32_t handle = 0;
    store.RegOpenKeyExA(machine, key, 0, KEY_READ, handle);
    EXPECT_EQ(store.RegSetValueExA(handle, "UserName", 0, REG_SZ, {}), ERROR_ACCESS_DENIED);
    store.RegOpenKeyExA(machine, key, 0, KEY_WRITE, handle);
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    EXPECT_EQ(store.RegQueryValueExA(handle, "UserName", type, {}, size), ERROR_ACCESS_DENIED);
}

TEST_F(SettingsFileTest, OrderCommentsAndLinesOfOtherFormsAreKept)
{
    const std::string before = "REGEDIT4\n; my settings\n\n[HKEY_CURRENT_USER\\Other]\n\"Pitch\"=dword:00000001\n\n"
                               "[hkey_local_machine\\software\\VOXMATE]\n; the voice\n\"pitch\"=dword:00000032\n"
                               "\"Speed\"=whatever this is\n\"Broken=dword:1\n\"Gone\"=-\n@=\"default\"\n\n; the end\n";
    Write(file, before);
    FileSettingsStore store = Store();
    EXPECT_EQ(Get(store, "Pitch").data, std::string("\x32\0\0\0", 4));
    EXPECT_EQ(Get(store, "Speed").code, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Get(store, "Broken").code, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Get(store, "Gone").code, ERROR_FILE_NOT_FOUND);
    Set(store, "Pitch", REG_DWORD, std::string("\x64\0\0\0", 4));
    std::string after = before;
    after.replace(after.find("\"pitch\"=dword:00000032"), 22, "\"Pitch\"=dword:00000064");
    EXPECT_EQ(Read(file), after);
    Set(store, "Speed", REG_DWORD, std::string("\x64\0\0\0", 4));
    EXPECT_EQ(Read(file), after + "\"Speed\"=dword:00000064\n");
    EXPECT_EQ(Get(store, "Speed").code, 0);
}

TEST_F(SettingsFileTest, ANewValueGoesBeforeTheCommentsOfTheNextKey)
{
    Write(file,
          header + "\"A\"=dword:00000001\n\n; about the other\n[HKEY_LOCAL_MACHINE\\Other]\n\"B\"=dword:00000002\n");
    FileSettingsStore store = Store();
    Set(store, "C", REG_DWORD, std::string("\x03\0\0\0", 4));
    EXPECT_EQ(Read(file), header + "\"A\"=dword:00000001\n\"C\"=dword:00000003\n\n; about the other\n"
                                   "[HKEY_LOCAL_MACHINE\\Other]\n\"B\"=dword:00000002\n");
}

TEST_F(SettingsFileTest, AFileWithCrLfAndAByteOrderMarkIsUnderstood)
{
    Write(file, "\xEF\xBB\xBFREGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Voxmate]\r\n\"UserName\"=\"Ada\"\r\n");
    FileSettingsStore store = Store();
    EXPECT_EQ(Get(store, "UserName").data, "Ada");
    Set(store, "UserName", REG_SZ, "Bea");
    EXPECT_NE(Read(file).find("\"UserName\"=\"Bea\"\r\n"), std::string::npos);
}

TEST_F(SettingsFileTest, AFileInAnotherEncodingIsUnderstoodAndSavedInOurs)
{
    Write(file, header + "\"UserName\"=\"J\xFCrgen \x80\"\n");
    {
        FileSettingsStore store = Store();
        EXPECT_EQ(Get(store, "UserName").data, "J\xC3\xBCrgen \xE2\x82\xAC");
        Set(store, "A", REG_SZ, "x");
    }
    EXPECT_EQ(Read(file), header + "\"UserName\"=\"J\xC3\xBCrgen \xE2\x82\xAC\"\n\"A\"=\"x\"\n");

    std::string wide = "\xFF\xFE";
    for (const char c : header + "\"UserName\"=\"Ada\"\r\n") {
        wide += c;
        wide += '\0';
    }
    Write(file, wide);
    FileSettingsStore store = Store();
    EXPECT_EQ(Get(store, "UserName").data, "Ada");
}

TEST_F(SettingsFileTest, APipeInPlaceOfTheFileDoesNotHoldTheProgramUp)
{
    fs::create_directories(file.parent_path());
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    FileSettingsStore store = Store();
    EXPECT_EQ(Get(store, "UserName").code, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Set(store, "UserName", REG_SZ, "x"), ERROR_ACCESS_DENIED);
}

TEST_F(SettingsFileTest, TheLaterOfTwoEqualNamesCounts)
{
    Write(file, header + "\"A\"=dword:00000001\n\"a\"=dword:00000002\n");
    FileSettingsStore store = Store();
    EXPECT_EQ(Get(store, "A").data, std::string("\x02\0\0\0", 4));
}

TEST_F(SettingsFileTest, WhatTheUsersFileLacksComesFromTheSystemsAndIsWrittenOnlyToTheUsers)
{
    const fs::path first = folder / "first.reg";
    const fs::path second = folder / "second.reg";
    Write(first, header + "\"A\"=\"first\"\n");
    Write(second, header + "\"A\"=\"second\"\n\"B\"=\"second\"\n");
    FileSettingsStore store(file.string(), {(folder / "missing.reg").string(), first.string(), second.string()});
    EXPECT_EQ(Get(store, "A").data, "first");
    EXPECT_EQ(Get(store, "B").data, "second");
    EXPECT_EQ(Set(store, "B", REG_SZ, "mine"), 0);
    EXPECT_EQ(Get(store, "B").data, "mine");
    EXPECT_EQ(Read(file), header + "\"B\"=\"mine\"\n");
    EXPECT_EQ(Read(second), header + "\"A\"=\"second\"\n\"B\"=\"second\"\n");
}

TEST_F(SettingsFileTest, WhatAPersonWritesMeanwhileIsSeenAndKept)
{
    FileSettingsStore store = Store();
    Set(store, "A", REG_SZ, "one");
    Write(file, Read(file) + "\"B\"=\"by hand\"\n");
    EXPECT_EQ(Get(store, "B").data, "by hand");
    Set(store, "A", REG_SZ, "three");
    EXPECT_EQ(Read(file), header + "\"A\"=\"three\"\n\"B\"=\"by hand\"\n");
}

TEST_F(SettingsFileTest, AnUnwritablePlaceRefusesAndKeepsTheOldFile)
{
    // A folder at the new file's path can be neither opened nor replaced, not even by root.
    FileSettingsStore store = Store();
    Set(store, "A", REG_SZ, "old");
    fs::create_directories(file.string() + ".new/x");
    EXPECT_EQ(Set(store, "A", REG_SZ, "new"), ERROR_SUCCESS); // the save fails after the call has returned
    EXPECT_EQ(Get(store, "A").data, "old");
    EXPECT_EQ(Set(store, "A", REG_SZ, "new"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Get(store, "A").data, "old");
    EXPECT_NE(Read(file).find("\"old\""), std::string::npos);
    fs::remove_all(file.string() + ".new");
    EXPECT_EQ(Set(store, "A", REG_SZ, "new"), ERROR_SUCCESS);
    EXPECT_NE(Read(file).find("\"new\""), std::string::npos);

    Write(folder / "plain", "");
    FileSettingsStore nowhere((folder / "plain" / "registry.reg").string(), {});
    EXPECT_EQ(Set(nowhere, "A", REG_SZ, "x"), ERROR_ACCESS_DENIED);
}

TEST_F(SettingsFileTest, EachValueThatCannotBeSavedIsToldOf)
{
    FileSettingsStore store = Store();
    std::atomic<int> told = 0;
    store.NotSaved = [&told] { ++told; };
    Set(store, "A", REG_SZ, "old");
    EXPECT_TRUE(store.Flush(Long));
    EXPECT_EQ(told, 0);
    fs::create_directories(file.string() + ".new/x");
    Set(store, "A", REG_SZ, "new"); // the save fails on its own thread
    EXPECT_TRUE(store.Flush(Long));
    EXPECT_EQ(told, 1);
    Set(store, "A", REG_SZ, "new"); // and now on the caller's
    EXPECT_EQ(told, 2);
    fs::remove_all(file.string() + ".new");
    Set(store, "A", REG_SZ, "new");
    EXPECT_EQ(told, 2);
}

TEST_F(SettingsFileTest, AValueThatHoldsAnywayIsNotToldOf)
{
    Write(folder / "system.reg", header + "\"A\"=\"theirs\"\n");
    Write(folder / "plain", "");
    FileSettingsStore store((folder / "plain" / "registry.reg").string(), {(folder / "system.reg").string()});
    int told = 0;
    store.NotSaved = [&told] { ++told; };
    EXPECT_EQ(Set(store, "A", REG_SZ, "theirs"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(told, 0);
    EXPECT_EQ(Set(store, "A", REG_SZ, "mine"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(told, 1);
}

TEST_F(SettingsFileTest, ManyChangesAreSetAtOnceAndTheLastIsInTheFile)
{
    FileSettingsStore store = Store();
    std::uint32_t handle = 0;
    store.RegCreateKeyA(machine, key, handle);
    for (std::uint8_t i = 0; i < 200; ++i) {
        const std::vector<std::uint8_t> data{i, 0, 0, 0};
        ASSERT_EQ(store.RegSetValueExA(handle, "Pitch", 0, REG_DWORD, data), 0);
        std::uint32_t type = 0;
        std::uint32_t size = 4;
        std::vector<std::uint8_t> back(4);
        ASSERT_EQ(store.RegQueryValueExA(handle, "Pitch", type, back, size), 0);
        ASSERT_EQ(back, data);
    }
    EXPECT_TRUE(store.Flush(Long));
    EXPECT_EQ(Read(file), header + "\"Pitch\"=dword:000000c7\n");
}

TEST_F(SettingsFileTest, ADiskThatDoesNotAnswerIsNotWaitedForForEver)
{
    FileSettingsStore store = Store();
    Set(store, "A", REG_SZ, "old");
    std::uint32_t handle = 0;
    store.RegCreateKeyA(machine, key, handle);
    {
        const HangingDisk disk;
        store.RegSetValueExA(handle, "A", 0, REG_SZ, std::vector<std::uint8_t>{'n', 'e', 'w'});
        HangingDisk::WaitForASave();
        EXPECT_FALSE(store.Flush(std::chrono::milliseconds(20)));
        EXPECT_EQ(Read(file), header + "\"A\"=\"old\"\n");
    }
    EXPECT_TRUE(store.Flush(Long));
    EXPECT_EQ(Read(file), header + "\"A\"=\"new\"\n");
}

TEST_F(SettingsFileTest, NorIsACallerWhoHangsAtTheDisk)
{
    FileSettingsStore store = Store();
    Set(store, "A", REG_SZ, "old");
    fs::create_directories(file.string() + ".new/x");
    Set(store, "A", REG_SZ, "lost"); // makes the next caller wait for the disk
    fs::remove_all(file.string() + ".new");
    std::uint32_t handle = 0;
    store.RegCreateKeyA(machine, key, handle);
    std::thread caller;
    {
        const HangingDisk disk;
        caller = std::thread([&store, handle] {
            store.RegSetValueExA(handle, "A", 0, REG_SZ, std::vector<std::uint8_t>{'n', 'e', 'w'});
        });
        HangingDisk::WaitForASave();
        EXPECT_FALSE(store.Flush(std::chrono::milliseconds(20)));
    }
    caller.join();
    EXPECT_TRUE(store.Flush(Long));
    EXPECT_EQ(Read(file), header + "\"A\"=\"new\"\n");
}

TEST_F(SettingsFileTest, AStoreThatGoesAwaySavesFirst)
{
    {
        FileSettingsStore store = Store();
        std::uint32_t handle = 0;
        store.RegCreateKeyA(machine, key, handle);
        const std::string text = "Ada";
        store.RegSetValueExA(handle, "UserName", 0, REG_SZ, {reinterpret_cast<const std::uint8_t*>(text.data()), 3});
    }
    EXPECT_EQ(Read(file), header + "\"UserName\"=\"Ada\"\n");
}

TEST_F(SettingsFileTest, AFileThatIsAFolderCountsAsEmptyAndIsLeftAlone)
{
    fs::create_directories(file / "x");
    FileSettingsStore store = Store();
    EXPECT_EQ(Get(store, "A").code, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Set(store, "A", REG_SZ, "x"), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(fs::is_directory(file / "x"));
}

TEST_F(SettingsFileTest, ALinkToTheFileStaysALink)
{
    const fs::path real = folder / "real.reg";
    Write(real, header + "\"A\"=\"old\"\n");
    fs::create_directories(file.parent_path());
    fs::create_symlink(real, file);
    FileSettingsStore store = Store();
    EXPECT_EQ(Set(store, "A", REG_SZ, "new"), 0);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(Read(real), header + "\"A\"=\"new\"\n");
}

TEST_F(SettingsFileTest, ASaveThatIsCutOffLeavesTheOldFileOrTheNewOne)
{
    const std::string old(200, 'o');
    const std::string fresh(200, 'n');
    FileSettingsStore store = Store();
    Set(store, "Text", REG_SZ, old);
    const std::string oldFile = Read(file);
    std::string newFile = oldFile;
    newFile.replace(newFile.find(old), old.size(), fresh);
    int sawNew = 0;
    for (int round = 0; round < 60; ++round) {
        Write(file, oldFile);
        const pid_t child = ::fork();
        if (child == 0) {
            FileSettingsStore own = Store();
            for (;;) {
                Set(own, "Text", REG_SZ, fresh);
                Set(own, "Text", REG_SZ, old);
            }
        }
        std::this_thread::sleep_for(std::chrono::microseconds(300 * (round + 1)));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        const std::string left = Read(file);
        ASSERT_TRUE(left == oldFile || left == newFile) << left;
        sawNew += left == newFile ? 1 : 0;
        // Leftover files must not obstruct the next save.
        FileSettingsStore next = Store();
        ASSERT_EQ(Set(next, "After", REG_SZ, std::to_string(round)), 0);
    }
    RecordProperty("rounds that ended with the new file", sawNew);
}

TEST_F(SettingsFileTest, FailedReadsDoNotUseUpHandles)
{
    FileSettingsStore store = Store();
    Set(store, "A", REG_SZ, "x");
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    store.RegOpenKeyExA(machine, key, 0, KEY_READ, first);
    for (int i = 0; i < 1000; ++i)
        store.RegOpenKeyExA(machine, key, 0, KEY_READ, last);
    EXPECT_EQ(first, last);
}

TEST_F(SettingsFileTest, ALookUpAnswersWhatTheFileHasNot)
{
    FileSettingsStore store = Store();
    Set(store, "A", REG_SZ, "file");
    store.Lookup = [](const std::string& path, const std::string& name) -> std::optional<RawValue> {
        if (path == "HKEY_LOCAL_MACHINE\\SOFTWARE\\Voxmate" && (name == "A" || name == "B"))
            return RawValue{REG_SZ, {'x'}};
        return std::nullopt;
    };
    EXPECT_EQ(Get(store, "A").data, "file");
    EXPECT_EQ(Get(store, "B").data, "x");
    EXPECT_EQ(Get(store, "C").code, ERROR_FILE_NOT_FOUND);
}

TEST_F(SettingsFileTest, FilesAreListedByPatternWithoutRegardToCaseInTheirOrder)
{
    for (const char* name : {"bravo.acs", "Alfa.acs", "zulu.txt", ".hidden.acs"})
        Write(folder / "chars" / name, "x");
    fs::create_directories(folder / "chars" / "folder.acs");
    LinuxFileSystem files;
    EXPECT_EQ(files.ListFiles((folder / "chars").string() + "/", "*.acs"),
              (std::vector<std::string>{"Alfa.acs", "bravo.acs"}));
    EXPECT_TRUE(files.ListFiles("/nowhere/at/all", "*.acs").empty());
    EXPECT_TRUE(files.FolderExists((folder / "chars").string() + "/"));
    EXPECT_FALSE(files.FolderExists((folder / "chars" / "Alfa.acs").string()));
    EXPECT_TRUE(files.FileExists((folder / "chars" / "Alfa.acs").string()));
    EXPECT_FALSE(files.FileExists((folder / "chars").string()));
    EXPECT_EQ(files.GetBaseName("/a/b.c/Some.Name.acs"), "Some.Name");
}

TEST_F(SettingsFileTest, AFilesExtensionMayBeWrittenInAnyCase)
{
    for (const char* name : {"NALU.ACS", "bo.Acs", "zulu.acsx"})
        Write(folder / "chars" / name, "x");
    fs::create_directories(folder / "chars" / "folder.ACS");
    LinuxFileSystem files;
    const std::string chars = (folder / "chars").string() + "/";
    EXPECT_EQ(files.ListFiles(chars, "*.acs"), (std::vector<std::string>{"bo.Acs", "NALU.ACS"}));
    EXPECT_TRUE(files.FileExists(chars + "NALU.acs"));
    EXPECT_TRUE(files.FileExists(chars + "bo.acs"));
    EXPECT_FALSE(files.FileExists(chars + "nalu.acs"));
    EXPECT_FALSE(files.FileExists(chars + "folder.acs"));
    EXPECT_FALSE(files.FileExists(chars + "zulu.acs"));
}

TEST_F(SettingsFileTest, TheNameAsItIsWrittenComesBeforeAnotherCase)
{
    for (const char* name : {"Bo.ACS", "Bo.acs", "Al.acS", "Al.ACS"})
        Write(folder / "chars" / name, "x");
    const std::string chars = (folder / "chars").string() + "/";
    EXPECT_EQ(InAnyExtensionCase(chars + "Bo.acs"), chars + "Bo.acs");
    EXPECT_EQ(InAnyExtensionCase(chars + "Al.acs"), chars + "Al.ACS");
    EXPECT_EQ(InAnyExtensionCase(chars + "Cy.acs"), chars + "Cy.acs");
    EXPECT_EQ(InAnyExtensionCase("/nowhere/at/all.acs"), "/nowhere/at/all.acs");
    EXPECT_EQ(InAnyExtensionCase(""), "");
}

} // namespace

} // namespace voxmate::linux_platform
