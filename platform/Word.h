// The part of the word processor's automation that reading documents needs.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace voxmate
{

/// An invisible word processor with at most one open document. Destroying it ends the word processor and removes all
/// its traces.
class WordApplication
{
public:
    virtual ~WordApplication() = default;
    virtual void SetVisible(bool visible) = 0;
    /// Documents.Open: opens a document, which becomes the active one. While it opens, `goOn` is called every few
    /// milliseconds so that the program stays responsive; when it returns false, opening is aborted. Raises run-time
    /// error 4198 "Command failed" when the document cannot be opened, takes too long or was aborted.
    virtual void Open(const std::string& name, const std::function<bool()>& goOn) = 0;
    /// Range.End: the length of the active document's main text in characters; the end of a paragraph counts as one.
    virtual std::int32_t RangeEnd() = 0;
    /// Range(start, end).Text: the active document's characters from `start` (counted from 0) up to but not including
    /// `end`.
    virtual std::string RangeText(std::int32_t start, std::int32_t end) = 0;
    /// ActiveDocument.Close and Application.Quit.
    virtual void Close() = 0;
    virtual void Quit() = 0;
};

/// A word processor that starts while the user still chooses a document. Destroying it ends the word processor, unless
/// that is reading its document, and does not wait.
class WordPreparation
{
public:
    virtual ~WordPreparation() = default;
    /// Names the document that will probably be opened, in place of the one named before; it may be read from now on.
    virtual void Expect(const std::string& name) = 0;
};

class WordAutomation
{
public:
    virtual ~WordAutomation() = default;
    /// Starts a word processor in the background for the next `CreateWord`, which does without when it ended too early
    /// or waited too long. Nothing when none can be started. Must not outlive this object.
    virtual std::unique_ptr<WordPreparation> Prepare() { return nullptr; }
    /// Creates "Word.Application"; raises run-time error 429 "ActiveX component can't create object" when no word
    /// processor is installed.
    virtual std::unique_ptr<WordApplication> CreateWord() = 0;
};

} // namespace voxmate
