// The only place that knows which implementations are used: it fills one Platform and shows the splash form.
#include "agent/Server.h"
#include "agent/file/AcsFile.h"
#include "base/FileName.h"
#include "extras/Extras.h"
#include "extras/HandOver.h"
#include "forms/frmMain.h"
#include "forms/frmSplash.h"
#include "modules/Program.h"
#include "platform/Fingerprint.h"
#include "platform/FreeMemory.h"
#include "platform/MemoryFile.h"
#include "platform/linux/desktop/DBusActivation.h"
#include "platform/linux/desktop/DesktopKeys.h"
#include "platform/linux/desktop/DesktopQuiet.h"
#include "platform/linux/desktop/LinuxNotifications.h"
#include "platform/linux/desktop/MprisPlayer.h"
#include "platform/linux/desktop/QtAudioOutput.h"
#include "platform/linux/desktop/X11Presence.h"
#include "platform/linux/files/FileSaver.h"
#include "platform/linux/files/Folders.h"
#include "platform/linux/files/LinuxFileSystem.h"
#include "platform/linux/process/EndSignals.h"
#include "platform/linux/process/LinuxProcess.h"
#include "platform/linux/process/QuietErrors.h"
#include "platform/linux/process/SessionBus.h"
#include "platform/linux/process/XdgAutostart.h"
#include "platform/linux/settings/FileSettingsStore.h"
#include "platform/linux/settings/FileStateStore.h"
#include "platform/linux/system/FontsAhead.h"
#include "platform/linux/system/LinuxPower.h"
#include "platform/linux/word/LibreOfficeWord.h"
#include "qt/character/QtStage.h"
#include "qt/system/QtApplication.h"
#include "qt/system/QtWindowPlaces.h"
#include "qt/system/QtWindowSystem.h"
#include "readers/Reading.h"
#include "speech/VoiceCatalog.h"
#include "speech/player/VoicePlayer.h"
#include "speech/player/WordedVoice.h"
#include "speech/sound/SoundWriter.h"

#include <QLocale>

#include <chrono>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <span>
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
/// How long the session's bus may take to answer the first word; it is milliseconds even at a busy log-in. Without the
/// bus there is no accessibility, so it is not given up lightly.
constexpr std::chrono::seconds BusPatience{5};
/// How long a save may take that the session manager asks for; both it and the user wait for the answer.
constexpr std::chrono::seconds SessionSavePatience{4};

/// Reads a character file for what it says about itself, in English where it does.
CharacterLook LookAtCharacter(const std::string& path)
{
    constexpr std::uint16_t english = 0x0409;
    const std::shared_ptr<const agent::AcsFile> file = agent::AcsFile::Open(InAnyExtensionCase(path));
    std::error_code error;
    CharacterLook look{{}, {}, std::filesystem::file_size(file->path, error)};
    for (const agent::LocalName& name : file->names) {
        if (look.Name.empty() || name.language == english) {
            look.Name = name.name;
            look.Description = name.description;
        }
    }
    return look;
}

// The arguments behind the program's name. The toolkit removes its own when the application object is made.
CommandLine Arguments(int argc, char** argv)
{
    std::error_code error;
    return ParseCommandLine(std::span(argv, static_cast<std::size_t>(argc)).subspan(argc > 0 ? 1 : 0),
                            std::filesystem::current_path(error).string());
}

// Starts the program that saves speech as sound. It gets the job as a file in memory, which may be as long as a book.
std::unique_ptr<Helper> StartRecorder(recording::Job job)
{
    job.language = QLocale::system().name().toStdString();
    job.addedVoices = linux_platform::ProgramFolder() + "/voices";
    const MemoryFile input(recording::EncodeJob(job));
    return StartHelper("voxmate-recorder", input.Path());
}

