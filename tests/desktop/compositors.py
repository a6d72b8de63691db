"""A private Wayland session: a compositor that shows its screen in a window of the test's own X display, so that the
same eyes and hands serve as for an X desktop. The programs in it see only the session."""

import os
import re
import shutil
import subprocess

import desk as desktop

NOBODY = 65534  # sway refuses to run as root


class Session(desktop.Desk):
    """A desktop whose programs are in a Wayland session under `compositor`: "weston", "sway" or "mutter". With
    `xwayland` the session has an X server, too."""

    def __init__(self, build, compositor, xwayland=False, **options):
        self.kind = compositor
        self.xwayland = xwayland
        self.session = {}  # what the session's programs have in their environment besides
        super().__init__(build, **options)

    def _start_manager(self):
        self.runtime = os.path.join(self.home, "session")
        os.mkdir(self.runtime, 0o700)
        self.env["LIBGL_ALWAYS_SOFTWARE"] = "1"
        told = os.path.join(self.runtime, "display")
        start = {"weston": self._start_weston, "sway": self._start_sway, "mutter": self._start_mutter}[self.kind]
        # By this the compositor's first program tells the name of the session's X server.
        start(f'echo "$DISPLAY $XAUTHORITY" >{told}')

        def socket():
            names = [name for name in os.listdir(self.runtime) if re.fullmatch(r"wayland-\w+", name)]
            return names[0] if names else None

        self.session["WAYLAND_DISPLAY"] = os.path.join(self.runtime, desktop.wait_for(socket, what="the compositor"))
        if self.xwayland:
            server = desktop.wait_for(lambda: self._x_server(told), what="the session's X server").split()
            self.session.update(zip(("DISPLAY", "XAUTHORITY"), server))
        desktop.wait_for(lambda: re.search(rb"[1-9]\d* child", self.run("xwininfo", "-root", "-children")),
                         what="the compositor's screen")
        # weston adds up the pointer's moves, from its own corner if it missed where the pointer was at the start. This
        # move, longer than its screen, ends in that corner wherever it began.
        for x, y in (tuple(size - 1 for size in self.screen), (0, 0)):
            self.run("xdotool", "mousemove", str(x), str(y))

    def _start_weston(self, _tell):
        width, height = self.screen
        self.weston_log = os.path.join(self.runtime, "log")
        self.compositor = self.spawn(
            "weston", "--backend=x11-backend.so", f"--width={width}", f"--height={height}", "--use-pixman", "--no-config",
            "--idle-time=0", "--socket=wayland-w", f"--log={self.weston_log}", *(["--xwayland"] if self.xwayland else []),
            env=dict(self.env, XDG_RUNTIME_DIR=self.runtime))

    def _start_sway(self, tell):
        config = os.path.join(self.runtime, "config")
        with open(config, "w", encoding="utf-8") as file:
            file.write(f"output * bg #3b6e8f solid_color\noutput * resolution {self.screen[0]}x{self.screen[1]}\n"
                       # Not "enable": that X server would end with its last program, and the next one keep root out.
                       f"xwayland {'force' if self.xwayland else 'disable'}\n"
                       # Its X server would let in only the user it runs as.
                       f"exec {'xhost +si:localuser:root && ' if self.xwayland else ''}{tell}\n")
        user = []
        if os.getuid() == 0:
            user = ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups"]
            os.chmod(self.home, 0o711)
            os.chown(self.runtime, NOBODY, NOBODY)
        self.compositor = self.spawn(*user, "sway", "-c", config, env=dict(
            self.env, XDG_RUNTIME_DIR=self.runtime, HOME=self.runtime, WLR_BACKENDS="x11", WLR_RENDERER="pixman",
            SWAYSOCK=os.path.join(self.runtime, "ipc")))

    def _start_mutter(self, tell):
        self.compositor = self.spawn(
            "mutter", "--wayland", "--nested", "--wayland-display=wayland-m", *([] if self.xwayland else ["--no-x11"]),
            # It ends with its first program.
            "--", "sh", "-c", f"{tell}; exec tail --pid=$PPID -f /dev/null", env=dict(self.env, XDG_RUNTIME_DIR=self.runtime,
                                   MUTTER_DEBUG_DUMMY_MODE_SPECS=f"{self.screen[0]}x{self.screen[1]}"))

    def _x_server(self, told):
        if self.kind == "weston":
            with open(self.weston_log, encoding="utf-8") as log:
                found = re.search(r"xserver listening on display (:\d+)", log.read())
            return found and found[1]
        if not os.path.exists(told):
            return None
        with open(told, encoding="utf-8") as file:
            return file.read().strip()

    def start(self, without=(), path=None, arguments=(), **environment):
        hidden = () if self.xwayland else ("env", "-u", "DISPLAY")
        return super().start((*without, *hidden), path, arguments, **{**self.session, **environment})

    def in_x_server(self, *command):
        """What a command prints that looks at the session's X server."""
        return subprocess.run(command, env={**self.env, **self.session}, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              check=False).stdout.decode()

    def sway(self, *command):
        """What sway answers to a command, as text."""
        return self.run("swaymsg", "-s", os.path.join(self.runtime, "ipc"), *command).decode()


def installed(compositor):
    return shutil.which(compositor) is not None
