#include "platform/linux/process/QuietErrors.h"

#include <utility>

namespace voxmate::linux_platform
{

QuietErrors::QuietErrors(std::ostream& stream, std::string unwanted)
    : stream_(stream), unwanted_(std::move(unwanted)), own_(stream.rdbuf(this))
{
}

QuietErrors::~QuietErrors()
{
    stream_.rdbuf(own_);
    own_->sputn(begin_.data(), static_cast<std::streamsize>(begin_.size()));
}

QuietErrors::int_type QuietErrors::overflow(int_type character)
{
    const std::lock_guard lock(mutex_);
    if (!traits_type::eq_int_type(character, traits_type::eof()))
        Put(traits_type::to_char_type(character));
    return traits_type::not_eof(character);
}

std::streamsize QuietErrors::xsputn(const char* text, std::streamsize count)
{
    const std::lock_guard lock(mutex_);
    for (std::streamsize i = 0; i < count; ++i)
        Put(text[i]);
    return count;
}

int QuietErrors::sync()
{
    const std::lock_guard lock(mutex_);
    return own_->pubsync();
}

void QuietErrors::Put(char character)
{
    const bool ends = character == '\n';
    if (line_ == Line::Begins && ends && begin_.empty() && std::exchange(leftOut_, false))
        return;
    if (line_ == Line::Begins) {
        begin_ += character;
        if (begin_ == unwanted_)
            line_ = Line::Unwanted;
        else if (!unwanted_.starts_with(begin_))
            line_ = Line::Wanted;
        if (line_ == Line::Wanted)
            own_->sputn(begin_.data(), static_cast<std::streamsize>(begin_.size()));
        if (line_ != Line::Begins)
            begin_.clear();
    } else if (line_ == Line::Wanted) {
        own_->sputc(character);
    }
    if (!ends)
        return;
    leftOut_ = line_ == Line::Unwanted;
    line_ = Line::Begins;
}

} // namespace voxmate::linux_platform
