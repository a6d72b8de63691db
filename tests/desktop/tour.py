"""What the tours of the program share: a walk over everything that a screen reader is told, and a record of the
controls that real input has pressed, which finds those that nobody presses."""

import os
import stat
import time

import desk as desktop
import sound
from program import BUILD, CALM, IDLE
from test_reminders import ReminderCase

PICTURES = os.path.join(BUILD, "tour")
SMALL_SCREEN = (1024, 600 - 32)  # a panel takes a part of it
# Roles that a person acts on or reads; each must have a name. (A list's cell is named by its content, which may be
# empty.)
NAMED = {"push button", "toggle button", "check box", "radio button", "text", "password text", "combo box", "page tab", "page tab list",
         "slider", "scroll bar", "spin button", "list", "table", "tree table", "tree", "table column header", "menu", "menu item", "menu bar",
         "popup menu", "status bar", "frame", "dialog", "alert", "animation", "panel", "label", "image"}
WINDOWS = {"frame", "dialog", "alert", "animation"}
# Roles that can be pressed, typed into or moved, except menus.
PRESSED = {"push button", "toggle button", "check box", "radio button", "text", "password text", "combo box", "page tab", "slider",
           "scroll bar", "spin button", "list", "tree", "table", "tree table", "table column header"}
BEGINNING = 1.2  # seconds of a text by which it is recognised
DAY = "a day"  # stands for every day of the calendar


class Control:
    """An accessible with the title of its window, its role and the name that a person would use."""

    def __init__(self, window, node, role, name, parents):
        self.window, self.node, self.role, self.name, self.parents = window, node, role, name, parents

    def key(self):
        return self.window, self.role, self.name


