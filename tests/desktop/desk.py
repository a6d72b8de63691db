"""A private desktop for the running program: an X display with a window manager, an accessibility bus and a sound
server whose only sink is recorded. Tests send real input events and get pictures and sound."""

import glob
import os
import re
import shutil
import signal
import subprocess
import tempfile
import threading
import time

import numpy
from PIL import ImageGrab

from sound import RATE

SCREEN = (1600, 1100)
STATUS = ("I am Idle now !", "Busy...")  # the status line's first panel while the program rests and while it works


# Words in a program's log that show damaged memory or an uncaught error.
FAULTS = (b"free():", b"corrupt", b"terminate called", b"AddressSanitizer", b"Segmentation")
PATIENCE = 60  # seconds for what takes a moment on a quiet machine; slowness of a busy one must fail no test


def wait_for(condition, timeout=PATIENCE, step=0.02, what="condition"):
    """Polls until condition() is true and returns its value; fails after timeout seconds. Between two looks it leaves the
    machine to others for as long as a look took, but for a tenth of a second at most."""
    end = time.monotonic() + timeout
    while True:
        begin = time.monotonic()
        value = condition()
        if value:
            return value
        now = time.monotonic()
        if now > end:
            raise AssertionError(f"timed out after {timeout} s: {what}")
        time.sleep(max(step, min(now - begin, 0.1)))


