// Edit fields of one line and of several: what the user can enter, and how.
#include "qt/forms/CommonPeer.h"
#include "qt/forms/ControlPeers.h"
#include "qt/widgets/QtText.h"

#include "base/Text.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QTextCursor>
#include <QValidator>

#include <algorithm>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

namespace voxmate::qt
{

namespace
{

constexpr int BackspaceKey = 8;
constexpr int EnterKey = 13;

// A field for at most this many characters is only as wide as they are.
constexpr std::size_t FewCharacters = 8;
// Device-independent pixels.
constexpr int FieldPadding = 22; // including the frame
constexpr int TextMargin =
    2; // added to the style's own margin, so that texts begin at the same position as those of a list

/// The characters that a key makes, as KeyPress passes them to a control; none for a key that only moves or commands.
QList<uint> CharactersOf(const QKeyEvent& event)
{
    // Control and Alt together select a keyboard's third level.
    const Qt::KeyboardModifiers held = event.modifiers();
    if (held.testFlag(Qt::MetaModifier) || held.testFlag(Qt::ControlModifier) != held.testFlag(Qt::AltModifier))
        return {};
    switch (event.key()) {
    case Qt::Key_Backspace:
        return {BackspaceKey};
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return {EnterKey};
    default: {
        const QList<uint> points = event.text().toUcs4();
        return std::all_of(points.begin(), points.end(), [](uint point) { return QChar::isPrint(point); })
                   ? points
                   : QList<uint>{};
    }
    }
}

/// Number of characters; a surrogate pair counts as one.
qsizetype Count(const QString& text)
{
    return text.size() - std::count_if(text.begin(), text.end(), [](QChar c) { return c.isLowSurrogate(); });
}

/// The first `count` characters.
QString First(const QString& text, qsizetype count)
{
    qsizetype end = 0;
    for (; count > 0 && end < text.size(); --count)
        end += text[end].isHighSurrogate() && end + 1 < text.size() ? 2 : 1;
    return text.left(end);
}

/// An edit field whose keys can be swallowed and whose background can be the window's.
template <class W>
class FilteredEdit : public W
{
public:
    using W::W;

    /// Called for each character typed; returns false to swallow it. May be empty.
    std::function<bool(int)> OnKeyPress;

    void SetGrey(bool grey)
    {
        grey_ = grey;
        UpdateGround();
    }

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        for (const uint key : CharactersOf(*event)) {
            if (!Passes(static_cast<int>(key))) {
                event->accept();
                return;
            }
        }
        W::keyPressEvent(event);
    }

    // Characters that an input method composes.
    void inputMethodEvent(QInputMethodEvent* event) override
    {
        QString passed;
        for (const uint point : event->commitString().toUcs4()) {
            if (Passes(static_cast<int>(point)))
                passed += QString::fromUcs4(reinterpret_cast<const char32_t*>(&point), 1);
        }
        if (passed != event->commitString())
            event->setCommitString(passed, event->replacementStart(), event->replacementLength());
        W::inputMethodEvent(event);
    }

    void changeEvent(QEvent* event) override
    {
        W::changeEvent(event);
        if (event->type() == QEvent::PaletteChange)
            UpdateGround();
    }

private:
    bool Passes(int key) const
    {
        const auto filter = OnKeyPress;
        return !filter || filter(key);
    }

    void UpdateGround()
    {
        const QPalette desktop = QApplication::palette(this);
        const QBrush& ground = desktop.brush(grey_ ? QPalette::Window : QPalette::Base);
        // Setting the palette raises a change event, too.
        if (ground == W::palette().brush(QPalette::Base))
            return;
        QPalette own;
        if (grey_)
            own.setBrush(QPalette::Base, ground);
        W::setPalette(own);
    }

    bool grey_ = false;
};

/// Cuts what the user enters into a one-line field so that the field does not exceed its maximum length.
class LengthLimit : public QValidator
{
public:
    LengthLimit(const TextBox& box, QObject* parent) : QValidator(parent), box_(&box) {}
    /// Must be called before the control is destroyed.
    void Detach() { box_ = nullptr; }

