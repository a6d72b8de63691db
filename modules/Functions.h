// What the program does: the character, the voice, reading aloud, the spoken phrases.
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

/// Finds the character files, loads a character and applies the settings to it.
class Characters
{
public:
    explicit Characters(Program& program) : program_(program) {}

    std::string SearchPath;
    static constexpr std::size_t AnimationNameCount = 1001;
    /// Names of the loaded character's animations; the first empty entry ends the list.
    std::array<std::string, AnimationNameCount> AnimationNames;
    std::int16_t CharacterCount = 0;

    /// The animation that the options dialog requested last, until it ends, and the dialog's action for that moment.
    AgentRequestPtr AnimateRequest;
    std::function<void()> AnimateEnded;
    /// The options dialog's action for the moment when AnimationNames have become those of another character.
    std::function<void()> AnimationNamesChanged;

    /// Looks for character files in SearchPath or, if that has none and the user agrees, in the folder of the shipped
    /// characters. Fills the character menu, CharacterCount and the setting CharacterPath. When no character is found,
    /// a box says so and the program ends.
    void FindCharacters(bool fromOptions);
    /// Looks for characters in another folder; when the user agrees to no folder, everything stays as it was. If the
    /// loaded character is not among those found, the first of them is loaded instead.
    void ChangeCharacterPath(const std::string& path);
    /// Loads a character and applies the settings to it. Unloads the previous one first, unless `atStartUp` is set.
    void LoadCharacter(const std::string& name, bool atStartUp);
    /// Announces that pictures of the loaded character are damaged; `message` names the file. Returns false, and does
    /// nothing, while the program is starting up or another message is up.
    bool TellDamagedCharacter(const std::string& message);
    /// Applies the balloon, size and sound settings to the loaded character.
    void ApplyCharacterSettings();

private:
    Program& program_;

    std::vector<std::string> CharacterFiles(const std::string& folder) const;
    std::string FolderProblem(const std::string& folder) const;
    [[noreturn]] void EndWithoutCharacters(const std::string& problem);
    bool SettleSearchPath(bool fromOptions);
    void FillAnimationNames();
};

/// The speech engines, and the one routine that speaks everything.
class Voice
{
public:
    explicit Voice(Program& program) : program_(program) {}

    static constexpr int EngineLimit = 100;
    /// The name of each speech engine, and its mode identifier in braces; counted from 1.
    std::array<std::string, EngineLimit + 1> EngineNames;
    std::array<std::string, EngineLimit + 1> EngineIds;
    AgentRequestPtr LastSpeakRequest;
    AgentRequestPtr LastPlayRequest;

    /// Lists the installed engines and selects the one used last. Without any engine, a box says so and the program
    /// ends.
    void LoadSpeechEngines();
    /// Selects engine `number` (counted from 1) and stores its name as LastSpeechEngine in the registry.
    void ChooseSpeechEngine(int number);
    /// Whether there is a sound output; if not, a box has said so.
    bool HasSound();
    /// Has the character speak: shows it, plays `animation` unless that is empty, speaks the text with the voice
    /// markup, and plays RestPose. Returns false when the text was not queued: when there is no sound output (a box has
    /// said so), when the text is blank, when no character is loaded, or when Stop was pressed while events were let
    /// through.
    bool SpeakText(std::string text, const std::string& animation);

private:
    Program& program_;

    void GiveCharacterEngine(int number);
    [[noreturn]] void EndWithoutEngine();
    void AudioProblem(const char* text);
};

/// Doubles the backslashes of a text so that the voice reads none of them as markup. It stops at the position that was
/// the text's length before escaping, so in a text with many backslashes the last ones stay single.
std::string EscapeMarkup(std::string text);
/// The tags for pitch, speed and whisper, which go in front of a text.
std::string VoicePrefix(int pitch, int speed, bool whisper);

/// Reads files aloud.
class Reading
{
public:
    explicit Reading(Program& program) : program_(program) {}

    /// The last wave file's request.
    AgentRequestPtr CurrentRequest;
    /// The word processor of the document that is being read or was read last.
    std::unique_ptr<WordApplication> WordApp;

    /// Reads a text file as a whole. For an empty file a message says so.
    void OpenAndReadText();
    /// The same for a file that is known: asks for none.
    void ReadText(const std::string& file);
    /// Reads a Word document part by part, until Stop. For a document without text a message says so.
    void OpenAndReadWord();
    /// Has the character play a wave file; its mouth follows the sound.
    void OpenAndPlayWave();

private:
    struct Source;
    static const Source TextSource;
    static const Source WordSource;
    static const Source WaveSource;
    enum class Manner { Declining, Calling };
    enum class Outcome {
        NoText,  ///< there was no text to speak
        Nothing, ///< there was text, but none of it was queued
        Queued
    };
    Program& program_;

    void Complain(const char* sentence, const std::string& file, Manner manner);
    bool IsOfKind(const Source& source, const std::string& file);
    std::string AskForFile(const Source& source, WordPreparation* ahead);
    template <class Reader>
    void Read(const Source& source, Reader reader, WordPreparation* ahead = nullptr);
    void SpeakTextFile(const std::string& file);
    Outcome SpeakParts();
};

/// The text of a text file as it is spoken: each line without the blanks at its ends and with CR LF in front of it.
std::string ReadTextDocument(TextStream& stream);

/// Nominal length of one spoken part of a Word document, in characters.
inline constexpr std::int32_t WordChunkSize = 1000;

/// One part of a Word document as it is spoken: 1000 characters, extended to the next blank.
class WordPart
{
public:
    /// The first part of a document of `length` characters.
    explicit WordPart(std::int32_t length);
    /// The part's place: the characters from `Start` (counted from 0) up to but not including `End`.
    std::int32_t Start() const { return start_; }
    std::int32_t End() const { return end_; }
    /// The part's number, from 1, and the number of parts as it is shown: the length in thousands of characters,
    /// rounded, halves to the even number; 1 for a document of less than 1000 characters.
    std::int32_t Number() const { return number_; }
    std::int32_t Count() const { return count_; }
    /// Moves the end forward to the next blank, or to the document's end.
    void ExtendToBlank(const std::function<bool(std::int32_t at)>& isBlank);
    /// Goes on to the next part, which begins behind the blank at this one's end; false when the document ends there.
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
/// The time of `now` as a phrase, after a salutation unless that is to be omitted. `in24Hour` is the setting
/// TimeIn24Hour.
std::string FormatSpokenTime(const DateTime& now, std::int16_t in24Hour, bool omitSalutation);
/// Introduces the character. At start-up it introduces and greets as far as the settings say.
void GreetAndIntroduce(Program& program, bool atStartUp);

} // namespace voxmate
