// What of a document's characters is read.
#pragma once

#include <string>
#include <string_view>

namespace voxmate::readers
{

/// Collects a text: any run of blanks, of whatever width, becomes one blank; characters without a sound (soft hyphens,
/// marks of width zero, the private characters of symbol fonts) are left out; ligatures become their letters.
class CleanText
{
public:
    void Add(std::string_view text);
    /// A forced line end.
    void Break();
    bool Empty() const { return text_.empty(); }
    std::size_t Size() const { return text_.size(); }
    /// The text without blanks at its ends; it begins anew.
    std::string Take();
    /// The same for the part up to the last blank, if there is one; the rest stays.
    std::string TakeWords();

private:
    void AddPoint(char32_t point, std::string_view bytes);

    std::string text_;
    bool blank_ = false; ///< one is due before the next character
};

/// One line of text cleaned in this way.
std::string Clean(std::string_view text);

} // namespace voxmate::readers
