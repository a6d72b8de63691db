"""What the character needs of every window manager. test_openbox, test_xfwm4, test_marco,
test_kwin and test_mutter run this under one each."""

import desk as desktop
from program import CALM, ProgramCase
from test_character import CHARACTER_BUTTON

COMPANION = ("SKIP_TASKBAR", "SKIP_PAGER", "ABOVE")


class Companions(ProgramCase):
    defaults = {**CALM, "LastCharacter": "Nalu", "EnableSoundEffects": 0}

    def neighbour(self, *options):
        child, window = self.desk.neighbour(*options)
        self.addCleanup(self.end, child)
        return child, window

    def end(self, child):
        child.terminate()
        child.wait()

    def shown(self, title):
        windows = self.desk.windows(f"^{title}$")
        return windows[0] if windows else None

    def character(self):
        return desktop.wait_for(lambda: self.shown("Voxmate character"), what="the character")

    def lacking(self, window):
        """The states a visible window lacks of those that keep it out of task bars and on every workspace."""
        told = self.desk.properties(window, "_NET_WM_STATE", "_NET_WM_DESKTOP")
        return [name for name in COMPANION if f"_NET_WM_STATE_{name}" not in told] + (
            [] if "_NET_WM_DESKTOP(CARDINAL) = 4294967295" in told else ["every workspace"])

    def assert_companion(self, title, what):
        window = desktop.wait_for(lambda: self.shown(title), what=what)
        desktop.wait_for(lambda: not self.lacking(window), what=f"{what}, which lacks {self.lacking(window)}")

    def speak(self, text):
        self.desk.find("Text to read").queryEditableText().setTextContents(text)
        self.desk.find("Speak the textbox text").queryAction().doAction(0)

    def test_it_stays_out_of_task_bars_and_on_every_workspace_each_time_it_is_shown(self):
        self.start_and_settle()
        self.assert_companion("Voxmate character", "the character at start")
        for number in ("first", "second", "third"):
            self.speak("A sentence that is long enough to be looked at while it is being said.")
            self.assert_companion("Voxmate balloon", f"the {number} balloon")
            self.press("Stop Everything !!!")
            desktop.wait_for(lambda: not self.shown("Voxmate balloon"), what="the balloon going away")
        for _ in range(3):
            self.desk.click_at(*self.open_character_menu()[-1])
            desktop.wait_for(lambda: not self.shown("Voxmate character"), what="the character going away")
            self.press(CHARACTER_BUTTON)
            self.assert_companion("Voxmate character", "the character shown again")
            self.settle()

    def test_a_window_that_is_called_for_comes_before_another_programs_with_the_keyboard(self):
        self.start_and_settle()
        main = self.main_window()
        x, y, width, height = self.desk.window_rect(main)
        _, other = self.neighbour("Neighbour", "--at", f"{x},{y},{width},{height}")
        self.activate(other)
        # An action leaves the keyboard where it is.
        second = self.desk.start(arguments=["--action", "stop"])
        self.desk.ended(second)
        self.assertEqual(self.front(), other)
        second = self.desk.start()
        desktop.wait_for(lambda: self.front() == main, what="the window coming to the front")
        self.assertEqual(self.answer_box("Voxmate - Running"), "Another copy of Voxmate is already running.")
        self.desk.ended(second)

    def activate(self, window):
        """Turns to a window as a task bar does. A busy window manager forgets what is asked of a window that it does not
        manage yet, so it is asked again."""
        def active():
            self.desk.run("xdotool", "windowactivate", window, check=False)
            return self.front() == window

        desktop.wait_for(active, step=0.3, what=f"the window {window} being active")

    def front(self):
        return self.desk.run("xdotool", "getactivewindow", check=False).decode().strip()

    def test_it_stays_above_maximised_windows_when_windows_of_the_program_open(self):
        self.desk.install_defaults(**self.defaults, ShowTipAtStartUp=1)
        self.start()
        self.desk.find("Tip")
        self.desk.find("Text to read")
        character = int(self.character())
        for title in ("Maximised one", "Maximised two"):
            _, window = self.neighbour(title, "--state", "MAXIMIZED_HORZ", "--state", "MAXIMIZED_VERT")
            # Check the order once it has settled.
            self.activate(window)
            desktop.wait_for(lambda: self.desk.stacking().index(int(window)) > self.desk.stacking().index(int(self.main_window())),
                             what=f"{title} above the main window")
            order = self.desk.stacking()
            self.assertGreater(order.index(character), order.index(int(window)), f"below {title}")

    def test_a_full_screen_window_is_left_alone_and_the_voice_goes_on(self):
        self.start_and_settle()
        self.character()
        self.listen()
        film, window = self.neighbour("Film", "--state", "FULLSCREEN")
        desktop.wait_for(lambda: not self.shown("Voxmate character"), what="the character going out of sight")
        begin = self.now()
        text = "What is said meanwhile is still heard."
        self.speak(text)
        desktop.wait_for(lambda: self.sound_since(begin) > 0.9 * self.rendered_length(text), what="the sentence")
        for title in ("Voxmate character", "Voxmate balloon"):
            self.assertIsNone(self.shown(title), f"{title} over the film")
        # A window above the film, as when the user turns to another program; then the film again.
        other, _ = self.neighbour("Other work")
        self.character()
        self.end(other)
        desktop.wait_for(lambda: not self.shown("Voxmate character"), what="the film alone again")
        self.speak(text)
        self.end(film)
        self.assert_companion("Voxmate character", "the character back after the film")
        self.assertEqual(self.desk.windows("^Film$"), [], window)

    def test_a_balloon_that_is_up_goes_with_the_character_and_comes_back_with_it(self):
        self.start_and_settle()
        place = self.desk.window_rect(self.character())
        self.speak("A long sentence, which is begun before the film and is not yet over when the film is at its end. " * 3)
        desktop.wait_for(lambda: self.shown("Voxmate balloon"), what="the balloon")
        film, _ = self.neighbour("Film", "--state", "FULLSCREEN")
        desktop.wait_for(lambda: not self.shown("Voxmate balloon") and not self.shown("Voxmate character"), what="both going")
        self.end(film)
        self.assert_companion("Voxmate character", "the character back after the film")
        self.assert_companion("Voxmate balloon", "the balloon back after the film")
        desktop.wait_for(lambda: self.desk.window_rect(self.character()) == place, what="the character's place")

    def test_after_a_smaller_screen_the_character_stands_where_the_user_had_put_it(self):
        self.start_and_settle()
        x, y, width, height = self.desk.window_rect(self.character())
        self.desk.drag(*((x + width // 2 - 10 * step, y + height // 2 - 20 * step) for step in range(11)))
        home = (x - 100, y - 200, width, height)
        desktop.wait_for(lambda: self.desk.window_rect(self.character()) == home, what="the place that the user chose")
        self.desk.run("xrandr", "--newmode", "small", *"0 1024 0 0 1024 768 0 0 768".split())
        self.desk.run("xrandr", "--addmode", "screen", "small")
        self.addCleanup(self.desk.run, "xrandr", "--output", "screen", "--mode", "{}x{}".format(*desktop.SCREEN))
        self.desk.run("xrandr", "--output", "screen", "--mode", "small")

        def wholly_on_the_screen():
            left, top, _, _ = self.desk.window_rect(self.character())
            return left + width <= 1024 and top + height <= 768

        desktop.wait_for(wholly_on_the_screen, what="the character on the smaller screen")
        self.desk.run("xrandr", "--output", "screen", "--mode", "{}x{}".format(*desktop.SCREEN))
        desktop.wait_for(lambda: self.desk.window_rect(self.character()) == home, what="the place that the user chose")
