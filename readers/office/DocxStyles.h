// What a .docx document keeps beside its text: styles, the numbering of lists, and relations between parts.
#pragma once

#include "readers/office/Package.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace voxmate::readers
{

/// The parts that a part refers to.
struct DocxRelation {
    std::string id;
    std::string type;   ///< the last part of its address ("footnotes")
    std::string target; ///< a part's name; empty for what is outside the package
};
std::vector<DocxRelation> DocxRelations(const Parts& parts, const std::string& part);

/// What a paragraph's properties say; what they leave out is taken from its style.
struct DocxParagraph {
    std::string style;
    std::optional<int> outline; ///< 0 to 8 for headings, 9 for other text
    std::optional<std::string> list;
    std::optional<int> depth; ///< in the list, from 0
};

class DocxStyles
{
public:
    void Read(const Parts& parts, const std::string& part);

    /// The properties, completed by those of the style and the styles it is based on.
    DocxParagraph Complete(DocxParagraph paragraph) const;
    /// Whether text of this character style is hidden.
    bool Hides(const std::string& style) const;
    /// The language of text for which nothing else is said.
    const std::string& Language() const { return language_; }

private:
    friend class DocxStylesHandler;
    struct Style {
        std::string base;
        DocxParagraph paragraph;
        std::optional<bool> hidden;
    };
    std::map<std::string, Style> styles_;
    std::string language_;
};

class DocxLists
{
public:
    void Read(const Parts& parts, const std::string& part);

    /// Counts another item and returns its label; empty where nothing is printed.
    std::string NextLabel(const std::string& list, int depth);

private:
    friend class DocxListsHandler;
    static constexpr int Depths = 9;
    struct Level {
        std::string format = "decimal";
        std::string text;
        int start = 1;
    };
    struct Kind {
        std::array<Level, Depths> levels;
        std::array<std::optional<int>, Depths> counts; ///< the numbers of the items last counted
    };
    struct List {
        std::string kind;
        std::array<std::optional<int>, Depths> starts; ///< where this list begins anew
        bool begun = false;
    };
    std::map<std::string, Kind> kinds_;
    std::map<std::string, List> lists_;
};

} // namespace voxmate::readers
