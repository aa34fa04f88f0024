#!/usr/bin/env python3
"""Makes the sounds of the alarms: hero.wav, a chime that rises, and funk.wav, a short plucked figure.

Usage: make_sounds.py FOLDER

Each note is a few decaying partials. They are computed with whole numbers, so that every machine makes the
same bytes; one channel, 16 bits, 44100 samples a second.
"""

import math
import os
import sys
import wave

RATE = 44100
ONE = 1 << 28  # The unit of the fixed-point factors.
LOUDEST = 24000  # Of 32767: no player has to clip.
FADE = RATE // 20

# Each partial: its frequency as a multiple of the note's, its share, and how fast it fades.
BELL = [(1, 60, 1.0), (2, 25, 1.6), (3, 10, 2.4), (4.2, 5, 4.0)]
PLUCK = [(1, 55, 1.0), (2, 30, 1.8), (3, 15, 3.0)]

# Each note: when it begins, its frequency, its loudness, and the seconds until a third of it is left.
SOUNDS = {
    "hero.wav": (
        1.9,
        BELL,
        [(0.00, 523.25, 80, 0.35), (0.13, 659.26, 85, 0.35), (0.26, 783.99, 90, 0.40), (0.39, 1046.50, 100, 0.55)],
    ),
    "funk.wav": (
        1.3,
        PLUCK,
        [
            (0.00, 220.00, 100, 0.10),
            (0.16, 261.63, 80, 0.09),
            (0.24, 293.66, 90, 0.10),
            (0.48, 329.63, 100, 0.18),
            (0.64, 220.00, 95, 0.22),
        ],
    ),
}


def add_partial(samples, begin, frequency, loudness, decay):
    """Adds a decaying sine that begins at zero: a resonator of second order, struck once."""
    angle, shrink = 2 * math.pi * frequency / RATE, math.exp(-1 / (decay * RATE))
    forward, back = round(2 * shrink * math.cos(angle) * ONE), round(shrink * shrink * ONE)
    former, current = 0, round(loudness * math.sin(angle) * ONE)
    for place in range(begin + 1, len(samples)):
        samples[place] += current >> 28
        former, current = current, (forward * current - back * former) >> 28


def rendered(length, partials, notes):
    samples = [0] * round(length * RATE)
    for begin, frequency, loudness, decay in notes:
        for multiple, share, haste in partials:
            add_partial(samples, round(begin * RATE), frequency * multiple, loudness * share * 100, decay / haste)
    loudest = max(map(abs, samples))
    samples = [sample * LOUDEST // loudest for sample in samples]
    for step in range(FADE):
        samples[-1 - step] = samples[-1 - step] * step // FADE
    return samples


def write(path, samples):
    # Aside first: a build that is interrupted leaves no half of a sound.
    with wave.open(path + ".part", "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(b"".join(sample.to_bytes(2, "little", signed=True) for sample in samples))
    os.replace(path + ".part", path)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    for name, (length, partials, notes) in SOUNDS.items():
        write(os.path.join(sys.argv[1], name), rendered(length, partials, notes))


if __name__ == "__main__":
    main()
