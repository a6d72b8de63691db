// The tip of the day: the list of tips and the choice among them.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace voxmate
{

inline constexpr const char* TipsFile = "VoxmateTips.txt";

class Program;

class Tips
{
public:
    explicit Tips(Program& program) : program_(program) {}

    /// All tips: tip k is entry k - 1. The list is never emptied while the program runs; every opening of the tip
    /// window appends the whole file once more, which leaves all of its lines equally likely.
    std::vector<std::string> All;
    /// Number of the tip shown, from 1; 0 before the first.
    std::int32_t CurrentTip = 0;

    /// Makes the choices that follow repeatable.
    void SeedTips(std::uint32_t seed) { generator_.seed(seed); }
    /// Fills the tip window, which is on the screen already, with a tip of the program directory's file, and reads it
    /// aloud if that is set. Whether it was called at start-up makes no difference.
    void ShowTipOfTheDay(bool fromStartUp);
    /// Appends the file's lines, each a tip as it stands, and picks one; false when the path is empty or no file is
    /// there. What goes wrong while reading is raised.
    bool LoadTips(const std::string& path);
    /// Makes any one of the tips the current one and has the window show it.
    void PickRandomTip();
    /// Has the character read the window's text.
    void ReadTipAloud();

private:
    Program& program_;
    std::mt19937 generator_; // NOLINT(cert-msc51-cpp): seeded from the clock before it is used
};

} // namespace voxmate
