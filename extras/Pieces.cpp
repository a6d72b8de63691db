#include "extras/Pieces.h"

#include "base/Words.h"

#include <utility>

namespace voxmate
{

Pieces::Pieces(ExtrasMenu& menu, Program& program, frmMain& main, GlobalKeys& keys, StateStore& state)
    : program_(program), main_(main), keys_(keys), state_(state)
{
    Menu& selection = menu.Add("mnuReadSelection", "R&ead the Selection", [this] {
        ReadExcerpt(TextBox::Excerpt::Selection, "There is nothing selected in the textbox.");
    });
    selection.Shortcut = "Ctrl+R";
    Menu& fromCursor = menu.Add("mnuReadFromCursor", "Read fro&m the Cursor", [this] {
        ReadExcerpt(TextBox::Excerpt::FromCursor, "There is nothing to read behind the cursor.");
    });
    fromCursor.Shortcut = "Ctrl+Shift+R";
    main_.txtText.MoreItems = {&selection, &fromCursor};

    constexpr std::size_t count = 2;
    shortcuts_.reserve(count); // its elements are referred to
    AddShortcut(menu, "mnuSelectionKey", "Read the Selection of &Any Program",
                {"read-selection", "Read the selected text aloud", "Ctrl+Alt+S"},
                [this] { ReadSelectionOfAnyProgram(); });
    AddShortcut(menu, "mnuClipboardKey", "Read the Clipboard from An&y Program",
                {"read-clipboard", "Read the clipboard aloud", "Ctrl+Alt+C"}, [this] { main_.cmdClip.UserClick(); });
    keys_.Pressed = [this](const std::string& name) {
        for (const Shortcut& shortcut : shortcuts_)
            if (shortcut.key.Name == name && program_.StartedUp)
                Event(shortcut.act)();
    };
    keys_.Answered = [this](const std::string& name, GlobalKeys::Outcome outcome, const std::string& trigger) {
        Answered(name, outcome, trigger);
    };
}

Pieces::~Pieces()
{
    keys_.Pressed = nullptr;
    keys_.Answered = nullptr;
    main_.txtText.MoreItems.clear();
}

void Pieces::ReadExcerpt(TextBox::Excerpt excerpt, const char* nothing)
{
    const auto get = main_.txtText.GetExcerpt;
    std::string text = get ? get(excerpt) : "";
    if (!HasWord(text)) {
        program_.Messages.Announce(nothing, vbExclamation, "Voxmate - Read", "Confused");
        return;
    }
    program_.Voice.SpeakText(std::move(text), "");
}

// A box would take the keyboard away from the other program.
void Pieces::ReadSelectionOfAnyProgram()
{
    std::string text = keys_.SelectedText();
    if (HasWord(text))
        program_.Voice.SpeakText(std::move(text), "");
    else
        program_.Voice.SpeakText("There is nothing selected.", "Confused");
}

void Pieces::AddShortcut(ExtrasMenu& menu, const char* item, const char* caption, GlobalKeys::Key key, Event act)
{
    Shortcut& shortcut = shortcuts_.emplace_back(Shortcut{std::move(key), caption, std::move(act), nullptr, false});
    shortcut.item = &menu.AddSwitch(
        item, shortcut.caption + " (" + shortcut.key.Trigger + ")", [this, &shortcut] { return IsOn(shortcut); },
        [this, &shortcut](bool on) { Turn(shortcut, on); });
}

bool Pieces::IsOn(const Shortcut& shortcut) const
{
    return state_.Get("keys." + shortcut.key.Name) == "1";
}

void Pieces::Turn(Shortcut& shortcut, bool on)
{
    state_.Set("keys." + shortcut.key.Name, on ? "1" : "");
    shortcut.turnedOn = on;
    HoldKeys();
}

void Pieces::HoldKeys()
{
    std::vector<GlobalKeys::Key> wanted;
    for (const Shortcut& shortcut : shortcuts_)
        if (IsOn(shortcut))
            wanted.push_back(shortcut.key);
    keys_.Hold(wanted);
}

// What does not work when it is switched on is off. A key that another program took before this one started may be
// free the next time, so that switch stays.
void Pieces::Answered(const std::string& name, GlobalKeys::Outcome outcome, const std::string& trigger)
{
    for (Shortcut& shortcut : shortcuts_) {
        if (shortcut.key.Name != name || !IsOn(shortcut))
            continue;
        const bool turnedOn = std::exchange(shortcut.turnedOn, false);
        if (outcome == GlobalKeys::Outcome::Held) {
            shortcut.item->Caption = shortcut.caption + " (" + trigger + ")";
            continue;
        }
        if (!turnedOn)
            continue;
        Turn(shortcut, false);
        shortcut.item->Checked = false;
        // Who has closed the desktop's own question knows that.
        if (outcome == GlobalKeys::Outcome::Refused)
            continue;
        program_.Messages.Announce(outcome == GlobalKeys::Outcome::Taken
                                       ? "Another program holds the key " + shortcut.key.Trigger + "."
                                       : "This desktop lets no program have keys in the windows of others.",
                                   vbExclamation, "Voxmate - Keys", "Decline");
    }
}

} // namespace voxmate