    State validate(QString& text, int& cursor) const override
    {
        if (!box_)
            return Acceptable;
        // The program may have set a longer text; the user may still shorten it.
        const auto most = std::max(qsizetype(box_->MaxLength), qsizetype(Len(box_->Text.get())));
        const qsizetype excess = Count(text) - most;
        if (excess <= 0)
            return Acceptable;
        // The entered text ends at the cursor.
        const QString put = text.left(cursor);
        const QString kept = First(put, std::max<qsizetype>(Count(put) - excess, 0));
        QString cut = kept + text.mid(cursor);
        if (cut == ToQt(box_->Text))
            return Invalid; // the field then undoes the change
        cursor = static_cast<int>(kept.size());
        text = std::move(cut);
        return Acceptable;
    }

private:
    const TextBox* box_;
};

class LineEditPeer : public Common<TextBox, FilteredEdit<QLineEdit>>
{
public:
    LineEditPeer(TextBox& box, QWidget* parent) : Common(box, new FilteredEdit<QLineEdit>(parent))
    {
        widget_->setPlaceholderText(ToQt(control_.PlaceholderText));
        widget_->setTextMargins(TextMargin, 0, TextMargin, 0);
        Update(Property::Text);
        Update(Property::Locked);
        Update(Property::BackColor);
        if (control_.MaxLength > 0 && control_.MaxLength <= FewCharacters) {
            FitCharacters();
            new FontChange(&context_, *widget_->window(), [this] { FitCharacters(); });
        }
        if (control_.MaxLength > 0) {
            // QLineEdit's own limit would count each half of a surrogate pair.
            limit_ = new LengthLimit(control_, widget_);
            widget_->setValidator(limit_);
        }
        widget_->OnKeyPress = [this](int key) { return control_.UserKeyPress(key); };
        QObject::connect(widget_, &QLineEdit::textEdited, &context_,
                         [this](const QString& text) { control_.UserEdit(FromQt(text)); });
    }
    ~LineEditPeer() override
    {
        widget_->OnKeyPress = nullptr;
        if (limit_)
            limit_->Detach();
    }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property == Property::Text) {
            widget_->setText(ToQt(control_.Text));
            // The window itself may not have the keyboard yet.
            if (control_.SelectsNewText && widget_->window()->focusWidget() == widget_)
                widget_->selectAll();
        } else if (property == Property::Locked) {
            widget_->setReadOnly(control_.Locked);
        } else if (property == Property::BackColor) {
            widget_->SetGrey(control_.BackColor == vbButtonFace);
        }
    }

private:
    /// Makes the field as wide as the few characters it takes.
    void FitCharacters()
    {
        const int characters = static_cast<int>(control_.MaxLength);
        widget_->setFixedWidth(characters * widget_->fontMetrics().horizontalAdvance(u'0') + FieldPadding);
    }

    LengthLimit* limit_ = nullptr;
};

/// The text with line breaks inserted into overlong paragraphs, after a blank if there is one. A paragraph is laid out
/// as a whole before any of it can be shown; one as long as a book takes many seconds and a gigabyte.
QString WithoutEndlessParagraphs(const QString& text)
{
    constexpr qsizetype longest = 32768; // QChars; this many are laid out within one frame of the screen
    QString shown;
    qsizetype copied = 0;
    for (qsizetype begin = 0, end = 0; begin < text.size(); begin = end) {
        end = text.indexOf(u'\n', begin) + 1;
        if (end == 0)
            end = text.size();
        while (end - std::max(begin, copied) > longest + 1) {
            const qsizetype at = std::max(begin, copied);
            qsizetype cut = text.lastIndexOf(u' ', at + longest - 1) + 1;
            if (cut <= at)
                cut = at + longest - (text[at + longest].isLowSurrogate() ? 1 : 0);
            shown += QStringView(text).sliced(copied, cut - copied);
            shown += u'\n';
            copied = cut;
        }
    }
    if (copied == 0)
        return text;
    return shown += QStringView(text).sliced(copied);
}

/// A text field of several lines that asks only for a few lines' height; the form's layout gives it more.
class MultiLineEdit : public FilteredEdit<QPlainTextEdit>
{
public:
    using FilteredEdit::FilteredEdit;

    qsizetype MaxLength = 0;                 ///< most characters the user can enter; 0: no limit
    std::function<QList<QAction*>()> OnMenu; ///< what is shown behind the items of its own menu; may be empty
    FileDrops::Act OnFiles;                  ///< takes pasted files, from the event loop; empty: their names are text

    QSize sizeHint() const override { return {160, 3 * fontMetrics().lineSpacing() + 2 * frameWidth() + 8}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        const QList<uint> made = CharactersOf(*event);
        const bool puts = !made.isEmpty() && made.first() != BackspaceKey;
        // A full field still reports the key.
        if (puts && !isReadOnly() && made.size() > Room()) {
            if (const auto tell = OnKeyPress)
                tell(static_cast<int>(made.first()));
            event->accept();
            return;
        }
        FilteredEdit::keyPressEvent(event);
    }

