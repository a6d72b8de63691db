// A character's speech balloon: its text, and when and where it is shown. The front end draws it.
#pragma once

#include "agent/Stage.h"
#include "agent/balloon/BalloonText.h"
#include "platform/Agent.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace voxmate::agent
{

class Balloon : public AgentBalloon
{
public:
    /// Takes style, font and colours from the character's file. `body` gives the place of the drawn character on the
    /// screen. Both references outlive the balloon.
    Balloon(Stage& stage, const AcsFile& file, std::function<Rect()> body);

    std::uint32_t Style() const override { return style_; }
    void SetStyle(std::uint32_t style) override;
    std::string FontName() const override { return font_.name; }
    /// An empty name means the file's font.
    void SetFontName(const std::string& name) override;
    int FontSize() const override { return font_.points; }
    /// A size below 1 means the file's.
    void SetFontSize(int points) override;

    /// A new text is about to be spoken; it replaces the last one. With auto pace the balloon appears with the first
    /// word. An empty text means no balloon.
    void Begin(std::string text);
    /// The voice begins word `word` of the text, counted from 0.
    void Word(int word);
    /// The voice has said everything: all words are shown, and with auto hide the balloon goes after AutoHideDelay.
    void Ended();
    /// Takes the balloon away and forgets its text.
    void Hide();
    /// The character has moved or changed its size, or the screen has changed.
    void Follow();

    /// The bubble of the balloon on show as it would stand beside a character at `body`; nothing without one.
    std::optional<Rect> Beside(const Rect& body);

    std::function<void(const std::vector<std::string>& files)> FilesDropped;

    /// Milliseconds from the end of the voice until auto hide takes the balloon away.
    static constexpr int AutoHideDelay = 2000;

private:
    bool Has(std::uint32_t bit) const { return (style_ & bit) != 0; }
    bool Wanted() const { return text_ && Has(BalloonOn); }
    void SettleHiding();
    void LayOut();
    void Update();
    void OnMouse(const MouseEvent& event);

    Stage& stage_;
    std::function<Rect()> body_;
    std::uint32_t style_ = 0;
    BalloonFont fileFont_;
    BalloonFont font_;
    Colour textColour_;
    Colour background_{255, 255, 225};
    Colour border_;

    std::shared_ptr<const std::string> text_; ///< none: no balloon
    bool ended_ = false;
    int word_ = -1; ///< the word being heard
    BalloonText lines_;
    std::size_t rows_ = 0; ///< lines that the bubble has room for
    int lineHeight_ = 0;
    Size size_;
    Size room_; ///< size of the work area that it was laid out for
    std::unique_ptr<BalloonWindow> window_;
    bool onScreen_ = false;
    BalloonView view_; ///< as last shown
    std::unique_ptr<StageTimer> hideTimer_;
};

} // namespace voxmate::agent
