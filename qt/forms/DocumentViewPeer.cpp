// A long text that is followed while it is spoken.
#include "controls/DocumentView.h"
#include "qt/forms/CommonPeer.h"
#include "qt/forms/ControlPeers.h"
#include "qt/widgets/QtText.h"
#include "qt/widgets/ReadableStyle.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPlainTextDocumentLayout>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextOption>

#include <algorithm>
#include <functional>
#include <utility>

namespace voxmate::qt
{

namespace
{

// How long the view stays where the user has scrolled it, in milliseconds: time to find a sentence and click it.
constexpr qint64 ScrollPatience = 8000;
// The share of the view's height above a sentence that it is scrolled to: some of what was heard stays in sight.
constexpr qreal RoomAbove = 0.25;
constexpr int BarWidth = 3; // device-independent pixels

/// Lays out only the paragraphs on show, leaves half a line's room between two of them, and begins a paragraph that is
/// read from right to left at the right.
class SpacedLayout : public QPlainTextDocumentLayout
{
public:
    using QPlainTextDocumentLayout::QPlainTextDocumentLayout;

    QRectF blockBoundingRect(const QTextBlock& block) const override
    {
        QRectF rect = QPlainTextDocumentLayout::blockBoundingRect(block);
        // The toolkit begins every line at the left.
        if (QTextOption option = block.layout()->textOption();
            block.textDirection() == Qt::RightToLeft && option.alignment() != Qt::AlignRight) {
            option.setAlignment(Qt::AlignRight);
            block.layout()->setTextOption(option);
        }
        const QFontMetricsF metrics(document()->defaultFont());
        if (!rect.isEmpty())
            rect.setHeight(rect.height() + metrics.lineSpacing() / 2);
        return rect;
    }
};

/// The text as the toolkit keeps it, character for character.
QString Shown(const std::string& text)
{
    QString shown = ToQt(text);
    for (QChar& c : shown) {
        if (c == u'\n')
            c = QChar::LineSeparator;
        else if (c == u'\r' || c == QChar::ParagraphSeparator || c == QChar(0xFDD0) || c == QChar(0xFDD1))
            c = u' '; // these would begin paragraphs and frames
    }
    return shown;
}

class ReadingEdit : public QPlainTextEdit
{
public:
    explicit ReadingEdit(QWidget* parent) : QPlainTextEdit(parent)
    {
        auto* text = new QTextDocument(this);
        text->setDocumentLayout(new SpacedLayout(text));
        text->setUndoRedoEnabled(false);
        constexpr int margin = 10;
        text->setDocumentMargin(margin);
        setDocument(text);
        QTextOption direction = text->defaultTextOption();
        direction.setTextDirection(Qt::LayoutDirectionAuto); // each paragraph's own
        text->setDefaultTextOption(direction);
        setReadOnly(true);
        setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        setTabChangesFocus(true);
        connect(verticalScrollBar(), &QScrollBar::actionTriggered, this, [this] { scrolled_.start(); });
    }

    std::function<void(QTextCursor)> OnChoose;
    std::function<void(QTextCursor, int)> OnStep;
    std::function<void()> OnPause;

    void Mark(const QTextCursor& spoken, const QTextCursor& word)
    {
        const bool moved = spoken != spoken_;
        spoken_ = spoken;
        word_ = word;
        ShowMarks();
        if (moved)
            viewport()->update();
        Follow();
    }

    void Select(const QTextCursor& cursor)
    {
        Reveal(cursor);
        setTextCursor(cursor);
    }

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
        switch (plain ? event->key() : 0) {
        case Qt::Key_Up:
        case Qt::Key_Down:
            scrolled_.start();
            if (OnStep)
                OnStep(textCursor(), event->key() == Qt::Key_Up ? -1 : 1);
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            Choose(textCursor());
            return;
        case Qt::Key_Space:
            if (OnPause)
                OnPause();
            return;
        default:
            scrolled_.start();
            QPlainTextEdit::keyPressEvent(event);
        }
    }

    void wheelEvent(QWheelEvent* event) override
    {
        scrolled_.start();
        QPlainTextEdit::wheelEvent(event);
    }

    void mousePressEvent(QMouseEvent* event) override
    {
        pressed_ = event->pos();
        scrolled_.start();
        QPlainTextEdit::mousePressEvent(event);
    }

    // A click, not the end of a selection.
    void mouseReleaseEvent(QMouseEvent* event) override
    {
        QPlainTextEdit::mouseReleaseEvent(event);
        if (event->button() != Qt::LeftButton || textCursor().hasSelection() ||
            (event->pos() - pressed_).manhattanLength() >= QApplication::startDragDistance())
            return;
        const QTextCursor at = cursorForPosition(event->pos());
        const QRect line = cursorRect(at);
        if (event->pos().y() >= line.top() && event->pos().y() <= line.bottom())
            Choose(at);
    }

