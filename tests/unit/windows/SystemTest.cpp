// The process, the clock, starting at log-in, what is remembered, and what the voices ask of the system.
#include "base/Text.h"
#include "platform/FindProgram.h"
#include "platform/Fingerprint.h"
#include "platform/LocalTime.h"
#include "platform/MemoryFile.h"
#include "platform/SharedLibrary.h"
#include "platform/TextDecoding.h"
#include "platform/windows/files/Folders.h"
#include "platform/windows/process/RunAtLogin.h"
#include "platform/windows/process/WindowsProcess.h"
#include "platform/windows/settings/RegistryStateStore.h"

#include "OwnFolder.h"
#include "platform/windows/system/WindowsApi.h"

#include <array>
#include <cstdlib>

namespace voxmate::windows_platform
{
namespace
{

class ProcessTest : public OwnFolder
{
protected:
    ProcessTest() { ::_wputenv_s(L"VOXMATE_HOME", Wide(folder).c_str()); }
    ~ProcessTest() override { ::_wputenv_s(L"VOXMATE_HOME", L""); }
};

TEST_F(ProcessTest, ItsFolderIsTheOneThatIsNamedOrAmongTheUsersData)
{
    EXPECT_EQ(WindowsProcess().ProgramDirectory(), folder);
    for (const wchar_t* none : {L"", L"a\\relative\\one"}) {
        ::_wputenv_s(L"VOXMATE_HOME", none);
        const std::string own = ProgramFolder();
        EXPECT_TRUE(own.ends_with("\\Voxmate")) << own;
        EXPECT_TRUE(std::filesystem::is_directory(Wide(own)));
    }
}

TEST_F(ProcessTest, TheSharedDataAreBesideTheProgram)
{
    const std::string program = RunningProgram();
    EXPECT_TRUE(program.ends_with("\\test_windows.exe")) << program;
    const std::string shared = SharedDataFolder();
    EXPECT_EQ(shared, program.substr(0, program.rfind('\\')) + "\\share\\voxmate");
    WindowsProcess process;
    std::string buffer(255, ' ');
    EXPECT_EQ(process.GetWindowsDirectoryA(buffer, 255), shared.size());
    EXPECT_TRUE(buffer.starts_with(shared + " "));
    std::string small = "unchanged";
    EXPECT_EQ(process.GetWindowsDirectoryA(small, 3), shared.size());
    EXPECT_EQ(small, "unchanged");
}

TEST_F(ProcessTest, TheTipsAreCopiedOnceAndTheUsersStay)
{
    const std::string shared = Path("shared");
    std::filesystem::create_directory(Wide(shared));
    Write(shared + "\\VoxmateTips.txt", "shipped");
    PlaceTips(shared, folder);
    EXPECT_EQ(Read(Path("VoxmateTips.txt")), "shipped");
    Write(Path("VoxmateTips.txt"), "mine");
    PlaceTips(shared, folder);
    EXPECT_EQ(Read(Path("VoxmateTips.txt")), "mine");
    PlaceTips(Path("none"), shared);
}

TEST_F(ProcessTest, ASecondCopyOnTheSameFolderKnowsOfTheFirst)
{
    auto first = std::make_unique<WindowsProcess>();
    EXPECT_FALSE(first->PreviousInstance());
    EXPECT_FALSE(first->PreviousInstance());
    ::_wputenv_s(L"VOXMATE_HOME", Wide(UCase(folder)).c_str());
    WindowsProcess second;
    EXPECT_TRUE(second.PreviousInstance());
    EXPECT_TRUE(second.PreviousInstance());
    ::_wputenv_s(L"VOXMATE_HOME", Wide(Path("other")).c_str());
    WindowsProcess elsewhere;
    EXPECT_FALSE(elsewhere.PreviousInstance());
    first.reset();
    EXPECT_FALSE(second.PreviousInstance());
}

TEST_F(ProcessTest, ProgramsAreStartedWithTheirArguments)
{
    WindowsProcess process;
    const std::string made = Path("made here");
    EXPECT_GT(process.Shell("cmd.exe /c mkdir \"" + made + "\"", 1), 0);
    for (int i = 0; i < 1000 && !std::filesystem::exists(Wide(made)); ++i)
        ::Sleep(10);
    EXPECT_TRUE(std::filesystem::is_directory(Wide(made)));
    EXPECT_EQ(ErrorOf([&] { process.Shell("no-such-program-anywhere", 1); }), 53);
    EXPECT_EQ(ErrorOf([&] { process.Shell("", 1); }), 53);
    EXPECT_EQ(ErrorOf([&] { process.Shell("explorer.exe " + Path("no-such-page.html"), 3); }), 53);
}

TEST(WindowsClockTest, TellsTheSystemsLocalTime)
{
    SYSTEMTIME before{};
    SYSTEMTIME after{};
    DateTime told;
    do {
        ::GetLocalTime(&before);
        told = WindowsClock().Now();
        ::GetLocalTime(&after);
    } while (before.wSecond != after.wSecond);
    EXPECT_EQ(told, (DateTime{before.wYear, before.wMonth, before.wDay, before.wHour, before.wMinute, before.wSecond}));
}

TEST(WindowsClockTest, AShortDateIsTheUsers)
{
    std::array<wchar_t, 80> pattern{};
    ::GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_SSHORTDATE, pattern.data(), static_cast<int>(pattern.size()));
    WindowsClock clock;
    const std::string shown = clock.ShortDate({2004, 3, 7, 9, 5, 0});
    if (std::wstring(pattern.data()) == L"M/d/yyyy") {
        EXPECT_EQ(shown, "3/7/2004");
    }
    EXPECT_NE(shown, clock.ShortDate({2004, 7, 3, 9, 5, 0}));
    EXPECT_EQ(clock.ShortDate({1200, 3, 7, 9, 5, 0}), "1200-03-07");
}

TEST(LocalTimeTest, AMomentHasItsDateAndAnImpossibleOneThatOfZero)
{
    SYSTEMTIME universal{2001, 9, 0, 9, 1, 46, 40, 0};
    SYSTEMTIME local{};
    ASSERT_TRUE(::SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local));
    EXPECT_EQ(LocalTime(1'000'000'000),
              (DateTime{local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond}));
    EXPECT_EQ(LocalTime(INT64_MAX), LocalTime(0));
    EXPECT_EQ(LocalTime(INT64_MIN), LocalTime(0));
}

TEST(RunAtLoginTest, IsSwitchedOnAndOffHereAndInTheSystemsList)
{
    RunAtLogin autostart("C:\\Program Files\\Voxmate\\voxmate.exe", "VoxmateTest");
    EXPECT_TRUE(autostart.Turn(false));
    EXPECT_FALSE(autostart.IsOn());
    EXPECT_TRUE(autostart.Turn(true));
    EXPECT_TRUE(autostart.IsOn());
    std::array<wchar_t, 200> command{};
    DWORD size = sizeof command;
    EXPECT_EQ(autostart.Path(), "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Run");
    EXPECT_EQ(::RegGetValueW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\Run", L"VoxmateTest",
                             RRF_RT_REG_SZ, nullptr, command.data(), &size),
              0);
    EXPECT_EQ(Narrow(command.data()), "\"C:\\Program Files\\Voxmate\\voxmate.exe\" --quiet");
    const std::array<BYTE, 12> off{3};
    const wchar_t* const list = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\StartupApproved\\Run";
    ::RegSetKeyValueW(HKEY_CURRENT_USER, list, L"VoxmateTest", REG_BINARY, off.data(), off.size());
    EXPECT_FALSE(autostart.IsOn());
    EXPECT_TRUE(autostart.Turn(true));
    EXPECT_TRUE(autostart.IsOn());
    EXPECT_TRUE(autostart.Turn(false));
    EXPECT_FALSE(autostart.IsOn());
}

