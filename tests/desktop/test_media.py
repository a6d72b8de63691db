"""Media keys and the desktop's controls for the document that is being read (MPRIS), and the tray icon's tool tip."""

import unittest

import desk as desktop
from test_documents import DocumentCase, SENTENCES

NAME, PATH = "org.mpris.MediaPlayer2.voxmate", "/org/mpris/MediaPlayer2"


class Media(DocumentCase):
    def player(self, *command, check=True):
        return self.desk.run("playerctl", "-p", "voxmate", *command, check=check).decode().strip()

    def players(self):
        return self.desk.run("playerctl", "-l", check=False).decode().split()

    def plays(self, status):
        desktop.wait_for(lambda: self.player("status", check=False) == status, what=f"the player's status {status}")

    def test_a_player_is_there_as_long_as_a_document_is(self):
        self.assertEqual(self.players(), [])
        begin = self.now()
        self.open(self.page())
        self.wait_for_sound(begin)
        self.plays("Playing")
        self.assertEqual(self.players(), ["voxmate"])
        self.assertEqual(self.player("metadata", "title"), "page.html")
        desktop.wait_for(lambda: self.player("metadata", "mpris:length", check=False), what="the length")
        length = int(self.player("metadata", "mpris:length")) / 1e6
        spoken = sum(self.rendered_length(sentence) for sentence in SENTENCES)
        self.assertTrue(spoken * 0.6 < length < spoken * 1.8, (spoken, length))
        self.player("pause")
        self.plays("Paused")
        self.assertEqual(self.players(), ["voxmate"])
        self.player("stop")
        desktop.wait_for(lambda: not self.players(), what="the player going away")
        self.silent()

    def test_it_pauses_goes_on_and_moves_by_paragraphs(self):
        begin = self.now()
        self.open(self.page())
        self.hear(begin, SENTENCES[0])
        self.player("play-pause")
        self.plays("Paused")
        self.status_is("Paused (")
        self.silent_while_paused()
        begin = self.now()
        self.player("play-pause")
        self.plays("Playing")
        self.player("next")
        self.player("next")
        self.hear(begin, *SENTENCES[2:4])
        begin = self.now()
        self.player("previous")
        self.player("previous")
        self.hear(begin, *SENTENCES[:3])

    def silent_while_paused(self):
        desktop.wait_for(lambda: not self.streams(), what="the end of the sound")

    def test_the_position_moves_and_can_be_set(self):
        begin = self.now()
        self.open(self.page())
        self.wait_for_sound(begin)
        desktop.wait_for(lambda: float(self.player("position", check=False) or 0) > 0.5, what="a position that moves")
        length = int(self.player("metadata", "mpris:length")) / 1e6
        begin = self.now()
        self.player("position", str(length * 0.75))
        self.hear(begin, SENTENCES[7])
        desktop.wait_for(lambda: float(self.player("position")) > length * 0.65, what="the position")

    def test_the_window_comes_to_the_front(self):
        begin = self.now()
        self.open(self.page())
        self.wait_for_sound(begin)
        self.plays("Playing")
        self.tray()
        self.hide()
        self.bus_call("org.mpris.MediaPlayer2", "Raise")
        self.shown()

    def bus_call(self, interface, method):
        self.desk.run("gdbus", "call", "--session", "--dest", NAME, "--object-path", PATH, "--method", f"{interface}.{method}")


if __name__ == "__main__":
    unittest.main()
