#include "modules/Tips.h"

#include "base/Text.h"
#include "modules/Program.h"
#include "modules/Windows.h"

namespace voxmate
{

void Tips::ShowTipOfTheDay(bool /*fromStartUp*/)
{
    TipWindow& window = program_.Main->Tip();
    window.SetChecks(program_.Settings.ShowTipAtStartUp, program_.Settings.AutoReadTip);
    const DateTime now = program_.Host.Time.Now();
    // Every second of a year has a seed of its own.
    SeedTips(static_cast<std::uint32_t>(
        ((((now.year * 12 + now.month) * 31 + now.day) * 24 + now.hour) * 60 + now.minute) * 60LL + now.second));
    if (!LoadTips(program_.ProgramPath(TipsFile))) {
        const std::string name = TipsFile;
        window.SetTipText(name + " file was not found? " + CrLf + CrLf + "Create a text file named " + name +
                          " using NotePad with 1 tip per line. " +
                          "Then place it in the same directory as the application. ");
    }
    if (program_.Settings.AutoReadTip == 1)
        ReadTipAloud();
}

bool Tips::LoadTips(const std::string& path)
{
    if (path.empty() || !program_.Host.Files.FileExists(path))
        return false;
    const std::unique_ptr<TextStream> file = program_.Host.Files.OpenTextFile(path);
    while (!file->AtEndOfStream())
        All.push_back(*lines_.insert(file->ReadLine()).first);
    PickRandomTip();
    return true;
}

void Tips::PickRandomTip()
{
    // A random number from 0 up to but not including 1. A double holds it exactly, so the result is at most the last
    // tip.
    const double random = static_cast<double>(generator_()) / 4294967296.0;
    CurrentTip = static_cast<std::int32_t>(random * static_cast<double>(All.size()) + 1);
    program_.Main->Tip().DisplayCurrentTip();
}

void Tips::ReadTipAloud()
{
    program_.Voice.SpeakText(program_.Main->Tip().TipText(), "Suggest");
}

} // namespace voxmate
