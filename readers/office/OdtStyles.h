// What the styles of an OpenDocument text say about hidden text, languages and the labels of lists.
#pragma once

#include "readers/markup/Xml.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace voxmate::readers
{

class OdtStyles
{
public:
    /// Told of every tag outside the document's text.
    void Start(std::string_view name, const XmlAttributes& attributes);
    void End(std::string_view name);

    /// Whether text of this style is hidden. `around` is the answer when neither the style nor its parents say so.
    bool Hides(std::string_view family, std::string_view style, bool around) const;
    /// The language of a style ("de-AT"), empty when neither the style nor its parents nor the default have one.
    std::string Language(std::string_view family, std::string_view style) const;
    /// The list style that a paragraph style brings with it, or its parents; empty for none.
    std::string ListStyle(std::string_view paragraphStyle) const;

    static constexpr std::size_t Depths = 10;
    /// How a list style writes the numbers at one depth (from 0).
    struct Level {
        bool bullet = false;
        std::string format; ///< as in InFormat; empty: no number is printed
        std::string before;
        std::string behind;
        int shown = 1; ///< the numbers of so many depths are printed
        int start = 1;
    };
    /// Null for an unknown style.
    const std::array<Level, Depths>* List(std::string_view style) const;
    /// The levels of numbered headings; their format is empty where headings have no numbers.
    const std::array<Level, Depths>& Outline() const { return outline_; }

private:
    struct Style {
        std::string parent;
        std::string display; ///< "none", "true", or nothing
        std::string language;
        std::optional<std::string> list;
    };
    template <class Found>
    void Climb(std::string_view family, std::string_view style, const Found& found) const;

    std::map<std::string, Style, std::less<>> styles_;
    std::map<std::string, std::array<Level, Depths>, std::less<>> lists_;
    std::array<Level, Depths> outline_;
    Style* current_ = nullptr;
    std::array<Level, Depths>* list_ = nullptr;
    std::string family_;
};

} // namespace voxmate::readers
