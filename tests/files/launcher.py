"""The small process that tool.Runner starts programs from: launcher.py MEGABYTES. Each line on standard input is a JSON
list: the files for standard output and error, then a command. For each it prints a line with the exit code (or minus
the signal that ended it), the seconds of processor time and the peak kilobytes of memory. It must stay small, because a
child starts with its parent's peak memory counted as its own."""

import json
import os
import resource
import signal
import sys

TIMEOUT_SECONDS = 3  # Of real time, because a process that only waits uses no processor time.


def run(out, err, *command):
    how = os.O_WRONLY | os.O_CREAT | os.O_TRUNC
    pid = os.posix_spawn(command[0], command, os.environ, file_actions=[
        (os.POSIX_SPAWN_OPEN, 1, out, how, 0o600), (os.POSIX_SPAWN_OPEN, 2, err, how, 0o600)])
    signal.signal(signal.SIGALRM, lambda *_: os.kill(pid, signal.SIGKILL))
    signal.alarm(TIMEOUT_SECONDS)
    _, status, usage = os.wait4(pid, 0)
    signal.alarm(0)
    return os.waitstatus_to_exitcode(status), usage.ru_utime + usage.ru_stime, usage.ru_maxrss


if __name__ == "__main__":
    limit = int(sys.argv[1]) << 20
    if limit:
        resource.setrlimit(resource.RLIMIT_AS, (limit, limit))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    for line in sys.stdin.buffer:
        print(json.dumps(run(*json.loads(line))), flush=True)
