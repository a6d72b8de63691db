// Makes a character file (.acs, version 2) from a plain description.
#pragma once

#include "platform/agent/AcsFile.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::agent
{

/// Everything a character file holds. Voice and balloon are written when they are there, and their flags with them.
struct AcsDescription {
    std::uint16_t minorVersion = 1;
    std::uint16_t majorVersion = 2;
    Guid guid{};
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::uint8_t transparentIndex = 0;
    std::uint32_t flags = 0;
    std::uint16_t animationSetMajor = 2;
    std::uint16_t animationSetMinor = 0;
    std::vector<LocalName> names;
    std::optional<VoiceInfo> voice;
    std::optional<BalloonInfo> balloon;
    std::vector<Colour> palette;
    std::optional<std::pair<std::vector<std::uint8_t>, std::vector<std::uint8_t>>> trayIcon; ///< mask, colour image
    std::vector<std::pair<std::string, std::vector<std::string>>> states;
    std::vector<Animation> animations;
    std::vector<IndexedImage> images;
    std::vector<std::vector<std::uint8_t>> sounds; ///< whole RIFF wave files
    bool compress = true;                          ///< images, where it makes them smaller
};

/// The file's bytes. Numbers are written as they are, even those that make no sense; raises std::length_error when a
/// count or an image does not fit its field or its own size.
std::vector<std::uint8_t> WriteAcs(const AcsDescription& description);

} // namespace voxmate::agent
