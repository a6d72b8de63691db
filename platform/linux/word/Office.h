// One LibreOffice without windows, with all that belongs to it.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace voxmate::linux_platform
{

class GuardedProcess;

/// A LibreOffice that converts one document, with a fresh profile in a folder of its own. Macros do not run in it, it
/// can load nothing but files, and it has no network where the system grants that. Whatever happens to it or to us, it
/// leaves no process and no file behind.
class Office
{
public:
    static constexpr std::chrono::milliseconds Interval{10}; ///< time between two calls of `goOn`

    /// Makes its files; raises run-time error 4198 when no folder can be made. `program` is the path of soffice.
    explicit Office(const std::string& program);
    /// Ends everything and waits until that is done.
    ~Office();
    Office(const Office&) = delete;
    Office& operator=(const Office&) = delete;

    /// Starts it, at a lower priority, to wait for its document. Without this call it starts with the document.
    void StartAhead();
    /// The main text of a document (see MainText); nothing when it cannot be converted or `goOn` returned false. Then
    /// everything is to be ended. Must be called at most once.
    std::optional<std::string> Convert(const std::string& document, const std::function<bool()>& goOn);
    /// Whether the last `Convert` gave no text because one that had started ahead had ended by itself.
    bool Fell() const { return fell_; }
    /// Has everything ended and removed; does not wait for that.
    void End();
    /// Waits about `wait` until everything requested by `End` is done; returns whether it is.
    bool Gone(std::chrono::milliseconds wait);

private:
    struct Place;

    std::unique_ptr<Place> place_;
    std::unique_ptr<GuardedProcess> ahead_;      ///< the one that waits for a document
    std::unique_ptr<GuardedProcess> converting_; ///< converts the document, or hands it to the one that waits
    bool fell_ = false;
};

} // namespace voxmate::linux_platform
