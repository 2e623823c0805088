#!/usr/bin/env python3
"""Writes demo.mid, "Low Water": a short piece in D minor for piano, strings, lead, bass and drums.

It holds what a MIDI library meets: tempo and time signature changes, program changes with banks,
dense controllers, pitch bend, both kinds of pressure, overlapping notes, release velocities, short
and long sysex, and a few things that a clip does not keep. The same bytes come out each time.

Usage: make_demo.py [FILE]     (demo.mid beside this script, unless told)
"""
import math
import os
import sys

QUARTER = 480
BAR = 4 * QUARTER


class Track:
    """Events by tick; at one tick in the order added, note-offs first."""

    def __init__(self, name):
        self.events = []
        self.meta(0, 0x03, name.encode())

    def add(self, tick, data, rank=1):
        self.events.append((int(tick), rank, len(self.events), bytes(data)))

    def meta(self, tick, kind, data):
        self.add(tick, [0xFF, kind] + variable(len(data)) + list(data))

    def sysex(self, tick, contents, packets=1):
        """One message, cut into packets that follow each other a tick apart."""
        data = list(contents) + [0xF7]
        size = math.ceil(len(data) / packets)
        for n in range(packets):
            part = data[n * size:(n + 1) * size]
            self.add(tick + n, [0xF0 if n == 0 else 0xF7] + variable(len(part)) + part)

    def bytes(self, end):
        out, now, running = bytearray(), 0, None
        for tick, _, _, data in sorted(self.events, key=lambda e: e[:3]):
            out += bytes(variable(tick - now))
            now = tick
            status = data[0]
            out += data[1:] if status == running else data
            running = status if status < 0xF0 else None
        out += bytes(variable(end - now)) + b"\xff\x2f\x00"
        return b"MTrk" + len(out).to_bytes(4, "big") + bytes(out)


class Part(Track):
    """A track that plays on one channel."""

    def __init__(self, name, channel):
        super().__init__(name)
        self.channel = channel

    def note(self, tick, pitch, length, on=80, off=64):
        self.add(tick, [0x90 | self.channel, pitch, on])
        self.add(tick + length, [0x80 | self.channel, pitch, off], rank=0)

    def control(self, tick, number, value):
        self.add(tick, [0xB0 | self.channel, number, max(0, min(127, round(value)))])

    def program(self, tick, number, msb=None, lsb=None):
        if msb is not None:
            self.control(tick, 0, msb)
        if lsb is not None:
            self.control(tick, 32, lsb)
        self.add(tick, [0xC0 | self.channel, number])

    def bend(self, tick, value):
        number = max(0, min(16383, round(value) + 8192))
        self.add(tick, [0xE0 | self.channel, number & 0x7F, number >> 7])

    def pressure(self, tick, value):
        self.add(tick, [0xD0 | self.channel, round(value)])

    def pitch_pressure(self, tick, pitch, value):
        self.add(tick, [0xA0 | self.channel, pitch, round(value)])

    def curve(self, tick, length, step, number, function):
        """A controller drawn as a curve: function of 0 to 1, a value each step."""
        for at in range(0, length, step):
            self.control(tick + at, number, function(at / length))


def variable(number):
    out = [number & 0x7F]
    while number > 0x7F:
        number >>= 7
        out.insert(0, 0x80 | number & 0x7F)
    return out


# Bars count from 1. Bar 9 has three beats; all others have four.
def bar(number, beat=1.0):
    start = (number - 1) * BAR - (QUARTER if number > 9 else 0)
    return start + round((beat - 1) * QUARTER)


END = bar(18)

# A chord for each bar: bass note, then the notes above it.
CHORDS = {
    1: (38, (62, 65, 69)), 2: (36, (60, 64, 69)), 3: (34, (62, 65, 70)), 4: (33, (61, 64, 69)),
    5: (38, (62, 65, 69)), 6: (36, (60, 64, 67)), 7: (34, (58, 62, 65)), 8: (33, (61, 64, 67)),
    9: (33, (61, 64, 69)),
    10: (43, (62, 67, 70)), 11: (36, (60, 64, 70)), 12: (41, (60, 65, 69)), 13: (34, (58, 62, 65)),
    14: (40, (58, 62, 67)), 15: (33, (57, 61, 67)), 16: (38, (57, 62, 65)), 17: (38, (57, 62, 66)),
}

# Bar, beat, pitch, beats.
MELODY = [
    (3, 1, 74, 1.5), (3, 2.5, 77, 0.5), (3, 3, 76, 1), (3, 4, 74, 1), (4, 1, 73, 2), (4, 3, 69, 2),
    (5, 1, 74, 1), (5, 2, 76, 0.5), (5, 2.5, 77, 1.5), (5, 4, 81, 1), (6, 1, 79, 3), (6, 4, 76, 1),
    (7, 1, 77, 1.5), (7, 2.5, 74, 1.5), (7, 4, 70, 1), (8, 1, 73, 1), (8, 2, 76, 1), (8, 3, 79, 2),
    (10, 1, 82, 2), (10, 3, 79, 1), (10, 4, 74, 1), (11, 1, 76, 3), (11, 4, 72, 1), (12, 1, 77, 1),
    (12, 2, 76, 1), (12, 3, 74, 1), (12, 4, 72, 1), (13, 1, 70, 2), (13, 3, 74, 2), (14, 1, 79, 2),
    (14, 3, 76, 1), (14, 4, 74, 1), (15, 1, 73, 2), (15, 3, 76, 2), (16, 1, 74, 4),
]


