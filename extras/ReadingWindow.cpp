#include "extras/ReadingWindow.h"

#include "extras/Window.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace voxmate
{

namespace
{

constexpr const char* OpensName = "reading.opens";
/// Some 200 pages, which are put into the window at once; a longer document comes in such pieces.
constexpr std::size_t PartsAtATime = 8000;

} // namespace

ReadingWindow::ReadingWindow(FormHost& host, Documents& documents, StateStore& state, Event stop)
    : Form(host, "frmReading"), documents_(documents)
{
    Caption = "Voxmate - Reading";
    Border = BorderStyle::Sizable;
    Status = &stsReading;
    stsReading.AccessibleName = "Status";
    vwText.AccessibleName = "Text of the document";
    vwText.AccessibleDescription =
        "Up and Down go from sentence to sentence, Enter reads from there, the space bar pauses and goes on.";
    FirstFocus = &vwText;
    Arrangement = Column({
        Item(vwText).Stretch(1).Min(480, 320),
        Grid(3, {Item(cmdSentenceBack).Stretch(1), Item(cmdPause).Stretch(1), Item(cmdSentenceForward).Stretch(1),
                 Item(cmdParagraphBack), Item(cmdStop), Item(cmdParagraphForward)}),
    });
    KeepGeometry(*this, state, "reading.geometry");

    vwText.Chosen = [this](const TextPlace& place) {
        if (const std::optional<std::size_t> part = text_.PartAt(place))
            documents_.ReadFrom(*part);
    };
    vwText.Stepped = [this](const TextPlace& place, int by) { Step(place, by); };
    vwText.Paused = cmdPause.Click = [this] { documents_.PauseOrGoOn(); };
    // As in the menu.
    cmdPause.Shortcut = "Ctrl+P";
    cmdSentenceBack.Shortcut = "Alt+Left";
    cmdSentenceForward.Shortcut = "Alt+Right";
    cmdParagraphBack.Shortcut = "Alt+Up";
    cmdParagraphForward.Shortcut = "Alt+Down";
    cmdSentenceBack.Click = [this] { documents_.BySentence(-1); };
    cmdSentenceForward.Click = [this] { documents_.BySentence(1); };
    cmdParagraphBack.Click = [this] { documents_.ByParagraph(false); };
    cmdParagraphForward.Click = [this] { documents_.ByParagraph(true); };
    cmdStop.Click = std::move(stop);
    tmrText.Tick = [this] { TakeText(); };
    documents_.Watch([this] {
        if (IsLoaded())
            Look();
    });
}

void ReadingWindow::Form_Load()
{
    shown_ = 0;
    text_.Clear(0);
    Look();
}

// The text takes as much memory as all of the rest.
void ReadingWindow::Form_Unload()
{
    tmrText.Enabled = false;
    text_.Clear(0);
    documents_.ForgetLong();
}

void ReadingWindow::Look()
{
    const Narrator& narrator = documents_.Text();
    if (const unsigned number = documents_.Number(); number != shown_) {
        shown_ = number;
        text_.Clear(narrator.First());
        Caption = documents_.Name() + " - Voxmate";
        Changed(Property::Caption);
    }
    if (!tmrText.Enabled)
        TakeText();
    const bool reads = documents_.HasDocument();
    const bool marks = reads && !narrator.Seeking() && !documents_.IsRecording();
    vwText.Mark(marks ? text_.SpanOf(narrator.At()) : TextSpan(),
                marks ? text_.WordOf(narrator.At(), narrator.Word()) : TextSpan());
    for (CommandButton* button :
         {&cmdSentenceBack, &cmdPause, &cmdSentenceForward, &cmdParagraphBack, &cmdParagraphForward})
        button->Enabled = reads;
    cmdPause.Caption = narrator.Paused() ? "Go &On" : "&Pause";
    stsReading.SetPanel(1, reads ? documents_.Progress() : "No document is being read.");
}

// What has come since. A recording has no text.
void ReadingWindow::TakeText()
{
    const Narrator& narrator = documents_.Text();
    const std::size_t behind = std::min(narrator.Count(), text_.Next() + PartsAtATime);
    if (documents_.Number() == 0 || documents_.IsRecording() || text_.Next() < narrator.First()) {
        tmrText.Enabled = false;
        return;
    }
    if (text_.Next() < behind) {
        while (text_.Next() < behind)
            text_.Add(narrator.PartOf(text_.Next()));
        vwText.Flush();
    }
    tmrText.Enabled = behind < narrator.Count();
}

void ReadingWindow::Step(const TextPlace& place, int by)
{
    const std::optional<std::size_t> part = text_.PartAt(place);
    if (!part)
        return;
    const TextSpan here = text_.SpanOf(*part);
    // From a sentence's middle, its own beginning counts as one back.
    const bool within = here.Paragraph == place.Paragraph && here.Begin < place.At;
    std::size_t target = *part;
    if (by > 0)
        target = std::min(target + 1, text_.Next() - 1);
    else if (!within && target > text_.First())
        --target;
    vwText.Select(text_.SpanOf(target));
}

ReadingWindows::ReadingWindows(ExtrasMenu& menu, FormHost& host, Documents& documents, StateStore& state, Event stop)
    : state_(state), documents_(documents), window_(host, documents, state, std::move(stop))
{
    menu.BeginGroup();
    menu.Add("mnuReadingWindow", "Rea&ding Window",
             [this] {
                 window_.ShowActivated = true;
                 window_.Show();
                 window_.Activate();
             })
        .Shortcut = "Ctrl+D";
    menu.AddSwitch(
        "mnuReadingOpens", "Open &It with Each Document", [this] { return Opens(); },
        [this](bool on) { state_.Set(OpensName, on ? "1" : ""); });
    documents_.Watch([this] { Look(); });
}

bool ReadingWindows::Opens() const
{
    return state_.Get(OpensName) == "1";
}

// The keyboard stays where it is.
void ReadingWindows::Look()
{
    if (!window_.IsShown())
        documents_.ForgetLong();
    if (std::exchange(seen_, documents_.Number()) == documents_.Number() || !Opens() || window_.IsShown())
        return;
    window_.ShowActivated = false;
    window_.Show();
}

} // namespace voxmate
