// A small character that uses every part of the file, to test the file's reader and writer.
#pragma once

#include "agent/file/AcsWriter.h"

#include <cstdint>
#include <string>
#include <vector>

namespace voxmate::agent::test
{

inline IndexedImage Filled(std::uint16_t width, std::uint16_t height, std::uint8_t pixel)
{
    return {width, height, std::vector<std::uint8_t>(std::size_t{width} * height, pixel)};
}

inline std::vector<std::uint8_t> SmallWave()
{
    const std::string text(
        "RIFF\x26\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x40\x1F\0\0\x80\x3E\0\0\x02\0\x10\0data\2\0\0\0\0\0", 46);
    return {text.begin(), text.end()};
}

/// Two languages, voice, balloon, tray icon, four colours (0 is transparent), four images (one of them packed), one
/// sound; animations Wave (two frames with a branch, an exit and two mouths), Empty (no frames) and Back.
inline AcsDescription SmallCharacter()
{
    AcsDescription d;
    d.guid = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    d.width = 6;
    d.height = 5;
    d.transparentIndex = 0;
    d.flags = FlagSizeToText | FlagAutoPaceOff | FlagStandardSet;
    d.names = {{0x0409, "Bo", "A small one", "hello"}, {0x0407, "Bö", "Ein Kleiner 🦊", ""}};
    VoiceInfo& voice = d.voice.emplace();
    voice.engine = {9, 9};
    voice.mode = {8, 8};
    voice.speed = 150;
    voice.pitch = 110;
    voice.hasDetails = true;
    voice.language = 0x0409;
    voice.dialect = "Texas";
    voice.gender = 2;
    voice.age = 30;
    voice.style = "Casual";
    d.balloon = BalloonInfo{2, 32, {1, 2, 3}, {255, 255, 231}, {4, 5, 6}, "Sans", -13, 400, true, 7};
    d.palette = {{255, 0, 255}, {10, 20, 30}, {200, 100, 50}, {255, 255, 255}};
    d.trayIcon = {{1, 2, 3}, {4, 5, 6, 7}};
    d.states = {{"Showing", {"Wave"}}, {"Speaking", {"Wave", "Back"}}};
    d.images = {Filled(6, 5, 1), Filled(3, 2, 2), Filled(1, 1, 3), Filled(40, 30, 0)};
    d.images[1].pixels = {2, 3, 0, 1, 2, 3};
    d.images[3].pixels[41] = 2;
    d.sounds = {SmallWave()};

    Animation wave{"Wave", Transition::ReturnAnimation, "Back", {}};
    Frame first;
    first.images = {{1, 2, 1}, {0, 0, 0}};
    first.sound = 0;
    first.duration = 10;
    first.exitFrame = 1;
    first.branches = {{1, 40}, {0, 60}};
    first.overlays = {{MouthClosed, false, 2, 1, 1, 1, 1, {}},
                      {MouthWide1, true, 2, 4, 4, 1, 1, std::vector<std::uint8_t>{7, 7, 7}}};
    Frame second;
    second.images = {{3, -5, -3}};
    second.duration = 0;
    wave.frames = {first, second};
    d.animations = {wave,
                    {"Empty", Transition::None, "", {}},
                    {"Back", Transition::ExitBranches, "", std::vector<Frame>(1, second)}};
    return d;
}

} // namespace voxmate::agent::test
