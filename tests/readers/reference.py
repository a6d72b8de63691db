"""One reference text, and the ways to write it down for other programs: an OpenDocument text for LibreOffice, Markdown for
pandoc, and troff for groff. The text is the same in every run."""

import collections
import html
import random

# kind: heading (level), paragraph, item (level, label), row (cells in `text`, parted by tabs).
# `notes` holds the footnotes as pairs: the number of words of `text` before the mark, and the note's text.
Block = collections.namedtuple("Block", "kind level label text notes")

_NOUNS = """afternoon government development understanding neighbourhood responsibility imagination conversation temperature
observation telescope mathematics photograph grandmother butterfly passenger mountain village harbour lighthouse orchestra
newspaper university laboratory experiment electricity philosophy geography carpenter blacksmith fisherman astronomer
instrument document paragraph sentence alphabet dictionary characteristic communication administration environment
agriculture architecture independence circumstance performance arrangement establishment entertainment Wissenschaft
Straßenbahn Müllerstraße café naïveté Größe Übermut façade señor smörgåsbord Ελλάδα Москва Łódź œuvre""".split()
_VERBS = """remembered discovered understood considered described explained established continued followed interrupted
recommended accompanied transformed illustrated complained apologised investigated translated multiplied surrounded
photographed distinguished characterised observed announced delivered protected separated""".split()
_ADJECTIVES = """remarkable extraordinary comfortable particular international mathematical invisible independent well-known
self-conscious old-fashioned half-finished temporary necessary philosophical uncomfortable beautiful enormous yellow-green
historical experimental agricultural unforgettable mysterious electrical""".split()
_ADVERBS = """carefully immediately unfortunately occasionally enthusiastically apparently surprisingly deliberately
nevertheless simultaneously""".split()
_OPENINGS = ["In the morning", "On the other hand", "After 1984", "According to the report", "For example", "At 3.5 percent",
             "“Certainly”, she said, and", "Between 10 and 20 o’clock", "As everybody knows", "Mr. Brown, M.A., thought that"]
_WORDS_A_PAGE = 320


class _Writer:
    def __init__(self, seed):
        self._random = random.Random(seed)

    def sentence(self):
        pick = self._random.choice
        words = []
        if self._random.random() < 0.4:
            words.append(pick(_OPENINGS) + ("" if self._random.random() < 0.5 else ","))
        words += [pick(("the", "a", "every", "this")), pick(_ADJECTIVES), pick(_NOUNS), pick(_VERBS)]
        if self._random.random() < 0.6:
            words.append(pick(_ADVERBS))
        words += [pick(("the", "an almost", "that")), pick(_ADJECTIVES), pick(_NOUNS)]
        if self._random.random() < 0.5:
            words += [pick(("because", "although", "while", "and")), "the", pick(_NOUNS), "of the", pick(_NOUNS),
                      pick(_VERBS), "it"]
        text = " ".join(words)
        return text[0].upper() + text[1:] + pick(("." * 8) + "?!")

    def paragraph(self, sentences):
        return " ".join(self.sentence() for _ in range(sentences))

    def title(self):
        pick = self._random.choice
        return "%s %s and the %s" % (pick(_ADJECTIVES).capitalize(), pick(_NOUNS), pick(_NOUNS))

    def words(self, text):
        return len(text.split())

    def blocks(self, pages):
        """Blocks for about that many pages."""
        blocks = []
        notes = 0
        count = 0
        chapter = 0
        while count < pages * _WORDS_A_PAGE:
            chapter += 1
            blocks.append(Block("heading", 1, "", "%s part %d" % (self.title(), chapter), ()))
            for section in range(3):
                blocks.append(Block("heading", 2, "", self.title(), ()))
                for number in range(6):
                    text = self.paragraph(self._random.randrange(2, 8))
                    here = ()
                    if number % 3 == 1:
                        notes += 1
                        at = self._random.randrange(3, self.words(text) - 3)
                        here = ((at, "Note %d tells that %s" % (notes, self.sentence().lower())),)
                    blocks.append(Block("paragraph", 0, "", text, here))
                    count += self.words(text)
                if section == 0:
                    for item in range(4):
                        blocks.append(Block("item", 1, "%d." % (item + 1), self.sentence(), ()))
                if section == 1:
                    for item in range(3):
                        blocks.append(Block("item", 1, "•", self.sentence(), ()))
                    blocks.append(Block("paragraph", 0, "", self.paragraph(2), ()))
                    for row in range(4):
                        cells = ["Row %d" % row] + [self._random.choice(_NOUNS) + " %d" % self._random.randrange(999)
                                                    for _ in range(2)]
                        blocks.append(Block("row", 0, "", "\t".join(cells), ()))
                    blocks.append(Block("paragraph", 0, "", self.paragraph(1), ()))
        return blocks


