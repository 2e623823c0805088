#!/usr/bin/env python3
"""Reads real MIDI files a second time, with mido, and compares.

For each file it works out from mido's messages which events every clip must hold, and what must be
reported as not kept, and wants exactly that from `vrad events --as jsonl` and `vrad info`: every
event, in the right clip, at the right time, and no other; every message that is in no clip, under
its name, and no other.

The files come from the Debian package openttd-openmsx, where it is installed or can be downloaded;
one more is made at random, since real ones hold no pressure of single keys and few release
velocities.
Ends with status 77, after a line that says why, when mido or the files cannot be had.

Usage: check_against_mido.py TOOL [FILE...]
"""
import collections
import glob
import json
import os
import random
import re
import subprocess
import sys
import tempfile

SKIPPED = 77
PACKAGE = "openttd-openmsx"
TICKS_PER_BEAT = 960000

NOT_KEPT = {
    "sequence_number": "sequence number", "text": "text", "copyright": "copyright notice",
    "instrument_name": "instrument name", "lyrics": "lyric", "marker": "marker",
    "cue_marker": "cue point", "device_name": "device name", "channel_prefix": "channel prefix",
    "midi_port": "port", "smpte_offset": "SMPTE offset",
    "sequencer_specific": "sequencer-specific meta event",
}


def to_tick(tick, division):
    """The nearest library tick, ties upward."""
    return (2 * tick * TICKS_PER_BEAT + division) // (2 * division)


class Channel:
    """What one channel of one track must come to."""

    def __init__(self, not_kept):
        self.not_kept = not_kept
        self.open = collections.defaultdict(collections.deque)
        self.notes = []
        self.values = {}  # (stream, tick): event
        self.bank = {}  # part: (value, tick)

    def note_on(self, tick, pitch, velocity):
        note = {"time": tick, "kind": 3, "name": "NoteWithDuration", "pitch": pitch,
                "on": velocity, "off": 64, "duration": None, "duration_unit": "t"}
        self.notes.append(note)
        self.open[pitch].append(note)

    def note_off(self, tick, pitch, velocity):
        if not self.open[pitch]:
            self.not_kept["note-off without a note-on"] += 1
            return
        note = self.open[pitch].popleft()
        note["duration"] = max(1, tick - note["time"])
        note["off"] = velocity

    def value(self, tick, stream, event):
        if (stream, tick) in self.values:
            self.not_kept["value replaced by a later one at the same tick"] += 1
        self.values[stream, tick] = dict(event, time=tick)

    def controller(self, tick, number, value):
        if number in (0, 32):
            part = "bank_msb" if number == 0 else "bank_lsb"
            if part in self.bank:
                self.not_kept["bank select replaced before a program change"] += 1
            self.bank[part] = (value, tick)
        elif number >= 120:
            self.not_kept["channel mode message (controllers 120 to 127)"] += 1
        else:
            self.value(tick, ("controller", number),
                       {"kind": 5, "name": "Controller", "number": number, "value": value})

    def take_bank(self):
        parts = {part: value for part, (value, _) in self.bank.items()}
        self.bank = {}
        return dict(parts, kind=6, name="Program")

    def program(self, tick, program):
        self.value(tick, "program", dict(self.take_bank(), program=program))

    def end(self, tick):
        for note in self.notes:
            if note["duration"] is None:
                note["duration"] = max(1, tick - note["time"])
        if not self.bank:
            return
        bank_tick = max(at for _, at in self.bank.values())
        if ("program", bank_tick) in self.values:
            self.not_kept["bank select behind a program change at the same tick"] += len(self.bank)
        else:
            self.value(bank_tick, "program", self.take_bank())

    def events(self):
        return self.notes + list(self.values.values())