    void inputMethodEvent(QInputMethodEvent* event) override
    {
        const QString fits = First(event->commitString(), Room() + event->replacementLength());
        if (fits != event->commitString())
            event->setCommitString(fits, event->replacementStart(), event->replacementLength());
        FilteredEdit::inputMethodEvent(event);
    }

    void contextMenuEvent(QContextMenuEvent* event) override
    {
        const auto actions = OnMenu ? OnMenu() : QList<QAction*>();
        if (actions.isEmpty()) {
            FilteredEdit::contextMenuEvent(event);
            return;
        }
        QMenu* menu = createStandardContextMenu(event->pos());
        menu->setAttribute(Qt::WA_DeleteOnClose);
        menu->addSeparator();
        menu->addActions(actions);
        // By the keyboard it opens at the cursor.
        menu->popup(event->reason() == QContextMenuEvent::Keyboard ? viewport()->mapToGlobal(cursorRect().bottomLeft())
                                                                   : event->globalPos());
    }

    // Called for pasted and dropped text.
    void insertFromMimeData(const QMimeData* source) override
    {
        if (std::vector<std::string> files = FilesIn(source); OnFiles && !files.empty()) {
            const auto take = [this, files = std::move(files)] {
                if (const auto act = OnFiles)
                    act(files);
            };
            QMetaObject::invokeMethod(this, take, Qt::QueuedConnection);
            return;
        }
        QMimeData fits;
        fits.setText(WithoutEndlessParagraphs(
            First(source->text().replace(QStringLiteral("\r\n"), QStringLiteral("\n")), Room())));
        FilteredEdit::insertFromMimeData(&fits);
    }

private:
    /// Characters that can still be entered, counting the selected ones as replaced.
    qsizetype Room() const
    {
        if (MaxLength == 0)
            return std::numeric_limits<qsizetype>::max() /
                   2; // half, so that the length of a replaced text can be added
        return std::max<qsizetype>(0, MaxLength - Count(toPlainText()) + Count(textCursor().selectedText()));
    }
};

class TextEditPeer : public Common<TextBox, MultiLineEdit>
{
public:
    TextEditPeer(TextBox& box, QWidget* parent) : Common(box, new MultiLineEdit(parent))
    {
        widget_->setTabChangesFocus(true);
        widget_->setPlaceholderText(ToQt(control_.PlaceholderText));
        widget_->MaxLength = qsizetype(control_.MaxLength);
        Update(Property::Text);
        Update(Property::Locked);
        Update(Property::BackColor);
        widget_->OnKeyPress = [this](int key) { return control_.UserKeyPress(key); };
        QObject::connect(widget_, &QPlainTextEdit::textChanged, &context_,
                         [this] { control_.UserEdit(FromQt(widget_->toPlainText())); });
        widget_->OnMenu = [this] { return MoreActions(); };
        control_.GetExcerpt = [this](TextBox::Excerpt excerpt) { return FromQt(GetExcerpt(excerpt)); };
    }
    ~TextEditPeer() override
    {
        widget_->OnKeyPress = nullptr;
        widget_->OnFiles = nullptr;
        widget_->OnMenu = nullptr;
        control_.GetExcerpt = nullptr;
    }

    void TakeFiles(const FileDrops::Act& take) override { widget_->OnFiles = take; }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property == Property::Text) {
            const QSignalBlocker quiet(widget_);
            widget_->setPlainText(WithoutEndlessParagraphs(ToQt(control_.Text)));
        } else if (property == Property::Locked) {
            widget_->setReadOnly(control_.Locked);
            // A locked text can still be navigated and copied by the keyboard.
            if (control_.Locked)
                widget_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        } else if (property == Property::BackColor) {
            widget_->SetGrey(control_.BackColor == vbButtonFace);
        }
    }

private:
    QList<QAction*> MoreActions() const
    {
        QList<QAction*> actions;
        for (const Menu* item : control_.MoreItems)
            if (const auto* peer = static_cast<const MenuPeer*>(item->GetPeer()))
                actions.append(peer->Action());
        return actions;
    }

    QString GetExcerpt(TextBox::Excerpt excerpt) const
    {
        QTextCursor cursor = widget_->textCursor();
        if (excerpt == TextBox::Excerpt::FromCursor) {
            cursor.setPosition(cursor.selectionStart());
            cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
        }
        // The toolkit's own sign between lines.
        return cursor.selectedText().replace(QChar::ParagraphSeparator, u'\n');
    }
};

} // namespace

std::unique_ptr<WidgetPeer> CreateTextBoxPeer(TextBox& box, QWidget* parent)
{
    if (box.MultiLine)
        return std::make_unique<TextEditPeer>(box, parent);
    return std::make_unique<LineEditPeer>(box, parent);
}

} // namespace voxmate::qt
