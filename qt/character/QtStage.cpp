#include "qt/character/QtStage.h"

#include "qt/character/Background.h"
#include "qt/character/QtBalloonWindow.h"
#include "qt/character/QtCharacterWindow.h"
#include "qt/character/StageWindow.h"
#include "qt/system/DesktopWatch.h"
#include "qt/widgets/QtText.h"
#include "speech/sound/WaveFile.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QScreen>
#include <QTimerEvent>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace voxmate::qt
{

namespace
{

/// Runs an action once. The timer may be destroyed inside that action.
class QtStageTimer : public agent::StageTimer
{
public:
    QtStageTimer(int milliseconds, std::function<void()> action) : shot_(new Shot)
    {
        shot_->action = std::move(action);
        shot_->startTimer(std::max(milliseconds, 0), Qt::PreciseTimer);
    }
    ~QtStageTimer() override
    {
        shot_->action = nullptr;
        shot_->deleteLater();
    }

private:
    class Shot : public QObject
    {
    public:
        std::function<void()> action;

    protected:
        void timerEvent(QTimerEvent* event) override
        {
            killTimer(event->timerId());
            if (const auto run = std::exchange(action, nullptr))
                run();
        }
    };
    Shot* shot_;
};

/// A sound in memory.
class SoundSource : public speech::SampleSource
{
public:
    explicit SoundSource(std::vector<std::int16_t> samples) : samples_(std::move(samples)) {}

    std::size_t Pull(std::span<std::int16_t> samples, bool& ended) override
    {
        const std::size_t count = std::min(samples.size(), samples_.size() - next_);
        std::copy_n(samples_.begin() + static_cast<std::ptrdiff_t>(next_), count, samples.begin());
        next_ += count;
        ended = count == 0;
        return count;
    }

private:
    const std::vector<std::int16_t> samples_;
    std::size_t next_ = 0;
};

Rect Available(const QScreen& screen)
{
    const QRect area = DesktopWatch::Instance().WorkArea(screen);
    return {area.x(), area.y(), area.width(), area.height()};
}

/// The area of the window that holds character and balloon, where there is one.
std::optional<Rect> OnStage()
{
    const auto* stage = StageWindow::Instance();
    if (!stage)
        return std::nullopt;
    return Rect{0, 0, stage->Area().width(), stage->Area().height()};
}

} // namespace

QtStage::QtStage(speech::AudioOutput& audio) : audio_(audio), random_(std::random_device{}())
{
    QObject::connect(&DesktopWatch::Instance(), &DesktopWatch::ScreensChanged, &context_, [this] {
        if (const auto changed = ScreensChanged)
            changed();
    });
    if (auto* stage = StageWindow::Instance())
        QObject::connect(stage, &StageWindow::Resized, &context_, [this] {
            if (const auto changed = ScreensChanged)
                changed();
        });
}

std::unique_ptr<agent::CharacterWindow> QtStage::CreateCharacterWindow()
{
    return std::make_unique<QtCharacterWindow>();
}

std::unique_ptr<agent::BalloonWindow> QtStage::CreateBalloonWindow()
{
    return std::make_unique<QtBalloonWindow>();
}

Rect QtStage::WorkArea(Point point)
{
    if (const auto stage = OnStage())
        return *stage;
    const QScreen* nearest = ScreenNearest({point.x, point.y});
    return nearest ? Available(*nearest) : Rect{};
}

Rect QtStage::PrimaryWorkArea()
{
    if (const auto stage = OnStage())
        return *stage;
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? Available(*screen) : Rect{};
}

std::unique_ptr<agent::StageTimer> QtStage::After(int milliseconds, std::function<void()> action)
{
    return std::make_unique<QtStageTimer>(milliseconds, std::move(action));
}

std::unique_ptr<agent::StageWork> QtStage::InBackground(std::function<void(std::stop_token)> work,
                                                        std::function<void()> done)
{
    return std::make_unique<Background>(std::move(work), std::move(done));
}

std::int64_t QtStage::Now()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

int QtStage::Random(int bound)
{
    return bound > 1 ? std::uniform_int_distribution<int>(0, bound - 1)(random_) : 0;
}

const QFont& QtStage::FontFor(const agent::BalloonFont& font)
{
    if (!font_ || font.name != fontAsked_.name || font.points != fontAsked_.points || font.bold != fontAsked_.bold ||
        font.italic != fontAsked_.italic) {
        fontAsked_ = font;
        font_ = ToQFont(font);
    }
    return *font_;
}

int QtStage::TextWidth(const agent::BalloonFont& font, const std::string& text)
{
    return static_cast<int>(std::ceil(QFontMetricsF(FontFor(font)).horizontalAdvance(ToQt(text))));
}

int QtStage::LineHeight(const agent::BalloonFont& font)
{
    return static_cast<int>(std::ceil(QFontMetricsF(FontFor(font)).lineSpacing()));
}

int QtStage::AverageCharWidth(const agent::BalloonFont& font)
{
    return static_cast<int>(std::ceil(QFontMetricsF(FontFor(font)).averageCharWidth()));
}

void QtStage::PopupMenu(const std::vector<agent::MenuEntry>& entries, Point at,
                        std::function<void(const std::string& name)> chosen)
{
    if (menu_)
        menu_->close();
    auto* menu = new QMenu;
    menu->setObjectName(QStringLiteral("characterMenu"));
    for (const agent::MenuEntry& entry : entries) {
        if (entry.caption == "-") {
            menu->addSeparator();
            continue;
        }
        QAction* action = menu->addAction(ToQt(entry.caption));
        action->setObjectName(ToQt(entry.name));
        action->setEnabled(entry.enabled);
        QObject::connect(action, &QAction::triggered, menu, [chosen, name = entry.name] { chosen(name); });
    }
    // The menu reports the choice after it has closed, but within the same event, so it is deleted only after that
    // event.
    QObject::connect(menu, &QMenu::aboutToHide, menu, &QObject::deleteLater);
    menu_ = menu;
    if (auto* stage = StageWindow::Instance()) {
        menu->winId();
        menu->windowHandle()->setTransientParent(stage->windowHandle());
        menu->popup(stage->mapToGlobal(QPoint(at.x, at.y)));
        return;
    }
    menu->popup(QPoint(at.x, at.y));
}

void QtStage::PlaySound(std::span<const std::uint8_t> wave)
{
    StopSound();
    if (!audio_.Ready()) // waiting for the sound server would block the character and all other windows
        return;
    auto data = speech::DecodeWave(wave);
    if (!data)
        return;
    auto source = std::make_shared<SoundSource>(std::move(data->samples));
    // Queued, because a stream must not be destroyed inside its own call. By then another sound may be playing.
    const auto done = [this, number = ++soundNumber_] {
        QMetaObject::invokeMethod(
            &context_,
            [this, number] {
                if (number == soundNumber_)
                    sound_.reset();
            },
            Qt::QueuedConnection);
    };
    sound_ = audio_.Open(data->samplesPerSecond, std::move(source), done, done);
}

} // namespace voxmate::qt
