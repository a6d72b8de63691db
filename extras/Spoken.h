// What a listener hears of a document.
#pragma once

#include "readers/Block.h"

#include <string>
#include <vector>

namespace voxmate
{

/// What is spoken in one go: a sentence, a table's row, or a recording.
struct SpokenPart {
    std::string text;    ///< as it is heard and shown; UTF-8
    int pause = 0;       ///< milliseconds of silence behind it
    bool begins = false; ///< it begins a paragraph, a heading or another block
    std::string wave;    ///< the path of a recording that is played in place of a text
    // What is seen of it beside the text.
    int heading = 0;      ///< the level of a heading from 1, the highest, to 9; 0: it is none
    bool newLine = false; ///< it stands in a line of its own behind the part before it
    std::string mark{};   ///< the bullet in front of a list's item, with the room around it

    bool operator==(const SpokenPart&) const = default;
};

/// The parts of a block, in order; none for marks, which are not heard. What is printed in front is read where it has
/// letters or digits ("2."), bullets are not. A footnote is announced as one. The cells of a row follow each other with
/// commas. A sentence of more than 1000 bytes is cut at a blank.
std::vector<SpokenPart> PartsOf(const readers::Block& block);

/// A part as the voice gets it: behind the tags `prefix`, with its silence.
std::string MarkupOf(const SpokenPart& part, std::string prefix);

} // namespace voxmate
