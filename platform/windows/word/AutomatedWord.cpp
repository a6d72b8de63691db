#include "platform/windows/word/AutomatedWord.h"

#include "base/RuntimeError.h"
#include "platform/windows/word/Automation.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace voxmate::windows_platform
{

namespace
{

/// How often the program goes on with other things while a document opens.
constexpr std::chrono::milliseconds GoOnEvery{10};

/// How long the end of Word is waited for where nobody asks for it by name.
constexpr std::chrono::seconds EndPatience{2};

/// A thread on which Word is talked to: its calls take as long as Word likes.
class Caller
{
public:
    Caller() : thread_([this] { Run(); }) {}
    /// Waits for the calls that are made.
    ~Caller()
    {
        {
            const std::lock_guard lock(mutex_);
            quit_ = true;
        }
        more_.notify_one();
        thread_.join();
    }
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

    template <class Act>
    auto Do(Act act)
    {
        auto task = std::make_shared<std::packaged_task<decltype(act())()>>(std::move(act));
        auto result = task->get_future();
        {
            const std::lock_guard lock(mutex_);
            tasks_.emplace_back([task] { (*task)(); });
        }
        more_.notify_one();
        return result;
    }

private:
    void Run()
    {
        ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        std::unique_lock lock(mutex_);
        for (;;) {
            more_.wait(lock, [this] { return quit_ || !tasks_.empty(); });
            if (tasks_.empty())
                break;
            const std::function<void()> task = std::move(tasks_.front());
            tasks_.pop_front();
            lock.unlock();
            task();
            lock.lock();
        }
        lock.unlock();
        ::CoUninitialize();
    }

    std::mutex mutex_;
    std::condition_variable more_;
    std::deque<std::function<void()>> tasks_;
    bool quit_ = false;
    std::thread thread_;
};

/// Word and the document that is open in it; all but the caller is used on the caller's thread.
struct Word {
    std::optional<Automation> application;
    std::optional<Automation> document;
    Caller caller;

    void End()
    {
        document.reset();
        if (!application)
            return;
        try {
            application->Call("Quit");
        } catch (const RuntimeError&) {
            // It has ended already.
        }
        application.reset();
    }
};

class AutomatedApplication final : public WordApplication
{
    // Makes a call and waits for its answer or its error.
    template <class Act>
    auto Now(Act act)
    {
        return word_->caller.Do(std::move(act)).get();
    }

public:
    explicit AutomatedApplication(std::chrono::milliseconds timeLimit)
        : word_(std::make_shared<Word>()), timeLimit_(timeLimit)
    {
        Now([word = word_.get()] { word->application = Automation::Create("Word.Application"); });
    }

    // Only for a moment: an opening that was given up may still go on, and Word may show a question.
    ~AutomatedApplication() override
    {
        const std::future<void> ended = word_->caller.Do([word = word_.get()] { word->End(); });
        ended.wait_for(givenUp_ ? std::chrono::seconds(0) : EndPatience);
        std::thread([word = std::move(word_)]() mutable { word.reset(); }).detach();
    }
    AutomatedApplication(const AutomatedApplication&) = delete;
    AutomatedApplication& operator=(const AutomatedApplication&) = delete;

    void SetVisible(bool visible) override
    {
        Now([word = word_.get(), visible] { word->application->Set("Visible", visible); });
    }

    void Open(const std::string& name, const std::function<bool()>& goOn) override
    {
        std::future<void> opened = word_->caller.Do([word = word_.get(), name] {
            word->application->GetObject("Documents").CallForObject("Open", {name});
            word->document.emplace(word->application->GetObject("ActiveDocument"));
        });
        const auto last = std::chrono::steady_clock::now() + timeLimit_;
        while (opened.wait_for(GoOnEvery) != std::future_status::ready) {
            if (!goOn() || std::chrono::steady_clock::now() > last) {
                givenUp_ = true;
                throw CommandFailed();
            }
        }
        opened.get();
    }

    std::int32_t RangeEnd() override
    {
        return Now([word = word_.get()] { return word->document->CallForObject("Range").GetNumber("End"); });
    }

    std::string RangeText(std::int32_t start, std::int32_t end) override
    {
        return Now([word = word_.get(), start, end] {
            return word->document->CallForObject("Range", {start, end}).GetText("Text");
        });
    }

    void Close() override
    {
        Now([word = word_.get()] {
            word->document->Call("Close");
            word->document.reset();
        });
    }

    void Quit() override
    {
        std::future<void> ended = word_->caller.Do([word = word_.get()] { word->End(); });
        if (!givenUp_)
            ended.get();
    }

private:
    std::shared_ptr<Word> word_;
    const std::chrono::milliseconds timeLimit_;
    bool givenUp_ = false; ///< an opening was, and may still go on
};

} // namespace

std::unique_ptr<WordApplication> AutomatedWord::CreateWord()
{
    return std::make_unique<AutomatedApplication>(timeLimit_);
}

} // namespace voxmate::windows_platform
