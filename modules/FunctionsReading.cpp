// Reads files aloud: text files, Word documents, and wave files, which the character plays.
#include "base/Text.h"
#include "modules/Program.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace voxmate
{

struct Reading::Source {
    std::int16_t routineId;
    const char* filter;
    const char* title;
    const char* extension; ///< in capitals
    const char* wrongType;
};

const Reading::Source Reading::TextSource{4, "Text Files (*.txt)|*.txt", "Open Text File to Read...", "TXT",
                                          "The below document you are trying to open is not a TEXT document:"};
const Reading::Source Reading::WordSource{3, "Word Files (*.doc)|*.doc", "Open Word File to Read...", "DOC",
                                          "The below document you are trying to open is not a WORD document:"};
const Reading::Source Reading::WaveSource{5, "Wav Files (*.wav)|*.wav", "Open Text File to Read...", "WAV",
                                          "The below WAV file you are trying to play is not a WAV file:"};

// Announces that something is wrong with a file.
void Reading::Complain(const char* sentence, const std::string& file, Manner manner)
{
    const std::string text = sentence + std::string(CrLf) + file;
    if (manner == Manner::Declining)
        program_.Messages.Announce(text, vbExclamation, "Voxmate - File Error", "Decline");
    else
        program_.Messages.Announce(text, vbExclamation, "Voxmate - File Error", "GetAttention", "GetAttentionContinued",
                                   "GetAttentionContinued", "GetAttentionReturn");
    program_.Main->SetStatus(StatusIdle);
}

// Whether the file exists and has the right extension; if not, a message says so.
bool Reading::IsOfKind(const Source& source, const std::string& file)
{
    if (!program_.Host.Files.FileExists(file)) {
        Complain("File not found:", file, Manner::Declining);
        return false;
    }
    if (UCase(program_.Host.Files.GetExtensionName(file)) != source.extension) {
        Complain(source.wrongType, file, Manner::Calling);
        return false;
    }
    return true;
}

// Asks for a file of a kind; empty when there is no such file. The word processor is told which files the user selects
// meanwhile.
std::string Reading::AskForFile(const Source& source, WordPreparation* ahead)
{
    program_.Main->SetStatus("Prompting for file name...");
    CommonDialog dialog{source.filter, source.title, true, {}, {}};
    if (ahead)
        dialog.Selected = [&](const std::string& file) {
            if (UCase(program_.Host.Files.GetExtensionName(file)) == source.extension)
                ahead->Expect(file);
        };
    program_.Host.Windows.ShowOpen(dialog);
    std::string file = Trim(dialog.FileName);
    return !file.empty() && IsOfKind(source, file) ? file : "";
}

// Asks for a file and reads it. When the user cancels the dialog, nothing more happens.
template <class Reader>
void Reading::Read(const Source& source, Reader reader, WordPreparation* ahead)
{
    program_.Messages.NumberedRoutine(source.routineId, [&] {
        try {
            if (const std::string file = AskForFile(source, ahead); !file.empty())
                reader(file);
        } catch (const RuntimeError& error) {
            if (error.Number != CancelSelected().Number)
                throw;
            program_.Main->SetStatus(StatusIdle);
        }
    });
}

// Speaks the active document of WordApp part by part, until its end, until Stop, or until a part cannot be queued.
Reading::Outcome Reading::SpeakParts()
{
    const std::int32_t end = WordApp->RangeEnd();
    WordPart part(end);
    Outcome outcome = Outcome::NoText;
    bool goesOn = true;
    do {
        program_.Main->SetStatus("Reading part " + std::to_string(part.Number()) + " of " +
                                 std::to_string(part.Count()) + " . Click STOP to Cancel Reading...");
        part.ExtendToBlank([this](std::int32_t at) { return Trim(WordApp->RangeText(at, at + 1)).empty(); });
        const std::string text = WordApp->RangeText(part.Start(), part.End());
        if (!Trim(text).empty()) {
            goesOn = program_.Voice.SpeakText(text, "");
            if (goesOn)
                outcome = Outcome::Queued;
            else if (outcome == Outcome::NoText)
                outcome = Outcome::Nothing;
        }
    } while (goesOn && part.Next() && program_.StopRequested == False);
    return outcome;
}

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
        // The blanks at its ends are removed in place, because a long text has millions of lines.
        while (text.size() > begin && text.back() == ' ')
            text.pop_back();
        if (text.size() > begin && text[begin] == ' ')
            text.erase(begin, text.find_first_not_of(' ', begin) - begin);
    }
    return text;
}

void Reading::SpeakTextFile(const std::string& file)
{
    program_.Main->SetStatus("Reading Text Document. Please wait...");
    std::string text = ReadTextDocument(*program_.Host.Files.OpenTextFile(file));
    if (text.empty())
        Complain("The below TEXT document you are trying to open is empty:", file, Manner::Calling);
    else if (!program_.Voice.SpeakText(std::move(text), ""))
        program_.Main->SetStatus(StatusIdle);
}

void Reading::OpenAndReadText()
{
    Read(TextSource, [this](const std::string& file) { SpeakTextFile(file); });
}

void Reading::ReadText(const std::string& file)
{
    program_.Messages.NumberedRoutine(TextSource.routineId, [&] {
        if (IsOfKind(TextSource, file))
            SpeakTextFile(file);
    });
}

void Reading::OpenAndReadWord()
{
    // It takes seconds to start, which the user spends in the dialog.
    const std::unique_ptr<WordPreparation> ahead = program_.Host.Word.Prepare();
    const auto read = [this](const std::string& file) {
        program_.Main->SetStatus("Opening Word Document. Please wait...");
        // An earlier Stop does not concern this document.
        program_.StopRequested = False;
        WordApp = program_.Host.Word.CreateWord();
        Outcome outcome = Outcome::NoText;
        try {
            WordApp->SetVisible(false);
            WordApp->Open(file, [this] {
                program_.Host.Windows.DoEvents();
                return program_.StopRequested == False;
            });
            outcome = SpeakParts();
            program_.StopRequested = False;
            program_.Main->SetStatus("Closing Word Document. Please wait...");
            WordApp->Close();
            WordApp->Quit();
        } catch (const RuntimeError& error) {
            if (error.Number != CommandFailed().Number)
                throw;
            program_.StopRequested = False;
            WordApp->Quit();
            program_.Main->SetStatus(StatusIdle);
            return;
        }
        program_.Main->SetStatus(StatusBusy);
        if (outcome == Outcome::NoText)
            Complain("The below WORD document you are trying to open contains no text:", file, Manner::Calling);
        else if (outcome == Outcome::Nothing)
            program_.Main->SetStatus(StatusIdle);
    };
    Read(WordSource, read, ahead.get());
}

void Reading::OpenAndPlayWave()
{
    Read(WaveSource, [this](const std::string& file) {
        program_.Main->SetStatus("Playing wave file...");
        if (program_.Character)
            CurrentRequest = program_.Character->Speak(".", file);
        else
            program_.Main->SetStatus(StatusIdle);
    });
}

} // namespace voxmate
