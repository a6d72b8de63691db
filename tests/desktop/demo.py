"""Makes the real program greet and read a typed sentence on a private desktop; saves a picture and a recording.

Usage: demo.py BUILD_FOLDER OUTPUT_FOLDER
"""

import os
import sys
import time
import wave

import numpy

import desk as desktop
import sound

SENTENCE = "Welcome! I am Voxmate. Whatever you type into my window, I read aloud for you."


def save_wave(path, samples):
    with wave.open(path, "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(sound.RATE)
        file.writeframes((samples * 32767).astype("<i2").tobytes())


def wait_until_idle(desk, seconds):
    """Waits until the status line has shown for a while that the program is idle."""
    quiet_since = None
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if "I am Idle now !" in desk.texts():
            quiet_since = quiet_since or time.monotonic()
            if time.monotonic() - quiet_since > 1.0:
                return
        else:
            quiet_since = None
        time.sleep(0.1)
    raise AssertionError("the program did not fall idle")


def main():
    build, out = sys.argv[1], sys.argv[2]
    os.makedirs(out, exist_ok=True)
    desk = desktop.Desk(build, screen=(1280, 800))
    try:
        desk.install_defaults()
        recorder = desk.recorder()
        program = desk.start()
        print("== Voxmate starts and greets", flush=True)
        text = desk.find("Text to read")
        desktop.wait_for(lambda: sound.loud_span(recorder.snapshot()[0]), what="the greeting")
        wait_until_idle(desk, 60)
        print(f"== Typing: {SENTENCE}", flush=True)
        desk.click(text)
        desk.type(SENTENCE)
        desk.click(desk.find("Speak the textbox text"))
        before = recorder.snapshot()[1][-1]
        desktop.wait_for(lambda: sound.loud_span(recorder.snapshot()[0][before:]), what="speech")
        time.sleep(1.7)
        picture = os.path.join(out, "voxmate.png")
        desk.screenshot(picture)
        wait_until_idle(desk, 60)
        samples = recorder.snapshot()[0]
        recorder.stop()
        if program.poll() is not None:
            raise AssertionError(f"Voxmate ended with {program.returncode}")
        desk.end(program)
        first, last = sound.loud_span(samples)
        samples = samples[max(0, first - sound.RATE // 2):last + sound.RATE // 2]
        recording = os.path.join(out, "voxmate.wav")
        save_wave(recording, samples)
        level = 20 * numpy.log10(numpy.sqrt(numpy.mean(samples ** 2)))
        print(f"== The desktop while Voxmate speaks: {picture}")
        print(f"== What was heard ({len(samples) / sound.RATE:.1f} s, {level:.0f} dB): {recording}")
    finally:
        desk.close()


if __name__ == "__main__":
    main()
