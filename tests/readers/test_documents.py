"""Reads files that other programs made of one reference text, and compares them with it word by word.

    /usr/bin/python3 -W ignore -m unittest discover -s tests/readers -p 'test_*.py'

$VOXMATE_PAGES is the length of the text (8 pages unless told; 200 take three minutes)."""

import os
import shutil
import tempfile
import unittest

import compare
import makers
import reference

PAGES = int(os.environ.get("VOXMATE_PAGES", "8"))
# At most one word in a thousand is lost, and at most one invented.
SHARE = 1000


class _Comparison(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="voxmate-readers-")
        cls.blocks = reference.blocks(PAGES)
        cls.maker = makers.Maker(cls.folder, cls.blocks)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder)

    def compare(self, path, blocks=None, kinds=True):
        """Compares a file with the text. With `kinds` the kinds, levels and labels of the blocks, too."""
        blocks = blocks or self.blocks
        found, trouble = compare.read(path)
        self.assertEqual(trouble, "")
        lost = invented = words = 0
        examples = []
        for expected, given in zip(compare.reference_words(blocks),
                                   (compare.main_words(found), compare.note_words(found))):
            difference = compare.differences(expected, given)
            words += difference.words
            lost += difference.lost
            invented += difference.invented
            examples += difference.examples
        print("%s: %d words, %d lost, %d invented" % (os.path.basename(path), words, lost, invented), flush=True)
        self.assertGreater(words, 300 * PAGES)
        self.assertLessEqual(lost * SHARE, words, examples)
        self.assertLessEqual(invented * SHARE, words, examples)
        if kinds:
            expected = [(block.kind, block.level, block.label) for block in blocks]
            given = [(block.kind, block.level, block.label) for block in found
                     if block.kind not in ("footnote", "chapter", "page")]
            self.assertEqual(given, expected)
        return found

    def assert_notes_follow(self, found):
        """Each footnote is behind the paragraph it belongs to."""
        before = ""
        notes = {note: block.text[:30] for block in self.blocks for _, note in block.notes}
        for block in found:
            if block.kind == "footnote":
                self.assertEqual(before[:30], notes.get(block.text))
            elif block.kind == "paragraph":
                before = block.text


class OfficeTest(_Comparison):
    def test_open_document(self):
        self.assert_notes_follow(self.compare(self.maker.office("odt")))

    def test_flat_open_document(self):
        self.compare(self.maker.flat())

    def test_office_open_xml(self):
        self.assert_notes_follow(self.compare(self.maker.office("docx")))

    def test_rich_text(self):
        self.assert_notes_follow(self.compare(self.maker.office("rtf")))

    def test_page_of_an_office(self):
        self.compare(self.maker.office_page())

    def test_book_of_an_office(self):
        # LibreOffice's books have no headings and no lists, only paragraphs that look like them.
        self.compare(self.maker.office("epub"), kinds=False)

    def test_printed(self):
        found = self.compare(self.maker.office("pdf"), kinds=False)
        headings = [(block.level, block.text) for block in found if block.kind == "heading"]
        self.assertEqual(headings, [(block.level, block.text) for block in self.blocks if block.kind == "heading"])

    def test_printed_in_columns(self):
        self.compare(self.maker.office("pdf", 2), kinds=False)

    def test_markdown(self):
        self.compare(self.maker.markdown())


@unittest.skipUnless(makers.has("pandoc"), "pandoc is not installed")
class PandocTest(_Comparison):
    def test_pandoc(self):
        for ending in ("docx", "odt", "html", "epub", "rtf"):
            with self.subTest(ending):
                # Its rich text has no levels of headings.
                self.compare(self.maker.pandoc(ending), kinds=ending != "rtf")


@unittest.skipUnless(makers.has("groff"), "groff is not installed")
class GroffTest(_Comparison):
    def test_groff(self):
        blocks = reference.western(self.blocks)
        for columns in (1, 2):
            with self.subTest(columns):
                self.compare(self.maker.groff(columns), blocks, kinds=False)


@unittest.skipUnless(makers.has("pdflatex"), "pdflatex is not installed")
class LatexTest(_Comparison):
    def test_latex(self):
        blocks = reference.western(self.blocks)
        for columns in (1, 2):
            with self.subTest(columns):
                self.compare(self.maker.latex(columns), blocks, kinds=False)


class _OfPages(_Comparison):
    """What is made of a web page, which has no footnotes."""

    def compare_printed(self, path):
        self.compare(path, reference.without_notes(self.blocks), kinds=False)


@unittest.skipUnless(makers.has("chromium"), "chromium is not installed")
class BrowserTest(_OfPages):
    def test_printed(self):
        for columns in (1, 2):
            for heads in (True, False):
                with self.subTest((columns, heads)):
                    self.compare_printed(self.maker.browser(columns, heads))


@unittest.skipUnless(makers.has("weasyprint"), "weasyprint is not installed")
class WeasyprintTest(_OfPages):
    def test_printed(self):
        for columns in (1, 2):
            with self.subTest(columns):
                self.compare_printed(self.maker.weasyprint(columns))


@unittest.skipUnless(makers.has("ebook-convert"), "calibre is not installed")
class CalibreTest(_OfPages):
    def test_book(self):
        self.compare(self.maker.calibre("epub"), reference.without_notes(self.blocks))

    def test_document(self):
        # Calibre numbers the levels of its headings from 2.
        blocks = [block._replace(level=block.level + 1) if block.kind == "heading" else block
                  for block in reference.without_notes(self.blocks)]
        self.compare(self.maker.calibre("docx", "--docx-no-toc"), blocks)

    def test_text_and_print(self):
        for ending in ("txt", "pdf"):
            with self.subTest(ending):
                self.compare_printed(self.maker.calibre(ending))

    def test_rich_text(self):
        # Calibre writes a table's cells without anything between them.
        blocks = [block for block in reference.without_notes(self.blocks) if block.kind != "row"]
        self.compare(self.maker.calibre("rtf", blocks=blocks), blocks, kinds=False)


if __name__ == "__main__":
    unittest.main()
