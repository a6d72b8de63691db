"""What the program makes of texts with a neural voice, beside what the voices' own program for Python (piper-tts) makes of
them: the same phonemes, the same numbers, and the same samples to rounding. tests/voices/run gives what it takes; and
VOXMATE_TEST_REFERENCE is a folder with the package's modules."""

import ctypes
import json
import os
import subprocess
import sys
import tempfile
import unittest

import numpy

MODEL = os.environ.get("VOXMATE_TEST_VOICE", "")
RUNTIME = os.environ.get("VOXMATE_TEST_RUNTIME", "")
REFERENCE = os.environ.get("VOXMATE_TEST_REFERENCE", "")
BUILD = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "build", "release")

TEXTS = ["The price is 42 dollars.", "Good morning! I hope you slept well. Is it raining?",
         "Every leaf was shining. Slowly he walked along the path between the apple trees.",
         "Members said, in short: more than four hundred; of the best - ever (so far).",
         "A line\nwith a break\n\nand a paragraph"]


@unittest.skipUnless(MODEL and REFERENCE, "no neural voice, or nothing to compare it with, is given")
class Reference(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        sys.path.insert(0, REFERENCE)
        from piper import PiperVoice  # pylint: disable=import-outside-toplevel
        cls.voice = PiperVoice.load(MODEL)
        cls.phonemes = [["".join(sentence) for sentence in cls.voice.phonemize(text)] for text in TEXTS]

    def told(self, texts):
        """What the program tells of texts, and all its samples."""
        with tempfile.NamedTemporaryFile() as file, tempfile.TemporaryDirectory() as runtime:
            if RUNTIME:  # under the name that is looked for, whatever the library's own is
                os.symlink(RUNTIME, os.path.join(runtime, "libonnxruntime.so.1"))
            result = subprocess.run([os.path.join(BUILD, "voice_reference"), MODEL, runtime, file.name],
                                    input=json.dumps(texts), capture_output=True, text=True, check=False)
            self.assertEqual(result.returncode, 0, result.stderr[-500:])
            return json.loads(result.stdout), numpy.frombuffer(file.read(), "<f4")

    def test_texts_have_the_same_phonemes(self):
        library = ctypes.CDLL("libespeak-ng.so.1")
        library.espeak_Info.restype = ctypes.c_char_p
        version = library.espeak_Info(None).decode().split()[0]
        if tuple(map(int, version.split(".")[:2])) < (1, 52):
            self.skipTest(f"eSpeak NG {version} has other phonemes than the package's own, which is 1.52")
        told, _ = self.told(TEXTS)
        # Versions of 1.52 differ in whether they write the glide between two vowels.
        plain = [[sentence["phonemes"].replace("\u02b2", "") for sentence in sentences] for sentences in told]
        self.assertEqual(plain, [[sentence.replace("\u02b2", "") for sentence in sentences] for sentences in self.phonemes])

    def test_phonemes_have_the_same_numbers_and_samples(self):
        from piper import SynthesisConfig  # pylint: disable=import-outside-toplevel
        told, samples = self.told(self.phonemes)
        at = 0
        for text, sentences in zip(TEXTS, told, strict=True):
            chunks = self.voice.synthesize(text, SynthesisConfig(noise_scale=0, noise_w_scale=0, length_scale=1))
            for sentence, chunk in zip(sentences, chunks, strict=True):
                self.assertEqual(sentence["numbers"], self.voice.phonemes_to_ids(list(sentence["phonemes"])))
                own = samples[at:at + sentence["samples"]]
                at += sentence["samples"]
                heard = chunk.audio_float_array  # brought to full scale, which the network's own samples are not
                self.assertEqual(len(own), len(heard))
                difference = numpy.max(numpy.abs(own / numpy.max(numpy.abs(own)) - heard))
                print(f"{sentence['phonemes']} {len(own)} samples, {difference:.1e} apart")
                self.assertLess(difference, 1e-3)
        self.assertEqual(at, len(samples))


if __name__ == "__main__":
    unittest.main()
