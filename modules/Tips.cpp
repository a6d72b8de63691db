#include "modules/Tips.h"

#include "base/Text.h"
#include "modules/Declarations.h"
#include "modules/Functions.h"
#include "modules/Windows.h"

#include <random>

namespace voxmate
{

std::vector<std::string> Tips;
std::int32_t CurrentTip = 0;

namespace
{

std::mt19937 generator; // NOLINT(cert-msc51-cpp): seeded from the clock before it is used

} // namespace

void ResetTips()
{
    Tips.clear();
    CurrentTip = 0;
}

void SeedTips(std::uint32_t seed)
{
    generator.seed(seed);
}

void ShowTipOfTheDay(bool /*fromStartUp*/)
{
    TipWindow& window = Main().Tip();
    window.SetChecks(Settings.ShowTipAtStartUp, Settings.AutoReadTip);
    const DateTime now = Host().Time.Now();
    // Every second of a year has its own.
    SeedTips(static_cast<std::uint32_t>(
        ((((now.year * 12 + now.month) * 31 + now.day) * 24 + now.hour) * 60 + now.minute) * 60LL + now.second));
    if (!LoadTips(ProgramPath(TipsFile))) {
        const std::string name = TipsFile;
        window.SetTipText(name + " file was not found? " + CrLf + CrLf + "Create a text file named " + name +
                          " using NotePad with 1 tip per line. " +
                          "Then place it in the same directory as the application. ");
    }
    if (Settings.AutoReadTip == 1)
        ReadTipAloud();
}

bool LoadTips(const std::string& path)
{
    if (path.empty() || !Host().Files.FileExists(path))
        return false;
    const std::unique_ptr<TextStream> file = Host().Files.OpenTextFile(path);
    while (!file->AtEndOfStream())
        Tips.push_back(file->ReadLine());
    PickRandomTip();
    return true;
}

void PickRandomTip()
{
    // A random number from 0 up to, and not including, 1; exact in a double, so that the last tip is never passed.
    const double random = static_cast<double>(generator()) / 4294967296.0;
    CurrentTip = static_cast<std::int32_t>(random * static_cast<double>(Tips.size()) + 1);
    Main().Tip().DisplayCurrentTip();
}

void ReadTipAloud()
{
    SpeakText(Main().Tip().TipText(), "Suggest");
}

} // namespace voxmate
