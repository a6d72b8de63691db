"""Words that are said otherwise than they are written: entered in their window, heard, and kept in their file. A text in
another language, spoken by a voice of that language."""

import os
import unittest

import desk as desktop
import sound
from test_extras import ExtrasCase

GERMAN = "Guten Morgen, wie geht es dir heute?"
SPOKEN = "one two three four five six seven eight"
WINDOW = "Voxmate - Pronunciation"


class Pronunciation(ExtrasCase):
    def setUp(self):
        super().setUp()
        self.start_and_settle()
        self.listen()

    def file(self):
        path = os.path.join(self.desk.env["XDG_DATA_HOME"], "voxmate", "pronunciation.txt")
        return open(path).read() if os.path.exists(path) else ""

    def enter(self, field, text):
        self.desk.click(self.desk.find(field, role="text"))
        self.desk.type(text)
        desktop.wait_for(lambda: self.entered(field) == text, what=f"{text} in {field}")

    def entered(self, field):
        return self.desk.find(field, role="text").queryText().getText(0, -1)

    def test_a_word_is_said_as_entered_and_removed_again(self):
        self.type_text("Qzx")
        self.choose_by_keys("alt+x", "Pronunciation...", "u")
        self.shown(WINDOW)
        self.enter("Written:", "qzx")
        self.enter("Said:", SPOKEN)
        begin = self.now()
        self.press("Hear It")
        self.hear(begin, SPOKEN)
        self.settle()
        self.desk.key("Return")
        desktop.wait_for(lambda: self.file() == f"qzx = {SPOKEN}\n", what="the word in the file")
        self.desk.key("Escape")
        self.gone(WINDOW)
        begin = self.now()
        self.press("Speak the textbox text")
        self.hear(begin, SPOKEN)
        self.settle()
        self.assertEqual(self.typed(), "Qzx")
        self.choose_by_keys("alt+x", "Pronunciation...", "u")
        self.shown(WINDOW)
        self.desk.click(self.desk.find("qzx"))
        desktop.wait_for(lambda: self.entered("Said:") == SPOKEN, what="the word's fields")
        self.press("Remove")
        desktop.wait_for(lambda: self.file() == "", what="an empty file")

    def test_a_paragraph_is_spoken_by_a_voice_of_its_language(self):
        german = sound.resampled(*sound.read_wave(self.render(GERMAN, "eSpeak German")))
        first, last = sound.loud_span(german)
        german = german[first:last]
        self.type_text(GERMAN)
        begin = self.now()
        self.press("Speak the textbox text")
        self.hear(begin, GERMAN)
        self.settle()
        self.assertLess(sound.likeness(self.recorded(begin), german), 0.8)
        self.choose_by_keys("alt+x", "Voice for Each Language", "f")
        begin = self.now()
        self.press("Speak the textbox text")
        desktop.wait_for(lambda: sound.likeness(self.recorded(begin), german) > 0.8, step=0.1, what="the German voice")
        self.settle()
        self.type_text(SPOKEN)
        begin = self.now()
        self.press("Speak the textbox text")
        self.hear(begin, SPOKEN)


if __name__ == "__main__":
    unittest.main()
