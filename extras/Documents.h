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

    /// Puts a file behind those that are being read or wait for it; one that pauses is left for it. What it is, is told
    /// by its content. A text file whose name ends in .txt is read as by the button, and a recording is played. A
    /// document that was left before its end goes on there.
    void Put(const std::string& file);
    /// Whether a file is being opened or read aloud; not while that pauses.
    bool Going() const { return HasDocument() && !narrator_.Paused(); }

private:
    Program& program_;
    Reader read_;
    Identify identify_;
    ReadingPlaces places_;
    Narrator narrator_;
    Timer tmrDocument_;
    std::vector<Menu*> ways_; ///< the items that concern the document that is being read
    std::deque<std::string> waiting_;
    AgentRequestPtr text_;    ///< of the text file that was opened last
    std::uint32_t stops_ = 0; ///< Program::StopCount when it was looked at last
    bool working_ = false;

    std::string file_; ///< the document that is being opened or read; empty: none
    std::string fingerprint_;
    std::unique_ptr<readers::Reading> reading_; ///< as long as there may be more of it
    std::string sentence_;                      ///< what is to be said about it when what could be read has been heard
    bool plays_ = false;                        ///< it is a recording
    std::optional<Narrator::End> ended_;

    bool HasDocument() const { return !file_.empty(); }
    bool IsCalledText(const std::string& file) const;
    bool TextIsRead() const;
    void SetFile(std::string file);
    void PauseOrGoOn();
    void FromBeginning();
    void GoOn();
    void HeedStop();
    void Leave();
    void KeepPlace();
    void Begin(const std::string& file);
    bool IsPlainText() const;
    void Work();
    void TakeBlocks();
    void EndOfReading();
    void Append(const readers::Block& block);
    void ReadConverted();
    void Finish(Narrator::End end);
    void ShowStatus();
};

/// A time for people: "less than a minute", "1 minute", "2 hours 5 minutes".
std::string TimeText(std::uint64_t minutes);

} // namespace voxmate
