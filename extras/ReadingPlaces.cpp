#include "extras/ReadingPlaces.h"

#include <algorithm>
#include <sstream>

namespace voxmate
{

namespace
{

constexpr const char* Name = "documents.places";

} // namespace

// FINGERPRINT PART FINGERPRINT PART ...
ReadingPlaces::ReadingPlaces(StateStore& state) : state_(state)
{
    std::istringstream words(state_.Get(Name));
    std::string fingerprint;
    std::size_t part = 0;
    while (places_.size() < Most && words >> fingerprint >> part)
        places_.emplace_back(fingerprint, part);
}

std::size_t ReadingPlaces::Find(const std::string& fingerprint) const
{
    const auto found = std::find_if(places_.begin(), places_.end(),
                                    [&fingerprint](const auto& place) { return place.first == fingerprint; });
    return found == places_.end() ? 0 : found->second;
}

void ReadingPlaces::Keep(const std::string& fingerprint, std::size_t part)
{
    if (fingerprint.empty() || (part == 0 && Find(fingerprint) == 0))
        return;
    std::erase_if(places_, [&fingerprint](const auto& place) { return place.first == fingerprint; });
    if (part != 0)
        places_.emplace(places_.begin(), fingerprint, part);
    if (places_.size() > Most)
        places_.resize(Most);
    Save();
}

void ReadingPlaces::Clear()
{
    places_.clear();
    Save();
}

void ReadingPlaces::Save()
{
    std::string text;
    for (const auto& [fingerprint, part] : places_)
        text += (text.empty() ? "" : " ") + fingerprint + " " + std::to_string(part);
    state_.Set(Name, text);
}

} // namespace voxmate
