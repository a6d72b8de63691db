// A word processor that holds documents as texts.
#pragma once

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/Word.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace voxmate::fakes
{

class FakeWord : public WordAutomation
{
public:
    explicit FakeWord(std::vector<std::string>& log) : log_(log) {}

    std::map<std::string, std::string> documents;   ///< path -> main text; another path cannot be opened
    std::map<std::string, RuntimeError> openErrors; ///< path -> what opening it raises
    std::optional<RuntimeError> createError;
    std::function<void()> whileOpening; ///< what happens before each question whether to go on
    int questions = 1;                  ///< how often opening a document asks that
    int alive = 0;                      ///< word processors not destroyed yet
    bool prepares = true;               ///< false: nothing can be started in advance
    int prepared = 0;                   ///< how often that was asked for
    int preparations = 0;               ///< those that have not been destroyed yet
    std::vector<std::string> expected;  ///< the documents named to them

    // Not in the log: nothing that a user notices comes of it.
    std::unique_ptr<WordPreparation> Prepare() override
    {
        ++prepared;
        return prepares ? std::make_unique<Preparation>(*this) : nullptr;
    }

    std::unique_ptr<WordApplication> CreateWord() override
    {
        log_.push_back("Word Create");
        if (createError)
            throw RuntimeError(*createError);
        return std::make_unique<Application>(*this);
    }

private:
    class Preparation : public WordPreparation
    {
    public:
        explicit Preparation(FakeWord& word) : word_(word) { ++word_.preparations; }
        ~Preparation() override { --word_.preparations; }
        Preparation(const Preparation&) = delete;
        Preparation& operator=(const Preparation&) = delete;

        void Expect(const std::string& name) override { word_.expected.push_back(name); }

    private:
        FakeWord& word_;
    };

    class Application : public WordApplication
    {
    public:
        explicit Application(FakeWord& word) : word_(word) { ++word_.alive; }
        ~Application() override { --word_.alive; }
        Application(const Application&) = delete;
        Application& operator=(const Application&) = delete;

        void SetVisible(bool visible) override
        {
            word_.log_.push_back(std::string("Word Visible ") + (visible ? "1" : "0"));
        }
        void Open(const std::string& name, const std::function<bool()>& goOn) override
        {
            word_.log_.push_back("Word Open " + name);
            for (int i = 0; i < word_.questions; ++i) {
                if (word_.whileOpening)
                    word_.whileOpening();
                if (goOn && !goOn())
                    throw CommandFailed();
            }
            if (const auto error = word_.openErrors.find(name); error != word_.openErrors.end())
                throw RuntimeError(error->second);
            const auto document = word_.documents.find(name);
            if (document == word_.documents.end())
                throw CommandFailed();
            text_ = DecodeUtf8(document->second);
        }
        std::int32_t RangeEnd() override { return static_cast<std::int32_t>(Text().size()); }
        std::string RangeText(std::int32_t start, std::int32_t end) override
        {
            if (start < 0 || start > end || end > RangeEnd())
                throw std::logic_error("a range outside the document: " + std::to_string(start) + " to " +
                                       std::to_string(end));
            return EncodeUtf8(std::u32string_view(Text()).substr(static_cast<std::size_t>(start),
                                                                 static_cast<std::size_t>(end - start)));
        }
        void Close() override
        {
            word_.log_.push_back("Word Close");
            text_.reset();
        }
        void Quit() override { word_.log_.push_back("Word Quit"); }

    private:
        const std::u32string& Text() const
        {
            if (!text_)
                throw std::logic_error("no document is open");
            return *text_;
        }

        FakeWord& word_;
        std::optional<std::u32string> text_; ///< of the active document
    };

    std::vector<std::string>& log_;
};

} // namespace voxmate::fakes
