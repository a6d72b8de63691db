#include "modules/BrowseFolder.h"

#include "ModuleTest.h"

namespace voxmate
{

namespace
{

class BrowseFolderTest : public ModuleTest
{
};

TEST_F(BrowseFolderTest, TheChosenFoldersPathIsReturnedAndItsItemListFreed)
{
    Settings.CharacterPath = "C:\\Chars\\";
    fake.windows.chosenFolder = "D:\\Other";
    EXPECT_EQ(BrowseForFolder("Select Characters' Location :"), "D:\\Other");
    EXPECT_EQ(fake.log, (Lines{"SHBrowseForFolderA Select Characters' Location :", "SHGetPathFromIDListA 77",
                               "CoTaskMemFree 77"}));
    ASSERT_EQ(fake.windows.browsed.size(), 1u);
    EXPECT_EQ(fake.windows.browsed[0].start, "C:\\Chars\\");
    EXPECT_EQ(fake.windows.browsed[0].flags, 1u);
}

TEST_F(BrowseFolderTest, ACancelledPickerGivesNothingAndFreesNothing)
{
    EXPECT_EQ(BrowseForFolder("Where?"), "");
    EXPECT_EQ(fake.log, (Lines{"SHBrowseForFolderA Where?"}));
}

TEST_F(BrowseFolderTest, AnItemListWithoutAPathGivesNothingButIsFreed)
{
    fake.windows.chosenFolder = "My Network";
    fake.windows.folderHasPath = false;
    EXPECT_EQ(BrowseForFolder("Where?"), "");
    EXPECT_EQ(fake.log.back(), "CoTaskMemFree 77");
}

} // namespace

} // namespace voxmate
