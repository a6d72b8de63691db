// What can be read aloud from files: text files, Word documents, and wave files played through the character.
#include "base/Text.h"
#include "modules/Declarations.h"
#include "modules/Functions.h"
#include "modules/Messages.h"

#include <algorithm>
#include <utility>

namespace voxmate
{

namespace
{

struct Source {
    std::int16_t routineId;
    const char* filter;
    const char* title;
    const char* extension; ///< in capitals
    const char* wrongType;
};

constexpr Source TextSource{4, "Text Files (*.txt)|*.txt", "Open Text File to Read...", "TXT",
                            "The below document you are trying to open is not a TEXT document:"};
constexpr Source WordSource{3, "Word Files (*.doc)|*.doc", "Open Word File to Read...", "DOC",
                            "The below document you are trying to open is not a WORD document:"};
constexpr Source WaveSource{5, "Wav Files (*.wav)|*.wav", "Open Text File to Read...", "WAV",
                            "The below WAV file you are trying to play is not a WAV file:"};

enum class Manner { Declining, Calling };

// A complaint about a file, by the character and in a box.
void Complain(const char* sentence, const std::string& file, Manner manner)
{
    const std::string text = sentence + std::string(CrLf) + file;
    if (manner == Manner::Declining)
        Announce(text, vbExclamation, "Voxmate - File Error", "Decline");
    else
        Announce(text, vbExclamation, "Voxmate - File Error", "GetAttention", "GetAttentionContinued",
                 "GetAttentionContinued", "GetAttentionReturn");
    Main().SetStatus(StatusIdle);
}

// Asks for a file that exists and has the right extension; empty when there is none to go on with.
std::string AskForFile(const Source& source)
{
    Main().SetStatus("Prompting for file name...");
    CommonDialog dialog{source.filter, source.title, true, {}};
    Host().Windows.ShowOpen(dialog);
    const std::string file = Trim(dialog.FileName);
    if (file.empty())
        return {};
    if (!Host().Files.FileExists(file)) {
        Complain("File not found:", file, Manner::Declining);
        return {};
    }
    if (UCase(Host().Files.GetExtensionName(file)) != source.extension) {
        Complain(source.wrongType, file, Manner::Calling);
        return {};
    }
    return file;
}

// Asks for a file and reads it; a cancelled dialog is the quiet end.
template <class Reader>
void Read(const Source& source, Reader reader)
{
    NumberedRoutine(source.routineId, [&] {
        try {
            if (const std::string file = AskForFile(source); !file.empty())
                reader(file);
        } catch (const RuntimeError& error) {
            if (error.Number != cdlCancel)
                throw;
            Main().SetStatus(StatusIdle);
        }
    });
}

enum class Outcome {
    NoText,  ///< there was none to speak
    Nothing, ///< of the text nothing is being spoken
    Queued
};

// Speaks the active document of WordApp part by part, until its end or a Stop or until there is no sound.
Outcome SpeakParts()
{
    const std::int32_t end = WordApp->RangeEnd();
    WordPart part(end);
    Outcome outcome = Outcome::NoText;
    bool goesOn = true;
    do {
        Main().SetStatus("Reading part " + std::to_string(part.Number()) + " of " + std::to_string(part.Count()) +
                         " . Click STOP to Cancel Reading...");
        part.ExtendToBlank([](std::int32_t at) { return Trim(WordApp->RangeText(at, at + 1)).empty(); });
        const std::string text = WordApp->RangeText(part.Start(), part.End());
        if (!Trim(text).empty()) {
            goesOn = SpeakText(text, "");
            if (goesOn)
                outcome = Outcome::Queued;
            else if (outcome == Outcome::NoText)
                outcome = Outcome::Nothing;
        }
    } while (goesOn && part.Next() && StopRequested == False);
    return outcome;
}

} // namespace

WordPart::WordPart(std::int32_t length)
    : length_(length), end_(std::min(WordChunkSize, length)),
      count_(WordChunkSize > length
                 ? 1
                 : static_cast<std::int32_t>(RoundHalfEven(static_cast<double>(length) / WordChunkSize)))
{
}

void WordPart::ExtendToBlank(const std::function<bool(std::int32_t at)>& isBlank)
{
    while (end_ < length_ && !isBlank(end_))
        ++end_;
}

bool WordPart::Next()
{
    start_ = end_ + 1;
    if (start_ > length_)
        return false;
    end_ = std::min(AddInt32(start_, WordChunkSize), length_);
    ++number_;
    return true;
}

std::string ReadTextDocument(TextStream& stream)
{
    std::string text;
    text.reserve(stream.SizeHint());
    while (!stream.AtEndOfStream()) {
        text += CrLf;
        const std::size_t begin = text.size();
        stream.AppendLine(text);
        // Without the blanks at its ends, in place: a long text has millions of lines.
        while (text.size() > begin && text.back() == ' ')
            text.pop_back();
        if (text.size() > begin && text[begin] == ' ')
            text.erase(begin, text.find_first_not_of(' ', begin) - begin);
    }
    return text;
}

void OpenAndReadText()
{
    Read(TextSource, [](const std::string& file) {
        Main().SetStatus("Reading Text Document. Please wait...");
        std::string text = ReadTextDocument(*Host().Files.OpenTextFile(file));
        if (text.empty())
            Complain("The below TEXT document you are trying to open is empty:", file, Manner::Calling);
        else if (!SpeakText(std::move(text), ""))
            Main().SetStatus(StatusIdle);
    });
}

void OpenAndReadWord()
{
    Read(WordSource, [](const std::string& file) {
        Main().SetStatus("Opening Word Document. Please wait...");
        // A Stop from before concerns what was going on then.
        StopRequested = False;
        WordApp = Host().Word.CreateWord();
        Outcome outcome = Outcome::NoText;
        try {
            WordApp->SetVisible(false);
            WordApp->Open(file, [] {
                Host().Windows.DoEvents();
                return StopRequested == False;
            });
            outcome = SpeakParts();
            StopRequested = False;
            Main().SetStatus("Closing Word Document. Please wait...");
            WordApp->Close();
            WordApp->Quit();
        } catch (const RuntimeError& error) {
            if (error.Number != CommandFailed().Number)
                throw;
            StopRequested = False;
            WordApp->Quit();
            Main().SetStatus(StatusIdle);
            return;
        }
        Main().SetStatus(StatusBusy);
        if (outcome == Outcome::NoText)
            Complain("The below WORD document you are trying to open contains no text:", file, Manner::Calling);
        else if (outcome == Outcome::Nothing)
            Main().SetStatus(StatusIdle);
    });
}

void OpenAndPlayWave()
{
    Read(WaveSource, [](const std::string& file) {
        Main().SetStatus("Playing wave file...");
        if (Character)
            CurrentRequest = Character->Speak(".", file);
        else
            Main().SetStatus(StatusIdle);
    });
}

} // namespace voxmate
