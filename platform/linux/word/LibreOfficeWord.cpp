#include "platform/linux/word/LibreOfficeWord.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/FindProgram.h"
#include "platform/linux/word/Office.h"
#include "platform/linux/word/Standby.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string_view>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

constexpr const char* UsualFolders = "/usr/bin:/usr/lib/libreoffice/program";
/// The most that one call and the wait before it count towards the time limit. Drawing a busy window takes less.
constexpr std::chrono::milliseconds LongestRound{100};

// Asks whether to go on, and counts the time. A call of `goOn` may return late, for example while a message box is
// open; that time must not count against the conversion.
class Patience
{
public:
    Patience(const std::function<bool()>& goOn, std::chrono::milliseconds limit) : goOn_(goOn), limit_(limit) {}

    bool GoOn()
    {
        if (!goOn_() || waited_ >= limit_)
            return false;
        const auto now = std::chrono::steady_clock::now();
        waited_ += std::min<std::chrono::steady_clock::duration>(now - std::exchange(last_, now), LongestRound);
        return true;
    }

private:
    const std::function<bool()>& goOn_;
    std::chrono::milliseconds limit_;
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
    std::chrono::steady_clock::duration waited_{};
};

class LibreOfficeApplication : public WordApplication
{
public:
    LibreOfficeApplication(std::string program, std::chrono::milliseconds timeLimit, std::shared_ptr<Standby> standby)
        : program_(std::move(program)), timeLimit_(timeLimit), standby_(std::move(standby))
    {
    }

    // It never has a window.
    void SetVisible(bool /*visible*/) override {}

    void Open(const std::string& name, const std::function<bool()>& goOn) override
    {
        Close();
        std::optional<std::string> text = Convert(name, goOn);
        if (!text)
            throw CommandFailed();
        // Even an empty document has a paragraph; its end alone is nothing to read.
        if (text->find_first_not_of('\r') == std::string::npos)
            text->clear();
        document_ = DecodeUtf8(*text);
    }

    std::int32_t RangeEnd() override { return static_cast<std::int32_t>(Document().size()); }

    std::string RangeText(std::int32_t start, std::int32_t end) override
    {
        const std::int32_t from = std::clamp(start, 0, RangeEnd());
        const std::int32_t to = std::clamp(end, from, RangeEnd());
        return EncodeUtf8(std::u32string_view(Document())
                              .substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from)));
    }

    void Close() override { document_.reset(); }
    void Quit() override { Close(); }

private:
    const std::u32string& Document() const
    {
        if (!document_)
            throw CommandFailed();
        return *document_;
    }

    // The main text; nothing when the document cannot be converted.
    std::optional<std::string> Convert(const std::string& name, const std::function<bool()>& goOn)
    {
        Patience patience(goOn, timeLimit_);
        if (const std::shared_ptr<Standby> standby = std::exchange(standby_, nullptr)) {
            const StandbyUse use(*standby, name);
            while (standby->Works(Office::Interval))
                if (!patience.GoOn())
                    return std::nullopt;
            if (!standby->Failed())
                return standby->TakeText();
        }
        Office office(program_);
        std::optional<std::string> text = office.Convert(name, [&patience] { return patience.GoOn(); });
        // Removing a profile can take longer than a window may freeze.
        office.End();
        while (text && !office.Gone(Office::Interval))
            if (!goOn())
                return std::nullopt;
        return text;
    }

    std::string program_;
    std::chrono::milliseconds timeLimit_;
    std::shared_ptr<Standby> standby_; ///< serves the first document
    std::optional<std::u32string> document_;
};

class Preparation : public WordPreparation
{
public:
    explicit Preparation(std::shared_ptr<Standby> standby) : standby_(std::move(standby)) {}
    ~Preparation() override { standby_->EndUnlessUsed(); }
    Preparation(const Preparation&) = delete;
    Preparation& operator=(const Preparation&) = delete;

    void Expect(const std::string& name) override { standby_->Expect(name); }

private:
    std::shared_ptr<Standby> standby_;
};

} // namespace

LibreOfficeWord::LibreOfficeWord(std::string folders, std::chrono::milliseconds timeLimit,
                                 std::chrono::milliseconds readyTime)
    : folders_(std::move(folders)), timeLimit_(timeLimit), readyTime_(readyTime)
{
}

LibreOfficeWord::~LibreOfficeWord() = default;

std::string LibreOfficeWord::Folders()
{
    const char* path = std::getenv("PATH"); // NOLINT(concurrency-mt-unsafe): nobody sets any
    return std::string(path ? path : "") + ":" + UsualFolders;
}

std::unique_ptr<WordPreparation> LibreOfficeWord::Prepare()
{
    for (const auto& standby : standbys_)
        standby->EndUnlessUsed();
    // One that is still being ended stays until a later call, because its end is not waited for here.
    std::erase_if(standbys_, [](const auto& standby) { return standby->Ended(); });
    const std::string program = FindProgram("soffice", folders_);
    if (program.empty())
        return nullptr;
    try {
        standbys_.push_back(std::make_shared<Standby>(program, readyTime_));
        prepared_ = standbys_.back();
        return std::make_unique<Preparation>(prepared_);
    } catch (const std::exception&) {
        // Without memory or a thread for it, the document is converted when it is opened.
        return nullptr;
    }
}

std::unique_ptr<WordApplication> LibreOfficeWord::CreateWord()
{
    const std::string program = FindProgram("soffice", folders_);
    if (program.empty())
        throw CannotCreateObject();
    return std::make_unique<LibreOfficeApplication>(program, timeLimit_, std::exchange(prepared_, nullptr));
}

} // namespace voxmate::linux_platform
