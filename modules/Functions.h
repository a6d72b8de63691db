// What the program does: the character, the voice, reading aloud, its phrases.
#pragma once

#include "base/Checked.h"
#include "platform/Agent.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/Word.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace voxmate
{

class Program;

/// The character: finding the files, loading one, applying the settings to it.
class Characters
{
public:
    explicit Characters(Program& program) : program_(program) {}

    std::string SearchPath;
    static constexpr std::size_t AnimationNameCount = 1001;
    /// Names of the loaded character's animations, the first empty entry ends them.
    std::array<std::string, AnimationNameCount> AnimationNames;
    std::int16_t CharacterCount = 0;

    /// The animation that the options dialog has asked for last, until it ends, and what the dialog does then.
    AgentRequestPtr AnimateRequest;
    std::function<void()> AnimateEnded;
    /// What the options dialog does when AnimationNames have become those of another character.
    std::function<void()> AnimationNamesChanged;

    /// Looks for character files in SearchPath and, if the user agrees, in the folder of the shipped ones; fills the
    /// character menu and CharacterCount and settles CharacterPath. Without any character it explains and ends the
    /// program.
    void FindCharacters(bool fromOptions);
    /// Looks for characters in another folder; when the user agrees to none, all stays as it was. Where the loaded
    /// character is not among those found, the first of them takes its place.
    void ChangeCharacterPath(const std::string& path);
    /// Loads one character, unloading the one before unless `atStartUp`, and applies the settings to it.
    void LoadCharacter(const std::string& name, bool atStartUp);
    /// Tells, as all messages are told, that pictures of the loaded character are damaged; `message` names the file.
    /// False when this is not the moment, because the program is starting up or another message is up.
    bool TellDamagedCharacter(const std::string& message);
    /// Pushes the balloon, size and sound settings to the loaded character.
    void ApplyCharacterSettings();

private:
    Program& program_;

    std::vector<std::string> CharacterFiles(const std::string& folder) const;
    std::string FolderProblem(const std::string& folder) const;
    [[noreturn]] void EndWithoutCharacters(const std::string& problem);
    bool SettleSearchPath(bool fromOptions);
    void FillAnimationNames();
};

/// The voice: engines, and the one routine through which everything is spoken.
class Voice
{
public:
    explicit Voice(Program& program) : program_(program) {}

    static constexpr int EngineLimit = 100;
    /// Name and mode identifier in braces of each speech engine, counted from 1.
    std::array<std::string, EngineLimit + 1> EngineNames;
    std::array<std::string, EngineLimit + 1> EngineIds;
    AgentRequestPtr LastSpeakRequest;
    AgentRequestPtr LastPlayRequest;

    /// Lists the installed engines and selects the one used last. Without any engine it explains and ends the program.
    void LoadSpeechEngines();
    /// Selects engine `number` (counted from 1) and keeps its name as LastSpeechEngine in the registry.
    void ChooseSpeechEngine(int number);
    /// Has the character speak: shows it, plays `animation` unless empty, speaks the text with the voice markup, rests.
    /// False when nothing of that was asked of it: without sound (a box has said so), for a text of blanks, without a
    /// character, or because Stop was pressed while events were let through.
    bool SpeakText(std::string text, const std::string& animation);

private:
    Program& program_;

    void GiveCharacterEngine(int number);
    [[noreturn]] void EndWithoutEngine();
    void AudioProblem(const char* text);
};

/// Doubles the backslashes of a text so that the voice reads none of them as markup. The walk ends at the length before
/// escaping, so in a text with many backslashes the last ones stay single.
std::string EscapeMarkup(std::string text);
/// The tags that put the voice's pitch, speed and whisper in front of a text.
std::string VoicePrefix(int pitch, int speed, bool whisper);

/// Reading aloud from files; each job prompts for the file first.
class Reading
{
public:
    explicit Reading(Program& program) : program_(program) {}

    /// The last wave file's request.
    AgentRequestPtr CurrentRequest;
    /// The word processor that reads or has read a document last.
    std::unique_ptr<WordApplication> WordApp;

    /// Reads a text file as a whole; an empty one is complained about.
    void OpenAndReadText();
    /// Reads a Word document part by part, until Stop; one without text is complained about.
    void OpenAndReadWord();
    /// Has the character play a wave file with its mouth following.
    void OpenAndPlayWave();

private:
    struct Source;
    static const Source TextSource;
    static const Source WordSource;
    static const Source WaveSource;
    enum class Manner { Declining, Calling };
    enum class Outcome {
        NoText,  ///< there was none to speak
        Nothing, ///< of the text nothing is being spoken
        Queued
    };
    Program& program_;

    void Complain(const char* sentence, const std::string& file, Manner manner);
    std::string AskForFile(const Source& source);
    template <class Reader>
    void Read(const Source& source, Reader reader);
    Outcome SpeakParts();
};

/// The text of a text file as it is spoken: every line without the blanks round it, a CR LF in front of each.
std::string ReadTextDocument(TextStream& stream);

/// Nominal length of one spoken part of a Word document, in characters.
inline constexpr std::int32_t WordChunkSize = 1000;

/// Where a Word document is cut into parts: each of 1000 characters, and on to the next blank.
class WordPart
{
public:
    /// The first part of a document of `length` characters.
    explicit WordPart(std::int32_t length);
    /// The part's place: from character `Start`, counted from 0, to before `End`.
    std::int32_t Start() const { return start_; }
    std::int32_t End() const { return end_; }
    /// Its number, from 1, and how many there are said to be: the length in thousands, halves to the even neighbour.
    std::int32_t Number() const { return number_; }
    std::int32_t Count() const { return count_; }
    /// Moves the end forward to the next blank, or to the document's end.
    void ExtendToBlank(const std::function<bool(std::int32_t at)>& isBlank);
    /// Goes on behind the blank at its end; false when the document ends there.
    bool Next();

private:
    std::int32_t length_;
    std::int32_t start_ = 0;
    std::int32_t end_;
    std::int32_t number_ = 1;
    std::int32_t count_;
};

// Phrases.

/// "st", "nd", "rd" or "th" for a day of the month.
std::string OrdinalSuffix(int day);
/// The date as a phrase in one of the formats 1 to 6; empty for any other format.
std::string FormatSpokenDate(std::int16_t format, const DateTime& date);
/// The time of `now` as a phrase, with a salutation in front unless it is to be omitted.
std::string FormatSpokenTime(const DateTime& now, std::int16_t in24Hour, bool omitSalutation);
/// Introduces the character; at start-up only as far as the settings say, and greets.
void GreetAndIntroduce(Program& program, bool atStartUp);

} // namespace voxmate