class Expectation:
    """What a whole file must come to, by mido's account."""

    def __init__(self, path):
        import mido
        midi_file = mido.MidiFile(path)
        self.division = midi_file.ticks_per_beat
        self.not_kept = collections.Counter()
        self.num_messages = collections.Counter()
        self.events = []
        self.tempos = collections.Counter()
        self.signatures = collections.Counter()
        self.keys = collections.Counter()  # by tick and track
        self.num_clips = 0
        for number, track in enumerate(midi_file.tracks):
            self.add_track(number, track)
        for found, name in ((self.tempos, "tempo"), (self.signatures, "time signature"),
                            (self.keys, "key signature")):
            earlier = sum(count - 1 for count in found.values())
            if earlier:
                self.not_kept[name + " replaced by a later one at the same tick"] += earlier

    def add_track(self, number, track):
        channels = collections.defaultdict(lambda: Channel(self.not_kept))
        sysex, has_name, file_tick = [], False, 0
        for message in track:
            file_tick += message.time
            tick = to_tick(file_tick, self.division)
            self.num_messages[message.type] += 1
            if message.is_meta:
                self.add_meta(number, tick, message, has_name)
                has_name = has_name or message.type == "track_name"
            elif message.type == "sysex":
                sysex.append(self.make_sysex(tick, message.data))
            else:
                self.add_message(tick, channels[message.channel], message)
        for channel in channels.values():
            channel.end(tick)
        clips = [(key, channels[key].events()) for key in sorted(channels)] + [(None, sysex)]
        for channel, events in clips:
            if not events:
                continue
            for event in events:
                event.update(clip=self.num_clips, track=number, channel=channel, unit="t")
            self.events += events
            self.num_clips += 1

    def add_message(self, tick, channel, message):
        kind = message.type
        if kind == "note_on" and message.velocity > 0:
            channel.note_on(tick, message.note, message.velocity)
        elif kind == "note_on":
            channel.note_off(tick, message.note, 64)
        elif kind == "note_off":
            channel.note_off(tick, message.note, message.velocity)
        elif kind == "control_change":
            channel.controller(tick, message.control, message.value)
        elif kind == "program_change":
            channel.program(tick, message.program)
        elif kind == "pitchwheel":
            channel.value(tick, "bend", {"kind": 4, "name": "PitchBend", "bend": message.pitch})
        elif kind == "aftertouch":
            channel.value(tick, "mono",
                          {"kind": 7, "name": "MonoPressure", "pressure": message.value})
        elif kind == "polytouch":
            channel.value(tick, ("poly", message.note), {
                "kind": 8, "name": "PolyPressure", "pitch": message.note,
                "pressure": message.value})
        else:
            sys.exit(f"a message of kind {kind}, which no file should hold")

    @staticmethod
    def make_sysex(tick, data):
        long = len(data) > 14
        return {"time": tick, "kind": 15 if long else 14,
                "name": "LongSysex" if long else "ShortSysex",
                "data": " ".join("%02x" % byte for byte in data)}

    def add_meta(self, number, tick, message, has_name):
        kind = message.type
        if kind == "set_tempo":
            self.tempos[tick] += 1
        elif kind == "time_signature":
            self.signatures[tick] += 1
        elif kind == "key_signature":
            self.keys[tick, number] += 1
        elif kind == "track_name":
            if has_name:
                self.not_kept["further track name"] += 1
        elif kind == "unknown_meta":
            self.not_kept["unknown meta event 0x%02x" % message.type_byte] += 1
        elif kind != "end_of_track":
            self.not_kept[NOT_KEPT[kind]] += 1


def run(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                          timeout=300)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command)}: status {done.returncode}: {done.stderr}")
    return done.stdout


def reported_not_kept(tool, path):
    """The lines of `vrad info` below "not kept in clips:", as a count by name."""
    text = run(tool, "info", path)
    section = text.split("\nnot kept in clips:", 1)[1].split("\n\n")[0]
    found = re.findall(r"^ *(\d+)  (.*) \(first at offset 0x[0-9a-f]+\)$", section, re.MULTILINE)
    return collections.Counter({name: int(count) for count, name in found})


def as_lines(events):
    return collections.Counter(json.dumps(event, sort_keys=True) for event in events)


