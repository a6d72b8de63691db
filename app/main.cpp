// The one place that knows which implementation is used: fills one Platform and starts the splash form.
#include "agent/Server.h"
#include "forms/frmMain.h"
#include "forms/frmSplash.h"
#include "modules/Program.h"
#include "platform/linux/desktop/QtAudioOutput.h"
#include "platform/linux/files/Folders.h"
#include "platform/linux/files/LinuxFileSystem.h"
#include "platform/linux/process/EndSignals.h"
#include "platform/linux/process/LinuxProcess.h"
#include "platform/linux/settings/FileSettingsStore.h"
#include "platform/linux/word/LibreOfficeWord.h"
#include "qt/character/QtStage.h"
#include "qt/system/QtApplication.h"
#include "qt/system/QtWindowSystem.h"
#include "speech/VoiceCatalog.h"
#include "speech/player/VoicePlayer.h"

#include <QLocale>

#include <chrono>
#include <cstdlib>
#include <exception>
#include <memory>
#include <utility>
#include <vector>

using namespace voxmate;

namespace
{

/// Of one who ends the program by a signal, before it ends whatever its event loop does. Sessions wait for some ten
/// seconds before they kill.
constexpr std::chrono::seconds EndPatience{4};
/// What is left then for the settings: the event loop may hang because the disk does.
constexpr std::chrono::seconds LastSavePatience{1};
/// The session's manager waits for the answer, and so does the user.
constexpr std::chrono::seconds SessionSavePatience{4};

// Makes the parts of the program, and runs it until it ends.
int Run(qt::QtApplication& application)
{
    const std::unique_ptr<linux_platform::FileSettingsStore> settings = linux_platform::MakeSettingsStore();
    linux_platform::LinuxFileSystem files;
    linux_platform::LinuxProcess process;
    linux_platform::LinuxClock clock;
    process.BeforeEnd = [&settings](std::chrono::milliseconds patience) { settings->Flush(patience); };
    application.EndProgram = [&process] { process.EndProgram(); };

    const Program* running = nullptr;
    std::vector<std::unique_ptr<speech::Engine>> engines;
    engines.push_back(speech::CreateEspeakEngine());
    engines.push_back(speech::CreateFliteEngine());
    engines.push_back(speech::CreateFlitevoxEngine(linux_platform::ProgramFolder() + "/voices"));
    // name(): bcp47Name leaves out a region that goes without saying, so that Brazil's Portuguese would be any.
    speech::VoiceCatalog voices(std::move(engines), QLocale::system().name().toStdString(), Voice::EngineLimit,
                                [&running] { return running ? running->Settings.LastSpeechEngine : std::string(); });

    qt::QtWindowSystem windows(linux_platform::SharedDataFolder());
    application.Icons = &windows.Icons();
    process.WhileWaiting = [&windows] { windows.DoEvents(); };
    qt::QtAudioOutput sound;
    speech::VoicePlayer voice(voices, sound);
    qt::QtStage stage(sound);
    agent::Server server(stage, voice);

    linux_platform::LibreOfficeWord word;
    Platform platform{*settings, server, voices, windows, files, process, clock, word};
    Program program(platform);
    running = &program;
    frmMain mainForm(program);
    frmSplash splash(program);
    sound.Look();

    const auto end = [&process] { process.EndRequested(); };
    application.EndRequested = end;
    application.SaveRequested = [&settings] { settings->Flush(SessionSavePatience); };
    const linux_platform::EndSignals endSignals([&] { application.Post(end); },
                                                [&process] { process.EndWithin(LastSavePatience); }, EndPatience);
    process.EndAtExit();
    splash.Show();
    return application.exec();
}

} // namespace

int main(int argc, char** argv)
{
    qt::QtApplication application(argc, argv);
    try {
        return Run(application);
    } catch (const std::exception& error) {
        // The parts are gone again: the report is all that is left to do.
        application.Icons = nullptr;
        application.EndRequested = nullptr;
        application.SaveRequested = nullptr;
        application.EndProgram = [] { std::_Exit(EXIT_FAILURE); };
        application.Report(AsRuntimeError(error));
    }
    return EXIT_FAILURE;
}
