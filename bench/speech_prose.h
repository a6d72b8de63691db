// English prose for measuring voices: ordinary sentences of several kinds, so that word lengths and pauses vary.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace voxmate::speech::measure
{

/// The passages the engines are calibrated with.
inline constexpr std::array<std::string_view, 5> CalibrationProse{
    "When the rain had stopped at last, the old man took his stick from behind the door and went out to look at the "
    "garden. Every leaf was shining. He walked slowly along the path between the apple trees, counting the fruit that "
    "had fallen in the night, and wondered whether his daughter would come on Sunday.",
    "The council has decided to keep the library open until nine o'clock in the evening, beginning next month. Members "
    "said that more than four hundred people had signed the petition. The additional cost will be paid from the budget "
    "for public buildings, which was increased last year.",
    "To save your work, open the file menu and choose save. If the document has no name yet, the program asks for one. "
    "You can also press the control key together with the letter S. Remember to save often, because a sudden loss of "
    "power can destroy everything that you have written since the last time.",
    "It was the best of times, it was the worst of times, it was the age of wisdom, it was the age of foolishness, it "
    "was the season of light, it was the season of darkness, it was the spring of hope, it was the winter of despair.",
    "Good morning! I hope you slept well. There are three new messages for you, and your first meeting starts in half "
    "an hour. The weather will be mild today, with some sunshine in the afternoon. Would you like me to read the "
    "messages now, or shall I wait until you have had your coffee?",
};

/// Other passages, used to check the calibration.
inline constexpr std::array<std::string_view, 3> CheckProse{
    "The North Wind and the Sun were disputing which was the stronger, when a traveller came along wrapped in a warm "
    "cloak. They agreed that the one who first succeeded in making the traveller take his cloak off should be "
    "considered stronger than the other. Then the North Wind blew as hard as he could, but the more he blew the more "
    "closely did the traveller fold his cloak around him, and at last the North Wind gave up the attempt.",
    "Researchers have found that bees can recognise human faces. In the experiment, the insects were given sugar "
    "whenever they flew to a certain photograph. After two days most of them chose the right picture, even when the "
    "sugar had been removed. The results surprised everyone in the laboratory.",
    "My grandmother kept a small shop at the end of the street. She sold bread, newspapers and sewing thread, and she "
    "knew the names of all the children. On cold days she let us sit near the stove. We never bought much, but she "
    "did not seem to mind.",
};

/// The number of words separated by blanks.
constexpr std::size_t CountWords(std::string_view text)
{
    std::size_t words = 0;
    bool blank = true;
    for (const char c : text) {
        words += blank && c != ' ';
        blank = c == ' ';
    }
    return words;
}

} // namespace voxmate::speech::measure
