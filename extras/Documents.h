// Reads documents of all kinds aloud, one after the other.
#pragma once

#include "extras/ExtrasMenu.h"
#include "extras/Narrator.h"
#include "extras/ReadingPlaces.h"
#include "modules/Program.h"
#include "readers/Reading.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace voxmate
{

class Documents
{
public:
    /// Begins to read a file.
    using Reader = std::function<std::unique_ptr<readers::Reading>(const std::string& file)>;

    /// Gives a digest of a file's content; empty when there is none.
    using Identify = std::function<std::string(const std::string& file)>;

    /// `form` owns the timer.
    Documents(ExtrasMenu& menu, Program& program, Form& form, Reader read, Identify identify, StateStore& state);

    /// Adds the item that forgets where documents were left.
    void AddForgetItem(ExtrasMenu& menu)
    {
        menu.BeginGroup();
        menu.Add("mnuForgetPlaces", "F&orget Where Documents Were Left", [this] { places_.Clear(); });
    }

    /// Puts a file behind those that are being read or wait for it; one that pauses is left for it. What it is, is told
    /// by its content. A recording is played. A document that was left before its end goes on there. A file called .txt
    /// that is empty, or for which no reader can be started, is left to what the button for text files does.
    void Put(const std::string& file);
    /// Whether a file is being opened or read aloud; not while that pauses.
    bool Going() const { return HasDocument() && !narrator_.Paused(); }

    /// Whether there is a document or recording that is being opened or read, or pauses.
    bool HasDocument() const { return !file_.empty(); }
    /// The one that was begun last: its name without the folder, which number it has in this run, and its text as far
    /// as it has come. A recording has none.
    const std::string& Name() const { return name_; }
    const std::string& Path() const { return last_; }
    unsigned Number() const { return number_; }
    const Narrator& Text() const { return narrator_; }
    bool IsRecording() const { return plays_; }
    /// How long the text before the present sentence, and that from it on, take to be spoken, in seconds: by the speed
    /// that is set. Nothing as long as it has not all come, and for recordings.
    struct Times {
        double Spoken = 0;
        double Left = 0;
    };
    std::optional<Times> Estimate() const;
    /// How it stands with the document, for a line that does not name it: "Reading, 5 minutes left"; empty where there
    /// is none.
    std::string Progress() const;

    /// Adds an act that runs whenever something of the above has changed, and with each word.
    void Watch(Event act) { watchers_.push_back(std::move(act)); }

    /// Frees the text of a document that has ended, if it is so long that this is worth while.
    void ForgetLong();

    // What the menu's items do. Nothing where no document is read.
    void PauseOrGoOn();
    void BySentence(int sentences);
    void ByParagraph(bool forward, Narrator::Pausing pausing = Narrator::Pausing::Ends);
    /// Reads on from a part of the document that was begun last; opens it again if it has ended.
    void ReadFrom(std::size_t part, Narrator::Pausing pausing = Narrator::Pausing::Ends);
    /// Goes to the sentence that is heard so many seconds from the beginning, by Estimate. A pause stays.
    void ReadFromTime(double seconds);

private:
    Program& program_;
    Reader read_;
    Identify identify_;
    ReadingPlaces places_;
    Narrator narrator_;
    Timer tmrDocument_;
    std::vector<Menu*> ways_; ///< the items that concern the document that is being read
    std::deque<std::string> waiting_;
    AgentRequestPtr text_;    ///< of the text file that was read as by the button last
    std::uint32_t stops_ = 0; ///< Program::StopCount when it was looked at last
    bool working_ = false;

    std::vector<Event> watchers_;
    std::string file_; ///< the document that is being opened or read; empty: none
    std::string last_; ///< the one that was begun last
    std::string name_;
    unsigned number_ = 0;
    std::string fingerprint_;
    std::unique_ptr<readers::Reading> reading_; ///< as long as there may be more of it
    std::string sentence_;                      ///< what is to be said about it when what could be read has been heard
    bool plays_ = false;                        ///< it is a recording
    std::optional<Narrator::End> ended_;

    bool IsCalledText(const std::string& file) const;
    bool TextIsRead() const;
    void SetFile(std::string file);
    void Tell() const;
    void FromBeginning();
    void GoOn();
    void HeedStop();
    void Leave();
    void KeepPlace();
    void Begin(const std::string& file);
    void Work();
    void TakeBlocks();
    void EndOfReading();
    void Append(const readers::Block& block);
    void ReadByButton();
    void ReadConverted();
    void Finish(Narrator::End end);
    void TellFault(const std::string& sentence);
    bool IsOpening() const;
    std::string TimeLeft() const;
    void ShowStatus();
};

/// A time for people: "less than a minute", "1 minute", "2 hours 5 minutes".
std::string TimeText(std::uint64_t minutes);

} // namespace voxmate
