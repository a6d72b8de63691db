#include "agent/balloon/Balloon.h"

#include "agent/balloon/BalloonPlace.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

namespace voxmate::agent
{

namespace
{

// The values for a file without balloon settings.
constexpr std::uint32_t kDefaultLines = 4;
constexpr std::uint32_t kDefaultCharacters = 32;
constexpr int kDefaultPoints = 10;
constexpr int kAllWords = std::numeric_limits<int>::max();

std::uint32_t FileStyle(const AcsFile& file)
{
    std::uint32_t style = 0;
    if (!(file.flags & FlagBalloonDisabled))
        style |= BalloonOn;
    if (file.flags & FlagSizeToText)
        style |= BalloonSizeToText;
    if (!(file.flags & FlagAutoHideOff))
        style |= BalloonAutoHide;
    if (!(file.flags & FlagAutoPaceOff))
        style |= BalloonAutoPace;
    const std::uint32_t lines = file.balloon ? file.balloon->lines : kDefaultLines;
    const std::uint32_t characters = file.balloon ? file.balloon->charactersPerLine : kDefaultCharacters;
    return style | lines << 24 | characters << 16;
}

BalloonFont FileFont(const AcsFile& file)
{
    BalloonFont font;
    font.points = kDefaultPoints;
    if (!file.balloon)
        return font;
    font.name = file.balloon->fontName;
    // Heights are in pixels of 1/96 inch, points are 1/72 inch. 0 leaves the choice to us; no sane file asks for more
    // than 200 points.
    const std::int64_t height = std::abs(std::int64_t{file.balloon->fontHeight});
    if (height > 0)
        font.points = static_cast<int>(std::clamp<std::int64_t>((height * 3 + 2) / 4, 1, 200));
    font.bold = file.balloon->fontWeight >= 600;
    font.italic = file.balloon->italic;
    return font;
}

} // namespace

Balloon::Balloon(Stage& stage, const AcsFile& file, std::function<Rect()> body)
    : stage_(stage), body_(std::move(body)), style_(FileStyle(file)), fileFont_(FileFont(file)), font_(fileFont_)
{
    if (file.balloon) {
        textColour_ = file.balloon->text;
        background_ = file.balloon->background;
        border_ = file.balloon->border;
    }
}

void Balloon::SetStyle(std::uint32_t style)
{
    if (style == style_)
        return;
    style_ = style;
    LayOut();
    SettleHiding();
}

void Balloon::SetFontName(const std::string& name)
{
    font_.name = name.empty() ? fileFont_.name : name;
    LayOut();
}

void Balloon::SetFontSize(int points)
{
    font_.points = points < 1 ? fileFont_.points : points;
    LayOut();
}

void Balloon::Begin(std::string text)
{
    hideTimer_.reset();
    text_ = text.empty() ? nullptr : std::make_shared<const std::string>(std::move(text));
    ended_ = false;
    word_ = -1;
    LayOut();
}

void Balloon::Word(int word)
{
    word_ = std::max(word_, word);
    Update();
}

void Balloon::Ended()
{
    ended_ = true;
    word_ = kAllWords;
    Update();
    SettleHiding();
}

/// Starts or stops the timer that hides the balloon, because auto hide may be switched while the balloon is on show.
void Balloon::SettleHiding()
{
    if (!ended_ || !text_ || !Has(BalloonAutoHide))
        hideTimer_.reset();
    else if (!hideTimer_)
        hideTimer_ = stage_.After(AutoHideDelay, [this] { Hide(); });
}

void Balloon::Hide()
{
    hideTimer_.reset();
    text_.reset();
    lines_ = {};
    Update();
}

void Balloon::Follow()
{
    const Rect area = stage_.WorkArea(body_().Middle());
    if (Wanted() && Size{area.width, area.height} != room_)
        LayOut();
    else
        Update();
}

std::optional<Rect> Balloon::Beside(const Rect& body)
{
    if (!onScreen_)
        return std::nullopt;
    return PlaceBalloon(size_, body, stage_.WorkArea(body.Middle())).bubble;
}

/// Breaks the text into lines for the present style and font, and computes the bubble's size.
void Balloon::LayOut()
{
    if (!Wanted()) {
        Update();
        return;
    }
    const Rect area = stage_.WorkArea(body_().Middle());
    room_ = {area.width, area.height};
    // The font may have any size, so products of its measures are computed in 64 bits.
    const std::int64_t characters = std::max(1u, (style_ & BalloonCharactersMask) >> 16);
    const std::int64_t wanted = characters * std::max(1, stage_.AverageCharWidth(font_));
    const auto inner =
        static_cast<int>(std::max<std::int64_t>(1, std::min<std::int64_t>(wanted, area.width - 2 * BalloonPadding)));
    lineHeight_ = std::max(1, stage_.LineHeight(font_));
    lines_ = BalloonText(text_, inner, [this](const std::string& text) { return stage_.TextWidth(font_, text); });

    const auto highest = static_cast<std::size_t>(std::max(1, (area.height - 2 * BalloonPadding) / lineHeight_));
    if (Has(BalloonSizeToText)) {
        rows_ = 1;
        while (rows_ < highest && lines_.HasLine(rows_))
            ++rows_;
    } else {
        rows_ = std::clamp<std::size_t>((style_ & BalloonLinesMask) >> 24, 1, highest);
    }
    const std::int64_t height = static_cast<std::int64_t>(rows_) * lineHeight_ + std::int64_t{2} * BalloonPadding;
    size_ = {std::min(inner + 2 * BalloonPadding, area.width),
             static_cast<int>(std::min<std::int64_t>(height, area.height))};
    Update();
}

/// Shows what is to be seen now, if that differs from what is on the screen.
void Balloon::Update()
{
    const bool autoPace = Has(BalloonAutoPace);
    if (!Wanted() || (autoPace && word_ < 0)) {
        if (onScreen_)
            window_->Hide();
        onScreen_ = false;
        return;
    }
    BalloonView view;
    // Once the text is longer than the bubble is high, the line being heard is the last one on show.
    const std::size_t heard = lines_.LineOfWord(word_);
    const std::size_t top = heard + 1 > rows_ ? heard + 1 - rows_ : 0;
    for (std::size_t i = top; i < top + rows_ && lines_.HasLine(i) && (!autoPace || i <= heard); ++i) {
        view.lines.push_back(lines_.Line(i, autoPace ? word_ : kAllWords));
        view.rightToLeft.push_back(lines_.RunsRightToLeft(i));
    }
    view.lineHeight = lineHeight_;
    const Rect body = body_();
    const BalloonPlace place = PlaceBalloon(size_, body, stage_.WorkArea(body.Middle()));
    view.bubble = place.bubble;
    view.tailTip = place.tailTip;
    view.font = font_;
    view.text = textColour_;
    view.background = background_;
    view.border = border_;
    if (onScreen_ && view == view_)
        return;
    if (!window_) {
        window_ = stage_.CreateBalloonWindow();
        window_->Mouse = [this](const MouseEvent& event) { OnMouse(event); };
        window_->FilesDropped = [this](const std::vector<std::string>& files) {
            if (FilesDropped)
                FilesDropped(files);
        };
    }
    view_ = std::move(view);
    onScreen_ = true;
    window_->Show(view_);
}

// A click and a drag both end when the button is released. Either takes the balloon away; the voice goes on.
void Balloon::OnMouse(const MouseEvent& event)
{
    if (event.action == MouseAction::Release)
        Hide();
}

} // namespace voxmate::agent
