#include "forms/frmAbout.h"
#include "tests/fakes/FakeMainWindow.h"
#include "tests/fakes/ProgramTest.h"

#include <gtest/gtest.h>

namespace voxmate
{

namespace
{

using Lines = std::vector<std::string>;

const std::string first = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO";
const std::string second = "SOFTWARE\\Microsoft\\Shared Tools Location";

class AboutFormTest : public ProgramTest
{
protected:
    fakes::FakeMainWindow window{fake.log};
    frmAbout form{program};

    AboutFormTest() { program.Main = &window; }
    void Store(const std::string& key, const std::string& name, std::uint32_t type, const std::string& data)
    {
        fake.store.keys[key][name] = {type, data};
    }
    Lines Started() const { return fake.process.commands; }
    void ExpectUnavailable()
    {
        EXPECT_EQ(Started(), Lines{});
        ASSERT_EQ(fake.windows.boxes.size(), 1u);
        EXPECT_EQ(fake.windows.boxes[0].text, "System Information Is Unavailable At This Time");
        EXPECT_EQ(fake.windows.boxes[0].style, 0);
        EXPECT_EQ(fake.store.openHandles, 0);
    }
};

TEST_F(AboutFormTest, SaysWhatItIsAndClosesByOk)
{
    form.Show();
    EXPECT_EQ(form.Caption, "About Voxmate \xC2\xAE");
    EXPECT_EQ(form.lblTitle.Caption.get(), "Voxmate \xC2\xAE");
    EXPECT_EQ(form.lblVersion.Caption.get(), "Version 1.1 - Build 5  - Windows NT/98 and above");
    EXPECT_EQ(form.cmdSysInfo.Caption.get(), "&System Info...");
    EXPECT_NE(form.Find("Picture1"), nullptr);
    EXPECT_TRUE(form.cmdOK.IsDefault);
    EXPECT_TRUE(form.cmdOK.IsCancel);
    form.cmdOK.UserClick();
    EXPECT_FALSE(form.IsLoaded());
}

TEST_F(AboutFormTest, StartsTheToolThatTheRegistryNames)
{
    Store(first, "PATH", REG_SZ, std::string("C:\\Tools\\Info.exe\0", 18));
    Store(second, "MSINFO", REG_SZ, "C:\\Other");
    fake.files.files.insert("C:\\Other\\MSINFO32.EXE");
    fake.store.logCalls = true;
    form.cmdSysInfo.UserClick();
    EXPECT_EQ(fake.log, (Lines{"RegOpenKeyExA 0x80000002 " + first + " 0 0x2003F", "RegQueryValueExA PATH 0 1024",
                               "RegCloseKey", "Shell C:\\Tools\\Info.exe"}));
    EXPECT_EQ(Started(), Lines{"C:\\Tools\\Info.exe style 1"});
    EXPECT_TRUE(fake.windows.boxes.empty());
    EXPECT_EQ(fake.store.openHandles, 0);
}

TEST_F(AboutFormTest, OrTheOneInTheFolderThatTheRegistryNames)
{
    Store(second, "MSINFO", REG_SZ, "C:\\Other");
    fake.files.files.insert("C:\\Other\\MSINFO32.EXE");
    form.cmdSysInfo.UserClick();
    EXPECT_EQ(Started(), Lines{"C:\\Other\\MSINFO32.EXE style 1"});
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(AboutFormTest, WithNeitherItIsUnavailable)
{
    form.cmdSysInfo.UserClick();
    ExpectUnavailable();
}

TEST_F(AboutFormTest, AFolderWithoutTheToolIsNoHelp)
{
    Store(second, "MSINFO", REG_SZ, "C:\\Other");
    form.cmdSysInfo.UserClick();
    ExpectUnavailable();
}

TEST_F(AboutFormTest, AKeyWithoutTheValueIsNoHelp)
{
    Store(first, "Other", REG_SZ, "x");
    Store(second, "Other", REG_SZ, "x");
    form.cmdSysInfo.UserClick();
    ExpectUnavailable();
}

TEST_F(AboutFormTest, AValueOf1024BytesIsReadAndALongerOneIsNot)
{
    Store(first, "PATH", REG_SZ, std::string(1024, 'x'));
    form.cmdSysInfo.UserClick();
    EXPECT_EQ(Started(), Lines{std::string(1024, 'x') + " style 1"});
    fake.process.commands.clear();
    Store(first, "PATH", REG_SZ, std::string(1025, 'x'));
    form.cmdSysInfo.UserClick();
    ExpectUnavailable();
}

TEST_F(AboutFormTest, ANumberIsReadAsItsDecimalText)
{
    struct {
        std::string data;
        const char* text;
    } rows[] = {{std::string("\x2A\0\0\0", 4), "42"},
                {std::string("\0\x10\x05\0", 4), "331776"},
                {std::string("\x78\x56\x34\x12", 4), "305419896"},
                {std::string("\xFF\xFF\xFF\xFF", 4), "-1"},
                {std::string("\0\0\0\0", 4), "0"}};
    for (const auto& row : rows) {
        Store(first, "PATH", REG_DWORD, row.data);
        fake.process.commands.clear();
        form.cmdSysInfo.UserClick();
        EXPECT_EQ(Started(), Lines{std::string(row.text) + " style 1"});
    }
}

TEST_F(AboutFormTest, AValueOfAnotherTypeIsReadAsItsRawText)
{
    Store(first, "PATH", 2, "%SystemRoot%\\info.exe");
    form.cmdSysInfo.UserClick();
    EXPECT_EQ(Started(), Lines{"%SystemRoot%\\info.exe style 1"});
}

TEST_F(AboutFormTest, AToolThatCannotBeStartedRaisesItsError)
{
    Store(first, "PATH", REG_SZ, "C:\\Gone.exe");
    fake.process.shellFails = true;
    EXPECT_THROW(form.cmdSysInfo.UserClick(), RuntimeError);
}

} // namespace

} // namespace voxmate
