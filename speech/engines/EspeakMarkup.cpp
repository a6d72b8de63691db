#include "speech/engines/EspeakMarkup.h"

#include "base/Text.h"

#include <algorithm>
#include <string_view>

namespace voxmate::speech
{

EspeakMarkup::EspeakMarkup(const MarkedText& text) : marks(text.marks)
{
    int word = -1;
    const auto add = [&](std::string_view ascii) {
        ssml += ascii;
        shownWord_.insert(shownWord_.end(), ascii.size(), word);
    };
    std::size_t mark = 0;
    bool stressed = false;
    const auto stress = [&](bool on) {
        if (on != stressed)
            add(on ? "<emphasis level=\"strong\">" : "</emphasis>");
        stressed = on;
    };
    add("<speak>");
    for (std::size_t i = 0; i <= text.text.size(); ++i) {
        for (; mark < marks.size() && marks[mark].at <= i; ++mark) {
            stress(false);
            add("<mark name=\"" + std::to_string(mark) + "\"/>");
        }
        if (i == text.text.size())
            break;
        stress(text.emphasised[i]);
        word = std::max(word, text.shownWord[i]);
        switch (text.text[i]) {
        case U'&':
            add("&amp;");
            break;
        case U'<':
            add("&lt;");
            break;
        case U'>':
            add("&gt;");
            break;
        default:
            AppendUtf8(ssml, text.text[i]);
            shownWord_.push_back(word);
        }
    }
    stress(false);
    // The library treats the element's end as a sentence's end, with its pause.
    if (text.end != MarkedText::End::Inside)
        add("</speak>");
}

int EspeakMarkup::ShownWordAt(int position) const
{
    const std::size_t at = static_cast<std::size_t>(std::max(position, 1)) - 1;
    return at < shownWord_.size() ? shownWord_[at] : -1;
}

} // namespace voxmate::speech
