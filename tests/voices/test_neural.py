"""A neural voice heard from the running program. What it takes is given by tests/voices/run: VOXMATE_TEST_VOICE, a voice's
.onnx with its .json beside it, and VOXMATE_TEST_RUNTIME, the library of ONNX Runtime where the system has none."""

import json
import os
import resource
import shutil
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "desktop"))

import numpy

import desk as desktop  # noqa: E402
import lips  # noqa: E402
import sound  # noqa: E402
import test_lips  # noqa: E402
from program import CALM, ProgramCase  # noqa: E402

MODEL = os.environ.get("VOXMATE_TEST_VOICE", "")
RUNTIME = os.environ.get("VOXMATE_TEST_RUNTIME", "")

TEXT = ("The city council has decided to keep the library open until nine in the evening. "
        "Members said that more than four hundred people had signed the petition. "
        "The additional cost will be paid from the budget for public buildings.")
WORDS = len(TEXT.split())


def pitch(samples, rate=sound.RATE):
    """The median of the fundamental frequency by autocorrelation, in hertz."""
    step, width = rate // 50, rate // 20
    shortest, longest = rate // 500, rate // 50
    heard = []
    loudest = numpy.sqrt(numpy.mean(samples ** 2))
    for at in range(0, len(samples) - width - longest, step):
        part = samples[at:at + width]
        if numpy.sqrt(numpy.mean(part ** 2)) < loudest / 2:
            continue
        energy = numpy.sum(part ** 2)
        likeness = []
        for lag in range(shortest, longest, 4):
            other = samples[at + lag:at + lag + width]
            likeness.append(numpy.sum(part * other) / numpy.sqrt(energy * numpy.sum(other ** 2) + 1e-12))
        best = max(likeness)
        if best > 0.8:
            # The shortest period that is nearly as like as the best: not a multiple of it.
            first = next(i for i, value in enumerate(likeness) if value > 0.9 * best)
            while first + 1 < len(likeness) and likeness[first + 1] > likeness[first]:
                first += 1
            heard.append(rate / (shortest + first * 4))
    return float(numpy.median(heard)) if heard else 0.0


def silences(samples, least=0.1):
    """How long each silence of at least so many seconds is."""
    edges = numpy.flatnonzero(numpy.diff(sound.loud_windows(samples).astype(int), prepend=1, append=1))
    lengths = (edges[1::2] - edges[::2]) * sound.WINDOW
    return [float(length) for length in lengths if length >= least]


VOICE = "Piper joe (English, United States, medium)"


class NeuralCase(ProgramCase):
    defaults = {**CALM, "LastSpeechEngine": VOICE, "Pitch": 100, "Speed": 156}

    def setUp(self):
        super().setUp()
        self.listen()
        self.install_voice()

    def install_voice(self):
        self.folder = os.path.join(self.desk.env["XDG_DATA_HOME"], "voxmate", "voices")
        os.makedirs(self.folder)
        self.addCleanup(shutil.rmtree, self.folder)
        for file in (MODEL, MODEL + ".json"):
            os.symlink(file, os.path.join(self.folder, os.path.basename(file)))
        if RUNTIME:
            os.makedirs(os.path.join(self.folder, "runtime"))
            os.symlink(RUNTIME, os.path.join(self.folder, "runtime", "libonnxruntime.so.1"))

    def remove_chance(self):
        """Has the voice say a text the same way each time, so that what is heard can be compared with a rendering."""
        path = os.path.join(self.folder, os.path.basename(MODEL) + ".json")
        with open(path, encoding="utf-8") as file:
            description = json.load(file)
        description["inference"].update(noise_scale=0, noise_w=0)
        os.remove(path)
        with open(path, "w", encoding="utf-8") as file:
            json.dump(description, file)
        self.voices = [self.folder]

    def prepare(self, **settings):
        """Starts the program with these settings, and with the text to be spoken."""
        self.desk.remove_settings()
        self.desk.install_defaults(**{**self.defaults, **settings})
        self.start_and_settle()
        self.type_text(TEXT)

    def begin(self, **settings):
        """Starts the program with these settings and has it speak. Returns the number of the sample then recorded."""
        self.prepare(**settings)
        begin = self.now()
        self.press("Speak the textbox text")
        self.wait_for_sound(begin)
        return begin


