// The tip of the day: the list of tips, and the choice of one.
#pragma once

#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate
{

inline constexpr const char* TipsFile = "VoxmateTips.txt";

class Program;

class Tips
{
public:
    explicit Tips(Program& program) : program_(program) {}

    /// All tips; tip k is entry k - 1. The list is never emptied while the program runs. Each time the tip window
    /// opens, the whole file is appended once more, so all of its lines stay equally likely.
    std::vector<std::string_view> All;
    /// Number of the tip on show, from 1; 0 before the first one.
    std::int32_t CurrentTip = 0;

    /// Seeds the random choice, so that the choices that follow can be repeated.
    void SeedTips(std::uint32_t seed) { generator_.seed(seed); }
    /// Fills the tip window, which is already on the screen, with a tip from the file in the program directory, and
    /// reads it aloud if that is set. `fromStartUp` makes no difference.
    void ShowTipOfTheDay(bool fromStartUp);
    /// Appends the file's lines to the list, each unchanged as one tip, and picks a tip. Returns false when the path is
    /// empty or there is no such file. Errors while reading are raised.
    bool LoadTips(const std::string& path);
    /// Makes a random tip the current one and has the window show it.
    void PickRandomTip();
    /// Has the character read the text of the tip window.
    void ReadTipAloud();

private:
    Program& program_;
    std::set<std::string> lines_; ///< the lines that the list refers to: each is kept once, however often it is listed
    std::mt19937 generator_;      // NOLINT(cert-msc51-cpp): seeded from the clock before it is used
};

} // namespace voxmate
