#include "readers/Reading.h"

#include "base/RuntimeError.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace voxmate::readers
{

namespace
{

constexpr std::size_t BufferSize = std::size_t{64} * 1024;

Refusal RefusalFor(const RuntimeError& error)
{
    if (error.Number == FileNotFound().Number)
        return Refusal::NotFound;
    if (error.Number == PermissionDenied().Number)
        return Refusal::NotAllowed;
    return error.Number == DeviceIOError().Number ? Refusal::CannotRead : Refusal::NoReader;
}

} // namespace

Reading::Reading(std::string path) : path_(std::move(path)), buffer_(BufferSize)
{
    try {
        helper_ = StartHelper(ReaderProgram, path_);
    } catch (const RuntimeError& error) {
        outcome_ = RefusalFor(error);
    }
}

Reading::Reading(std::string path, std::unique_ptr<Helper> helper)
    : path_(std::move(path)), helper_(std::move(helper)), buffer_(BufferSize)
{
}

Reading::~Reading() = default;

std::optional<Block> Reading::Next(std::chrono::milliseconds wait)
{
    const auto end = std::chrono::steady_clock::now() + wait;
    while (!AtEnd()) {
        if (std::optional<Block> block = Take())
            return block;
        if (AtEnd())
            break;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        const std::size_t got = helper_->Read(buffer_, std::max(left, std::chrono::milliseconds(0)));
        frames_.Add({buffer_.data(), got});
        if (got == 0 && helper_->AtEnd())
            // It ended without a word on how.
            End(helper_->Ending() == Helper::End::OutOfTime ? Refusal::TooLong : Refusal::Damaged);
        else if (got == 0)
            break;
    }
    return std::nullopt;
}

// The next block that has arrived.
std::optional<Block> Reading::Take()
{
    while (std::optional<Frame> frame = frames_.Next()) {
        if (const Kind* kind = std::get_if<Kind>(&*frame)) {
            kind_ = *kind;
        } else if (const Refusal* refusal = std::get_if<Refusal>(&*frame)) {
            End(*refusal);
            return std::nullopt;
        } else {
            Block block = std::get<Block>(std::move(*frame));
            begun_ = begun_ || !block.text.empty(); // a page's number is none of the text
            return block;
        }
    }
    if (frames_.Wrong())
        End(Refusal::Damaged);
    return std::nullopt;
}

void Reading::End(Refusal outcome)
{
    outcome_ = outcome;
    helper_.reset();
}

std::string Reading::Sentence() const
{
    return readers::Sentence(Outcome(), path_, begun_);
}

} // namespace voxmate::readers
