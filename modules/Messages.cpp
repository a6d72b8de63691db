#include "modules/Messages.h"

#include "base/Text.h"
#include "modules/Program.h"

namespace voxmate
{

int Messages::Announce(const std::string& text, int style, const std::string& title, const std::string& animation1,
                       const std::string& animation2, const std::string& animation3, const std::string& animation4)
{
    const BusyScope busy(IsBusy);
    MessageText = text;
    ShowMessage(text, animation1, animation2, animation3, animation4);
    // Speaking lets events run; other messages among them set MessageText, too.
    MessageText = text;
    return program_.Host.Windows.MsgBox(text, style, title);
}

void Messages::ShowMessage(const std::string& message, const std::string& animation1, const std::string& animation2,
                           const std::string& animation3, const std::string& animation4)
{
    IsBusy = True;
    if (program_.Settings.ReadMessages == 0)
        return;
    if (!animation1.empty()) {
        program_.Main->SetStatus(StatusBusy);
        for (const std::string* animation : {&animation1, &animation2, &animation3, &animation4}) {
            if (animation->empty())
                break;
            if (program_.Character)
                program_.Voice.LastPlayRequest = program_.Character->Play(*animation);
        }
    }
    const bool byName = program_.Settings.ReadNameWithMessages == 1 && !program_.Settings.UserName.empty();
    program_.Voice.SpeakText(byName ? "Dear " + program_.Settings.UserName + ", " + CrLf + message : message, "");
}

void Messages::ReportError(std::int32_t errorNumber, const std::string& errorDescription, std::int16_t routineId)
{
    IsBusy = True;
    const std::string lines[] = {
        "Following error has occurred:",
        "Error No. - " + std::to_string(errorNumber),
        "Error Description - " + errorDescription,
        "Function/Module ID - " + std::to_string(routineId),
        "Application Version - " + VersionText(),
        "",
        "Please report it to Voxmate Support at support@voxmate.example",
        "While reporting please provide all the details you can.",
        "The error will be fixed at no cost to you.",
        "",
        "Voxmate will end now.",
    };
    program_.Host.Windows.MsgBox(JoinLines(lines), vbCritical, "Voxmate - Unhandled Error");
    program_.Host.System.EndProgram();
}

} // namespace voxmate
