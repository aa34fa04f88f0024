#!/usr/bin/env python3
"""Looks at the sounds as they were built, and proves that the generator always makes the same.

Usage: make_sounds_test.py GENERATOR_FOLDER BUILT_FOLDER
"""

import hashlib
import os
import sys
import tempfile
import unittest
import wave

# A change of a sound is meant, or it is a machine that counts differently.
DIGESTS = {
    "hero.wav": "7f02637244c6f30ddfa59f25d671a1141a5035f47691d720e53b11e072aaabac",
    "funk.wav": "6ccade74cc979bfbb889bc21701c700e5e45a024ed8f8d2fcc93a0466b0d0750",
}


def content(folder, name):
    with open(os.path.join(folder, name), "rb") as file:
        return file.read()


class MakeSoundsTest(unittest.TestCase):
    def test_every_run_makes_the_same_bytes(self):
        sys.path.insert(0, GENERATOR)
        import make_sounds

        with tempfile.TemporaryDirectory() as folder:
            sys.argv[1:] = [folder]
            make_sounds.main()
            self.assertEqual(sorted(os.listdir(folder)), sorted(DIGESTS))
            for name, digest in DIGESTS.items():
                self.assertEqual(hashlib.sha256(content(folder, name)).hexdigest(), digest, name)
                self.assertEqual(content(folder, name), content(BUILT, name), name)

    def test_sounds_are_short_loud_enough_and_begin_and_end_in_silence(self):
        for name in DIGESTS:
            with wave.open(os.path.join(BUILT, name)) as sound:
                self.assertEqual((sound.getnchannels(), sound.getsampwidth(), sound.getframerate()), (1, 2, 44100))
                count = sound.getnframes()
                data = sound.readframes(count)
            samples = [int.from_bytes(data[at : at + 2], "little", signed=True) for at in range(0, len(data), 2)]
            self.assertTrue(44100 < count < 3 * 44100, name)
            self.assertEqual((samples[0], samples[-1]), (0, 0), name)
            self.assertEqual(max(map(abs, samples)), 24000, name)
            # The end is no cut: what is left there is far below the loudest.
            self.assertLess(max(map(abs, samples[-4410:])), 2400, name)


if __name__ == "__main__":
    GENERATOR, BUILT = sys.argv[1:3]
    del sys.argv[1:]
    unittest.main()
