#!/usr/bin/env python3
"""Makes the nine wave files beside this script, one for each event of the machine.

They are short and soft: sine tones between 260 and 900 Hz that swell and fade, no louder than half of
what the format can hold, 8 bits, 11025 samples a second. The same call always makes the same files.
"""
import math
import wave
from pathlib import Path

RATE = 11025
LOUDEST = 0.5

# Notes of each sound: frequency in hertz (0: silence), length in seconds.
SOUNDS = {
    "play": [(392, 0.10), (523, 0.16)],
    "step": [(523, 0.07)],
    "pause": [(523, 0.11), (0, 0.05), (523, 0.11)],
    "retooling": [(440, 0.10), (554, 0.10), (440, 0.16)],
    "stopped": [(523, 0.11), (392, 0.18)],
    "estop": [(587, 0.13), (0, 0.04), (587, 0.13), (0, 0.04), (440, 0.20)],
    "compiled": [(659, 0.09), (784, 0.12)],
    "finished": [(392, 0.11), (523, 0.11), (659, 0.22)],
    "future": [(330, 0.15)],
}


def tone(frequency, seconds):
    count = int(RATE * seconds)
    for n in range(count):
        swell = math.sin(math.pi * (n + 0.5) / count) ** 0.5
        phase = 2 * math.pi * frequency * n / RATE
        yield swell * (0.85 * math.sin(phase) + 0.15 * math.sin(2 * phase)) if frequency else 0.0


def main():
    for name, notes in SOUNDS.items():
        samples = [value for note in notes for value in tone(*note)]
        with wave.open(str(Path(__file__).parent / f"{name}.wav"), "wb") as file:
            file.setnchannels(1)
            file.setsampwidth(1)
            file.setframerate(RATE)
            file.writeframes(bytes(round(128 + 127 * LOUDEST * value) for value in samples))


if __name__ == "__main__":
    main()
