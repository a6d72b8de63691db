// Measures the memory that loading and unloading characters leaves behind: three at a time are shown, played and
// unloaded, a hundred times; the memory is read in between.
//
// Usage: character_memory [FOLDER]   the folder of the character files; by default those of this build
#include "agent/Server.h"
#include "bench/NoSound.h"
#include "qt/character/QtStage.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <malloc.h>
#include <string>
#include <unistd.h>
#include <vector>

using namespace voxmate;

namespace
{

constexpr int kRounds = 100;
constexpr int kCharacters = 3;
constexpr int kRoundMs = 400;

/// Moves the mouth through all its shapes, 20 ms each, without a sound.
class SilentVoice : public speech::VoiceOutput
{
public:
    explicit SilentVoice(agent::Stage& stage) : stage_(stage) {}

    AudioStatus Status() override { return AudioStatus::Available; }
    void Start(speech::Utterance, speech::VoiceEvents events) override
    {
        events_ = std::move(events);
        mouth_ = 0;
        timer_ = stage_.After(0, [this] {
            events_.Started();
            Next();
        });
    }
    void Stop() override { timer_.reset(); }

private:
    void Next()
    {
        if (mouth_ == agent::MouthCount) {
            timer_.reset();
            events_.Ended(true);
            return;
        }
        events_.Word(mouth_);
        events_.Mouth(mouth_++);
        timer_ = stage_.After(20, [this] { Next(); });
    }

    agent::Stage& stage_;
    speech::VoiceEvents events_;
    int mouth_ = 0;
    std::unique_ptr<agent::StageTimer> timer_;
};

double ResidentMb()
{
    std::ifstream file("/proc/self/statm");
    double pages = 0;
    file >> pages >> pages;
    return pages * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1e6;
}

double AllocatedMb()
{
    const struct mallinfo2 info = ::mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / 1e6;
}

void LetPass(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    // Deletes the objects that wait for deletion in the event loop.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void PlayRound(agent::Server& server, const std::vector<std::string>& files)
{
    for (std::size_t i = 0; i < kCharacters; ++i) {
        const std::string name = "character " + std::to_string(i);
        server.Load(name, files[i % files.size()]);
        AgentCharacter& character = server.Characters(name);
        character.Balloon().SetStyle(character.Balloon().Style() | BalloonOn);
        character.Show(i == 0);
        character.Speak("One two three four five six seven", "");
        character.Play("Wave");
        character.Play("Search");
    }
    LetPass(kRoundMs);
    for (std::size_t i = 0; i < kCharacters; ++i)
        server.Unload("character " + std::to_string(i));
    LetPass(20);
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QDir folder(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral(VOXMATE_CHARACTERS));
    std::vector<std::string> files;
    for (const QString& name : folder.entryList({QStringLiteral("*.acs")}, QDir::Files, QDir::Name))
        files.push_back(folder.filePath(name).toStdString());
    if (files.empty()) {
        std::cerr << "no characters in " << folder.path().toStdString() << "\n";
        return 1;
    }
    bench::NoSound sound;
    qt::QtStage stage(sound);
    SilentVoice voice(stage);
    agent::Server server(stage, voice);
    std::printf("%zu character files, %d characters a round\n", files.size(), kCharacters);
    for (int round = 1; round <= kRounds; ++round) {
        PlayRound(server, files);
        if (round == 1 || round == 10 || round == 50 || round == 100)
            std::printf("after %3d rounds: resident %6.2f MB, allocated %6.2f MB, windows %lld\n", round, ResidentMb(),
                        AllocatedMb(), static_cast<long long>(QGuiApplication::allWindows().size()));
        std::fflush(stdout);
    }
    return 0;
}
