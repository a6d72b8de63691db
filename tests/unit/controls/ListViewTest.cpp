#include "controls/ListView.h"
#include "controls/Form.h"
#include "tests/fakes/RecordingPeer.h"

#include <gtest/gtest.h>

namespace voxmate
{

namespace
{

using Order = std::vector<std::uint32_t>;
using Properties = std::vector<Property>;

class ListViewTest : public ::testing::Test
{
protected:
    ListView list{nullptr, "lstvItems", {{"Id", 5}, {"Title", 0}}};

    void Fill(const std::vector<std::string>& titles)
    {
        for (const std::string& title : titles)
            list.AddItem({std::to_string(list.ListItems().size() + 1), 1, {title}});
    }
};

TEST_F(ListViewTest, UnsortedItemsStandInTheOrderInWhichTheyWereAdded)
{
    Fill({"b", "a", "c"});
    EXPECT_EQ(list.Rows(), (Order{1, 2, 3}));
}

TEST_F(ListViewTest, ItemsAreSortedByTheTextOfTheirColumnInEitherOrder)
{
    Fill({"b", "a", "c"});
    list.SortKey = 1;
    list.Sorted = true;
    EXPECT_EQ(list.Rows(), (Order{2, 1, 3}));
    list.Order = SortOrder::Descending;
    EXPECT_EQ(list.Rows(), (Order{3, 1, 2}));
}

TEST_F(ListViewTest, NumbersAreSortedAsTheTextsTheyAre)
{
    Fill(std::vector<std::string>(11, "x"));
    list.Sorted = true;
    EXPECT_EQ(list.Rows(), (Order{1, 10, 11, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST_F(ListViewTest, CapitalsAndSmallLettersAreAlikeAndItemsAlikeKeepTheirOrderBothWays)
{
    Fill({"beta", "Alpha", "BETA", "alpha", "Äpfel", "äpfel"});
    list.SortKey = 1;
    list.Sorted = true;
    EXPECT_EQ(list.Rows(), (Order{2, 4, 1, 3, 5, 6}));
    list.Order = SortOrder::Descending;
    EXPECT_EQ(list.Rows(), (Order{5, 6, 1, 3, 2, 4}));
}

TEST_F(ListViewTest, AColumnThatAnItemLacksIsEmptyThere)
{
    Fill({"b"});
    list.AddItem({"2", 1, {}});
    list.SortKey = 1;
    list.Sorted = true;
    EXPECT_EQ(list.Rows(), (Order{2, 1}));
    EXPECT_EQ(list.ListItems()[1].TextOf(1), "");
    EXPECT_EQ(list.ListItems()[0].TextOf(0), "1");
    EXPECT_EQ(list.ListItems()[0].TextOf(7), "");
}

TEST_F(ListViewTest, AnItemAddedToASortedListTakesItsPlace)
{
    Fill({"a", "c"});
    list.SortKey = 1;
    list.Sorted = true;
    EXPECT_EQ(list.Rows(), (Order{1, 2}));
    Fill({"b"});
    EXPECT_EQ(list.Rows(), (Order{1, 3, 2}));
}

TEST_F(ListViewTest, ThePeerIsToldOnceOfManyChangesAndAgainOfTheFirstOneAfterItHasLooked)
{
    fakes::RecordingPeer peer;
    list.SetPeer(&peer);
    list.ClearItems();
    EXPECT_EQ(peer.updates, Properties{});
    Fill({"a", "b", "c"});
    list.ClearItems();
    Fill({"d"});
    list.Sorted = true;
    EXPECT_EQ(peer.updates, Properties{Property::Items});
    EXPECT_EQ(list.Rows(), Order{1});
    Fill({"e"});
    EXPECT_EQ(peer.updates, (Properties{Property::Items, Property::Items}));
}

TEST_F(ListViewTest, SelectingFromCodeTellsThePeerButRaisesNothing)
{
    fakes::RecordingPeer peer;
    int clicks = 0;
    Fill({"a", "b"});
    list.SetPeer(&peer);
    list.ItemClick = [&](std::size_t) { ++clicks; };
    list.SelectItem(2);
    list.SelectItem(2);
    EXPECT_EQ(list.SelectedItem(), 2U);
    EXPECT_EQ(peer.updates, Properties{Property::Selection});
    EXPECT_EQ(clicks, 0);
}

TEST_F(ListViewTest, AnItemThatIsNotThereIsNotSelected)
{
    Fill({"a", "b"});
    list.SelectItem(2);
    list.SelectItem(0);
    list.SelectItem(3);
    EXPECT_EQ(list.SelectedItem(), 2U);
    list.ClearItems();
    EXPECT_EQ(list.SelectedItem(), 0U);
}

TEST_F(ListViewTest, TheUsersClickSelectsFirstAndIsToldEachTime)
{
    std::vector<std::size_t> clicked;
    Fill({"a", "b"});
    list.ItemClick = [&](std::size_t number) {
        EXPECT_EQ(list.SelectedItem(), number);
        clicked.push_back(number);
    };
    list.UserItemClick(2);
    list.UserItemClick(2);
    list.UserItemClick(3);
    list.UserItemClick(0);
    EXPECT_EQ(clicked, (std::vector<std::size_t>{2, 2}));
}

TEST_F(ListViewTest, AHeadersClickTellsItsColumnCountedFromOne)
{
    std::vector<int> columns;
    list.ColumnClick = [&](int column) { columns.push_back(column); };
    list.UserColumnClick(2);
    list.Enabled = false;
    list.UserColumnClick(1);
    EXPECT_EQ(columns, std::vector<int>{2});
}

TEST_F(ListViewTest, PicturesAreCountedFromOne)
{
    const ImageList images(nullptr, "Images", {{"done", "Done"}, {"pending", "Pending"}});
    ASSERT_NE(images.At(1), nullptr);
    EXPECT_EQ(images.At(1)->Picture, "done");
    ASSERT_NE(images.At(2), nullptr);
    EXPECT_EQ(images.At(2)->Description, "Pending");
    EXPECT_EQ(images.At(0), nullptr);
    EXPECT_EQ(images.At(3), nullptr);
}

} // namespace

} // namespace voxmate
