// Files that are dropped on a form or pasted into its fields.
#include "tests/unit/qt/QtTest.h"

#include "qt/widgets/FileDrops.h"

#include <QClipboard>
#include <QDropEvent>
#include <QMimeData>
#include <QPlainTextEdit>

namespace voxmate::qt
{

namespace
{

std::unique_ptr<QMimeData> Named(const char* addresses)
{
    auto data = std::make_unique<QMimeData>();
    data->setData(QStringLiteral("text/uri-list"), addresses);
    return data;
}

struct Done {
    bool taken = false;
    Qt::DropAction action = Qt::IgnoreAction;
};

/// Drags data over a widget and drops it there.
Done DropOn(QWidget& widget, const QMimeData& data, Qt::DropActions possible = Qt::CopyAction | Qt::MoveAction)
{
    QDragEnterEvent enter(QPoint(5, 5), possible, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &enter);
    QDropEvent drop(QPointF(5, 5), possible, &data, Qt::LeftButton, Qt::NoModifier);
    drop.setDropAction(Qt::MoveAction);
    QApplication::sendEvent(&widget, &drop);
    return {enter.isAccepted() && drop.isAccepted(), drop.dropAction()};
}

class FileDropsTest : public testing::Test
{
protected:
    FileDropsTest()
    {
        form.FilesDropped = [this](const std::vector<std::string>& files) { dropped.push_back(files); };
        form.Show();
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() == QStringLiteral("frmTest") && window->isVisible())
                window_ = window;
        }
        text = ChildOf<QPlainTextEdit>(window_, "txtText");
    }
    /// True when the widget takes it. `action` is what was done.
    bool Drop(QWidget& widget, const QMimeData& data, Qt::DropActions possible = Qt::CopyAction | Qt::MoveAction)
    {
        const Done done = DropOn(widget, data, possible);
        action = done.action;
        return done.taken;
    }

    QtApplication& app = App();
    QtWindowSystem windows{VOXMATE_SHARE_DIR};
    TestForm form{windows};
    QWidget* window_ = nullptr;
    QPlainTextEdit* text = nullptr;
    std::vector<std::vector<std::string>> dropped;
    Qt::DropAction action = Qt::IgnoreAction;
};

using Dropped = std::vector<std::vector<std::string>>;

TEST_F(FileDropsTest, APathHasAnyBytesAndComesFromAnAddress)
{
    EXPECT_EQ(FilesIn(Named("file:///tmp/a%20b.txt\r\n# a comment\r\nfile:///tmp/%FF\r\n").get()),
              (std::vector<std::string>{"/tmp/a b.txt", "/tmp/\xFF"}));
    EXPECT_EQ(FilesIn(Named("file:///one").get()), (std::vector<std::string>{"/one"}));
    EXPECT_EQ(FilesIn(Named("https://example.org/a.txt\r\n").get()), (std::vector<std::string>{}));
    EXPECT_EQ(FilesIn(Named("file:///one\r\nhttps://example.org/\r\n").get()), (std::vector<std::string>{}));
    EXPECT_EQ(FilesIn(nullptr), (std::vector<std::string>{}));
}

TEST_F(FileDropsTest, FilesDroppedOnTheWindowOrOnAFieldAreCopiedAndHandedOverAfterwards)
{
    const auto data = Named("file:///a.pdf\r\nfile:///b.txt\r\n");
    for (QWidget* widget : {window_, text->viewport()}) {
        dropped.clear();
        EXPECT_TRUE(Drop(*widget, *data));
        EXPECT_EQ(action, Qt::CopyAction);
        EXPECT_EQ(dropped, Dropped{}) << "not within the drop";
        QCoreApplication::processEvents();
        EXPECT_EQ(dropped, (Dropped{{"/a.pdf", "/b.txt"}}));
        EXPECT_EQ(form.txtText.Text.get(), "");
    }
}

TEST_F(FileDropsTest, WhatMayOnlyBeMovedIsRefused)
{
    const auto data = Named("file:///a.pdf\r\n");
    EXPECT_FALSE(Drop(*window_, *data, Qt::MoveAction));
    EXPECT_FALSE(Drop(*text->viewport(), *data, Qt::MoveAction));
    QCoreApplication::processEvents();
    EXPECT_EQ(dropped, Dropped{});
    EXPECT_TRUE(Drop(*window_, *data, Qt::LinkAction));
    EXPECT_EQ(action, Qt::LinkAction);
}

TEST_F(FileDropsTest, DroppedTextGoesIntoTheField)
{
    QMimeData data;
    data.setText(QStringLiteral("Hello"));
    EXPECT_TRUE(Drop(*text->viewport(), data));
    EXPECT_FALSE(Drop(*window_, data));
    EXPECT_EQ(form.txtText.Text.get(), "Hello");
    EXPECT_EQ(dropped, Dropped{});
}

TEST_F(FileDropsTest, PastedFilesAreHandedOverAndPastedTextIsText)
{
    windows.ClipboardSetText("Hello");
    text->paste();
    EXPECT_EQ(form.txtText.Text.get(), "Hello");
    QGuiApplication::clipboard()->setMimeData(Named("file:///a.pdf\r\n").release());
    text->paste();
    EXPECT_EQ(dropped, Dropped{}) << "not within the key's event";
    QCoreApplication::processEvents();
    EXPECT_EQ(dropped, (Dropped{{"/a.pdf"}}));
    EXPECT_EQ(form.txtText.Text.get(), "Hello");
    QGuiApplication::clipboard()->setMimeData(Named("https://example.org/\r\n").release());
    text->paste();
    EXPECT_EQ(form.txtText.Text.get(), "Hellohttps://example.org/");
}

TEST_F(FileDropsTest, ADropWhoseFormGoesAwayIsForgotten)
{
    const auto data = Named("file:///a.pdf\r\n");
    EXPECT_TRUE(Drop(*window_, *data));
    form.Unload();
    QCoreApplication::processEvents();
    EXPECT_EQ(dropped, Dropped{});
}

TEST(WithoutFilesTest, AFormThatTakesNoFilesRefusesADrop)
{
    App();
    QtWindowSystem windows{VOXMATE_SHARE_DIR};
    TestForm form{windows};
    form.Show();
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == QStringLiteral("frmTest") && window->isVisible()) {
            EXPECT_FALSE(DropOn(*window, *Named("file:///a.pdf\r\n")).taken);
        }
    }
}

} // namespace

} // namespace voxmate::qt
