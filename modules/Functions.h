// What the program does: start-up, the character, the voice, its phrases.
#pragma once

#include "platform/Clock.h"
#include "platform/FileSystem.h"

#include <cstdint>
#include <functional>
#include <string>

namespace voxmate
{

// Start-up.

/// Shows the main window and runs the start-up sequence.
void StartMain();
/// Brings the system up in its fixed order, reporting each step in the status bar.
void RunStartUp();
/// Opens a page in the browser; when that fails the address goes to the clipboard and a box says so.
void OpenUrl(const std::string& url);
/// Address of a help page that ships with the program ("characters", "voices").
std::string HelpPage(const std::string& name);

// The character.

/// Looks for character files in SearchPath and, if the user agrees, in the folder of the shipped ones; fills the
/// character menu and CharacterCount and settles CharacterPath. Without any character it explains and ends the program.
void FindCharacters(bool fromOptions);
/// Looks for characters in another folder; when the user agrees to none, all stays as it was. Where the loaded
/// character is not among those found, the first of them takes its place.
void ChangeCharacterPath(const std::string& path);
/// Loads one character, unloading the one before unless `atStartUp`, and applies the settings to it.
void LoadCharacter(const std::string& name, bool atStartUp);
/// Tells, as all messages are told, that pictures of the loaded character are damaged; `message` names the file. False
/// when this is not the moment, because the program is starting up or another message is up.
bool TellDamagedCharacter(const std::string& message);
/// Pushes the balloon, size and sound settings to the loaded character.
void ApplyCharacterSettings();

// The voice.

/// Lists the installed engines and selects the one used last. Without any engine it explains and ends the program.
void LoadSpeechEngines();
/// Selects engine `number` (counted from 1) and keeps its name as LastSpeechEngine in the registry.
void ChooseSpeechEngine(int number);
/// Has the character speak: shows it, plays `animation` unless empty, speaks the text with the voice markup, rests.
/// False when nothing of that was asked of it: without sound (a box has said so), for a text of blanks, without a
/// character, or because Stop was pressed while events were let through.
bool SpeakText(std::string text, const std::string& animation);
/// Doubles the backslashes of a text so that the voice reads none of them as markup. The walk ends at the length before
/// escaping, so in a text with many backslashes the last ones stay single.
std::string EscapeMarkup(std::string text);
/// The tags that put the voice's pitch, speed and whisper in front of a text.
std::string VoicePrefix(int pitch, int speed, bool whisper);

// Reading aloud from files; each prompts for the file first.

/// Reads a text file as a whole; an empty one is complained about.
void OpenAndReadText();
/// Reads a Word document part by part, until Stop; one without text is complained about.
void OpenAndReadWord();
/// Has the character play a wave file with its mouth following.
void OpenAndPlayWave();

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
/// The current time as a phrase, with a salutation in front unless it is to be omitted.
std::string FormatSpokenTime(std::int16_t in24Hour, bool omitSalutation);
/// Introduces the character; at start-up only as far as the settings say, and greets.
void GreetAndIntroduce(bool atStartUp);

} // namespace voxmate