def blocks(pages, seed=1):
    """The reference text, about that many pages of it."""
    return _Writer(seed).blocks(pages)


def with_notes(block, mark):
    """A block's words in one text, in which mark(note) stands behind the word of each footnote."""
    words = block.text.split(" ")
    for at, note in reversed(block.notes):
        words[at - 1] += mark(note)
    return " ".join(words)


_NAMES = " ".join('xmlns:%s="urn:oasis:names:tc:opendocument:xmlns:%s:1.0"' % pair for pair in (
    ("office", "office"), ("style", "style"), ("text", "text"), ("table", "table"), ("fo", "xsl-fo-compatible"),
    ("svg", "svg-compatible"), ("number", "datastyle")))


def _groups(all_blocks):
    """Neighbouring items of one kind of list, and neighbouring rows, together."""
    groups = []
    for block in all_blocks:
        key = (block.kind, block.label == "•") if block.kind in ("item", "row") else None
        if key and groups and groups[-1][0] == key:
            groups[-1][1].append(block)
        else:
            groups.append((key, [block]))
    return groups


def open_document(all_blocks, columns=1):
    """A flat OpenDocument text: justified and hyphenated, with a running head, page numbers, footnotes."""
    body = []
    number = 0

    def mark(note):
        nonlocal number
        number += 1
        return ('<text:note text:id="n%d" text:note-class="footnote"><text:note-citation>%d</text:note-citation>'
                '<text:note-body><text:p text:style-name="Footnote">%s</text:p></text:note-body></text:note>'
                % (number, number, html.escape(note)))

    for key, group in _groups(all_blocks):
        first = group[0]
        escaped = [with_notes(block._replace(text=html.escape(block.text, quote=False)), mark) for block in group]
        if first.kind == "heading":
            body.append('<text:h text:style-name="Heading_20_%d" text:outline-level="%d">%s</text:h>'
                        % (first.level, first.level, escaped[0]))
        elif first.kind == "paragraph":
            body.append('<text:p text:style-name="Body">%s</text:p>' % escaped[0])
        elif first.kind == "item":
            items = "".join('<text:list-item><text:p text:style-name="Item">%s</text:p></text:list-item>' % text
                            for text in escaped)
            body.append('<text:list text:style-name="%s">%s</text:list>' % ("Dots" if key[1] else "Numbers", items))
        else:
            rows = "".join("<table:table-row>%s</table:table-row>" % "".join(
                '<table:table-cell><text:p text:style-name="Cell">%s</text:p></table:table-cell>' % cell
                for cell in text.split("\t")) for text in escaped)
            body.append('<table:table><table:table-column table:number-columns-repeated="%d"/>%s</table:table>'
                        % (len(first.text.split("\t")), rows))
    hyphens = 'fo:hyphenate="true" fo:hyphenation-remain-char-count="2" fo:hyphenation-push-char-count="2"'
    return f"""<?xml version="1.0" encoding="UTF-8"?>
<office:document {_NAMES} office:version="1.2" office:mimetype="application/vnd.oasis.opendocument.text">
<office:styles>
<style:default-style style:family="paragraph"><style:text-properties style:font-name="DejaVu Serif" fo:font-size="11pt"
 fo:language="en" fo:country="US" {hyphens}/></style:default-style>
<style:style style:name="Body" style:family="paragraph"><style:paragraph-properties fo:text-align="justify"
 fo:margin-bottom="0.2cm"/></style:style>
<style:style style:name="Item" style:family="paragraph"><style:paragraph-properties fo:text-align="justify"/></style:style>
<style:style style:name="Cell" style:family="paragraph"/>
<style:style style:name="Footnote" style:family="paragraph"><style:text-properties fo:font-size="9pt"/></style:style>
<style:style style:name="Heading_20_1" style:display-name="Heading 1" style:family="paragraph"
 style:default-outline-level="1"><style:text-properties fo:font-size="20pt" fo:font-weight="bold" fo:hyphenate="false"/>
 </style:style>
<style:style style:name="Heading_20_2" style:display-name="Heading 2" style:family="paragraph"
 style:default-outline-level="2"><style:text-properties fo:font-size="15pt" fo:font-weight="bold" fo:hyphenate="false"/>
 </style:style>
<text:list-style style:name="Numbers"><text:list-level-style-number text:level="1" style:num-format="1"
 style:num-suffix="."><style:list-level-properties text:space-before="0.5cm" text:min-label-width="0.7cm"/>
 </text:list-level-style-number></text:list-style>
<text:list-style style:name="Dots"><text:list-level-style-bullet text:level="1" text:bullet-char="•">
 <style:list-level-properties text:space-before="0.5cm" text:min-label-width="0.7cm"/></text:list-level-style-bullet>
</text:list-style>
<text:notes-configuration text:note-class="footnote" style:num-format="1"
 text:start-value="0"/>
</office:styles>
<office:automatic-styles><style:page-layout style:name="Page"><style:page-layout-properties fo:page-width="21cm"
 fo:page-height="29.7cm" fo:margin="2cm"><style:columns fo:column-count="{columns}" fo:column-gap="0.8cm"/>
 </style:page-layout-properties><style:header-style><style:header-footer-properties fo:min-height="1cm"
 fo:margin-bottom="0.5cm"/></style:header-style><style:footer-style><style:header-footer-properties
 fo:min-height="1cm" fo:margin-top="0.5cm"/></style:footer-style></style:page-layout></office:automatic-styles>
<office:master-styles><style:master-page style:name="Standard" style:page-layout-name="Page"><style:header>
<text:p>RUNNINGHEAD of the reference text</text:p></style:header><style:footer><text:p>Page <text:page-number
 text:select-page="current">1</text:page-number></text:p></style:footer></style:master-page></office:master-styles>
<office:body><office:text>{"".join(body)}</office:text></office:body></office:document>
"""


