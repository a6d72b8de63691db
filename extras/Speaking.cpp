#include "extras/Speaking.h"

#include <utility>

namespace voxmate
{

namespace
{

bool IsUnfinished(const AgentRequestPtr& request)
{
    return request && (request->Status() == RequestStatus::Pending || request->Status() == RequestStatus::InProgress);
}

} // namespace

Speaking::Speaking(ExtrasMenu& menu, Program& program, frmMain& main, std::function<bool()> reads)
    : program_(program), main_(main), reads_(std::move(reads))
{
    menu.BeginGroup();
    menu.Add("mnuSpeakText", "&Speak the Text", [this] { main_.cmdSpeak.UserClick(); }).Shortcut = "Ctrl+Enter";
    // In the main window the key has no other meaning; for the other windows there is Escape.
    menu.Add("mnuStopAll", "S&top Everything", [this] { main_.cmdStop.UserClick(); }).Shortcut = "Esc";
}

// Requests are carried out in their order, so the last one is finished after all others. Before the first part of a
// document there is none.
bool Speaking::Going() const
{
    const std::string& status = main_.stsBar.Panels().front().text;
    return reads_() || IsUnfinished(program_.Voice.LastSpeakRequest) || IsUnfinished(program_.Reading.CurrentRequest) ||
           status.starts_with("Opening Word Document") || status.starts_with("Reading part");
}

bool Speaking::Escape()
{
    if (!Going())
        return false;
    main_.cmdStop.UserClick();
    return true;
}

} // namespace voxmate
