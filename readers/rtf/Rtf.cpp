#include "readers/rtf/Rtf.h"

#include "base/Text.h"
#include "platform/TextDecoding.h"
#include "readers/BlockWriter.h"
#include "readers/Refusal.h"
#include "readers/rtf/RtfTables.h"
#include "readers/rtf/RtfTokens.h"
#include "readers/text/ListMarks.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::readers
{

namespace
{

constexpr std::size_t DeepestGroup = 2000;

// What a group is for.
enum class Destination { Text, Skipped, Fonts, Styles, Label };

// What a group inherits from the one around it.
struct State {
    Destination destination = Destination::Text;
    bool optional = false; ///< \* was read: an unknown destination is passed over
    bool note = false;     ///< its end ends a note or text box
    bool older = false;    ///< the next group in it is a stand-in for old readers
    bool hidden = false;
    bool deleted = false;
    int font = 0;
    int language = 0;
    int fallback = 1; ///< \uc: characters that stand for a \u for old readers
    // The paragraph's properties.
    int style = 0;
    int outline = -1; ///< 0 to 8 for headings
    bool inTable = false;
    bool listed = false;
    int depth = 0;
};

// The document, a note or a text box: where its present block and row are.
struct Flow {
    bool block = false;
    bool row = false;
    bool cell = false;
    std::string label; ///< read before the list item's text
    std::string begin; ///< a paragraph's beginning that may be a label
};

class Reader
{
public:
    explicit Reader(const BlockSink& sink) : writer_(sink) {}

    void Read(std::string_view bytes)
    {
        RtfTokens tokens(bytes);
        while (const std::optional<RtfToken> token = tokens.Next()) {
            if (ended_)
                return;
            Take(*token);
        }
        if (!ended_) {
            FlushBytes();
            FlushBegin();
            writer_.Finish();
            throw Refused(Refusal::Damaged);
        }
    }

private:
    State& Now() { return states_.back(); }
    Flow& Here() { return flows_.back(); }

    void Take(const RtfToken& token)
    {
        const bool counts = token.kind != RtfToken::Kind::Open && token.kind != RtfToken::Kind::Close;
        // A character's stand-in for old readers may be written in any way.
        if (passOver_ > 0 && counts && token.kind != RtfToken::Kind::Text) {
            --passOver_;
            return;
        }
        if (!counts)
            passOver_ = 0;
        if (token.kind != RtfToken::Kind::Byte && token.kind != RtfToken::Kind::Text)
            FlushBytes();
        switch (token.kind) {
        case RtfToken::Kind::Open:
            if (states_.size() >= DeepestGroup)
                throw Refused(Refusal::Damaged);
            Open();
            break;
        case RtfToken::Kind::Close:
            Close();
            break;
        case RtfToken::Kind::Word:
            Word(token.text, token.number);
            break;
        case RtfToken::Kind::Symbol:
            Symbol(token.text[0]);
            break;
        case RtfToken::Kind::Byte:
            if (Now().destination != Destination::Skipped)
                bytes_ += static_cast<char>(token.byte);
            break;
        case RtfToken::Kind::Text:
            Bytes(token.text);
            break;
        }
    }

    void Open()
    {
        const bool older = std::exchange(Now().older, false);
        states_.push_back(Now());
        Now().optional = Now().note = false;
        if (older)
            Now().destination = Destination::Skipped;
    }

    void Close()
    {
        if (Now().note)
            EndNote();
        if (Now().destination == Destination::Styles && states_.size() > 1 &&
            states_[states_.size() - 2].destination == Destination::Styles)
            EndStyle();
        states_.pop_back();
        if (states_.size() > 1)
            return;
        ended_ = true;
        FlushBegin();
        writer_.Finish();
    }

    void Bytes(std::string_view text)
    {
        const auto passed = std::min(text.size(), static_cast<std::size_t>(passOver_));
        passOver_ -= static_cast<int>(passed);
        text.remove_prefix(passed);
        if (text.empty() || Now().destination == Destination::Skipped || Now().destination == Destination::Fonts)
            return;
        // The second half of a character may look like ASCII.
        if (!bytes_.empty() && HasDoubleBytes(Encoding()) && EndsInside(bytes_)) {
            bytes_ += text[0];
            text.remove_prefix(1);
        }
        const bool ascii =
            std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
        if (ascii && bytes_.empty())
            return Out(text);
        bytes_ += text;
    }

    static bool EndsInside(std::string_view bytes)
    {
        bool inside = false;
        for (const char c : bytes)
            inside = !inside && static_cast<unsigned char>(c) >= 0x81;
        return inside;
    }

    std::string Encoding()
    {
        const auto found = fonts_.find(Now().font);
        if (found == fonts_.end())
            return encoding_;
        const std::string own = RtfCharset(found->second);
        return own.empty() ? encoding_ : own;
    }

    // Decodes the bytes collected so far.
    void FlushBytes()
    {
        if (bytes_.empty())
            return;
        const std::string bytes = std::exchange(bytes_, {});
        const auto font = fonts_.find(Now().font);
        if (font != fonts_.end() && font->second == RtfSymbolCharset)
            return;
        const std::optional<std::string> text = DecodeFrom(bytes, Encoding());
        Out(text ? *text : Windows1252ToUtf8(bytes));
    }

    void Point(char32_t point)
    {
        std::string text;
        AppendUtf8(text, point);
        Out(text);
    }

    void Unicode(int number)
    {
        const auto unit = static_cast<char16_t>(number);
        passOver_ = Now().fallback;
        if (unit >= 0xD800 && unit < 0xDC00) {
            high_ = unit;
            return;
        }
        if (unit >= 0xDC00 && unit < 0xE000 && high_ != 0) {
            Out(Utf16ToUtf8(std::u16string{high_, unit}));
            high_ = 0;
            return;
        }
        high_ = 0;
        Point(unit);
    }

    void Out(std::string_view text)
    {
        switch (Now().destination) {
        case Destination::Label:
            if (Here().label.size() < LongestLabel)
                Here().label += text;
            break;
        case Destination::Styles:
            if (styleName_.size() < LongestLabel)
                styleName_ += text;
            break;
        case Destination::Text:
            if (Now().hidden || Now().deleted || states_.size() < 2)
                return;
            TextOut(text);
            break;
        default:
            break;
        }
    }

    // Some programs write a list item's label as text with a tab behind it.
    void TextOut(std::string_view text)
    {
        Flow& flow = Here();
        if (flow.block)
            return writer_.Text(text);
        constexpr std::size_t longestMark = 6;
        flow.begin += text;
        const std::string_view begin = Trimmed(flow.begin);
        const std::size_t mark = ListMark(flow.begin.ends_with('\t') ? flow.begin + "x" : "");
        if (mark > 0 && mark + 1 == flow.begin.size()) {
            flow.label = flow.begin.substr(0, mark);
            flow.begin.clear();
        } else if (begin.size() > longestMark) {
            FlushBegin();
        }
    }

    void FlushBegin()
    {
        const std::string begin = std::exchange(Here().begin, {});
        if (Trimmed(begin, " \t").empty())
            return;
        BeginBlock();
        writer_.Text(begin);
    }

    void BeginBlock()
    {
        Flow& flow = Here();
        if (flow.block)
            return;
        Place();
        flow.block = true;
        writer_.Language(LanguageOfIdentifier(Now().language));
        int outline = Now().outline;
        if (const auto style = headings_.find(Now().style); outline < 0 && style != headings_.end())
            outline = style->second;
        const std::string label = std::exchange(flow.label, {});
        if (outline >= 0 && outline < 9)
            writer_.Begin(BlockKind::Heading, outline + 1, label);
        else if (Now().listed || !label.empty())
            writer_.Begin(BlockKind::ListItem, Now().depth + 1, label);
        else
            writer_.Begin(BlockKind::Paragraph);
    }

    // Opens and closes rows as the present paragraph asks for.
    void Place()
    {
        Flow& flow = Here();
        if (!Now().inTable) {
            if (flow.row && !flow.cell)
                EndRow();
            return;
        }
        if (!std::exchange(flow.row, true))
            writer_.BeginRow();
        if (!std::exchange(flow.cell, true))
            writer_.BeginCell();
    }

    void EndBlock()
    {
        FlushBegin();
        writer_.End();
        Here().block = false;
        Here().label.clear();
    }

    void EndCell()
    {
        if (Now().destination != Destination::Text)
            return;
        EndBlock();
        Now().inTable = true;
        Place();
        writer_.EndCell();
        Here().cell = false;
    }

    void EndRow()
    {
        FlushBegin();
        if (Here().row)
            writer_.EndRow();
        Here().row = Here().cell = Here().block = false;
    }

    void BeginNote(bool aside)
    {
        if (Now().note)
            return;
        FlushBegin();
        if (aside)
            writer_.BeginAside();
        else
            writer_.BeginNote(std::to_string(++notes_));
        flows_.push_back({});
        State& now = Now();
        now.destination = Destination::Text;
        now.note = true;
        now.inTable = now.listed = false;
        now.outline = -1;
        now.style = 0;
    }

    void EndNote()
    {
        if (flows_.size() < 2)
            return;
        FlushBegin();
        writer_.EndNote();
        flows_.pop_back();
    }

    void EndStyle()
    {
        const std::string name = LowerAscii(Trimmed(styleName_, " ;"));
        if (name.starts_with("heading ") && name.size() == 9 && name[8] >= '1' && name[8] <= '9')
            headings_.try_emplace(Now().style, name[8] - '1');
        else if (name == "title")
            headings_.try_emplace(Now().style, 0);
        if (Now().outline >= 0)
            headings_[Now().style] = Now().outline;
        styleName_.clear();
    }

    void Symbol(char symbol)
    {
        switch (symbol) {
        case '*':
            Now().optional = true;
            break;
        case '~':
            Out(" ");
            break;
        case '_':
            Out("-");
            break;
        case '\\':
        case '{':
        case '}':
            Out({&symbol, 1});
            break;
        case '\r':
        case '\n':
            Paragraph();
            break;
        case '\t':
            Out(" ");
            break;
        default:
            break;
        }
    }

    void Paragraph()
    {
        if (Now().destination == Destination::Text)
            EndBlock();
    }

    void Word(std::string_view word, std::optional<int> number)
    {
        if (Now().destination == Destination::Skipped)
            return;
        const bool optional = std::exchange(Now().optional, false);
        if (BeginDestination(word) || Character(word) || Format(word, number))
            return;
        // An unknown destination.
        if (optional)
            Now().destination = Destination::Skipped;
    }

    bool BeginDestination(std::string_view word)
    {
        constexpr std::array<std::string_view, 41> skipped{
            "colortbl",   "info",       "pict",      "header",       "headerl",          "headerr",
            "headerf",    "footer",     "footerl",   "footerr",      "footerf",          "objdata",
            "xe",         "tc",         "txe",       "rxe",          "bkmkstart",        "bkmkend",
            "annotation", "atnid",      "atnauthor", "ftnsep",       "ftnsepc",          "ftncn",
            "aftnsep",    "aftnsepc",   "aftncn",    "listtable",    "revtbl",           "generator",
            "filetbl",    "nonshppict", "shprslt",   "template",     "operator",         "themedata",
            "pntxta",     "pntxtb",     "fldinst",   "nonesttables", "listoverridetable"};
        if (std::find(skipped.begin(), skipped.end(), word) != skipped.end())
            Now().destination = Destination::Skipped;
        else if (word == "fonttbl")
            Now().destination = Destination::Fonts;
        else if (word == "stylesheet")
            Now().destination = Destination::Styles;
        else if (word == "listtext" || word == "pntext")
            Now().destination = Now().destination == Destination::Text ? Destination::Label : Now().destination;
        else if (word == "footnote")
            BeginNote(false);
        else if (word == "shptxt" || word == "dptxbxtext")
            BeginNote(true);
        else if (word == "upr")
            Now().older = true;
        else
            return word == "ud" || word == "shpinst" || word == "shp" || word == "field" || word == "fldrslt" ||
                   word == "do" || word == "result" || word == "nesttableprops";
        return true;
    }

    bool Character(std::string_view word)
    {
        constexpr std::array<std::pair<std::string_view, char32_t>, 11> characters{{{"emdash", 0x2014},
                                                                                    {"endash", 0x2013},
                                                                                    {"lquote", 0x2018},
                                                                                    {"rquote", 0x2019},
                                                                                    {"ldblquote", 0x201C},
                                                                                    {"rdblquote", 0x201D},
                                                                                    {"bullet", 0x2022},
                                                                                    {"emspace", 0x2003},
                                                                                    {"enspace", 0x2002},
                                                                                    {"qmspace", 0x2005},
                                                                                    {"tab", 0x09}}};
        const auto* const found =
            std::find_if(characters.begin(), characters.end(), [&](const auto& one) { return one.first == word; });
        if (found != characters.end()) {
            Point(found->second);
            return true;
        }
        if (word == "par" || word == "sect" || word == "nestcell" || word == "nestrow")
            Paragraph();
        else if (word == "line" || word == "lbr") {
            if (Now().destination == Destination::Text) {
                FlushBegin();
                writer_.Break();
            }
        } else if (word == "page" || word == "column")
            Out(" ");
        else if (word == "cell")
            EndCell();
        else if (word == "row") {
            if (Now().destination == Destination::Text)
                EndRow();
        } else
            return false;
        return true;
    }

    bool Format(std::string_view word, std::optional<int> number)
    {
        State& now = Now();
        const bool on = number.value_or(1) != 0;
        if (word == "pard") {
            now.style = 0;
            now.outline = -1;
            now.inTable = now.listed = false;
            now.depth = 0;
        } else if (word == "plain") {
            now.hidden = now.deleted = false;
            now.language = defaultLanguage_;
            now.font = defaultFont_;
        } else if (word == "u") {
            Unicode(number.value_or(0));
        } else if (word == "uc") {
            now.fallback = std::clamp(number.value_or(1), 0, 100);
        } else if (word == "f") {
            now.font = number.value_or(0);
        } else if (word == "fcharset") {
            if (now.destination == Destination::Fonts && fonts_.size() < 10000)
                fonts_[now.font] = number.value_or(0);
        } else if (word == "lang") {
            now.language = number.value_or(0);
        } else if (word == "v") {
            now.hidden = on;
        } else if (word == "deleted") {
            now.deleted = on;
        } else if (word == "s") {
            now.style = number.value_or(0);
        } else if (word == "outlinelevel") {
            now.outline = number.value_or(-1);
        } else if (word == "intbl") {
            now.inTable = true;
        } else if (word == "ls") {
            now.listed = number.value_or(0) > 0;
        } else if (word == "ilvl") {
            now.depth = std::clamp(number.value_or(0), 0, 8);
        } else if (word == "deff") {
            defaultFont_ = now.font = number.value_or(0);
        } else if (word == "deflang") {
            defaultLanguage_ = now.language = number.value_or(0);
        } else if (word == "ansicpg") {
            if (number.value_or(0) > 0 && *number != 65001)
                encoding_ = "CP" + std::to_string(*number);
        } else if (word == "mac") {
            encoding_ = "MACINTOSH";
        } else if (word == "pc") {
            encoding_ = "CP437";
        } else if (word == "pca") {
            encoding_ = "CP850";
        } else {
            return false;
        }
        return true;
    }

    BlockWriter writer_;
    std::vector<State> states_{State{}};
    std::vector<Flow> flows_{Flow{}};
    std::map<int, int> fonts_;    ///< the character set of each font
    std::map<int, int> headings_; ///< outline levels of styles
    std::string encoding_ = "CP1252";
    std::string bytes_; ///< not decoded yet
    std::string styleName_;
    int defaultFont_ = 0;
    int defaultLanguage_ = 0;
    int passOver_ = 0;
    int notes_ = 0;
    char16_t high_ = 0; ///< the first half of a character of two \u
    bool ended_ = false;
};

} // namespace

void ReadRtf(std::string_view bytes, const BlockSink& sink)
{
    if (!bytes.starts_with("{\\rtf"))
        throw Refused(Refusal::Unknown);
    Reader(sink).Read(bytes);
}

} // namespace voxmate::readers
