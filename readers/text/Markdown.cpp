#include "readers/text/Markdown.h"

#include "base/Text.h"
#include "readers/markup/Page.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

#include <cmark-gfm-core-extensions.h>
#include <cmark-gfm.h>

namespace voxmate::readers
{

namespace
{

constexpr std::size_t LargestMarkdown = std::size_t{8} << 20;
constexpr std::size_t Examined = std::size_t{64} * 1024;

std::string_view TakeLine(std::string_view& text)
{
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = Trimmed(text.substr(0, end), "\r");
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

// Pages and their authors' names in front of a text, between two lines of dashes.
std::string_view WithoutFrontMatter(std::string_view text)
{
    std::string_view rest = text;
    if (TakeLine(rest) != "---")
        return text;
    constexpr int most = 100;
    for (int i = 0; i < most && !rest.empty(); ++i)
        if (const std::string_view line = TakeLine(rest); line == "---" || line == "...")
            return rest;
    return text;
}

bool IsRule(std::string_view line, char mark)
{
    return line.size() >= 3 && line.find_first_not_of(mark) == std::string_view::npos;
}

bool IsHashHeading(std::string_view line)
{
    const std::size_t hashes = std::min(line.find_first_not_of('#'), line.size());
    return hashes >= 1 && hashes <= 6 && line.size() > hashes + 1 && line[hashes] == ' ';
}

// Whether a line parts a table's head from its body.
bool IsTableRule(std::string_view line)
{
    return line.find('|') != std::string_view::npos && line.find("--") != std::string_view::npos &&
           line.find_first_not_of("|-: ") == std::string_view::npos;
}

// Whether there is a word between two marks of two characters.
bool HasPair(std::string_view line, std::string_view mark)
{
    const std::size_t first = line.find(mark);
    const std::size_t next = first + mark.size();
    if (first == std::string_view::npos || next >= line.size() || line[next] == ' ' || line[next] == mark[0])
        return false;
    const std::size_t second = line.find(mark, next);
    return second != std::string_view::npos && line[second - 1] != ' ';
}

bool HasLink(std::string_view line)
{
    const std::size_t at = line.find("](");
    return at != std::string_view::npos && line.rfind('[', at) != std::string_view::npos &&
           line.find(')', at) != std::string_view::npos;
}

} // namespace

bool LooksLikeMarkdown(std::string_view text)
{
    if (text.size() > LargestMarkdown || text.starts_with("#!"))
        return false;
    std::string_view rest = text.substr(0, Examined);
    int marks = 0;
    int comments = 0; // lines of a program or a settings file that begin with "# "
    std::string_view before;
    while (!rest.empty()) {
        const std::string_view line = TakeLine(rest);
        std::string_view ahead = rest;
        const std::string_view next = rest.empty() ? std::string_view() : TakeLine(ahead);
        if (IsHashHeading(line)) {
            const bool alone = Trimmed(before, " \t").empty() && Trimmed(next, " \t").empty();
            (alone ? marks : comments) += 1;
        }
        // A line below a title is as long as the title, or nearly so.
        const auto gap = static_cast<long>(Len(line)) - static_cast<long>(Len(before));
        if ((IsRule(line, '=') || IsRule(line, '-')) && !before.empty() && std::abs(gap) <= 3 && next.empty())
            ++marks;
        if (line.starts_with("```") || IsTableRule(line) || HasPair(line, "**") || HasLink(line) ||
            line.starts_with("[^"))
            ++marks;
        before = line;
    }
    return marks > comments;
}

void ReadMarkdown(std::string_view text, const BlockSink& sink)
{
    cmark_gfm_core_extensions_ensure_registered();
    // Pages within the text are read like any other page; nothing of them is run.
    const int options = CMARK_OPT_FOOTNOTES | CMARK_OPT_UNSAFE | CMARK_OPT_VALIDATE_UTF8;
    const std::unique_ptr<cmark_parser, decltype(&cmark_parser_free)> parser(cmark_parser_new(options),
                                                                             &cmark_parser_free);
    if (!parser)
        throw std::bad_alloc();
    for (const char* const name : {"table", "strikethrough", "tasklist"})
        if (cmark_syntax_extension* extension = cmark_find_syntax_extension(name))
            cmark_parser_attach_syntax_extension(parser.get(), extension);
    text = WithoutFrontMatter(text);
    cmark_parser_feed(parser.get(), text.data(), text.size());
    const std::unique_ptr<cmark_node, decltype(&cmark_node_free)> root(cmark_parser_finish(parser.get()),
                                                                       &cmark_node_free);
    const std::unique_ptr<char, decltype(&std::free)> page(
        root ? cmark_render_html(root.get(), options, cmark_parser_get_syntax_extensions(parser.get())) : nullptr,
        &std::free);
    if (!page)
        throw std::bad_alloc();
    ReadPage(page.get(), sink);
}

} // namespace voxmate::readers
