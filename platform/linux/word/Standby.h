// A LibreOffice that starts before its document is chosen.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include <sys/types.h>

namespace voxmate::linux_platform
{

/// Starts a LibreOffice and has it convert a document, all on a thread of its own. A document that is expected is
/// converted in advance, each by a LibreOffice of its own. Calls from one thread only.
class Standby
{
public:
    /// `program` is the path of soffice. What waits for `readyTime` without being used is ended.
    Standby(std::string program, std::chrono::milliseconds readyTime);
    /// Ends everything and waits until that is done.
    ~Standby();
    Standby(const Standby&) = delete;
    Standby& operator=(const Standby&) = delete;

    /// Converts this document in advance, in place of the one expected before.
    void Expect(const std::string& document);
    /// Converts this document, the last one, however long it takes, unless that has been done in advance and the file
    /// has not changed since. Not tried when LibreOffice has begun with another document.
    void Use(const std::string& document);
    /// Waits at most `wait` for the used document's conversion; returns whether it still goes on.
    bool Works(std::chrono::milliseconds wait);
    /// Afterwards: whether the document has not been tried, because LibreOffice had ended too early, waited too long or
    /// begun with another one.
    bool Failed() const;
    /// Otherwise its main text; nothing when it cannot be converted.
    std::optional<std::string> TakeText();
    /// Has everything ended and removed, the text, too; does not wait for that.
    void End();
    /// The same, unless Use has been called.
    void EndUnlessUsed();
    /// Whether all of that is done.
    bool Ended() const;

private:
    using Clock = std::chrono::steady_clock;

    /// What changes when another file takes a file's place, or when it is written to.
    struct Stamp {
        dev_t device = 0;
        ino_t number = 0;
        off_t size = 0;
        std::int64_t seconds = 0;
        std::int64_t nanoseconds = 0;

        bool operator==(const Stamp&) const = default;
    };
    struct Result {
        std::string document;
        Stamp stamp;
        std::optional<std::string> text;
    };

    static Stamp StampOf(const std::string& document);
    void Run();
    void ServeOne(std::unique_lock<std::mutex>& lock);
    bool Wanted() const;
    bool Asked() const;

    const std::string program_;
    const Clock::time_point deadline_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::string document_;       ///< what is expected or used; empty: nothing yet
    unsigned turn_ = 0;          ///< counts what is expected or used; another turn breaks off a conversion
    std::optional<Stamp> begun_; ///< of the document that is being converted
    bool used_ = false;
    bool stopped_ = false;
    bool broken_ = false; ///< LibreOffice ended by itself, or has begun with another document than the used one
    bool ended_ = false;
    std::optional<Result> result_; ///< of the last document that was converted
    std::thread thread_;
};

/// A document's turn with a standby, which is ended with it.
class StandbyUse
{
public:
    StandbyUse(Standby& standby, const std::string& document) : standby_(standby) { standby_.Use(document); }
    ~StandbyUse() { standby_.End(); }
    StandbyUse(const StandbyUse&) = delete;
    StandbyUse& operator=(const StandbyUse&) = delete;

private:
    Standby& standby_;
};

} // namespace voxmate::linux_platform
