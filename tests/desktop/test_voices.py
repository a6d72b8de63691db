"""The offered voices: which are listed, and that the user's choice stays."""

import unittest

import desk as desktop
from program import CALM, ProgramCase


class Chosen(ProgramCase):
    defaults = CALM

    def test_a_french_voice_stays_chosen_on_a_german_desktop(self):
        self.desk.install_defaults(**self.defaults, LastSpeechEngine="eSpeak French (Belgium)")
        self.start_and_settle(LC_ALL="de_DE.UTF-8")
        self.assertEqual(self.boxes(), [])
        self.assertEqual(self.desk.read_settings()["LastSpeechEngine"], '"eSpeak French (Belgium)"')


class Writings(ProgramCase):
    defaults = {**CALM, "LastSpeechEngine": "Flite SLT (American English)", "Pitch": 150, "Speed": 160}

    def test_an_english_voice_has_russian_and_chinese_read_by_others(self):
        self.listen()
        self.start_and_settle()
        for text in ("Привет, дорогой друг, как твои дела?", "今天天气很好，我们去公园玩吧。"):
            begin = self.now()
            self.desk.find("Text to read").queryEditableText().setTextContents(text)
            self.press("Speak the textbox text")
            desktop.wait_for(lambda begin=begin: self.sound_since(begin) > 1, what=f"{text} being heard")
            self.settle()


if __name__ == "__main__":
    unittest.main()
