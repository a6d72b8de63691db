// The only place that knows which implementations are used: it fills one Platform and shows the splash form.
#include "SystemParts.h"
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
#include "qt/character/QtStage.h"
#include "qt/system/QtApplication.h"
#include "qt/system/QtAudioOutput.h"
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
    job.addedVoices = parts::ProgramFolder() + "/voices";
    const MemoryFile input(recording::EncodeJob(job));
    return StartHelper("voxmate-recorder", input.Path());
}

// Makes the parts of the program and runs it until it ends.
int Run(qt::QtApplication& application, const CommandLine& line)
{
    parts::Process process;
    parts::Activation desktop;
    parts::MediaControls media;
    parts::Keys keys;
    parts::Notifications notifications;
    if (HandedOver(line, process, desktop))
        process.EndProgram();
    const std::unique_ptr<parts::SettingsStore> settings = parts::MakeSettingsStore();
    const std::unique_ptr<parts::StateStore> state = parts::MakeStateStore();
    parts::FileSystem files;
    parts::Clock clock;
    process.BeforeEnd = [&settings, &state, &notifications](std::chrono::milliseconds patience) {
        parts::Save(*settings, *state, patience);
        notifications.CloseAll();
    };
    application.EndProgram = [&process] { process.EndProgram(); };

    const Program* running = nullptr;
    std::vector<std::unique_ptr<speech::Engine>> engines;
    engines.push_back(speech::CreateEspeakEngine());
    engines.push_back(speech::CreateFliteEngine());
    engines.push_back(speech::CreateFlitevoxEngine(parts::ProgramFolder() + "/voices"));
    Extras* told = nullptr; // when it is there
    const auto leaveOut = [](const std::string& why) { std::cerr << "voxmate: " << why << '\n'; };
    const auto voiceFailed = [&application, &told, leaveOut](const std::string& why) {
        leaveOut(why);
        application.Post([&told, why] {
            if (told)
                told->VoiceFailed(why);
        });
    };
    for (std::unique_ptr<speech::Engine>& own : parts::MakeOwnEngines(leaveOut, voiceFailed))
        engines.push_back(std::move(own));
    // name(), because bcp47Name() leaves out a language's default region: Brazil's Portuguese would match any
    // Portuguese.
    speech::VoiceCatalog voices(std::move(engines), QLocale::system().name().toStdString(), Voice::EngineLimit,
                                [&running] { return running ? running->Settings.LastSpeechEngine : std::string(); });

    qt::QtWindowSystem windows(parts::SharedDataFolder());
    application.Icons = &windows.Icons();
    windows.Recent.KeepIn(state.get());
    qt::QtAudioOutput<parts::SoundDevice> sound;
    speech::VoicePlayer voice(voices, sound);
    qt::QtStage stage(sound);
    // The characters that ship are on the program's own disk, and only an installer writes there. A folder of the
    // user's may have links to them.
    speech::WordedVoice wordedVoice(voice);
    agent::Server server(stage, wordedVoice, [&files](const std::string& path) {
        const std::string file = files.LinkTarget(InAnyExtensionCase(path));
        const bool ships = file.starts_with(parts::SharedDataFolder() + files.PathSeparator());
        return agent::AcsFile::Open(InAnyExtensionCase(path), ships ? agent::Keep::InFile : agent::Keep::InMemory);
    });

    parts::Word word;
    Platform platform{*settings, server, voices, windows, files, process, clock, word};
    Program program(platform);
    running = &program;
    frmMain mainForm(program);
    frmSplash splash(program);
    auto login = parts::MakeAutostart();
    qt::QtWindowPlaces places;
    parts::Presence user;
    parts::Quiet quiet;
    parts::Quiet characterQuiet;
    parts::Power power;
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
                   parts::SaveFile,
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
    settings->NotSaved = [&] { application.Post([&] { extras.SettingsNotSaved(parts::PlaceOf(*settings)); }); };
    application.EscapePressed = [&extras] { return extras.Escape(); };

    application.EndRequested = [&process] { process.EndRequested(); };
    application.SaveRequested = [&settings, &state] { parts::Save(*settings, *state, SessionSavePatience); };
    // Dialogs, pictures and sentences leave their memory in pieces between what stays.
    application.AtRest = ReturnFreeMemory;
    [[maybe_unused]] const parts::Ending ending(application, process, [&windows] { windows.DoEvents(); });
    extras.Begin(line, [&splash] { splash.Show(); });
    sound.Look();
    return application.exec();
}

} // namespace

int main(int argc, char** argv)
{
    parts::PrepareOutput();
    // These need no display.
    if (const CommandLine line = Arguments(argc, argv); line.Help || line.Version) {
        std::cout << (line.Help ? CommandLineHelp() : "Voxmate " + VersionText() + "\n");
        return EXIT_SUCCESS;
    }
    [[maybe_unused]] const parts::Beginning beginning;
    KeepHeapSmall();
    std::optional<qt::PlatformChoice> platform(std::in_place);
    std::optional<parts::FontsAhead> fonts(std::in_place);
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
