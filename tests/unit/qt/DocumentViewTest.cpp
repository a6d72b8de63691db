// The view of a document's text as a widget: its marks, what a click and the keys mean, and long texts.
#include "controls/DocumentView.h"
#include "qt/widgets/ReadableStyle.h"
#include "tests/unit/qt/QtTest.h"

#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>

#include <optional>

namespace voxmate::qt
{

namespace
{

class DocumentForm : public Form
{
public:
    explicit DocumentForm(WindowSystem& windows) : Form(windows, "frmDocument")
    {
        Border = BorderStyle::Sizable;
        vwText.AccessibleName = "Text of the document";
        Arrangement = Item(vwText).Min(400, 300);
    }
    DocumentView vwText{this, "vwText"};
};

class DocumentViewTest : public testing::Test
{
protected:
    DocumentViewTest()
    {
        form.Show();
        form.vwText.Chosen = [this](const TextPlace& place) { chosen = place; };
        form.vwText.Stepped = [this](const TextPlace& place, int by) {
            stepped = place;
            steps += by;
        };
    }
    QPlainTextEdit* Edit() const
    {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->objectName() == QStringLiteral("frmDocument") && window->isVisible())
                return static_cast<QPlainTextEdit*>(window->findChild<QWidget*>(QStringLiteral("vwText")));
        throw std::logic_error("the form has no window");
    }
    std::string Marked(qsizetype number) const
    {
        const QList<QTextEdit::ExtraSelection> marks = Edit()->extraSelections();
        return number < marks.size() ? marks[number].cursor.selectedText().toStdString() : "";
    }
    /// Whether a stretch of the text is in sight.
    bool InSight(const QTextCursor& cursor) const
    {
        const QRect rect = Edit()->cursorRect(cursor);
        return rect.top() >= 0 && rect.bottom() <= Edit()->viewport()->height();
    }

