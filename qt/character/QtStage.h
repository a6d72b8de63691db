// The character server's stage on a Qt desktop.
#pragma once

#include "agent/Stage.h"
#include "speech/AudioOutput.h"

#include <QFont>
#include <QMenu>
#include <QPointer>

#include <optional>
#include <random>

namespace voxmate::qt
{

class QtStage : public agent::Stage
{
public:
    /// Sounds are played through `audio`, which must outlive the stage.
    explicit QtStage(speech::AudioOutput& audio);

    std::unique_ptr<agent::CharacterWindow> CreateCharacterWindow() override;
    std::unique_ptr<agent::BalloonWindow> CreateBalloonWindow() override;
    Rect WorkArea(Point point) override;
    Rect PrimaryWorkArea() override;
    std::unique_ptr<agent::StageTimer> After(int milliseconds, std::function<void()> action) override;
    std::unique_ptr<agent::StageWork> InBackground(std::function<void(std::stop_token)> work,
                                                   std::function<void()> done) override;
    std::int64_t Now() override;
    int Random(int bound) override;
    int TextWidth(const agent::BalloonFont& font, const std::string& text) override;
    int LineHeight(const agent::BalloonFont& font) override;
    int AverageCharWidth(const agent::BalloonFont& font) override;
    void PopupMenu(const std::vector<agent::MenuEntry>& entries, Point at,
                   std::function<void(const std::string& name)> chosen) override;
    void PlaySound(std::span<const std::uint8_t> wave) override;
    void StopSound() override { sound_.reset(); }

private:
    const QFont& FontFor(const agent::BalloonFont& font);

    speech::AudioOutput& audio_;
    std::unique_ptr<speech::AudioStream> sound_;
    int soundNumber_ = 0;
    QObject context_;
    std::mt19937 random_;
    QPointer<QMenu> menu_;
    // Text is measured word by word in one font, so the last font is kept.
    agent::BalloonFont fontAsked_;
    std::optional<QFont> font_;
};

} // namespace voxmate::qt