def markdown(all_blocks):
    """The text in pandoc's dialect, which GitHub's shares in what is used here."""
    lines = []
    notes = []

    def mark(note):
        notes.append(note)
        return "[^%d]" % len(notes)

    for _, group in _groups(all_blocks):
        for number, block in enumerate(group):
            text = with_notes(block, mark)
            if block.kind == "heading":
                lines += ["#" * block.level + " " + text, ""]
            elif block.kind == "paragraph":
                lines += [text, ""]
            elif block.kind == "item":
                lines.append(("- " if block.label == "•" else block.label + " ") + text)
            else:
                lines.append("| " + text.replace("\t", " | ") + " |")
                if number == 0:
                    lines.append("|" + "---|" * len(text.split("\t")))
        if group[0].kind in ("item", "row"):
            lines.append("")
    return "\n".join(lines + [""] + ["[^%d]: %s\n" % (i + 1, note) for i, note in enumerate(notes)])


def western(all_blocks):
    """The text with the letters only that groff's fonts for PDF files have."""
    def plain(text):
        for letter, other in (("Ł", "L"), ("ł", "l"), ("ź", "z"), ("Ελλάδα", "Ellada"), ("ελλάδα", "ellada"),
                              ("Москва", "Moskva"), ("москва", "moskva")):
            text = text.replace(letter, other)
        return text

    return [block._replace(text=plain(block.text), notes=tuple((at, plain(note)) for at, note in block.notes))
            for block in all_blocks]


