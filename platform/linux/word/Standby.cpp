#include "platform/linux/word/Standby.h"

#include "platform/linux/word/Office.h"

#include <exception>
#include <sys/stat.h>
#include <utility>

namespace voxmate::linux_platform
{

Standby::Standby(std::string program, std::chrono::milliseconds readyTime)
    : program_(std::move(program)), deadline_(Clock::now() + readyTime), thread_([this] { Run(); })
{
}

Standby::~Standby()
{
    End();
    thread_.join();
}

void Standby::Expect(const std::string& document)
{
    const std::lock_guard lock(mutex_);
    if (used_ || document_ == document)
        return;
    document_ = document;
    ++turn_;
    changed_.notify_all();
}

void Standby::Use(const std::string& document)
{
    const Stamp stamp = StampOf(document);
    const std::lock_guard lock(mutex_);
    // LibreOffice is busy or over with another document, or with what this one was before. Another that is started
    // ahead would be heard later than one that does nothing but convert.
    if (begun_ ? document_ != document || *begun_ != stamp
               : result_ && (result_->document != document || result_->stamp != stamp)) {
        ++turn_;
        broken_ = true;
        result_.reset();
    }
    document_ = document;
    used_ = true;
    changed_.notify_all();
}

bool Standby::Works(std::chrono::milliseconds wait)
{
    std::unique_lock lock(mutex_);
    return !changed_.wait_for(lock, wait, [this] { return ended_ || broken_ || !Asked(); });
}

bool Standby::Failed() const
{
    const std::lock_guard lock(mutex_);
    return Asked();
}

std::optional<std::string> Standby::TakeText()
{
    const std::lock_guard lock(mutex_);
    return result_ ? std::exchange(result_->text, std::nullopt) : std::nullopt;
}

void Standby::End()
{
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    result_.reset();
    changed_.notify_all();
}

void Standby::EndUnlessUsed()
{
    {
        const std::lock_guard lock(mutex_);
        if (used_)
            return;
    }
    End();
}

bool Standby::Ended() const
{
    const std::lock_guard lock(mutex_);
    return ended_;
}

Standby::Stamp Standby::StampOf(const std::string& document)
{
    struct stat status {
    };
    if (::stat(document.c_str(), &status) != 0)
        return {};
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

// Whether anything is still to be done, or may come to be.
bool Standby::Wanted() const
{
    return !stopped_ && !broken_ && (used_ ? Asked() : Clock::now() < deadline_);
}

// Whether there is a document that has not been converted.
bool Standby::Asked() const
{
    return !document_.empty() && !(result_ && result_->document == document_);
}

void Standby::Run()
{
    std::unique_lock lock(mutex_);
    try {
        while (Wanted()) {
            ServeOne(lock);
            // The next LibreOffice starts when another document is expected: most users choose only one.
            while (Wanted() && !Asked())
                changed_.wait_until(lock, deadline_);
        }
    } catch (const std::exception&) {
        // No memory or no folder for it: the document is converted when it is opened, and that reports what is wrong.
        if (!lock.owns_lock())
            lock.lock();
    }
    ended_ = true;
    changed_.notify_all();
}

// Starts a LibreOffice, waits for its document and converts that. The lock is held except while that takes time.
void Standby::ServeOne(std::unique_lock<std::mutex>& lock)
{
    lock.unlock();
    Office office(program_);
    office.StartAhead();
    lock.lock();
    while (Wanted() && !Asked())
        changed_.wait_until(lock, deadline_);
    if (Wanted()) {
        Result result{document_, StampOf(document_), {}};
        begun_ = result.stamp;
        const unsigned turn = turn_;
        bool current = true;
        lock.unlock();
        result.text = office.Convert(result.document, [&] {
            const std::lock_guard again(mutex_);
            current = Wanted() && turn_ == turn;
            return current;
        });
        lock.lock();
        begun_.reset();
        if (office.Fell())
            broken_ = true;
        else if (current && turn_ == turn)
            result_ = std::move(result);
        changed_.notify_all();
    }
    lock.unlock();
    // Waits until it is gone, which may take some time.
    office.End();
    while (!office.Gone(std::chrono::seconds(1)))
        ;
    lock.lock();
}

} // namespace voxmate::linux_platform
