"""The voices on offer: which are listed, and that the one the user chose stays."""

import unittest

from program import ProgramCase

QUIET = {"GreetingEnabled": 0, "SpeakTimeInterval": 0}


class Chosen(ProgramCase):
    defaults = QUIET

    def test_a_french_voice_stays_chosen_on_a_german_desktop(self):
        self.desk.install_defaults(**self.defaults, LastSpeechEngine="eSpeak French (Belgium)")
        self.start_and_settle(LC_ALL="de_DE.UTF-8")
        self.assertEqual(self.boxes(), [])
        self.assertEqual(self.desk.read_settings()["LastSpeechEngine"], '"eSpeak French (Belgium)"')


if __name__ == "__main__":
    unittest.main()
