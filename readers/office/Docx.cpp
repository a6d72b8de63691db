#include "readers/office/Docx.h"

#include "base/Text.h"
#include "readers/BlockWriter.h"
#include "readers/Refusal.h"
#include "readers/markup/Numbering.h"
#include "readers/office/DocxStyles.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <vector>

namespace voxmate::readers
{

namespace
{

using Notes = std::map<std::string, std::vector<Block>>;

// What the reader of the text needs of the other parts.
struct Context {
    DocxStyles styles;
    DocxLists lists;
    Notes footnotes;
    Notes endnotes;
};

bool IsOn(const XmlAttributes& attributes)
{
    const std::string_view value = attributes.Get("w:val");
    return value != "0" && value != "false" && value != "off";
}

// Reads a body or, with `notes`, the notes in a part of their own.
class Body : public XmlHandler
{
public:
    // The document's text.
    Body(Context& context, const BlockSink& sink) : context_(context), writer_(sink)
    {
        writer_.Language(context.styles.Language());
    }
    // Notes.
    Body(Context& context, Notes& notes)
        : context_(context), notes_(&notes), writer_([this](Block&& block) { note_.push_back(std::move(block)); })
    {
        writer_.Language(context.styles.Language());
    }

    void Start(std::string_view name, const XmlAttributes& attributes) override
    {
        if (skipped_ > 0 || IsSkipped(name)) {
            ++skipped_;
            return;
        }
        const bool own = runs_.empty();
        if (name == "w:p") {
            paragraphs_.push_back({});
            writer_.Language(context_.styles.Language());
            writer_.Begin(BlockKind::Paragraph);
        } else if (name == "w:pPr") {
            inProperties_ = true;
        } else if (inProperties_) {
            ParagraphProperty(name, attributes);
        } else if (name == "w:r") {
            runs_.push_back({});
        } else if (name == "w:tbl") {
            writer_.End();
        } else if (name == "w:tr") {
            writer_.BeginRow();
        } else if (name == "w:tc") {
            writer_.BeginCell();
        } else if (name == "w:txbxContent") {
            writer_.BeginAside();
        } else if (name == "w:footnote" || name == "w:endnote") {
            BeginNote(attributes);
        } else if (name == "m:t") {
            text_ = true;
        } else if (!own) {
            StartInRun(name, attributes);
        }
    }

    void End(std::string_view name) override
    {
        if (skipped_ > 0) {
            --skipped_;
            return;
        }
        if (name == "w:pPr") {
            inProperties_ = false;
            Style();
        } else if (name == "w:p") {
            writer_.End();
            if (!paragraphs_.empty())
                paragraphs_.pop_back();
        } else if (name == "w:r") {
            if (!runs_.empty())
                runs_.pop_back();
        } else if (name == "w:tr") {
            writer_.EndRow();
        } else if (name == "w:tc") {
            writer_.EndCell();
        } else if (name == "w:txbxContent") {
            writer_.EndNote();
        } else if (name == "w:footnote" || name == "w:endnote") {
            EndNote();
        } else if (name == "w:t" || name == "m:t") {
            text_ = false;
        }
    }

    void Text(std::string_view text) override
    {
        if (text_ && skipped_ == 0 && !Hidden())
            writer_.Text(text);
    }

    void Finish() { writer_.Finish(); }

private:
    struct Run {
        bool hidden = false;
    };
    struct Field {
        bool code = true; ///< between its beginning and its separator
    };

    static bool IsSkipped(std::string_view name)
    {
        // What was deleted, the older of two versions of a drawing, the pronunciation of ruby text, changes of layout,
        // pictures without text.
        constexpr std::array<std::string_view, 12> names{"w:del",       "w:moveFrom",     "mc:Fallback",   "w:rt",
                                                         "w:rPrChange", "w:pPrChange",    "w:tblPrChange", "w:sectPr",
                                                         "w:instrText", "w:delInstrText", "w:delText",     "w:tblPr"};
        return std::find(names.begin(), names.end(), name) != names.end();
    }

    bool Hidden() const
    {
        return (!runs_.empty() && runs_.back().hidden) ||
               std::any_of(fields_.begin(), fields_.end(), [](const Field& field) { return field.code; });
    }

    void ParagraphProperty(std::string_view name, const XmlAttributes& attributes)
    {
        if (paragraphs_.empty())
            return;
        DocxParagraph& paragraph = paragraphs_.back();
        const std::string_view value = attributes.Get("w:val");
        int number = 0;
        std::from_chars(value.data(), value.data() + value.size(), number);
        if (name == "w:pStyle")
            paragraph.style = value;
        else if (name == "w:outlineLvl")
            paragraph.outline = number;
        else if (name == "w:numId")
            paragraph.list = std::string(value);
        else if (name == "w:ilvl")
            paragraph.depth = number;
    }