// Makes the parts of the program and runs it until it ends.
int Run(qt::QtApplication& application, const CommandLine& line)
{
    linux_platform::LinuxProcess process;
    linux_platform::DBusActivation desktop;
    linux_platform::MprisPlayer media;
    linux_platform::DesktopKeys keys;
    linux_platform::LinuxNotifications notifications;
    if (HandedOver(line, process, desktop))
        process.EndProgram();
    const std::unique_ptr<linux_platform::FileSettingsStore> settings = linux_platform::MakeSettingsStore();
    const std::unique_ptr<linux_platform::FileStateStore> state = linux_platform::MakeStateStore();
    linux_platform::LinuxFileSystem files;
    linux_platform::LinuxClock clock;
    process.BeforeEnd = [&settings, &state, &notifications](std::chrono::milliseconds patience) {
        const auto last = std::chrono::steady_clock::now() + patience;
        settings->Flush(patience);
        state->Flush(std::chrono::duration_cast<std::chrono::milliseconds>(last - std::chrono::steady_clock::now()));
        notifications.CloseAll();
    };
    application.EndProgram = [&process] { process.EndProgram(); };

    const Program* running = nullptr;
    std::vector<std::unique_ptr<speech::Engine>> engines;
    engines.push_back(speech::CreateEspeakEngine());
    engines.push_back(speech::CreateFliteEngine());
    engines.push_back(speech::CreateFlitevoxEngine(linux_platform::ProgramFolder() + "/voices"));
    Extras* told = nullptr; // when it is there
    const auto leaveOut = [](const std::string& why) { std::cerr << "voxmate: " << why << '\n'; };
    const auto voiceFailed = [&application, &told, leaveOut](const std::string& why) {
        leaveOut(why);
        application.Post([&told, why] {
            if (told)
                told->VoiceFailed(why);
        });
    };
    engines.push_back(speech::CreatePiperEngine(linux_platform::ProgramFolder() + "/voices",
                                                linux_platform::DataFolder(), linux_platform::HomeFolder(), leaveOut,
                                                voiceFailed));
    // name(), because bcp47Name() leaves out a language's default region: Brazil's Portuguese would match any
    // Portuguese.
    speech::VoiceCatalog voices(std::move(engines), QLocale::system().name().toStdString(), Voice::EngineLimit,
                                [&running] { return running ? running->Settings.LastSpeechEngine : std::string(); });

    qt::QtWindowSystem windows(linux_platform::SharedDataFolder());
    application.Icons = &windows.Icons();
    windows.Recent.KeepIn(state.get());
    process.WhileWaiting = [&windows] { windows.DoEvents(); };
    qt::QtAudioOutput sound;
    speech::VoicePlayer voice(voices, sound);
    qt::QtStage stage(sound);
    // The characters that ship are on the program's own disk, and only an installer writes there. A folder of the
    // user's may have links to them.
    speech::WordedVoice wordedVoice(voice);
    agent::Server server(stage, wordedVoice, [&files](const std::string& path) {
        const std::string file = files.LinkTarget(InAnyExtensionCase(path));
        const bool ships = file.starts_with(linux_platform::SharedDataFolder() + "/");
        return agent::AcsFile::Open(InAnyExtensionCase(path), ships ? agent::Keep::InFile : agent::Keep::InMemory);
    });

    linux_platform::LibreOfficeWord word;
    Platform platform{*settings, server, voices, windows, files, process, clock, word};
    Program program(platform);
    running = &program;
    frmMain mainForm(program);
    frmSplash splash(program);
    linux_platform::XdgAutostart login = linux_platform::MakeAutostart();
    qt::QtWindowPlaces places;
    linux_platform::X11Presence user;
    linux_platform::DesktopQuiet quiet;
    linux_platform::DesktopQuiet characterQuiet;
    linux_platform::LinuxPower power;
    Extras extras(program, mainForm,
                  {*state,
                   login,
                   desktop,
                   media,
                   keys,
                   LookAtCharacter,
                   [](const std::string& file) { return std::make_unique<readers::Reading>(file); },
                   Fingerprint,
                   places,
                   wordedVoice,
                   linux_platform::SaveFile,
                   {speech::WritableSounds,
                    [&wordedVoice](recording::Job job) {
                        job.rules = wordedVoice.Rules();
                        job.shortens = wordedVoice.Shortens();
                        job.byLanguage = wordedVoice.ByLanguage();
                        return StartRecorder(std::move(job));
                    },
                    [](const std::string& path) {
                        std::error_code error;
                        std::filesystem::remove_all(path, error);
                    },
                    [&windows](const CommonDialog& dialog) { return windows.ShowSave(dialog); }},
                   user,
                   notifications,
                   quiet,
                   characterQuiet,
                   power});
    told = &extras;
    settings->NotSaved = [&] { application.Post([&] { extras.SettingsNotSaved(settings->UserFile()); }); };
    application.EscapePressed = [&extras] { return extras.Escape(); };

    const auto end = [&process] { process.EndRequested(); };
    application.EndRequested = end;
    application.SaveRequested = [&settings] { settings->Flush(SessionSavePatience); };
    // Dialogs, pictures and sentences leave their memory in pieces between what stays.
    application.AtRest = ReturnFreeMemory;
    const linux_platform::EndSignals endSignals([&] { application.Post(end); },
                                                [&process] { process.EndWithin(LastSavePatience); }, EndPatience);
    process.EndAtExit();
    extras.Begin(line, [&splash] { splash.Show(); });
    sound.Look();
    return application.exec();
}

} // namespace

int main(int argc, char** argv)
{
    // These need no display.
    if (const CommandLine line = Arguments(argc, argv); line.Help || line.Version) {
        std::cout << (line.Help ? CommandLineHelp() : "Voxmate " + VersionText() + "\n");
        return EXIT_SUCCESS;
    }
    // Debian's ONNX Runtime tells of its own parts twice, in more than a thousand lines.
    const linux_platform::QuietErrors quiet(std::cerr, "Schema error: ");
    KeepHeapSmall();
    linux_platform::AvoidHangingBus(BusPatience);
    std::optional<qt::PlatformChoice> platform(std::in_place);
    std::optional<linux_platform::FontsAhead> fonts(std::in_place);
    qt::QtApplication application(argc, argv);
    fonts.reset();
    platform.reset();
    try {
        const CommandLine line = Arguments(argc, argv);
        if (!line.NotUnderstood.empty()) {
            std::cerr << "voxmate: \"" << line.NotUnderstood << "\" is not understood.\n\n" << CommandLineHelp();
            return EXIT_FAILURE;
        }
        return Run(application, line);
    } catch (const std::exception& error) {
        // The parts of the program no longer exist; all that is left is to report the error.
        application.Icons = nullptr;
        application.EscapePressed = nullptr;
        application.EndRequested = nullptr;
        application.SaveRequested = nullptr;
        application.EndProgram = [] { std::_Exit(EXIT_FAILURE); };
        application.Report(AsRuntimeError(error));
    }
    return EXIT_FAILURE;
}