def show_difference(what, expected, actual):
    for sign, missing in (("missing", expected - actual), ("too many", actual - expected)):
        for line, count in list(missing.items())[:10]:
            print(f"  {what}, {sign}: {count} x {line}")


def check(tool, path):
    expectation = Expectation(path)
    expected = as_lines(expectation.events)
    lines = run(tool, "events", path, "--as", "jsonl").splitlines()
    actual = as_lines(json.loads(line) for line in lines)
    not_kept = reported_not_kept(tool, path)
    is_right = expected == actual and expectation.not_kept == not_kept
    print(f"{'ok' if is_right else 'WRONG'}  {os.path.basename(path)}: "
          f"{sum(expectation.num_messages.values())} messages, {len(lines)} events, "
          f"{expectation.num_clips} clips, {sum(not_kept.values())} not kept")
    show_difference("events", expected, actual)
    show_difference("not kept", expectation.not_kept, not_kept)
    return is_right


def midi_files_below(folder):
    return sorted(glob.glob(os.path.join(folder, "**", "*.mid"), recursive=True))


def installed_files():
    listing = subprocess.run(["dpkg", "-L", PACKAGE], stdout=subprocess.PIPE,
                             stderr=subprocess.DEVNULL, text=True)
    return sorted(line for line in listing.stdout.splitlines() if line.endswith(".mid"))


def downloaded_files(folder):
    commands = (["apt-get", "download", PACKAGE], ["sh", "-c", f"dpkg -x {PACKAGE}_*.deb files"])
    for command in commands:
        try:
            subprocess.run(command, cwd=folder, check=True, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL, timeout=120)
        except (OSError, subprocess.SubprocessError):
            return []
    return midi_files_below(folder)


def skip(why):
    print(f"skipped: {why}")
    sys.exit(SKIPPED)


def make_file(path):
    """Whatever a channel can say, at random but the same each time; two tracks share a channel."""
    import mido
    dice = random.Random(20261121)
    made = mido.MidiFile(ticks_per_beat=96)
    for channel in (0, 3, 3, 9):
        track = mido.MidiTrack()
        made.tracks.append(track)
        for _ in range(3000):
            track.append(random_message(mido.Message, dice, channel))
    made.save(path)


def random_message(message, dice, channel):
    pitch, value = dice.randrange(40, 60), dice.randrange(128)
    kind, numbers = dice.choice([
        ("note_on", {"note": pitch, "velocity": value}),
        ("note_on", {"note": pitch, "velocity": 100}),
        ("note_off", {"note": pitch, "velocity": value}),
        ("note_off", {"note": pitch, "velocity": 64}),
        ("control_change", {"control": dice.randrange(128), "value": value}),
        ("control_change", {"control": dice.choice((0, 6, 32, 38, 64, 98, 99, 100, 101, 121)),
                            "value": value}),
        ("program_change", {"program": value}),
        ("pitchwheel", {"pitch": dice.randrange(-8192, 8192)}),
        ("aftertouch", {"value": value}),
        ("polytouch", {"note": pitch, "value": value}),
    ])
    return message(kind, channel=channel, time=dice.choice((0, 0, 0, 1, 2, 50)), **numbers)


def main(check_file):
    tool, paths = sys.argv[1], sys.argv[2:]
    try:
        import mido  # noqa: F401
    except ImportError:
        skip("this Python has no mido (Debian: python3-mido)")
    with tempfile.TemporaryDirectory() as folder:
        try:
            paths = paths or installed_files() or downloaded_files(folder)
        except OSError:
            paths = []
        if not paths:
            skip(f"the package {PACKAGE} is not installed and cannot be downloaded")
        made = os.path.join(folder, "random.mid")
        make_file(made)
        results = [check_file(tool, path) for path in [made] + paths]
    print(f"{sum(results)} of {len(results)} files as expected")
    sys.exit(0 if all(results) else 1)


if __name__ == "__main__":
    main(check)
