// Where documents were left.
#pragma once

#include "platform/StateStore.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace voxmate
{

/// Remembers the part that a document was left in, for the hundred documents that were read last. A document is known
/// by the fingerprint of its content; of its name and text nothing is kept.
class ReadingPlaces
{
public:
    explicit ReadingPlaces(StateStore& state);

    /// The part, counted from 0; 0 for a document that is not known.
    std::size_t Find(const std::string& fingerprint) const;
    /// Remembers a place; a document without a fingerprint has none. 0 forgets the document.
    void Keep(const std::string& fingerprint, std::size_t part);
    void Clear();

    static constexpr std::size_t Most = 100;

private:
    StateStore& state_;
    std::vector<std::pair<std::string, std::size_t>> places_; ///< the latest first

    void Save();
};

} // namespace voxmate
