"""The program in a Wayland session under sway."""

import json
import os
import subprocess
import unittest

import desk as desktop
from program import BUILD
from wayland import BODY, Sessions as Cases


def built_with_layers():
    libraries = subprocess.run(["ldd", os.path.join(BUILD, "voxmate")], stdout=subprocess.PIPE, check=True).stdout
    return b"LayerShellQt" in libraries


class Sway(Cases):
    compositor = "sway"

    def focused(self):
        """The name of the window that has the keyboard."""
        nodes = [json.loads(self.desk.sway("-t", "get_tree", "-r"))]
        while nodes:
            node = nodes.pop()
            if node["focused"]:
                return node["name"]
            nodes += node["nodes"] + node["floating_nodes"]
        return None

    def test_natively_the_character_is_in_a_layer_above_the_windows_and_beneath_one_that_fills_the_screen(self):
        if not built_with_layers():
            self.skipTest("built without LayerShellQt for Qt 6")
        self.start_and_settle()
        corner = desktop.wait_for(lambda: self.place("Voxmate character"), what="the character's window")
        at_x = self.resting_place()
        self.tearDown()
        self.start_and_settle(QT_QPA_PLATFORM="wayland")
        desktop.wait_for(lambda: self.seen(BODY) == at_x, what=f"the same place, {at_x} in {corner}, natively")

        self.clicks_beside_the_body_go_beneath()
        before = self.focused()
        self.assertEqual(before, "Event Tester")
        self.click_slowly(*self.middle(at_x))
        self.desk.sway("fullscreen", "enable")
        desktop.wait_for(lambda: not self.seen(BODY), what="the character covered by the full screen")
        self.assertEqual(self.focused(), before, "a click on the character took the keyboard")
        self.desk.sway("fullscreen", "disable")
        desktop.wait_for(lambda: self.seen(BODY) == at_x, what="the character beside its windows again")

        self.drag_to(at_x, 300, 250)
        self.speak()
        self.assert_balloon_over_body()

    def resting_place(self):
        """Where the character is when its entrance is over: twice the same."""
        last = [None]

        def same():
            before, last[0] = last[0], self.seen(BODY)
            return before and before == last[0]

        desktop.wait_for(same, step=0.5, what="the character standing still")
        return last[0]

    def drag_to(self, body, x, y):
        """Drags the character until its middle is there: it follows the pointer exactly, however far."""
        from_x, from_y = self.middle(body)
        self.point_at(from_x, from_y)
        self.desk.run("xdotool", "mousedown", "1")
        self.addCleanup(self.desk.run, "xdotool", "mouseup", "1")
        for part in range(1, 21):
            self.desk.run("xdotool", "mousemove", str(from_x + (x - from_x) * part // 20),
                          str(from_y + (y - from_y) * part // 20))
        there = (body[0] + x - from_x, body[1] + y - from_y, body[2] + x - from_x, body[3] + y - from_y)
        desktop.wait_for(lambda: self.seen(BODY) == there, what=f"the character at {there}")
        self.desk.run("xdotool", "mouseup", "1")


del Cases

if __name__ == "__main__":
    unittest.main()
