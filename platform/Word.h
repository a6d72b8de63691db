// The word processor's automation, as the reading of documents needs it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace voxmate
{

/// One invisible word processor with at most one open document. Destroying it ends the word processor and leaves
/// nothing behind.
class WordApplication
{
public:
    virtual ~WordApplication() = default;
    virtual void SetVisible(bool visible) = 0;
    /// Documents.Open: opens a document, which becomes the active one. Meanwhile `goOn` is called every few
    /// milliseconds to let the program live; false from it breaks off. Raises run-time error 4198 "Command failed" when
    /// the document cannot be opened, when it takes too long, and when it was broken off.
    virtual void Open(const std::string& name, const std::function<bool()>& goOn) = 0;
    /// Range.End: the length of the active document's main text in characters; a paragraph's end is one.
    virtual std::int32_t RangeEnd() = 0;
    /// Range(start, end).Text of the active document: the characters from `start` (counted from 0) to before `end`.
    virtual std::string RangeText(std::int32_t start, std::int32_t end) = 0;
    /// ActiveDocument.Close and Application.Quit.
    virtual void Close() = 0;
    virtual void Quit() = 0;
};

class WordAutomation
{
public:
    virtual ~WordAutomation() = default;
    /// Creates "Word.Application"; raises run-time error 429 "ActiveX component can't create object" when no word
    /// processor is installed.
    virtual std::unique_ptr<WordApplication> CreateWord() = 0;
};

} // namespace voxmate
