// A balloon's text in lines, broken at blanks so that every line fits. Words are numbered as the voice counts them.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace voxmate::agent
{

/// Lines are laid out only as far as they are asked for, so a long text costs no more than the part of it that is seen.
class BalloonText
{
public:
    /// The width of a text on one line, in the unit of `width`.
    using Measure = std::function<int(const std::string&)>;

    BalloonText() = default;
    /// Breaks `text` (UTF-8) into lines at most `width` wide. The text's own line ends (CR LF, LF or CR) end a line; a
    /// run of blanks counts as one. A word wider than a line is broken between characters, with at least one character
    /// on each line.
    BalloonText(std::shared_ptr<const std::string> text, int width, Measure measure);

    /// Whether there is a line `index`, counted from 0.
    bool HasLine(std::size_t index);
    /// Line `index` with its words up to number `lastWord` (counted from 0 over the whole text); without any when that
    /// is negative.
    std::string Line(std::size_t index, int lastWord);
    /// Whether line `index` belongs to a paragraph (a stretch between line ends of the text) that runs from right to
    /// left.
    bool RunsRightToLeft(std::size_t index);
    /// The line on which `word` ends: the last line for a word past the end, 0 for a word before the beginning.
    std::size_t LineOfWord(int word);

private:
    struct Piece {
        std::string text;
        int word = 0;
    };
    struct PieceLine {
        std::vector<Piece> pieces;
        bool rightToLeft = false;
    };

    bool LayOutNext();
    std::size_t FittingPrefix(std::size_t from, std::size_t end) const;

    std::shared_ptr<const std::string> text_ = std::make_shared<const std::string>();
    int width_ = 0;
    Measure measure_;
    std::vector<PieceLine> lines_;
    std::size_t at_ = 0;      ///< first byte not laid out yet
    std::size_t scanned_ = 0; ///< no blank stands between at_ and this byte
    bool midWord_ = false;    ///< the last line ended within a word
    int word_ = 0;            ///< number of the next word
    bool lineOpen_ = true;    ///< another line follows, even if an empty one
    bool paragraphBegins_ = true;
    bool rightToLeft_ = false; ///< whether the paragraph being laid out does
};

} // namespace voxmate::agent
