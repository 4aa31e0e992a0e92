#!/usr/bin/env python3
"""Synthesises the shutter sound: python3 make_shutter.py camera.wav

Two soft mechanical clicks 58 ms apart, the mirror going up and coming down: each is a burst of
band-limited noise over a few damped resonances of a small metal body. The same bytes at every run.
"""
import math
import random
import struct
import sys
import wave

RATE = 44100
LENGTH = 0.150  # seconds
FADE = 0.012  # at the end, so that the sound does not stop on a step

# Frequency in Hz, amplitude, decay time in seconds.
BODY = [(1180.0, 0.30, 0.010), (1940.0, 0.22, 0.008), (3150.0, 0.16, 0.006), (310.0, 0.34, 0.016)]
# Start in seconds, loudness, pitch against BODY.
CLICKS = [(0.002, 1.0, 1.0), (0.060, 0.72, 0.86)]


def add_click(samples, source, start, loudness, pitch):
    low = 0.0
    band = 0.0
    first = int(start * RATE)
    for index in range(first, len(samples)):
        time = (index - first) / RATE
        # One-pole filters on either side of the noise keep it between about 700 Hz and 5 kHz.
        noise = source.uniform(-1.0, 1.0)
        band += 0.50 * (noise - band)
        low += 0.10 * (band - low)
        attack = 1.0 - math.exp(-time / 0.0004)
        value = 0.85 * (band - low) * math.exp(-time / 0.0075)
        for frequency, amplitude, decay in BODY:
            value += amplitude * math.sin(math.tau * frequency * pitch * time) * math.exp(-time / decay)
        samples[index] += loudness * attack * value


def shutter():
    samples = [0.0] * int(LENGTH * RATE)
    source = random.Random(1839)
    for start, loudness, pitch in CLICKS:
        add_click(samples, source, start, loudness, pitch)
    fade = int(FADE * RATE)
    for index in range(fade):
        samples[len(samples) - 1 - index] *= index / fade
    peak = max(abs(value) for value in samples)
    return [round(value / peak * 0.6 * 32767) for value in samples]


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    samples = shutter()
    with wave.open(sys.argv[1], "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(struct.pack(f"<{len(samples)}h", *samples))


if __name__ == "__main__":
    main()