TEST(RegistryStateTest, AnyTextIsRemembered)
{
    const std::string key = "Software\\VoxmateTestState";
    ::RegDeleteTreeW(HKEY_CURRENT_USER, Wide(key).c_str());
    const std::vector<std::string> texts{"10,20,300,400", "", "two\r\nlines\\n", "Zo\xC3\xAB", std::string(1000, 'x')};
    for (const std::string& text : texts) {
        RegistryStateStore(key).Set("window.place", text);
        EXPECT_EQ(RegistryStateStore(key).Get("window.place"), text);
    }
    EXPECT_EQ(RegistryStateStore(key).Get("none"), "");
    ::RegDeleteTreeW(HKEY_CURRENT_USER, Wide(key).c_str());
}

TEST(LibraryTest, IsLoadedFromTheSystemAndNotFromTheCurrentFolder)
{
    const auto system = SharedLibrary::Load("kernel32.dll");
    ASSERT_TRUE(system);
    EXPECT_EQ(system->Find<DWORD(WINAPI*)()>("GetCurrentProcessId")(), ::GetCurrentProcessId());
    EXPECT_EQ(system->Find<void (*)()>("NoSuchFunction"), nullptr);
    EXPECT_TRUE(EqualNoCase(Narrow(system->Folder().native()), "C:\\windows\\system32"));
    EXPECT_FALSE(SharedLibrary::Load("no-such-library.dll"));
    EXPECT_EQ(SharedLibrary::FileName("flite", 1), "libflite.dll");
}