    void paintEvent(QPaintEvent* event) override
    {
        QPlainTextEdit::paintEvent(event);
        if (!spoken_.hasSelection())
            return;
        // A bar beside the lines of the sentence, for those who cannot tell its background from the others'.
        QTextCursor end = spoken_;
        end.setPosition(spoken_.selectionEnd());
        QTextCursor begin = spoken_;
        begin.setPosition(spoken_.selectionStart());
        const QColor ground = palette().color(QPalette::Base);
        QPainter painter(viewport());
        painter.fillRect(QRect(QPoint(1, cursorRect(begin).top()), QPoint(BarWidth, cursorRect(end).bottom())),
                         Readable(palette().color(QPalette::Highlight), palette().color(QPalette::Text), {ground}, 3));
    }

    void resizeEvent(QResizeEvent* event) override
    {
        QPlainTextEdit::resizeEvent(event);
        QMetaObject::invokeMethod(
            this, [this] { Follow(); }, Qt::QueuedConnection);
    }

    void changeEvent(QEvent* event) override
    {
        QPlainTextEdit::changeEvent(event);
        if (event->type() == QEvent::PaletteChange)
            ShowMarks();
    }

private:
    void Choose(const QTextCursor& at)
    {
        scrolled_.invalidate();
        // A selection would cover the marks.
        QTextCursor plain = at;
        plain.clearSelection();
        setTextCursor(plain);
        if (OnChoose)
            OnChoose(at);
    }

    void ShowMarks()
    {
        const QColor ground = palette().color(QPalette::Base);
        const QColor ink = palette().color(QPalette::Text);
        const bool dark = ground.lightness() < ink.lightness();
        const auto mark = [&](const QTextCursor& cursor, const QColor& colour) {
            QTextEdit::ExtraSelection selection;
            selection.cursor = cursor;
            selection.format.setBackground(colour);
            selection.format.setForeground(Readable(ink, dark ? Qt::white : Qt::black, {colour}, 4.5));
            return selection;
        };
        QList<QTextEdit::ExtraSelection> marks;
        if (spoken_.hasSelection())
            marks.append(mark(spoken_, dark ? QColor(0x45, 0x3C, 0x00) : QColor(0xFF, 0xF3, 0xB0)));
        if (word_.hasSelection()) {
            QTextEdit::ExtraSelection word = mark(word_, dark ? QColor(0x6E, 0x5A, 0x00) : QColor(0xFF, 0xD8, 0x4A));
            word.format.setFontUnderline(true);
            marks.append(word);
        }
        setExtraSelections(marks);
    }

    void Follow()
    {
        if (!spoken_.hasSelection() || (scrolled_.isValid() && scrolled_.elapsed() < ScrollPatience))
            return;
        Reveal(spoken_);
        // Of a sentence that does not fit, the word.
        if (word_.hasSelection() && !InSight(word_))
            Reveal(word_);
    }

    bool InSight(const QTextCursor& span) const
    {
        QTextCursor end = span;
        end.setPosition(span.selectionEnd());
        QTextCursor begin = span;
        begin.setPosition(span.selectionStart());
        return cursorRect(begin).top() >= 0 && cursorRect(end).bottom() <= viewport()->height();
    }

    // Scrolls so that a stretch of the text is in sight. The paragraphs above it are laid out as far as they will be
    // seen: how many lines they have is not known before.
    void Reveal(const QTextCursor& span)
    {
        if (InSight(span))
            return;
        const QAbstractTextDocumentLayout* layout = document()->documentLayout();
        const QTextBlock block = document()->findBlock(span.selectionStart());
        layout->blockBoundingRect(block);
        const QTextLine line = block.layout()->lineForTextPosition(span.selectionStart() - block.position());
        qreal room = viewport()->height() * RoomAbove - (line.isValid() ? line.y() : 0);
        int lines = line.isValid() ? line.lineNumber() : 0;
        QTextBlock top = block;
        while (room > 0 && top.previous().isValid()) {
            top = top.previous();
            room -= layout->blockBoundingRect(top).height();
        }
        int first = top.firstLineNumber();
        if (top == block) {
            // The quarter above is within the same paragraph.
            while (lines > 0 && line.y() - block.layout()->lineAt(lines - 1).y() <= viewport()->height() * RoomAbove)
                --lines;
            first += lines;
        }
        verticalScrollBar()->setValue(first);
    }

