// The folder picker.
#include "tests/unit/qt/QtTest.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTimer>

namespace voxmate::qt
{

namespace
{

/// Runs `act` on the next folder picker.
void InPicker(const std::function<void(QFileDialog&)>& act)
{
    QTimer::singleShot(50, &App(), [act] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        act(*dialog);
    });
}

std::string PathOf(WindowSystem& windows, ItemList list)
{
    std::string path = "none";
    return windows.SHGetPathFromIDListA(list, path) ? path : "no path";
}

using FolderDialogTest = QtTest;

} // namespace

TEST_F(FolderDialogTest, TheFolderPickerBeginsWhereItIsToldAndTellsTheChosenPathUntilItIsFreed)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkdir("cast"));
    const std::string title = "Select Characters' Location :";
    InPicker([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle().toStdString(), title);
        EXPECT_EQ(dialog.directory().canonicalPath(), QDir(folder.path()).canonicalPath());
        auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(name, nullptr);
        name->setText("cast");
        QTest::keyClick(name, Qt::Key_Return);
    });
    const ItemList list = windows.SHBrowseForFolderA({title, folder.path().toStdString() + "/", BIF_RETURNONLYFSDIRS});
    EXPECT_NE(list, 0u);
    EXPECT_EQ(PathOf(windows, list), folder.path().toStdString() + "/cast");
    windows.CoTaskMemFree(list);
    EXPECT_EQ(PathOf(windows, list), "no path");
}

TEST_F(FolderDialogTest, ACancelledFolderPickerGivesNoItemList)
{
    InPicker([](QFileDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_EQ(windows.SHBrowseForFolderA({"Where?", "/no/such/folder", BIF_RETURNONLYFSDIRS}), 0u);
}

TEST_F(FolderDialogTest, AFolderPickersButtonsHaveNoIconsAsNoButtonsHave)
{
    InPicker([](QFileDialog& dialog) {
        const QList<QAbstractButton*> buttons = dialog.findChild<QDialogButtonBox*>()->buttons();
        EXPECT_EQ(buttons.size(), 2);
        for (const QAbstractButton* button : buttons)
            EXPECT_TRUE(button->icon().isNull()) << button->text().toStdString();
        dialog.reject();
    });
    windows.SHBrowseForFolderA({"Where?", "", BIF_RETURNONLYFSDIRS});
}

TEST_F(FolderDialogTest, AFolderPickerWithoutAFolderToBeginInBeginsAtHome)
{
    InPicker([](QFileDialog& dialog) {
        EXPECT_EQ(dialog.directory().path(), QDir::homePath());
        dialog.reject();
    });
    windows.SHBrowseForFolderA({"Where?", "/no/such/folder", BIF_RETURNONLYFSDIRS});
}

} // namespace voxmate::qt