@unittest.skipUnless(MODEL, "no neural voice is given")
class Neural(NeuralCase):
    def speak(self, **settings):
        """What is heard of the text with these settings, from its first to its last loud sample."""
        begin = self.begin(**settings)
        self.settle(timeout=120)
        self.desk.end(self.program)
        samples = self.recorded(begin)
        first, last = sound.loud_span(samples)
        return samples[first:last]

    def test_a_paragraph_is_heard_at_the_speed_that_is_set(self):
        for speed in (100, 156, 300):
            with self.subTest(speed=speed):
                heard = self.speak(Speed=speed)
                words_a_minute = WORDS * 60 / (len(heard) / sound.RATE)
                print(f"{speed} words a minute: {words_a_minute:.0f} heard")
                self.assertAlmostEqual(words_a_minute, speed, delta=speed * 0.15)

    def test_a_paragraph_is_heard_at_the_pitch_that_is_set(self):
        for hertz in (90, 150, 220):
            with self.subTest(hertz=hertz):
                heard = self.speak(Pitch=hertz)
                print(f"{hertz} Hz: {pitch(heard):.0f} heard")
                self.assertAlmostEqual(pitch(heard), hertz, delta=hertz * 0.1)

    def test_a_whisper_has_no_pitch(self):
        spoken, whispered = self.speak(), self.speak(Whisper=1)
        self.assertLess(pitch(whispered[:sound.RATE * 5]), 1)
        self.assertGreater(pitch(spoken[:sound.RATE * 5]), 1)
        self.assertAlmostEqual(len(whispered) / len(spoken), 1, delta=0.15)

    def test_between_sentences_is_no_silence_but_the_voices_own(self):
        self.remove_chance()
        heard = self.speak()
        made = sound.resampled(*sound.read_wave(self.render(TEXT)))
        first, last = sound.loud_span(made)
        longer = [there - here for here, there in zip(silences(made[first:last]), silences(heard), strict=True)]
        print("silences longer than the voice's own by " + ", ".join(f"{1000 * gap:.0f} ms" for gap in longer))
        self.assertGreater(len(longer), 1)
        self.assertLess(max(longer), 0.03)

    def test_a_voice_that_was_missing_for_a_while_is_the_chosen_one_again(self):
        self.desk.remove_settings()
        self.desk.install_defaults(**self.defaults)
        away = self.folder + ".away"
        os.rename(self.folder, away)
        self.start()
        self.assertIn("Voice Type Last Used", self.answer_box("Voxmate - Options in Error"))
        self.settle()
        self.assertNotEqual(self.desk.read_settings()["LastSpeechEngine"], f'"{VOICE}"')
        self.desk.end(self.program)
        os.rename(away, self.folder)
        self.start_and_settle()
        self.saved("LastSpeechEngine", f'"{VOICE}"')

    def test_stop_in_the_middle_of_a_sentence_is_silent(self):
        begin = self.begin()
        desktop.wait_for(lambda: self.sound_since(begin) > 1, what="a second of speech")
        self.press("Stop Everything !!!")
        self.settle()
        heard = self.sound_since(begin)
        again = self.now()
        self.press("Speak the textbox text")
        self.wait_for_sound(again)
        self.assertLess(heard, 5)

    def test_a_voice_that_is_taken_away_is_heard_to_its_end(self):
        begin = self.begin()
        for file in os.listdir(self.folder):
            if file.startswith(os.path.basename(MODEL)):
                os.remove(os.path.join(self.folder, file))
        self.settle(timeout=120)
        self.assertGreater(self.sound_since(begin), WORDS * 60 / 156 * 0.6)

    def quick_voice_speaks(self, begin, reason):
        """The box tells why, once, and a quick voice speaks all of the text, then and the next time."""
        self.assertIn(reason, self.box_text("Voxmate - Voice Error"))
        self.answer_box("Voxmate - Voice Error")
        self.settle(timeout=120)
        self.assertGreater(self.sound_since(begin), WORDS * 60 / 156 * 0.6)
        again = self.now()
        self.press("Speak the textbox text")
        self.wait_for_sound(again)
        self.settle(timeout=120)
        self.assertGreater(self.sound_since(again), WORDS * 60 / 156 * 0.6)
        self.assertEqual(self.desk.windows("^Voxmate - Voice Error$"), [])

    def test_with_a_runtime_of_another_version_a_quick_voice_speaks(self):
        runtime = os.path.join(self.folder, "runtime")
        shutil.rmtree(runtime, ignore_errors=True)
        os.makedirs(runtime)
        source = os.path.join(runtime, "other.c")
        with open(source, "w", encoding="ascii") as file:
            file.write("struct Base { const void* (*api)(unsigned); const char* (*version)(void); };\n"
                       "static const void* no_api(unsigned version) { return 0; }\n"
                       "static const char* old_version(void) { return \"1.0.0\"; }\n"
                       "const struct Base* OrtGetApiBase(void) {\n"
                       "  static const struct Base base = {no_api, old_version};\n  return &base;\n}\n")
        subprocess.run(["gcc", "-shared", "-fPIC", "-o", os.path.join(runtime, "libonnxruntime.so.1"), source], check=True)
        self.quick_voice_speaks(self.begin(), "ONNX Runtime, which speaks it, cannot be loaded.")

    def test_where_memory_is_refused_a_quick_voice_speaks(self):
        self.prepare()
        with open(f"/proc/{self.program.pid}/status", encoding="ascii") as status:
            taken = next(int(line.split()[1]) for line in status if line.startswith("VmSize:")) * 1024
        most = taken + (200 << 20)  # more than other voices take, and less than a network does
        resource.prlimit(self.program.pid, resource.RLIMIT_AS, (most, most))
        begin = self.now()
        self.press("Speak the textbox text")
        self.wait_for_sound(begin)
        self.quick_voice_speaks(begin, f"{os.path.basename(MODEL)}: there is not enough memory for it.")

    def test_for_a_damaged_voice_a_quick_one_speaks(self):
        model = os.path.join(self.folder, os.path.basename(MODEL))
        os.remove(model)
        with open(MODEL, "rb") as whole, open(model, "wb") as half:
            shutil.copyfileobj(whole, half, 1 << 20)
            half.truncate(os.path.getsize(MODEL) // 2)
        self.quick_voice_speaks(self.begin(), f"{model}: it cannot be used")


@unittest.skipUnless(MODEL, "no neural voice is given")
class Lips(test_lips.HeldSound):
    """What is seen while a neural voice is heard, as with the others (test_lips)."""

    def setUp(self):
        super().setUp()
        NeuralCase.install_voice(self)
        NeuralCase.remove_chance(self)
        lips.install_lips(self.desk, LastSpeechEngine=VOICE)


del test_lips  # whose own cases are not to be run here

if __name__ == "__main__":
    unittest.main()