    QtApplication& app = App();
    QtWindowSystem windows{VOXMATE_SHARE_DIR};
    DocumentForm form{windows};
    std::optional<TextPlace> chosen;
    std::optional<TextPlace> stepped;
    int steps = 0;
};

TEST_F(DocumentViewTest, TextComesPieceByPieceAndStaysAsItIs)
{
    form.vwText.Append({"Title", 1});
    form.vwText.Append({"One\nline.", 0});
    form.vwText.Flush();
    form.vwText.Extend(" More.");
    form.vwText.Append({"<b>Last</b>\x02", 0});
    form.vwText.Flush();
    EXPECT_EQ(Edit()->toPlainText().toStdString(), "Title\nOne\nline. More.\n<b>Last</b>\x02");
    EXPECT_EQ(Edit()->blockCount(), 3);
    EXPECT_TRUE(Edit()->isReadOnly());
    const auto height = [this](int block) {
        return Edit()->document()->findBlockByNumber(block).layout()->boundingRect().height();
    };
    EXPECT_GT(height(0), height(2) * 1.3) << "a heading is larger";
    form.vwText.Clear();
    EXPECT_EQ(Edit()->toPlainText(), QString());
}

TEST_F(DocumentViewTest, AParagraphBeginsAtTheSideWhereItsWritingDoes)
{
    form.vwText.Append({"Left to right.", 0});
    form.vwText.Append({"שלום עולם.", 0});
    form.vwText.Flush();
    const auto begin = [this](int block) {
        return Edit()->cursorRect(QTextCursor(Edit()->document()->findBlockByNumber(block))).x();
    };
    const int width = Edit()->viewport()->width();
    EXPECT_LT(begin(0), width / 10);
    EXPECT_GT(begin(1), width * 9 / 10);
    // A click there finds the paragraph's beginning.
    QTextCursor last(Edit()->document());
    last.movePosition(QTextCursor::End);
    EXPECT_EQ(Edit()->cursorForPosition({begin(1), Edit()->cursorRect(last).center().y()}).positionInBlock(), 0);
}

TEST_F(DocumentViewTest, SentenceAndWordAreMarkedWhateverTheirLetters)
{
    form.vwText.Append({"Vorher. Ein \U0001F600 Mädchen\nläuft.", 0});
    form.vwText.Flush();
    form.vwText.Mark({0, 8, 34}, {0, 17, 25});
    EXPECT_EQ(Marked(0), "Ein \U0001F600 Mädchen\u2028läuft.");
    EXPECT_EQ(Marked(1), "Mädchen");
    form.vwText.Mark({}, {});
    EXPECT_TRUE(Edit()->extraSelections().isEmpty());
}

TEST_F(DocumentViewTest, MarksCanBeReadInLightAndDarkAndTheWordIsUnderlined)
{
    form.vwText.Append({"One sentence.", 0});
    form.vwText.Flush();
    form.vwText.Mark({0, 0, 13}, {0, 0, 3});
    for (const auto& [ground, ink] : {std::pair(QColor(Qt::white), QColor(Qt::black)),
                                      std::pair(QColor(0x23, 0x26, 0x29), QColor(0xEF, 0xF0, 0xF1)),
                                      std::pair(QColor(Qt::black), QColor(0xBB, 0xBB, 0xBB))}) {
        QPalette palette;
        palette.setColor(QPalette::Base, ground);
        palette.setColor(QPalette::Text, ink);
        Edit()->setPalette(palette);
        const QList<QTextEdit::ExtraSelection> marks = Edit()->extraSelections();
        ASSERT_EQ(marks.size(), 2);
        for (const QTextEdit::ExtraSelection& mark : marks)
            EXPECT_GE(Contrast(mark.format.foreground().color(), mark.format.background().color()), 4.5);
        EXPECT_NE(marks[0].format.background(), marks[1].format.background());
        EXPECT_FALSE(marks[0].format.fontUnderline());
        EXPECT_TRUE(marks[1].format.fontUnderline());
    }
}

TEST_F(DocumentViewTest, AClickTellsItsPlaceAndADragSelects)
{
    form.vwText.Append({"Ähnlich.", 0});
    form.vwText.Append({"Äpfel sind rot.", 0});
    form.vwText.Flush();
    const auto point = [this](int block, int at) {
        QTextCursor cursor(Edit()->document()->findBlockByNumber(block));
        cursor.movePosition(QTextCursor::Right, QTextCursor::MoveAnchor, at);
        return Edit()->cursorRect(cursor).center();
    };
    QTest::mouseClick(Edit()->viewport(), Qt::LeftButton, {}, point(1, 6));
    EXPECT_EQ(chosen, (TextPlace{1, 7})) << "in bytes";
    chosen.reset();
    QTest::mouseClick(Edit()->viewport(), Qt::LeftButton, {}, QPoint(20, Edit()->viewport()->height() - 4));
    EXPECT_FALSE(chosen) << "below the text";
    QTest::mouseClick(Edit()->viewport(), Qt::RightButton, {}, point(1, 6));
    EXPECT_FALSE(chosen);
    QTest::mousePress(Edit()->viewport(), Qt::LeftButton, {}, point(0, 0));
    QTest::mouseMove(Edit()->viewport(), point(1, 5));
    QTest::mouseRelease(Edit()->viewport(), Qt::LeftButton, {}, point(1, 5));
    EXPECT_FALSE(chosen);
}

TEST_F(DocumentViewTest, TheKeysStepChooseAndPause)
{
    form.vwText.Append({"One. Two.", 0});
    form.vwText.Flush();
    int pauses = 0;
    form.vwText.Paused = [&pauses] { ++pauses; };
    form.vwText.Select({0, 5, 9});
    EXPECT_EQ(Edit()->textCursor().selectedText(), QStringLiteral("Two."));
    QTest::keyClick(Edit(), Qt::Key_Up);
    EXPECT_EQ(stepped, (TextPlace{0, 5}));
    EXPECT_EQ(steps, -1);
    QTest::keyClick(Edit(), Qt::Key_Down);
    EXPECT_EQ(steps, 0);
    QTest::keyClick(Edit(), Qt::Key_Return);
    EXPECT_EQ(chosen, (TextPlace{0, 5}));
    EXPECT_FALSE(Edit()->textCursor().hasSelection()) << "it would cover the marks";
    QTest::keyClick(Edit(), Qt::Key_Space);
    EXPECT_EQ(pauses, 1);
}

TEST_F(DocumentViewTest, ItFollowsWhatIsSpokenThroughALongTextUnlessTheUserScrolls)
{
    // Some 200 pages.
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 1400; ++i) {
        std::string text;
        for (int k = 0; k < 6; ++k)
            text += "Sentence " + std::to_string(k) + " of this paragraph has a few words more than it needs. ";
        form.vwText.Append({text, i % 70 == 0 ? 2 : 0});
    }
    form.vwText.Flush();
    app.processEvents();
    RecordProperty("milliseconds", static_cast<int>(timer.elapsed()));
    for (const std::size_t paragraph : {3u, 900u, 901u, 1399u, 20u}) {
        form.vwText.Mark({paragraph, 66, 130}, {});
        EXPECT_TRUE(InSight(Edit()->extraSelections()[0].cursor)) << paragraph;
    }
    QTest::keyClick(Edit(), Qt::Key_End, Qt::ControlModifier);
    const int bottom = Edit()->verticalScrollBar()->value();
    form.vwText.Mark({21, 0, 60}, {});
    EXPECT_EQ(Edit()->verticalScrollBar()->value(), bottom) << "where the user looks";
    QTest::keyClick(Edit(), Qt::Key_Return);
    form.vwText.Mark({21, 66, 130}, {});
    EXPECT_TRUE(InSight(Edit()->extraSelections()[0].cursor)) << "the user has chosen a sentence";
}

} // namespace

} // namespace voxmate::qt