def conductor():
    track = Track("Low Water")
    track.meta(0, 0x02, b"Written for the vrad project; MIT licence")
    track.meta(0, 0x58, [4, 2, 24, 8])
    track.meta(0, 0x59, [0xFF, 1])
    tempo(track, 0, 84)
    # The way into bar 9 slows down in eighths.
    for eighth in range(8):
        tempo(track, bar(8) + eighth * QUARTER // 2, 84 - 3 * (eighth + 1))
    track.meta(bar(9), 0x58, [3, 2, 24, 8])
    track.meta(bar(9), 0x06, b"Turn")
    track.meta(bar(10), 0x58, [4, 2, 24, 8])
    tempo(track, bar(10), 96.5)
    tempo(track, bar(16), 72)
    tempo(track, bar(17), 60)
    track.sysex(0, [0x7E, 0x7F, 0x09, 0x01])  # a short one: General MIDI on
    track.sysex(QUARTER, [0x7D, 0x01] + [(7 * n * n + n) % 128 for n in range(300)])
    track.sysex(2 * QUARTER, [0x7D, 0x02] + [n % 128 for n in range(120)], packets=3)
    return track


def tempo(track, tick, beats_per_minute):
    microseconds = round(60e6 / beats_per_minute)
    track.meta(tick, 0x51, microseconds.to_bytes(3, "big"))


def piano():
    part = Part("Piano", 0)
    part.program(0, 1, msb=0, lsb=4)
    part.control(0, 7, 96)
    part.control(0, 10, 52)
    for number, (_, chord) in CHORDS.items():
        beats = 3 if number == 9 else 4
        # The pedal goes down just after the beat and up just before the next bar.
        part.control(bar(number) + 20, 64, 127)
        part.control(bar(number) + beats * QUARTER - 20, 64, 0)
        for eighth in range(2 * beats):
            pitch = chord[(0, 1, 2, 1, 2, 0, 1, 2)[eighth]]
            late = (7 * eighth + 3 * number) % 9
            velocity = 58 + 14 * (eighth % 4 == 0) + (5 * eighth + number) % 8
            # Longer than their eighths: notes of one pitch overlap.
            part.note(bar(number) + eighth * QUARTER // 2 + late, pitch, 5 * QUARTER // 4, velocity,
                      40 + (11 * eighth) % 50)
    return part


def strings():
    part = Part("Strings", 1)
    part.program(0, 49, msb=8)
    part.program(bar(10), 50, msb=8, lsb=1)
    for number, (_, chord) in CHORDS.items():
        beats = 3 if number == 9 else 4
        for voice, pitch in enumerate(chord):
            # Each chord reaches into the next one.
            part.note(bar(number) + 5 * voice, pitch - 12, beats * QUARTER + 60, 50 + 4 * voice, 20)
        step = 60 if number < 10 else 8
        part.curve(bar(number), beats * QUARTER, step, 11,
                   lambda x: 60 + 50 * math.sin(math.pi * x) ** 2)
    part.curve(bar(13), 4 * BAR, 30, 1, lambda x: 100 * x)
    return part


def lead():
    part = Part("Lead", 2)
    part.program(bar(2), 80, lsb=2)
    for control, value in ((101, 0), (100, 0), (6, 12), (38, 0)):  # bend range: an octave
        part.control(bar(2), control, value)
    for number, beat, pitch, beats in MELODY:
        start, length = bar(number, beat), round(beats * QUARTER)
        part.note(start, pitch, length - 15, 84 + (pitch * 5 + number) % 20, 70)
        if beats >= 1.5:
            scoop(part, start)
            vibrato(part, start + QUARTER, start + length - 30)
    part.curve(bar(16), BAR, 12, 7, lambda x: 100 * (1 - x))
    return part


def scoop(part, start):
    for step in range(16):
        part.bend(start + 4 * step, -1365 * (1 - step / 15))


def vibrato(part, start, end):
    for tick in range(start, end, 8):
        depth = min(1.0, (tick - start) / QUARTER)
        part.bend(tick, 220 * depth * math.sin(2 * math.pi * (tick - start) / 80))
        part.pressure(tick, 20 + 60 * depth)
    part.bend(end, 0)
    part.pressure(end, 0)


def bass():
    part = Part("Bass", 3)
    part.program(0, 33)
    for number, (root, _) in CHORDS.items():
        if number < 2:
            continue
        beats = 3 if number == 9 else 4
        for beat in range(beats):
            pitch = root + (0, 0, 7, 12)[beat]
            part.note(bar(number) + beat * QUARTER, pitch, QUARTER - 40, 88 - 6 * beat, 50)
        for step in range(12):
            part.pitch_pressure(bar(number) + 40 + 10 * step, root, 110 - 9 * step)
    return part


def drums():
    part = Part("Drums", 9)
    for number in range(3, 17):
        beats = 3 if number == 9 else 4
        for sixteenth in range(4 * beats):
            tick = bar(number) + sixteenth * QUARTER // 4
            if sixteenth % 8 in (0, 3):
                part.note(tick, 36, 60, 100 - sixteenth)
            if sixteenth % 8 == 4:
                part.note(tick, 38, 60, 96)
            part.note(tick, 42 if sixteenth % 4 else 44, 30, 40 + 12 * (sixteenth % 2 == 0))
    part.control(bar(17), 123, 0)  # all notes off: not for a clip
    return part


def main():
    path = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "demo.mid")
    tracks = [make() for make in (conductor, piano, strings, lead, bass, drums)]
    header = b"MThd" + (6).to_bytes(4, "big")
    for number in (1, len(tracks), QUARTER):
        header += number.to_bytes(2, "big")
    with open(path, "wb") as out:
        out.write(header + b"".join(track.bytes(END + QUARTER) for track in tracks))


if __name__ == "__main__":
    main()
