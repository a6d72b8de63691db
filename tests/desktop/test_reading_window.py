"""The window that shows the text of the document that is being read."""

import re
import unittest

import desk as desktop
import sound
from test_documents import DocumentCase, SENTENCES

TEXT = "Text of the document"
MARGIN = 12  # pixels from the field's edge to its text
SENTENCE, WORD = (0xFF, 0xF3, 0xB0), (0xFF, 0xD8, 0x4A)  # the marks' colours in a light theme


class ReadingWindow(DocumentCase):
    def open_window(self, title="page.html"):
        self.active_main()
        self.desk.key("ctrl+d")
        self.shown(f"{title} - Voxmate")
        return self.desk.find(TEXT)

    def active_main(self):
        window = self.main_window()
        self.desk.run("xdotool", "windowactivate", window)
        self.active(window)

    def marked(self, colour):
        """The box around all pixels of that colour in the text; None where there are none."""
        x, y, width, height = self.desk.rect(self.desk.find(TEXT))
        picture = self.desk.screenshot(box=(x, y, x + width, y + height)).convert("RGB")
        mask = picture.point(lambda value: value).load()
        found = [(i, j) for j in range(picture.height) for i in range(picture.width) if mask[i, j] == colour]
        return found and (min(i for i, _ in found), min(j for _, j in found), max(i for i, _ in found), max(j for _, j in found)) or None

    def click_sentence(self, number):
        """Clicks on a sentence of the page, counted from 0, while the page's beginning is in sight. Each is a paragraph
        of two lines, with half a line's room behind it. (The toolkit tells a screen reader a wrong place of letters.)"""
        x, y = self.desk.rect(self.desk.find(TEXT))[:2]
        self.desk.click_at(x + 80, int(y + MARGIN + (1.25 * number + 0.25) * self.height))

    def read_page(self):
        begin = self.now()
        self.open(self.page())
        self.wait_for_sound(begin)

    def test_it_shows_the_text_and_marks_sentence_and_word_while_they_are_heard(self):
        self.read_page()
        text = self.open_window().queryText()
        self.assertEqual(text.getText(0, -1).split("\n"), SENTENCES)
        desktop.wait_for(lambda: self.marked(SENTENCE) and self.marked(WORD), what="both marks")
        words = set()

        def several():
            words.add(self.marked(WORD))
            return len(words - {None}) >= 4

        desktop.wait_for(several, what="the word's mark moving")
        first = self.marked(SENTENCE)
        desktop.wait_for(lambda: (self.marked(SENTENCE) or first)[1] > first[1] + 10, what="the next sentence's mark")
        self.desk.key("Escape")
        desktop.wait_for(lambda: not self.marked(SENTENCE) and not self.marked(WORD), what="the marks going away")
        self.desk.find("No document is being read.")

    def test_a_click_on_a_sentence_reads_from_there(self):
        self.read_page()
        self.open_window()
        mark = desktop.wait_for(lambda: self.marked(SENTENCE), what="the sentence's mark")
        self.height = mark[3] - mark[1] + 1
        begin = self.now()
        self.click_sentence(6)
        self.hear(begin, SENTENCES[6])
        # Not because all up to it has been read.
        self.assertLess(self.now() - begin, 4 * sound.RATE * self.rendered_length(SENTENCES[6]))
        self.press("Stop")
        self.silent()
        begin = self.now()
        self.click_sentence(7)  # also when it has been stopped
        self.hear(begin, SENTENCES[7])

    def test_the_keys_go_from_sentence_to_sentence_and_read_from_there(self):
        self.read_page()
        self.open_window()
        text = self.desk.find(TEXT).queryText()

        def selected(sentence):
            at = text.getText(0, -1).index(sentence)
            desktop.wait_for(lambda: text.getNSelections() == 1 and text.getSelection(0) == (at, at + len(sentence)) and
                             text.caretOffset == at, what=f"the selection of {sentence!r}")

        # It opens with the cursor at what is heard, not behind the text.
        self.assertLess(text.caretOffset, text.getText(0, -1).index(SENTENCES[3]))
        self.desk.key("ctrl+Home", "Down", "Down", "Down")
        selected(SENTENCES[3])
        self.desk.key("Up")
        selected(SENTENCES[2])
        begin = self.now()
        self.desk.key("Return")
        self.hear(begin, SENTENCES[2])
        self.desk.key("space")
        self.desk.find("Paused, ")
        self.desk.find("Go On", role="push button")
        begin = self.now()
        self.desk.key("alt+o")
        self.desk.find("Pause", role="push button")
        self.hear(begin, SENTENCES[2], SENTENCES[3])
        # How far it has come meanwhile depends on the machine.
        self.desk.key("ctrl+Home", "Down", "Down", "Down")
        selected(SENTENCES[3])
        self.desk.key("Return", "ctrl+p")
        self.desk.find("Paused, ")
        begin = self.now()
        self.desk.key("alt+b", "alt+Left")
        self.hear(begin, *SENTENCES[:3])
        self.desk.key("alt+s")
        self.silent()

    def test_it_follows_and_lets_the_user_look_elsewhere(self):
        begin = self.now()
        self.open(self.page(sentences=[f"{sentence[:-1]} {number}." for number in range(20) for sentence in SENTENCES]))
        self.wait_for_sound(begin)
        text = self.open_window().queryText()
        self.desk.key("ctrl+End")
        # The text stays where the user looks, and is followed from where they click.
        desktop.wait_for(lambda: not self.marked(SENTENCE), what="the end of the text")
        self.desk.key(*["Up"] * 6, "Return")
        self.hear(begin, f"{SENTENCES[4][:-1]} 19.")
        desktop.wait_for(lambda: self.marked(SENTENCE), what="the mark in sight")
        self.desk.key("ctrl+Home")
        desktop.wait_for(lambda: not self.marked(SENTENCE), what="the beginning of the text")
        self.assertEqual(text.caretOffset, 0)
        desktop.wait_for(lambda: self.marked(SENTENCE), what="the mark in sight after a while")

    def test_it_opens_by_itself_only_when_that_is_switched_on_and_keeps_its_size(self):
        self.read_page()
        self.assertEqual(self.desk.windows("page.html - Voxmate"), [])
        self.choose_by_keys("alt+x", "Document", "d", "Open It with Each Document", "i")
        self.desk.key("Escape")
        self.silent()
        begin = self.now()
        self.open(self.page("other.html"))
        window = self.shown("other.html - Voxmate")
        self.wait_for_sound(begin)
        width, height = self.desk.window_rect(window)[2:]
        self.desk.run("xdotool", "windowsize", window, str(width + 60), str(height + 40))
        desktop.wait_for(lambda: self.desk.window_rect(window)[2:] == (width + 60, height + 40), what="the other size")
        self.desk.run("xdotool", "windowactivate", window)
        self.active(window)
        self.desk.key("alt+F4")
        self.gone("other.html - Voxmate")

        def kept():
            with open(self.desk.state_file, encoding="utf-8") as file:
                return re.search("reading.opens.*1", file.read())

        desktop.wait_for(kept, what="the switch in the state file")
        self.desk.end(self.program)
        self.start_and_settle()
        self.open(self.page("third.html"))
        window = self.shown("third.html - Voxmate")
        desktop.wait_for(lambda: self.desk.window_rect(window)[2:] == (width + 60, height + 40), what="the same size")


if __name__ == "__main__":
    unittest.main()