class SystemFilesTest : public OwnFolder
{
};

TEST_F(SystemFilesTest, AMemoryFileIsThereAsLongAsItsObject)
{
    std::string path;
    {
        const MemoryFile file(std::string("a\0b", 3));
        path = file.Path();
        EXPECT_EQ(Read(path), std::string("a\0b", 3));
    }
    EXPECT_FALSE(std::filesystem::exists(Wide(path)));
}

TEST_F(SystemFilesTest, ProgramsAreFoundInFullFoldersOnly)
{
    Write(Path("tool.exe"), "");
    EXPECT_EQ(FindProgram("tool", "relative;" + folder), Path("tool.exe"));
    EXPECT_EQ(FindProgram("tool.exe", folder + ";"), Path("tool.exe"));
    EXPECT_EQ(FindProgram("other", folder), "");
    EXPECT_TRUE(EqualNoCase(FindProgram("cmd"), "C:\\windows\\system32\\cmd.exe"));
}

TEST_F(SystemFilesTest, AFingerprintIsTheDigestOfTheContent)
{
    Write(Path("a"), "abc");
    EXPECT_EQ(Fingerprint(Path("a")), "900150983cd24fb0d6963f7d28e17f72"); // RFC 1321
    Write(Path("a"), std::string(2 << 20, 'x'));
    const std::string large = Fingerprint(Path("a"));
    EXPECT_EQ(large.size(), 32U);
    Write(Path("a"), std::string((2 << 20) + 1, 'x'));
    EXPECT_NE(Fingerprint(Path("a")), large);
    EXPECT_EQ(Fingerprint(Path("none")), "");
    EXPECT_EQ(Fingerprint(folder), "");
}

TEST(TextDecodingTest, EncodingsAreKnownByTheNamesThatDocumentsUse)
{
    EXPECT_EQ(DecodeFrom("\xCF\xF0", "windows-1251"), "\xD0\x9F\xD1\x80");
    EXPECT_EQ(DecodeFrom("\xCF\xF0", "cp1251"), "\xD0\x9F\xD1\x80");
    EXPECT_EQ(DecodeFrom("\xF0\xD2", "KOI8-R"), "\xD0\x9F\xD1\x80");
    EXPECT_EQ(DecodeFrom("\x80", "ISO-8859-1"), "\xE2\x82\xAC");
    EXPECT_EQ(DecodeFrom("\xB1", "iso-8859-2"), "\xC4\x85");
    EXPECT_EQ(DecodeFrom("\x82\xA0", "Shift_JIS"), "\xE3\x81\x82");
    EXPECT_EQ(DecodeFrom("x", "no-such-encoding"), std::nullopt);
    EXPECT_EQ(DecodeFrom("x", ""), std::nullopt);
    EXPECT_EQ(DecodeFrom("x", "cp99999999999"), std::nullopt);
    EXPECT_EQ(DecodeUnknown("Zo\xC3\xAB \xFF"), "Zo\xC3\xAB \xC3\xBF");
}

} // namespace
} // namespace voxmate::windows_platform