    QTextCursor spoken_;
    QTextCursor word_;
    QElapsedTimer scrolled_; ///< since the user scrolled last; not valid: let it follow
    QPoint pressed_;
};

class DocumentViewPeer : public Common<DocumentView, ReadingEdit>
{
public:
    DocumentViewPeer(DocumentView& view, QWidget* parent) : Common(view, new ReadingEdit(parent))
    {
        widget_->OnChoose = [this](const QTextCursor& at) { control_.UserChoose(PlaceOf(at)); };
        widget_->OnStep = [this](const QTextCursor& at, int by) { control_.UserStep(PlaceOf(at), by); };
        widget_->OnPause = [this] { Raise(control_.Paused); };
        Update(Property::Items);
        Update(Property::Value);
        // The text cursor begins where the voice is.
        if (QTextCursor spoken = CursorOf(control_.Spoken()); !spoken.isNull()) {
            spoken.clearSelection();
            widget_->setTextCursor(spoken);
            // It has been scrolled to in a widget without its size; what is above it would be out of sight.
            widget_->verticalScrollBar()->setValue(0);
        }
    }
    ~DocumentViewPeer() override
    {
        widget_->OnChoose = nullptr;
        widget_->OnStep = nullptr;
        widget_->OnPause = nullptr;
    }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property == Property::Items)
            ShowText();
        else if (property == Property::Value)
            widget_->Mark(CursorOf(control_.Spoken()), CursorOf(control_.Word()));
        else if (const QTextCursor selected = CursorOf(control_.Selected());
                 property == Property::Selection && !selected.isNull())
            widget_->Select(selected);
    }

private:
    // Adds what has come since.
    void ShowText()
    {
        const auto& paragraphs = control_.Paragraphs();
        if (paragraphs.size() < shown_) {
            widget_->Mark({}, {});
            widget_->clear();
            shown_ = lastSize_ = 0;
        }
        // What is put behind the text cursor would push it along.
        QTextCursor users = widget_->textCursor();
        const int position = users.position();
        const int anchor = users.anchor();
        QTextCursor cursor(widget_->document());
        cursor.movePosition(QTextCursor::End);
        cursor.beginEditBlock();
        if (shown_ > 0 && paragraphs[shown_ - 1].Text.size() > lastSize_)
            cursor.insertText(Shown(paragraphs[shown_ - 1].Text.substr(lastSize_)));
        for (; shown_ < paragraphs.size(); ++shown_) {
            const DocumentView::Paragraph& paragraph = paragraphs[shown_];
            const QTextCharFormat format = FormatOf(paragraph.Heading);
            if (shown_ > 0)
                cursor.insertBlock(QTextBlockFormat(), format);
            cursor.insertText(Shown(paragraph.Text), format);
        }
        cursor.endEditBlock();
        users.setPosition(anchor);
        users.setPosition(position, QTextCursor::KeepAnchor);
        widget_->setTextCursor(users);
        lastSize_ = paragraphs.empty() ? 0 : paragraphs.back().Text.size();
    }

    // Sizes in relation to the desktop's font, which they follow.
    static QTextCharFormat FormatOf(int heading)
    {
        QTextCharFormat format;
        if (heading > 0) {
            constexpr int largest = 3; // of the toolkit's steps
            format.setProperty(QTextFormat::FontSizeAdjustment, std::max(largest + 1 - heading, 1));
            format.setFontWeight(QFont::Bold);
        }
        return format;
    }

    QTextCursor CursorOf(const TextSpan& span) const
    {
        const QTextBlock block = widget_->document()->findBlockByNumber(static_cast<int>(span.Paragraph));
        if (span.Empty() || !block.isValid() || span.Paragraph >= shown_)
            return {};
        const std::string& text = control_.Paragraphs()[span.Paragraph].Text;
        const qsizetype begin = ToQt(text.substr(0, span.Begin)).size();
        const qsizetype length = ToQt(text.substr(span.Begin, span.End - span.Begin)).size();
        QTextCursor cursor(block);
        // The text cursor stands at the beginning, where a screen reader looks.
        cursor.setPosition(block.position() + static_cast<int>(begin + length));
        cursor.setPosition(block.position() + static_cast<int>(begin), QTextCursor::KeepAnchor);
        return cursor;
    }

    TextPlace PlaceOf(const QTextCursor& cursor) const
    {
        const auto paragraph = static_cast<std::size_t>(cursor.blockNumber());
        if (paragraph >= control_.Paragraphs().size())
            return {};
        const QString before = ToQt(control_.Paragraphs()[paragraph].Text).left(cursor.positionInBlock());
        return {paragraph, static_cast<std::size_t>(before.toUtf8().size())};
    }

    std::size_t shown_ = 0;    ///< paragraphs
    std::size_t lastSize_ = 0; ///< bytes of the last one
};

} // namespace

std::unique_ptr<WidgetPeer> CreateDocumentViewPeer(DocumentView& view, QWidget* parent)
{
    return std::make_unique<DocumentViewPeer>(view, parent);
}

} // namespace voxmate::qt