def troff(all_blocks, columns=1):
    """The text for groff's ms macros: justified and hyphenated, with a running head and footnotes."""
    def escape(text):
        return text.replace("\\", "\\e").replace("’", "\\(cq").replace("“", "\\(lq").replace("”", "\\(rq")

    lines = [".ds CH RUNNINGHEAD", ".ds CF Page \\\\n%", ".nr PS 11", ".nr VS 13"]
    if columns > 1:
        lines.append(".2C")
    number = 0
    for _, group in _groups(all_blocks):
        for block in group:
            notes = []

            def mark(note):
                notes.append(note)
                return "\\**"

            text = escape(block.text)
            if block.kind == "heading":
                lines += [".SH %d" % block.level, text]
            elif block.kind == "item":
                lines += [".IP %s 4" % ("\\(bu" if block.label == "•" else block.label), text]
            elif block.kind == "row":
                cells = text.split("\t")
                lines += [".LP", ".ta 5c 10c"] if block is group[0] else []
                # In a narrow column a row has room in small print only.
                lines += [".nf"] + ([".ps 6", ".ta 2.5c 4.8c"] if columns > 1 else []) + ["\t".join(cells), ".fi", ".ps"]
            else:
                # A footnote's text stands behind the line with its mark.
                lines.append(".PP")
                words = text.split(" ")
                begin = 0
                for at, note in block.notes:
                    number += 1
                    lines += [" ".join(words[begin:at]) + "\\**", ".FS", escape(note), ".FE"]
                    begin = at
                lines.append(" ".join(words[begin:]))
    return "\n".join(lines) + "\n"


def latex(all_blocks, columns=1):
    """The text for LaTeX: justified and hyphenated with ligatures, a running head, page numbers and footnotes."""
    def escape(text):
        for letter, other in (("\\", "\\textbackslash{}"), ("&", "\\&"), ("%", "\\%"), ("#", "\\#"), ("_", "\\_"),
                              ("$", "\\$")):
            text = text.replace(letter, other)
        return text

    lines = ["\\documentclass[11pt,a4paper%s]{article}" % (",twocolumn" if columns > 1 else ""),
             "\\usepackage[T1]{fontenc}", "\\usepackage{lmodern}", "\\usepackage{fancyhdr}", "\\pagestyle{fancy}",
             "\\fancyhf{}", "\\fancyhead[C]{RUNNINGHEAD of the reference text}", "\\fancyfoot[C]{Page \\thepage}",
             # A word that finds no room in a line stays in its column.
             "\\emergencystretch=3em", "\\begin{document}"]
    for key, group in _groups(all_blocks):
        texts = [with_notes(block._replace(text=escape(block.text)), lambda note: "\\footnote{%s}" % escape(note))
                 for block in group]
        if group[0].kind == "heading":
            lines += ["\\%ssection*{%s}" % ("sub" * (group[0].level - 1), texts[0])]
        elif group[0].kind == "paragraph":
            lines += texts + [""]
        elif group[0].kind == "item":
            kind = "itemize" if key[1] else "enumerate"
            lines += ["\\begin{%s}" % kind] + ["\\item " + text for text in texts] + ["\\end{%s}" % kind]
        else:
            # In a narrow column a row has room in small print only.
            lines += ["", "\\medskip\\noindent{%s\\begin{tabular}{lll}" % ("\\tiny" if columns > 1 else "")]
            lines += [" & ".join(text.split("\t")) + " \\\\" for text in texts] + ["\\end{tabular}}\\medskip", ""]
    return "\n".join(lines + ["\\end{document}", ""])


def page(all_blocks, style=""):
    """The text without its footnotes, which web pages have none of, as a page with a style sheet."""
    body = []
    for key, group in _groups(all_blocks):
        texts = [html.escape(block.text, quote=False) for block in group]
        if group[0].kind == "heading":
            body.append("<h%d>%s</h%d>" % (group[0].level, texts[0], group[0].level))
        elif group[0].kind == "paragraph":
            body += ["<p>%s</p>" % text for text in texts]
        elif group[0].kind == "item":
            kind = "ul" if key[1] else "ol"
            body += ["<%s>" % kind] + ["<li>%s</li>" % text for text in texts] + ["</%s>" % kind]
        else:
            body += ["<table>"] + ["<tr>%s</tr>" % "".join("<td>%s</td>" % cell for cell in text.split("\t"))
                                   for text in texts] + ["</table>"]
    return ('<!DOCTYPE html>\n<html lang="en"><head><meta charset="utf-8"><title>RUNNINGHEAD of the reference text</title>'
            "<style>%s</style></head><body>\n%s\n</body></html>\n" % (style, "\n".join(body)))


def without_notes(all_blocks):
    """The text for what has no footnotes."""
    return [block._replace(notes=()) for block in all_blocks]
