// The only place that knows which implementations are used: it fills one Platform and shows the splash form.
#include "agent/Server.h"
#include "agent/file/AcsFile.h"
#include "base/FileName.h"
#include "forms/frmMain.h"
#include "forms/frmSplash.h"
#include "modules/Program.h"
#include "platform/FreeMemory.h"
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

/// How long a signal that asks the program to end waits for the event loop; after that the program ends whatever the
/// loop does. Session managers wait for some ten seconds before they kill.
constexpr std::chrono::seconds EndPatience{4};
/// How long the settings may then take to be saved. Short, because the event loop may hang on the very disk they go to.
constexpr std::chrono::seconds LastSavePatience{1};
/// How long a save may take that the session manager asks for; both it and the user wait for the answer.
constexpr std::chrono::seconds SessionSavePatience{4};

// Makes the parts of the program and runs it until it ends.
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
    // name(), because bcp47Name() leaves out a language's default region: Brazil's Portuguese would match any
    // Portuguese.
    speech::VoiceCatalog voices(std::move(engines), QLocale::system().name().toStdString(), Voice::EngineLimit,
                                [&running] { return running ? running->Settings.LastSpeechEngine : std::string(); });

    qt::QtWindowSystem windows(linux_platform::SharedDataFolder());
    application.Icons = &windows.Icons();
    process.WhileWaiting = [&windows] { windows.DoEvents(); };
    qt::QtAudioOutput sound;
    speech::VoicePlayer voice(voices, sound);
    qt::QtStage stage(sound);
    // The characters that ship are on the program's own disk, and only an installer writes there.
    agent::Server server(stage, voice, [](const std::string& path) {
        const bool ships = path.starts_with(linux_platform::SharedDataFolder() + "/");
        return agent::AcsFile::Open(InAnyExtensionCase(path), ships ? agent::Keep::InFile : agent::Keep::InMemory);
    });

    linux_platform::LibreOfficeWord word;
    Platform platform{*settings, server, voices, windows, files, process, clock, word};
    Program program(platform);
    running = &program;
    frmMain mainForm(program);
    frmSplash splash(program);

    const auto end = [&process] { process.EndRequested(); };
    application.EndRequested = end;
    application.SaveRequested = [&settings] { settings->Flush(SessionSavePatience); };
    // Dialogs, pictures and sentences leave their memory in pieces between what stays.
    application.AtRest = ReturnFreeMemory;
    const linux_platform::EndSignals endSignals([&] { application.Post(end); },
                                                [&process] { process.EndWithin(LastSavePatience); }, EndPatience);
    process.EndAtExit();
    splash.Show();
    sound.Look();
    return application.exec();
}

} // namespace

int main(int argc, char** argv)
{
    KeepHeapSmall();
    qt::QtApplication application(argc, argv);
    try {
        return Run(application);
    } catch (const std::exception& error) {
        // The parts of the program no longer exist; all that is left is to report the error.
        application.Icons = nullptr;
        application.EndRequested = nullptr;
        application.SaveRequested = nullptr;
        application.EndProgram = [] { std::_Exit(EXIT_FAILURE); };
        application.Report(AsRuntimeError(error));
    }
    return EXIT_FAILURE;
}