class TourCase(ReminderCase):
    defaults = {**CALM, "ReadMessages": 0, "EnableSoundEffects": 0, "AutoReadTip": 0}

    def setUp(self):
        super().setUp()
        self.seen = set()
        self.pressed = set()
        # Stand-ins that are found before the machine's own programs; each records its arguments.
        self.bin = os.path.join(self.desk.home, "bin")
        os.makedirs(self.bin, exist_ok=True)
        for name in os.listdir(self.bin):
            os.remove(os.path.join(self.bin, name))

    def fake(self, program, status=0):
        """Installs a stand-in that records its arguments; returns a function that gives them, one line for each
        call."""
        notes = os.path.join(self.bin, program + ".notes")
        path = os.path.join(self.bin, program)
        with open(path, "w", encoding="utf-8") as file:
            file.write(f'#!/bin/sh\necho "$*" >>"{notes}"\nexit {status}\n')
        os.chmod(path, os.stat(path).st_mode | stat.S_IXUSR)

        def noted():
            if not os.path.exists(notes):
                return []
            with open(notes, encoding="utf-8") as file:
                return file.read().splitlines()
        return noted

    def start_touring(self, listen=False, **environment):
        """Starts the program with only the stand-ins of fake() on its path."""
        self.start_and_settle(PATH=self.bin, **environment)
        if listen:
            self.listen()

    # Looking.

    def walk(self, window=None):
        """Everything showing on the accessibility bus, of one window or of all."""
        pyatspi = self.desk.accessible()
        found = []

        def visit(node, window, parents):
            try:
                if not node.getState().contains(pyatspi.STATE_SHOWING):
                    return
                role = desktop.role_name(node)
                name = node.name
                if role == "combo box":  # its own name is the chosen entry
                    name = self.label_of(node)
                if role == "check box" and parents and parents[-1] == ("panel", "Date"):
                    name = DAY
                found.append(Control(window or name, node, role, name.removesuffix(":"), parents))
                for child in desktop.children(node):
                    visit(child, window or name, parents + [(role, name)])
            except Exception:  # it disappeared while it was examined
                return

        for application in pyatspi.Registry.getDesktop(0):
            if application is not None and application.name.lower() == "voxmate":
                for top in application:
                    if top is not None and (window is None or top.name == window):
                        visit(top, None, [])
        return found

    def label_of(self, node):
        pyatspi = self.desk.accessible()
        for relation in node.getRelationSet():
            if relation.getRelationType() == pyatspi.RELATION_LABELLED_BY:
                return relation.getTarget(0).name
        return ""

    def look(self, title, picture):
        """Checks the window of this title: its size and the names and roles of everything on the bus. Records what can
        be pressed there, and saves a picture."""
        window = desktop.wait_for(lambda: self.desk.windows("^" + title.replace("?", "\\?") + "$"), what=title)[-1]
        time.sleep(0.2)  # painted
        x, y, width, height = self.desk.window_rect(window)
        self.assertTrue(width <= SMALL_SCREEN[0] and height <= SMALL_SCREEN[1] - 24, f"{title} does not fit: {width} x {height}")
        self.check_names()
        self.picture(picture, (x - 8, y - 28, x + width + 8, y + height + 8))

    def picture(self, name, box):
        left, top, right, bottom = box
        inside = (max(left, 0), max(top, 0), min(right, desktop.SCREEN[0]), min(bottom, desktop.SCREEN[1]))
        self.desk.screenshot(os.path.join(PICTURES, name + ".png"), box=inside)

    def check_names(self):
        """Everything on the bus must have a name. Records what can be pressed."""
        pyatspi = self.desk.accessible()
        for control in self.walk():
            if self.is_pressed(control):
                self.seen.add(control.key())
            # The scroll bars inside a scrolling field belong to the toolkit.
            inside = control.role == "scroll bar" and control.parents and control.parents[-1][0] == "filler"
            # An empty label takes no room.
            empty = control.role == "label" and self.desk.rect(control.node)[2] < 8
            if control.role in NAMED and not control.name and not inside and not empty:
                self.fail(f"a nameless {control.role} in {control.window}: {control.parents}")
            if not control.parents:
                self.assertIn(control.role, WINDOWS, f"the window {control.name}")
            elif control.node.getState().contains(pyatspi.STATE_FOCUSABLE):
                # The widget around some tabs passes the focus on to them.
                tabs = control.role == "filler" and any(desktop.role_name(child) == "page tab list" for child in control.node)
                self.assertFalse(control.role in ("filler", "unknown") and not tabs,
                                 f"{control.name or control.parents} takes the keyboard and is {control.role}")

    def is_pressed(self, control):
        if control.role == "table column header":
            # A hidden header is on the bus, but not on the screen.
            return "Component" in self.desk.accessible().utils.listInterfaces(control.node)
        return control.role in PRESSED and not (control.role == "scroll bar" and control.parents[-1][0] in ("filler", "tree", "list"))

    def everything_was_pressed(self, *windows):
        """Everything that look() has recorded in these windows must have been pressed since."""
        self.assertEqual({key for key in self.seen if key[0] in windows} - self.pressed, set(), "nobody has pressed")

    def control(self, name, role="push button", window=None, timeout=desktop.PATIENCE):
        def one():
            found = [c for c in self.walk(window) if c.name == name and c.role == role]
            return found[-1] if found else None
        return desktop.wait_for(one, timeout, what=f"the {role} {name!r}")

    # Pressing.

    def use(self, name, role="push button", window=None, button=1):
        """Clicks a control and records that."""
        control = self.control(name, role, window)
        self.click(control, button)
        return control

    def click(self, control, button=1):
        self.pressed.add(control.key())
        self.click_node(control.node, button)

    def click_node(self, node, button=1):
        x, y, width, height = self.desk.rect(node)
        self.desk.run("xdotool", "mousemove", str(x + width // 2), str(y + height // 2), "sleep", "0.04", "click", str(button))

    def press(self, name):
        self.use(name)

    def put(self, name, text, window=None):
        """Replaces the text of a field."""
        control = self.use(name, "text", window)
        self.desk.key("ctrl+a", "Delete")
        self.desk.type(text)
        desktop.wait_for(lambda: control.node.queryText().getText(0, -1) == text, what=f"{text!r} in {name}")

    def text_in(self, name, window=None):
        return self.control(name, "text", window).node.queryText().getText(0, -1)

    def has(self, node, state):
        return node.getState().contains(getattr(self.desk.accessible(), "STATE_" + state))

    def toggle(self, name, role="check box", window=None):
        """Clicks a check box or an option button and waits until its check changes."""
        control = self.control(name, role, window)
        before = self.has(control.node, "CHECKED")
        self.click(control)
        desktop.wait_for(lambda: self.has(control.node, "CHECKED") != before, what=f"the check of {name}")

    def next_entry(self, name, window=None, keys=("Down", "Up")):
        """Opens a drop-down list by the mouse and chooses the next entry, or the one before if there is none; with the
        keys the other way round, the one before or the next."""
        control = self.use(name, "combo box", window)
        before = control.node.name
        time.sleep(0.3)
        self.desk.key(keys[0], "Return")
        time.sleep(0.1)
        if control.node.name == before:
            self.click_node(control.node)
            time.sleep(0.3)
            self.desk.key(keys[1], "Return")
        return desktop.wait_for(lambda: control.node.name if control.node.name != before else None, what=f"another entry of {name}")

    def opened(self, title):
        desktop.wait_for(lambda: self.desk.windows("^" + title + "$"), what=title)

    def closed(self, title):
        desktop.wait_for(lambda: not self.desk.windows("^" + title + "$"), what=f"{title} going away")

    def close_by_escape(self, title):
        self.desk.key("Escape")
        self.closed(title)

    # Menus.

    def menu_bar(self):
        # While windows come and go the walk may meet one that has just gone.
        return desktop.wait_for(lambda: next((c.node for c in self.walk() if c.role == "menu bar"), None), what="the menu bar")

    def menu_leaves(self):
        """Paths of all items of the menu bar that have no submenu, whether their menu is open or not."""
        leaves = []

        def visit(node, path):
            items = [child for child in node if child is not None]
            menus = [child for child in items if desktop.role_name(child) == "popup menu"]
            if menus or desktop.role_name(node) == "popup menu" or not path:
                for child in items:
                    role = desktop.role_name(child)
                    if role == "popup menu":
                        visit(child, path)
                    elif role != "separator":
                        visit(child, path + (child.name,))
            else:
                leaves.append(path)

        visit(self.menu_bar(), ())
        return leaves

    def menu_item(self, path):
        """The menu item at this path."""
        node = self.menu_bar()
        for name in path:
            nodes = [child for child in node if child is not None]
            if len(nodes) == 1 and desktop.role_name(nodes[0]) == "popup menu":
                nodes = [child for child in nodes[0] if child is not None]
            node = next(child for child in nodes if child.name == name)
        return node

    def choose(self, *path, picture=None):
        """Opens the menu path with the mouse."""
        for depth in range(1, len(path) + 1):
            item = self.menu_item(path[:depth])
            desktop.wait_for(lambda: self.has(item, "SHOWING"), what=f"the menu item {path[:depth]}")
            time.sleep(0.1)
            if picture and depth == len(path):
                time.sleep(0.2)
                self.check_names()
                self.picture(picture, self.around_main())
            self.click_node(item)
        self.pressed.add(path)

    def around_main(self):
        x, y, width, height = self.desk.window_rect(self.main_window())
        return (x - 8, y - 28, x + width + 200, y + height + 60)

    # Listening.

    def says(self, act, *texts):
        """Does something, expects to hear one of the texts, then stops everything."""
        begin = self.now()
        act()
        self.hear(begin, *texts, seconds=BEGINNING)
        self.hush()

    def hush(self):
        """Presses Stop and waits until the program is idle and silent."""
        self.use("Stop Everything !!!")
        desktop.wait_for(lambda: IDLE in self.desk.texts(), what="the idle status")
        # The recording arrives a little later than the sound is heard.
        desktop.wait_for(lambda: self.sound_since(self.now() - sound.RATE // 2) == 0, what="silence")
