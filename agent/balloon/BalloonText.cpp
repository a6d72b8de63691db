#include "agent/balloon/BalloonText.h"

#include "agent/body/Direction.h"
#include "base/Words.h"

#include <algorithm>
#include <utility>

namespace voxmate::agent
{

namespace
{

bool IsLineEnd(char c)
{
    return c == '\n' || c == '\r';
}

} // namespace

BalloonText::BalloonText(std::shared_ptr<const std::string> text, int width, Measure measure)
    : text_(std::move(text)), width_(width), measure_(std::move(measure))
{
    lineOpen_ = !text_->empty();
}

bool BalloonText::HasLine(std::size_t index)
{
    while (lines_.size() <= index)
        if (!LayOutNext())
            return false;
    return true;
}

std::string BalloonText::Line(std::size_t index, int lastWord)
{
    std::string line;
    if (!HasLine(index))
        return line;
    for (const Piece& piece : lines_[index].pieces) {
        if (piece.word > lastWord)
            break;
        if (!line.empty())
            line += ' ';
        line += piece.text;
    }
    return line;
}

bool BalloonText::RunsRightToLeft(std::size_t index)
{
    return HasLine(index) && lines_[index].rightToLeft;
}

std::size_t BalloonText::LineOfWord(int word)
{
    if (word < 0)
        return 0;
    // A word's last piece is on the last line that begins with that word or an earlier one.
    while (word_ <= word && LayOutNext()) {
    }
    for (std::size_t i = lines_.size(); i > 0; --i)
        if (!lines_[i - 1].pieces.empty() && lines_[i - 1].pieces.front().word <= word)
            return i - 1;
    return 0;
}

/// The end of the longest stretch from `from` that fits on a line; at least one character long.
std::size_t BalloonText::FittingPrefix(std::size_t from, std::size_t end) const
{
    std::vector<std::size_t> ends{from + CharacterAt(*text_, from)};
    const auto fits = [&](std::size_t to) { return measure_(text_->substr(from, to - from)) <= width_; };
    // The step is first doubled, then halved, so that a word as long as a book is not measured as a whole.
    std::size_t good = 0;
    std::size_t bad = 0;
    for (std::size_t step = 1; bad == 0; step *= 2) {
        while (ends.size() <= good + step && ends.back() < end)
            ends.push_back(ends.back() + CharacterAt(*text_, ends.back()));
        const std::size_t next = std::min(good + step, ends.size() - 1);
        if (next == good)
            break;
        if (fits(ends[next]))
            good = next;
        else
            bad = next;
    }
    while (bad > good + 1) {
        const std::size_t middle = (good + bad) / 2;
        (fits(ends[middle]) ? good : bad) = middle;
    }
    return ends[good];
}

bool BalloonText::LayOutNext()
{
    if (!lineOpen_)
        return false;
    if (std::exchange(paragraphBegins_, false)) {
        const std::size_t end = std::min(text_->find_first_of("\r\n", at_), text_->size());
        rightToLeft_ = agent::RunsRightToLeft(std::string_view(*text_).substr(at_, end - at_));
    }
    PieceLine line{{}, rightToLeft_};
    std::string written;
    for (;;) {
        while (at_ < text_->size() && !IsLineEnd((*text_)[at_]) && BlankAt(*text_, at_) > 0)
            at_ += BlankAt(*text_, at_);
        if (at_ == text_->size()) {
            lineOpen_ = false;
            break;
        }
        if (IsLineEnd((*text_)[at_])) {
            at_ += (*text_)[at_] == '\r' && at_ + 1 < text_->size() && (*text_)[at_ + 1] == '\n' ? 2 : 1;
            paragraphBegins_ = true;
            break;
        }
        // So many bytes never fit on a line of 255 characters, so nothing behind them is scanned. What was scanned for
        // the line before is not scanned again.
        constexpr std::size_t longest = 4000;
        scanned_ = std::max(scanned_, at_);
        while (scanned_ < text_->size() && !BlankAt(*text_, scanned_) && scanned_ - at_ < longest)
            scanned_ += CharacterAt(*text_, scanned_);
        const std::size_t end = scanned_;
        if (!midWord_ && end - at_ < longest) {
            std::string word = text_->substr(at_, end - at_);
            std::string joined = written;
            if (!joined.empty())
                joined += ' ';
            joined += word;
            if (measure_(joined) <= width_) {
                line.pieces.push_back({std::move(word), word_++});
                written = std::move(joined);
                at_ = end;
                continue;
            }
        }
        if (!line.pieces.empty())
            break;
        const std::size_t cut = std::min(end, FittingPrefix(at_, end));
        written = text_->substr(at_, cut - at_);
        line.pieces.push_back({written, word_});
        at_ = cut;
        midWord_ = cut < text_->size() && !BlankAt(*text_, cut);
        if (midWord_)
            break;
        ++word_;
    }
    if (at_ == text_->size())
        lineOpen_ = false;
    lines_.push_back(std::move(line));
    return true;
}

} // namespace voxmate::agent
