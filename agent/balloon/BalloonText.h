// A balloon's text in lines: broken at blanks so that every line fits, words numbered as the voice counts them.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace voxmate::agent
{

/// Lines are laid out only as far as they are asked for, so that a long text costs no more than what is seen of it.
class BalloonText
{
public:
    /// Width of a text on one line, in the unit of `width`.
    using Measure = std::function<int(const std::string&)>;

    BalloonText() = default;
    /// Breaks `text` (UTF-8) into lines at most `width` wide. Its own line ends (CR LF, LF or CR) end a line; runs of
    /// blanks count as one; a word wider than a line is broken between characters, one character a line at the least.
    BalloonText(std::shared_ptr<const std::string> text, int width, Measure measure);

    /// Whether there is a line `index`, counted from 0.
    bool HasLine(std::size_t index);
    /// Line `index` with its words up to `lastWord` (counted from 0 over the whole text); negative: none of them.
    std::string Line(std::size_t index, int lastWord);
    /// Whether line `index` belongs to a paragraph (a stretch between line ends of the text) that runs from right to
    /// left.
    bool RunsRightToLeft(std::size_t index);
    /// The line on which `word` ends; the last line for a word behind the end, 0 for one before the beginning.
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
    std::size_t at_ = 0;      ///< first byte not laid out
    std::size_t scanned_ = 0; ///< no blank from there back to the first byte not laid out
    bool midWord_ = false;    ///< the last line ended within a word
    int word_ = 0;            ///< number of the next word
    bool lineOpen_ = true;    ///< there is a line to come, be it an empty one
    bool paragraphBegins_ = true;
    bool rightToLeft_ = false; ///< the paragraph being laid out
};

} // namespace voxmate::agent
