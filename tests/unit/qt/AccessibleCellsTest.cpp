#include "qt/system/AccessibleCells.h"
#include "tests/unit/qt/QtTest.h"

#include <QStringListModel>
#include <QTreeView>

#include <memory>

namespace voxmate::qt
{

namespace
{

class AccessibleCellsTest : public testing::Test
{
protected:
    AccessibleCellsTest() { App(); }

    // The number that the next interface gets.
    static QAccessible::Id Next()
    {
        QWidget latest;
        return QAccessible::uniqueId(QAccessible::queryAccessibleInterface(&latest)) + 1;
    }
    // What a list does for a screen reader when a row is selected.
    static void TellOf(QTreeView& view, int cell)
    {
        QAccessibleEvent event(&view, QAccessible::Selection);
        event.setChild(cell);
        EXPECT_NE(event.accessibleInterface(), nullptr);
    }
    static int Left(QAccessible::Id first, QAccessible::Id end)
    {
        int left = 0;
        for (QAccessible::Id id = first; id < end; ++id)
            left += QAccessible::accessibleInterface(id) != nullptr;
        return left;
    }

    QStringListModel model{{"bread", "butter", "jam"}};
    AccessibleCells cells;
};

TEST_F(AccessibleCellsTest, OnceTheListIsGoneNothingIsLeftOfItsCells)
{
    const QAccessible::Id first = Next();
    {
        QTreeView view;
        view.setModel(&model);
        view.show();
        for (int i = 0; i < 30; ++i)
            TellOf(view, i % 4); // the heading is the first
        // While the list is there, so are its cells.
        const int there = Left(first, Next());
        cells.DeleteDead();
        EXPECT_EQ(Left(first, Next()), there);
    }
    cells.DeleteDead();
    EXPECT_EQ(Left(first, Next()), 0);
}

TEST_F(AccessibleCellsTest, ARowThatIsGoneTakesItsCellsAlong)
{
    QTreeView view;
    view.setModel(&model);
    view.show();
    const QAccessible::Id first = Next();
    TellOf(view, 2);
    TellOf(view, 3);
    const int there = Left(first, Next());
    model.removeRows(1, 2);
    cells.DeleteDead();
    EXPECT_EQ(Left(first, Next()), there - 2);
}

} // namespace

} // namespace voxmate::qt