class Recorder:
    """Records what the sink plays, with the arrival time of each block. A hurried recorder gets its blocks soon and
    thereby shortens the sink's own queue; one that is not hurried leaves the queue as it is."""

    def __init__(self, env, hurried=True):
        self.process = subprocess.Popen(
            ["parec", "-d", "rec.monitor", "--raw", "--format=s16le", f"--rate={RATE}", "--channels=1",
             *(["--latency-msec=10"] if hurried else [])],
            env=env, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, bufsize=0)
        self.blocks = []
        self.times = []
        self.lock = threading.Lock()
        self.thread = threading.Thread(target=self._read, daemon=True)
        self.thread.start()
        wait_for(lambda: self.blocks, what="the first recorded block")

    def _read(self):
        rest = b""
        while True:
            data = self.process.stdout.read(4096)
            now = time.monotonic()
            if not data:
                return
            data = rest + data
            rest = data[len(data) // 2 * 2:]
            with self.lock:
                self.blocks.append(numpy.frombuffer(data[:len(data) // 2 * 2], dtype=numpy.int16))
                self.times.append(now)

    def snapshot(self):
        """All samples so far, as floats from -1 to 1, and the number of the last sample and the arrival time of each
        block."""
        with self.lock:
            blocks = list(self.blocks)
            times = list(self.times)
        ends = numpy.cumsum([len(block) for block in blocks])
        return numpy.concatenate(blocks).astype(numpy.float64) / 32768, ends, numpy.array(times)

    def time_of(self, sample, ends, times):
        """When a sample was recorded: the arrival time of its block's end, less the time from the sample to that end.
        Blocks may arrive late but never early, so the earliest of the estimates from nearby blocks is the best."""
        index = int(numpy.searchsorted(ends, sample + 1))
        near = slice(max(0, index - 50), min(len(ends), index + 50))
        return float(numpy.min(times[near] - (ends[near] - sample) / RATE))

    def stop(self):
        self.process.terminate()
        self.process.wait()
        self.thread.join()
        self.process.stdout.close()


RENAMED = {"button": "push button"}  # roles by the names that later accessibility libraries give them


def role_name(node):
    """The name of an accessible's role, the same with every version of the accessibility library."""
    name = node.getRoleName()
    return RENAMED.get(name, name)


unread_roles = set()  # roles of accessibles whose children nobody looks at


def children(node):
    """An accessible's children, unless its role is among unread_roles."""
    return [] if role_name(node) in unread_roles else [child for child in node if child is not None]


def showing(pyatspi):
    """Every accessible of the program that is showing, as (name, role name, accessible). Only one thread of a process
    may use the accessibility library."""
    found = []

    def visit(node):
        try:
            if node.getRole() != pyatspi.ROLE_APPLICATION and not node.getState().contains(pyatspi.STATE_SHOWING):
                return
            found.append((node.name, role_name(node), node))
            for child in children(node):
                visit(child)
        except Exception:  # the widget disappeared while it was examined
            return

    for application in pyatspi.Registry.getDesktop(0):
        if application is not None and application.name.lower() == "voxmate":
            visit(application)
    return found


class Desk:
    def __init__(self, build, compositor=False, screen=SCREEN, home=None, manager=("openbox",), monitors=()):
        """`manager` is the window manager's command. `monitors` are the screens into which the display is divided, each
        as (x, y, width, height), the primary one first; without any, the display is one screen."""
        self.build = os.path.abspath(build)
        self.home = home or tempfile.mkdtemp(prefix="voxmate-desk-")
        os.makedirs(self.home, exist_ok=True)
        self.children = []
        self.programs = {}  # the started programs whose end nobody has seen yet, with the names of their logs
        self.screen = screen
        self.scale = 1  # scale factor of the program's windows, if it is started with another one
        runtime = os.path.join(self.home, "runtime")
        os.mkdir(runtime, 0o700)
        self.env = {key: value for key, value in os.environ.items()
                    if not key.startswith(("XDG_", "QT_", "PULSE_", "DBUS_", "WAYLAND_", "VOXMATE_"))}
        self.env.update(HOME=self.home, XDG_RUNTIME_DIR=runtime, LANG="C.UTF-8", LC_ALL="C.UTF-8", NO_AT_BRIDGE="0",
                        QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        for name in ("CONFIG_HOME", "DATA_HOME", "CACHE_HOME", "STATE_HOME"):
            self.env["XDG_" + name] = os.path.join(self.home, name.lower())
        self.env["XDG_CONFIG_DIRS"] = os.path.join(self.home, "etc")
        self.bus_pid = 0
        self.manager = manager
        try:
            self._start_display(monitors)
            self._start_buses()
            # Some window managers ask the session bus for their settings.
            self._start_manager()
            if compositor:
                self.compositor = self.start_compositor()
            self.start_sound()
        except BaseException:
            self.close()
            raise

    # Set-up.

    def spawn(self, *command, env=None, **options):
        child = subprocess.Popen(command, env=env or self.env, stdin=options.pop("stdin", subprocess.DEVNULL),
                                 stderr=options.pop("stderr", subprocess.DEVNULL),
                                 stdout=options.pop("stdout", subprocess.DEVNULL), start_new_session=True, **options)
        self.children.append(child)
        return child

    def _start_display(self, monitors):
        read, write = os.pipe()
        # No key repeats (-r): on a busy machine the second letter would come before the key is let go.
        self.spawn("Xvfb", "-r", "-displayfd", str(write), "-screen", "0", f"{self.screen[0]}x{self.screen[1]}x24",
                   "-nolisten", "tcp", "-noreset", "-dpi", "96", pass_fds=(write,))
        os.close(write)
        with os.fdopen(read) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError("the display did not start")
        self.env["DISPLAY"] = ":" + number
        self.run("xsetroot", "-solid", "#3b6e8f")
        for number, place in enumerate(monitors):
            self.monitor(number, *place)

    def monitor(self, number, x, y, width, height):
        """Makes this part of the display a monitor. The first one gets the display's only output, which makes it the
        primary screen."""
        self.run("xrandr", "--setmonitor", f"part{number}", f"{width}/{width // 4}x{height}/{height // 4}+{x}+{y}",
                 "none" if number else "screen")

    def _start_manager(self):
        self.spawn(*self.manager)
        wait_for(lambda: b"window id" in self.run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK", check=False),
                 what="the window manager")

    def start_compositor(self):
        return self.spawn("picom", "--backend", "xrender", "--no-fading-openclose", "--config", "/dev/null")

    def _start_buses(self):
        answer = self.run("dbus-daemon", f"--config-file={self._bus_configuration()}", "--fork", "--print-address=1",
                          "--print-pid=1").decode().split()
        self.env["DBUS_SESSION_BUS_ADDRESS"] = answer[0]
        self.bus_pid = int(answer[1])
        launcher = next(path for path in ("/usr/libexec/at-spi-bus-launcher", "/usr/lib/at-spi2-core/at-spi-bus-launcher")
                        if os.path.exists(path))
        self.spawn(launcher, "--launch-immediately")

    def _bus_configuration(self):
        """Writes the configuration of a session bus that starts what the system offers, except portals: these belong to a
        desktop, and tests have stand-ins for them."""
        services = os.path.join(self.env["XDG_RUNTIME_DIR"], "services")
        os.mkdir(services)
        for path in glob.glob("/usr/share/dbus-1/services/*.service"):
            if ".portal." not in os.path.basename(path):
                os.symlink(path, os.path.join(services, os.path.basename(path)))
        configuration = os.path.join(self.env["XDG_RUNTIME_DIR"], "bus.conf")
        with open(configuration, "w", encoding="utf-8") as file:
            file.write(f"""<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <servicedir>{self.env["XDG_DATA_HOME"]}/dbus-1/services</servicedir>
  <servicedir>{services}</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
""")
        return configuration

    def kill_sound(self):
        """Makes the sound server crash."""
        self.sound.kill()
        self.sound.wait()

    def start_sound(self):
        socket = os.path.join(self.env["XDG_RUNTIME_DIR"], "sound")
        if os.path.exists(socket):
            os.remove(socket)
        self.sound = self.spawn("pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
                                f"--load=module-native-protocol-unix auth-anonymous=1 socket={socket}",
                                f"--load=module-null-sink sink_name=rec rate={RATE}")
        self.env["PULSE_SERVER"] = "unix:" + socket
        wait_for(lambda: self.run("pactl", "info", check=False), what="the sound server")

    def run(self, *command, check=True):
        result = subprocess.run(command, env=self.env, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
        if check and result.returncode != 0:
            raise AssertionError(f"{' '.join(command)} ended with {result.returncode}")
        return result.stdout if result.returncode == 0 else b""

    def close(self):
        for child in reversed(self.children):
            if child.poll() is None:
                child.terminate()
        for child in reversed(self.children):
            try:
                child.wait(PATIENCE)
            except subprocess.TimeoutExpired:
                child.kill()
                child.wait()
        if self.bus_pid:
            try:
                os.kill(self.bus_pid, signal.SIGTERM)
            except ProcessLookupError:
                pass
        shutil.rmtree(self.home, ignore_errors=True)

    # The program.

    @property
    def settings_file(self):
        return os.path.join(self.env["XDG_CONFIG_HOME"], "voxmate", "registry.reg")

    @property
    def state_file(self):
        return os.path.join(self.env["XDG_STATE_HOME"], "voxmate", "state")

    def install_defaults(self, **values):
        """Installs the defaults file, and removes the state file; `values` replace single settings (numbers or texts).
        The start-up tip is off unless asked for, because it would be read aloud into every recording."""
        values.setdefault("ShowTipAtStartUp", 0)
        here = os.path.dirname(os.path.abspath(__file__))
        for path in (self.settings_file, self.state_file):
            if os.path.exists(path):
                os.remove(path)
        self.run(os.path.join(here, "..", "..", "packaging", "install-defaults"), os.path.join(self.build, "share", "voxmate"))
        with open(self.settings_file, encoding="utf-8") as file:
            lines = file.read().split("\n")
        for name, value in values.items():
            text = f'"{name}"=' + (f"dword:{value:08x}" if isinstance(value, int) else f'"{value}"')
            matches = [i for i, line in enumerate(lines) if line.startswith(f'"{name}"=')]
            assert len(matches) == 1, name
            lines[matches[0]] = text
        with open(self.settings_file, "w", encoding="utf-8") as file:
            file.write("\n".join(lines))

    def remove_settings(self):
        shutil.rmtree(os.path.dirname(self.settings_file), ignore_errors=True)

    def read_settings(self):
        with open(self.settings_file, encoding="utf-8") as file:
            pairs = [line.split("=", 1) for line in file.read().split("\n") if line.startswith('"')]
        return {name.strip('"'): value for name, value in pairs}

    def start(self, without=(), path=None, arguments=(), **environment):
        """Starts the program, or the copy at `path`, with these arguments; its messages go to a log file. `without` is a
        command that removes rights from it."""
        log = os.path.join(self.home, f"voxmate-{len(self.children)}.log")
        with open(log, "wb") as out:
            program = self.spawn(*without, path or os.path.join(self.build, "voxmate"), *arguments, env=dict(self.env, **environment),
                                 stderr=out, stdout=out)
        self.programs[program] = log
        return program

    def start_without_engines(self, **environment):
        """Starts the program with the voices' data and libraries hidden from it. None if this machine does not let a
        process have its own view of the file system."""
        if subprocess.run(["unshare", "-m", "true"], stderr=subprocess.DEVNULL, check=False).returncode != 0:
            return None
        empty = os.path.join(self.home, "empty")
        os.makedirs(empty, exist_ok=True)
        hidden = glob.glob("/usr/lib/*/espeak-ng-data") + glob.glob("/usr/share/espeak-ng-data")
        steps = [f"mount --bind {empty} {folder}" for folder in hidden]
        steps += [f"mount --bind /dev/null {library}" for library in glob.glob("/usr/lib/*/libflite.so.1")]
        steps.append('exec "$0"')
        return self.start(without=("unshare", "-m", "sh", "-c", " && ".join(steps)), **environment)

    def end(self, program):
        """Ends the program as the end of a session does, unless its end has been seen already. It must still be
        running, and must end without a fault."""
        if program not in self.programs:
            return
        status = program.poll()
        if status is not None:
            messages = self._messages(program)
            raise AssertionError(f"the program has ended by itself, with {status}:\n{messages.decode(errors='replace')}")
        program.terminate()
        self.ended(program)

    def ended(self, program, status=0, timeout=PATIENCE):
        """Waits for the end of a program that is about to end. It must end with `status` and without a fault."""
        late = False
        try:
            program.wait(timeout)
        except subprocess.TimeoutExpired:
            late = True
            program.kill()
            program.wait()
        messages = self._messages(program)
        told = f":\n{messages.decode(errors='replace')}"
        if late:
            raise AssertionError(f"the program did not end in {timeout} s{told}")
        if program.returncode != status:
            raise AssertionError(f"the program ended with {program.returncode} and not with {status}{told}")
        if any(fault in messages for fault in FAULTS):
            raise AssertionError(f"the program's log tells of a fault{told}")

    def _messages(self, program):
        with open(self.programs.pop(program), "rb") as log:
            return log.read()

    # Eyes.

    def screenshot(self, path=None, box=None):
        picture = ImageGrab.grab(bbox=box, xdisplay=self.env["DISPLAY"])
        if path:
            os.makedirs(os.path.dirname(os.path.abspath(path)), exist_ok=True)
            picture.save(path)
        return picture

    def accessible(self):
        """The accessibility library, connected to this desktop's bus. A process can use it for one desktop only."""
        os.environ.update({key: self.env[key] for key in ("DBUS_SESSION_BUS_ADDRESS", "DISPLAY", "XDG_RUNTIME_DIR")})
        import pyatspi  # pylint: disable=import-outside-toplevel
        return pyatspi

    def widgets(self):
        """Every accessible of the program that is showing, as (name, role name, accessible)."""
        return showing(self.accessible())

    def find(self, name, role=None, timeout=PATIENCE):
        """The first showing widget whose accessible name is or begins with `name`."""

        def look():
            widgets = [w for w in self.widgets() if role is None or w[1] == role]
            return next((w[2] for w in widgets if w[0] == name), None) or next(
                (w[2] for w in widgets if w[0].startswith(name)), None)

        return wait_for(look, timeout, what=f"the widget {name!r}")

    def gone(self, name, timeout=PATIENCE):
        wait_for(lambda: not any(w[0].startswith(name) for w in self.widgets()), timeout, what=f"{name!r} going away")

    def texts(self):
        """The names of all showing widgets, which include the texts of labels."""
        return [w[0] for w in self.widgets()]

    def rect(self, widget):
        pyatspi = self.accessible()
        box = widget.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        # The toolkit reports device-independent pixels.
        return tuple(value * self.scale for value in (box.x, box.y, box.width, box.height))

    def windows(self, title, by="--name"):
        """Ids of the visible windows with this title, or class with by="--class"."""
        # The search fails with an error when a window disappears meanwhile.
        for _ in range(100):
            result = subprocess.run(["xdotool", "search", "--onlyvisible", by, title], env=self.env, capture_output=True, check=False)
            if not result.stderr:
                return result.stdout.decode().split()
        raise AssertionError(f"no search for {title!r} came to its end: {result.stderr.decode()}")

    def properties(self, window, *names):
        """xprop's output on a window's properties, or the root window's (None)."""
        where = ("-root",) if window is None else ("-id", window)
        return self.run("xprop", *where, *names, check=False).decode()

    def stacking(self):
        """Numbers of the window manager's windows, the lowest first."""
        return [int(number, 16) for number in re.findall(r"0x[0-9a-f]+", self.properties(None, "_NET_CLIENT_LIST_STACKING"))]

    def neighbour(self, title, *options):
        """Shows a window of another program (see neighbour.py) and waits until it is visible; returns the program and
        the window's id."""
        here = os.path.dirname(os.path.abspath(__file__))
        child = self.spawn("/usr/bin/python3", os.path.join(here, "neighbour.py"), title, *options, stdout=subprocess.PIPE)
        # A window manager's frame may have the window's title, too.
        with child.stdout:
            window = child.stdout.readline().decode().strip()
        wait_for(lambda: window in self.windows(f"^{title}$"), what=f"the window {title!r}")
        return child, window

    def tray(self, align):
        """Shows a panel with a tray for icons, at the left or right end of the lower edge; returns its program."""
        tray = self.spawn("trayer", "--edge", "bottom", "--align", align, "--widthtype", "pixel", "--width", "64", "--height", "32")
        wait_for(lambda: self.windows("^panel$"), what="the tray")
        return tray

    def window_rect(self, window):
        """Position and size of a window's content on the screen."""
        lines = self.run("xwininfo", "-id", window).decode().split("\n")
        values = dict(line.strip().split(":", 1) for line in lines if line.count(":") == 1)
        return tuple(int(values[key]) for key in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))

    # Hands.

    def click(self, widget, button=1):
        x, y, width, height = self.rect(widget)
        self.click_at(x + width // 2, y + height // 2, button)

    def click_at(self, x, y, button=1):
        # Not with --sync, which takes seconds when the pointer is already there.
        self.run("xdotool", "mousemove", str(x), str(y))
        time.sleep(0.05)
        self.run("xdotool", "click", str(button))

    def drag(self, *places):
        """Drags with the left button from the first place through the others."""
        button = ("mousedown", "1")
        for place in places:
            self.run("xdotool", "mousemove", *map(str, place), *button)
            button = ()
        self.run("xdotool", "mouseup", "1")

    def type(self, text):
        self.run("xdotool", "type", "--delay", "8", text)

    def key(self, *keys):
        self.run("xdotool", "key", *keys)

    # Ears.

    def recorder(self, hurried=True):
        return Recorder(self.env, hurried)
