#include "readers/pdf/Pdf.h"

#include "base/Text.h"
#include "readers/Refusal.h"
#include "readers/pdf/Layout.h"
#include "readers/text/Clean.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <poppler-document.h>
#include <poppler-page.h>
#include <poppler-toc.h>

namespace voxmate::readers
{

namespace
{

std::string Utf8(const poppler::ustring& text)
{
    return Utf16ToUtf8(std::u16string(text.begin(), text.end()));
}

// The titles in the outline with their levels. It may lead in circles.
void Titles(const poppler::toc_item& item, int level, std::map<std::string, int>& titles)
{
    constexpr int deepest = 6;
    constexpr std::size_t most = 5000;
    if (level > deepest || titles.size() >= most)
        return;
    for (const poppler::toc_item* child : item.children()) {
        if (const std::string title = LowerAscii(Clean(Utf8(child->title()))); !title.empty())
            titles.try_emplace(title, level);
        Titles(*child, level + 1, titles);
    }
}

bool IsBold(const std::string& font)
{
    return ContainsNoCase(font, "bold") || ContainsNoCase(font, "black") || ContainsNoCase(font, "heavy") ||
           // The bold fonts of TeX's families.
           font.find("CMBX") != std::string::npos || font.find("SFBX") != std::string::npos;
}

// Turns a place on the page so that text of the rotation reads from left to right.
void Turn(PdfWord& word, int rotation, const poppler::rectf& page)
{
    const PdfWord was = word;
    switch (rotation) {
    case 1:
        word.left = was.top;
        word.right = was.bottom;
        word.top = page.width() - was.right;
        word.bottom = page.width() - was.left;
        break;
    case 2:
        word.left = page.width() - was.right;
        word.right = page.width() - was.left;
        word.top = page.height() - was.bottom;
        word.bottom = page.height() - was.top;
        break;
    case 3:
        word.left = page.height() - was.bottom;
        word.right = page.height() - was.top;
        word.top = was.left;
        word.bottom = was.right;
        break;
    default:
        break;
    }
}

PdfPage PageOf(const poppler::page& source)
{
    PdfPage page;
    page.label = CleanLabel(Utf8(source.label()));
    const std::vector<poppler::text_box> boxes = source.text_list(poppler::page::text_list_include_font);
    // Text that stands across, as a stamp at the margin, is not read with the rest.
    std::map<int, std::size_t> rotations;
    for (const poppler::text_box& box : boxes)
        ++rotations[box.rotation()];
    const auto most =
        std::max_element(rotations.begin(), rotations.end(), [](auto& a, auto& b) { return a.second < b.second; });
    for (const poppler::text_box& box : boxes) {
        if (box.rotation() != most->first)
            continue;
        const poppler::rectf place = box.bbox();
        PdfWord word;
        word.text = Utf8(box.text());
        word.left = place.left();
        word.right = place.right();
        word.top = place.top();
        word.bottom = place.bottom();
        const double height = place.height();
        word.size = box.has_font_info() && box.get_font_size() > 0 ? box.get_font_size() : height;
        word.bold = box.has_font_info() && IsBold(box.get_font_name());
        word.blank = box.has_space_after();
        Turn(word, most->first, source.page_rect());
        page.words.push_back(std::move(word));
    }
    return page;
}

} // namespace

void ReadPdf(std::string_view bytes, const BlockSink& sink)
{
    const std::unique_ptr<poppler::document> document(
        poppler::document::load_from_raw_data(bytes.data(), static_cast<int>(bytes.size())));
    if (!document)
        throw Refused(Refusal::Damaged);
    if (document->is_locked())
        throw Refused(Refusal::Protected);
    std::map<std::string, int> titles;
    if (const std::unique_ptr<poppler::toc> contents(document->create_toc()); contents && contents->root())
        Titles(*contents->root(), 1, titles);

    Layout layout(sink, titles);
    const int count = document->pages();
    // The number of pages is only what the file says.
    constexpr int mostMissing = 1000;
    int missing = 0;
    for (int i = 0; i < count && missing < mostMissing; ++i) {
        const std::unique_ptr<poppler::page> page(document->create_page(i));
        missing = page ? 0 : missing + 1;
        if (page)
            layout.Add(PageOf(*page));
    }
    layout.Finish();
    if (count <= 0 || missing > 0)
        throw Refused(Refusal::Damaged);
}

} // namespace voxmate::readers
