// Measures how punctual a character's frames are while eight windows of an alert's size slide over the desktop.
//
//   frame_timing FILE.acs [SECONDS]      (needs a display)
#include "agent/Server.h"
#include "agent/file/AcsWriter.h"
#include "bench/NoSound.h"
#include "bench/Statistics.h"
#include "qt/character/QtStage.h"
#include "qt/system/QtApplication.h"

#include <QLinearGradient>
#include <QPainter>
#include <QTimer>
#include <QWidget>

#include <cstdlib>
#include <memory>

using namespace voxmate;
using namespace voxmate::agent;

namespace
{

constexpr int Alerts = 8;
constexpr int AlertWidth = 160; // 2400 twips at 96 dots an inch
constexpr int AlertHeight = 133;
constexpr int AlertTick = 10; // milliseconds
constexpr int AlertStep = 5;  // pixels, 75 twips
constexpr double Punctual = 10;

class NoVoice : public speech::VoiceOutput
{
public:
    AudioStatus Status() override { return AudioStatus::NoSupport; }
    void Start(speech::Utterance, speech::VoiceEvents) override {}
    void Stop() override {}
};

class Alert : public QWidget
{
public:
    explicit Alert(int number)
        : QWidget(nullptr, Qt::FramelessWindowHint | Qt::Tool | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus)
    {
        setFixedSize(AlertWidth, AlertHeight);
        move(20 + number * (AlertWidth + 10), 300 + number * 40);
        show();
        timer_.setTimerType(Qt::PreciseTimer);
        connect(&timer_, &QTimer::timeout, this, [this] {
            if (y() < 50 || y() > 700)
                step_ = y() < 50 ? AlertStep : -AlertStep;
            move(x(), y() + step_);
        });
        timer_.start(AlertTick);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        QLinearGradient gradient(0, 0, 0, height());
        gradient.setColorAt(0, Qt::white);
        gradient.setColorAt(1, QColor(90, 130, 220));
        painter.fillRect(rect(), gradient);
        painter.drawText(rect(), Qt::AlignCenter, "A reminder");
    }

private:
    QTimer timer_;
    int step_ = -AlertStep;
};

// Records the times at which the character's window is painted.
class PaintWatch : public QObject
{
public:
    std::vector<double> times;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && watched->objectName() == "Voxmate character")
            times.push_back(bench::NowMs());
        return false;
    }
};

// A character that plays the drawn frames of another, each different from the one before, for `length` hundredths of a
// second; their durations cycle through 3 to 10 hundredths.
std::shared_ptr<const AcsFile> March(const AcsFile& from, int length, std::vector<double>& due)
{
    AcsDescription d;
    static_cast<AcsContent&>(d) = from;
    d.states.clear();
    d.animations.clear();
    Frame none;
    none.duration = 100;
    Animation march{"March", Transition::None, "", {none}};
    double at = 0;
    std::vector<std::uint32_t> number(from.ImageCount(), UINT32_MAX);
    std::vector<const Frame*> drawn;
    for (const Animation& animation : from.animations)
        for (const Frame& frame : animation.frames)
            if (frame.duration > 0 && !frame.images.empty() &&
                (drawn.empty() || drawn.back()->images[0].image != frame.images[0].image))
                drawn.push_back(&frame);
    for (std::size_t i = 0; at < length; ++i) {
        Frame frame;
        for (FrameImage image : drawn.at(i % drawn.size())->images) {
            if (number[image.image] == UINT32_MAX) {
                number[image.image] = static_cast<std::uint32_t>(d.images.size());
                d.images.push_back(from.DecodeImage(image.image));
            }
            image.image = number[image.image];
            frame.images.push_back(image);
        }
        frame.duration = static_cast<std::uint16_t>(3 + i % 8);
        due.push_back(at * 10);
        at += frame.duration;
        march.frames.push_back(frame);
    }
    d.animations = {march};
    return AcsFile::Parse(WriteAcs(d), "march.acs");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: frame_timing FILE.acs [SECONDS]\n");
        return 2;
    }
    const int seconds = argc > 2 ? std::atoi(argv[2]) : 20;
    qt::QtApplication application(argc, argv);
    std::vector<double> due;
    auto march = March(*AcsFile::Open(argv[1]), seconds * 100, due);

    bench::NoSound sound;
    NoVoice voice;
    qt::QtStage stage(sound);
    Server server(stage, voice, [&march](const std::string&) { return march; });
    server.Load("March", "");
    std::vector<std::unique_ptr<Alert>> alerts;
    alerts.reserve(Alerts);
    for (int i = 0; i < Alerts; ++i)
        alerts.push_back(std::make_unique<Alert>(i));
    PaintWatch watch;
    double begin = 0;
    AgentRequestPtr play;
    server.RequestStart = [&](const AgentRequestPtr& request) {
        if (request != play)
            return;
        begin = bench::NowMs();
        application.installEventFilter(&watch);
    };
    server.RequestComplete = [&](const AgentRequestPtr& request) {
        if (request == play)
            QCoreApplication::exit(); // the character refuses to be closed, which quit() would ask it
    };
    server.Characters("March").Show(true);
    QTimer::singleShot(1000, [&] { play = server.Characters("March").Play("March"); });
    application.exec();

    // The first frame is empty and lasts a second. Each frame belongs to the first paint after it was due.
    std::vector<double> late;
    std::size_t missed = 0;
    std::size_t at = 0;
    for (std::size_t i = 0; i < due.size(); ++i) {
        const double wanted = begin + 1000 + due[i];
        while (at < watch.times.size() && watch.times[at] < wanted - 5)
            ++at;
        const double next = i + 1 < due.size() ? begin + 1000 + due[i + 1] : wanted + 100;
        if (at == watch.times.size() || watch.times[at] >= next)
            ++missed;
        else
            late.push_back(watch.times[at] - wanted);
    }
    const auto punctual = std::count_if(late.begin(), late.end(), [](double ms) { return ms <= Punctual; });
    bench::Report("A frame is painted after it was due by", late, "ms");
    std::printf("%.1f %% of %zu frames painted within %.0f ms of their time, %zu not painted at all, beside %d moving "
                "windows  aim: 95 %%\n",
                100.0 * static_cast<double>(punctual) / static_cast<double>(due.size()), due.size(), Punctual, missed,
                Alerts);
    return 0;
}
