"""Windows that need more room than the screen has: twice the size on 1024 by 600 pixels. They fit the screen and scroll
to every control."""

import unittest

import desk as desktop
from program import CALM, ProgramCase, the_desk

SCREEN = (1024, 600)
EDITOR = "Voxmate Reminders - CURRENTLY ENABLED"


class SmallScreen(ProgramCase):
    defaults = CALM

    @classmethod
    def setUpClass(cls):
        the_desk(screen=SCREEN).scale = 2

    def setUp(self):
        super().setUp()
        self.start_and_settle(QT_SCALE_FACTOR="2")

    def on_the_screen(self, title):
        """Waits until the window is wholly on the screen, and returns its place."""
        places = []

        def fits():
            window = self.desk.windows(f"^{title}$")
            places[:] = [self.desk.window_rect(window[-1])] if window else []
            return places and places[0][0] >= 0 and places[0][1] >= 0 and (
                places[0][0] + places[0][2] <= SCREEN[0] and places[0][1] + places[0][3] <= SCREEN[1])
        try:
            desktop.wait_for(fits, timeout=20)
        except AssertionError:
            self.fail(f"{title} is at {places}")
        return places[0]

    def go_to(self, title, name):
        """Goes by Tab to a button, which must then be within its window."""
        left, top, width, height = self.on_the_screen(title)

        def there():
            focused = [node for _, role, node in self.desk.widgets()
                       if role == "push button" and node.getState().contains(self.desk.accessible().STATE_FOCUSED)]
            if not focused or focused[0].name != name:
                self.desk.key("Tab")
                return False
            x, y, wide, high = self.desk.rect(focused[0])
            return left <= x and top <= y and x + wide <= left + width and y + high <= top + height
        desktop.wait_for(there, what=f"the keyboard's way to {name}")

    def test_options_and_editor_fit_and_their_buttons_are_reached(self):
        self.on_the_screen("Voxmate")
        for opener, title, button in (("User Options", "Voxmate Options", "OK"), (None, EDITOR, "Close")):
            with self.subTest(title):
                if opener:
                    self.press(opener)
                else:
                    self.choose_by_keys("alt+r", "Show All Reminders", "s")
                self.go_to(title, button)
                self.desk.key("Return")
                desktop.wait_for(lambda t=title: not self.desk.windows(f"^{t}$"), what=f"the end of {title}")


if __name__ == "__main__":
    unittest.main()