    // Makes the block what the paragraph's properties say.
    void Style()
    {
        if (paragraphs_.empty())
            return;
        const DocxParagraph whole = context_.styles.Complete(paragraphs_.back());
        const bool listed = whole.list && *whole.list != "0";
        const int depth = whole.depth.value_or(0);
        const std::string label = listed ? context_.lists.NextLabel(*whole.list, depth) : "";
        if (whole.outline && *whole.outline >= 0 && *whole.outline < 9)
            writer_.Become(BlockKind::Heading, *whole.outline + 1, label);
        else if (listed)
            writer_.Become(BlockKind::ListItem, depth + 1, label);
    }

    void StartInRun(std::string_view name, const XmlAttributes& attributes)
    {
        if (name == "w:t") {
            text_ = true;
        } else if (name == "w:vanish" || name == "w:webHidden") {
            runs_.back().hidden = IsOn(attributes);
        } else if (name == "w:rStyle") {
            runs_.back().hidden = runs_.back().hidden || context_.styles.Hides(std::string(attributes.Get("w:val")));
        } else if (name == "w:lang") {
            if (attributes.Has("w:val") && !writer_.HasText())
                writer_.Language(attributes.Get("w:val"));
        } else if (name == "w:fldChar") {
            FieldMark(attributes.Get("w:fldCharType"));
        } else if (Hidden()) {
            return;
        } else if (name == "w:tab" || name == "w:ptab") {
            writer_.Text(" ");
        } else if (name == "w:noBreakHyphen") {
            writer_.Text("-");
        } else if (name == "w:br" || name == "w:cr") {
            const std::string_view type = attributes.Get("w:type");
            if (type == "page" || type == "column")
                writer_.Text(" ");
            else
                writer_.Break();
        } else if (name == "w:sym") {
            Symbol(attributes.Get("w:char"));
        } else if (name == "w:footnoteReference") {
            AddNote(context_.footnotes, attributes.Get("w:id"), noteNumber_);
        } else if (name == "w:endnoteReference") {
            AddNote(context_.endnotes, attributes.Get("w:id"), endnoteNumber_);
        }
    }

    void FieldMark(std::string_view type)
    {
        if (type == "begin")
            fields_.push_back({});
        else if (type == "separate" && !fields_.empty())
            fields_.back().code = false;
        else if (type == "end" && !fields_.empty())
            fields_.pop_back();
    }

    void Symbol(std::string_view hexadecimal)
    {
        unsigned point = 0;
        std::from_chars(hexadecimal.data(), hexadecimal.data() + hexadecimal.size(), point, 16);
        std::string text;
        if (point > 0)
            AppendUtf8(text, point);
        writer_.Text(text);
    }

    void AddNote(const Notes& notes, std::string_view id, int& number)
    {
        const auto found = notes.find(std::string(id));
        if (found == notes.end())
            return;
        std::vector<Block> blocks = found->second;
        ++number;
        if (!blocks.empty() && blocks.front().kind == BlockKind::Footnote)
            blocks.front().label = std::to_string(number);
        writer_.Note(blocks);
    }

    void BeginNote(const XmlAttributes& attributes)
    {
        noteId_ = attributes.Get("w:id");
        writer_.Finish();
        note_.clear();
        writer_.BeginNote("");
    }

    void EndNote()
    {
        writer_.Finish();
        if (notes_ && !note_.empty())
            (*notes_)[noteId_] = std::move(note_);
        note_.clear();
    }

    Context& context_;
    Notes* notes_ = nullptr;
    std::vector<Block> note_;
    BlockWriter writer_;
    std::vector<DocxParagraph> paragraphs_; ///< the open ones; those of a text box are inside another
    std::vector<Run> runs_;
    std::vector<Field> fields_;
    std::string noteId_;
    int skipped_ = 0;
    int noteNumber_ = 0;
    int endnoteNumber_ = 0;
    bool inProperties_ = false;
    bool text_ = false;
};

void ReadBody(const Parts& parts, const std::string& part, Body& body)
{
    const std::optional<ByteSource> source = parts.Open(part);
    if (!source || !ParseXml(*source, body))
        throw Refused(Refusal::Damaged);
    body.Finish();
}

} // namespace

std::string DocxMainPart(const Parts& parts)
{
    for (const DocxRelation& relation : DocxRelations(parts, ""))
        if (relation.type == "officeDocument")
            return relation.target;
    return "";
}

void ReadDocx(const Parts& parts, const BlockSink& sink)
{
    const std::string part = DocxMainPart(parts);
    Context context;
    std::map<std::string, std::string> targets;
    for (const DocxRelation& relation : DocxRelations(parts, part))
        if (!relation.target.empty())
            targets.try_emplace(relation.type, relation.target);
    context.styles.Read(parts, targets["styles"]);
    context.lists.Read(parts, targets["numbering"]);
    for (const auto& [type, notes] :
         {std::pair{"footnotes", &context.footnotes}, std::pair{"endnotes", &context.endnotes}}) {
        if (targets[type].empty() || !parts.Has(targets[type]))
            continue;
        Body body(context, *notes);
        ReadBody(parts, targets[type], body);
    }
    Body body(context, sink);
    ReadBody(parts, part, body);
}

} // namespace voxmate::readers
