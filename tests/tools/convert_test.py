"""Tests of `vrad convert` and `vrad check`, called as convert_test.py TOOL.

What a MIDI file becomes on its way through a project is read a second time with mido, where that
is installed, and compared message by message with the file that it came from.
"""
import collections
import os
import re
import signal
import stat
import subprocess
import unittest

from tool_case import DEMO, NOTES, ROOT, Tool, header, track

try:
    import mido
except ImportError:
    mido = None
try:
    import resource
except ImportError:
    resource = None

# Nothing in it that a clip does not keep.
GOOD = header(0, 1, 480) + track([0, 0x90, 60, 80], [10, 0x80, 60, 64])

PACKAGE = "openttd-openmsx"


def real_files():
    listing = subprocess.run(["dpkg", "-L", PACKAGE], stdout=subprocess.PIPE,
                             stderr=subprocess.DEVNULL, text=True)
    return sorted(line for line in listing.stdout.splitlines() if line.endswith(".mid"))


class Messages:
    """What mido finds in a track that a clip keeps, with the tick of each.

    Of several values of one kind at one tick the last counts, notes are paired first in, first
    out, and bank selects count with the program change behind them. Packets of one sysex come back
    in one, so that only the bytes of all sysex together are compared.
    """

    def __init__(self, messages):
        self.found = collections.Counter()
        self.sysex = []
        self.values = {}
        self.open = collections.defaultdict(collections.deque)
        self.bank = collections.defaultdict(dict)
        tick = 0
        for message in messages:
            tick += message.time
            self.add(tick, message)
        self.found["sysex", tuple(self.sysex)] += 1
        for (channel, pitch), starts in self.open.items():
            for start, velocity in starts:
                self.found["note", start, tick, channel, pitch, velocity, 64] += 1
        for channel, bank in self.bank.items():
            if bank:
                last = max(at for at, _ in bank.values())
                self.values.setdefault((channel, "program", last), self.bank_of(bank))
        for place, value in self.values.items():
            if value != "":  # an empty name is none
                self.found[place + (value,)] += 1

    @staticmethod
    def bank_of(bank):
        return tuple((part, value) for part, (_, value) in sorted(bank.items()))

    def add(self, tick, message):
        kind = message.type
        if kind == "sysex":
            self.sysex += message.data
        elif kind in ("note_on", "note_off"):
            self.add_note(tick, message)
        elif kind == "control_change" and message.control in (0, 32):
            self.bank[message.channel][message.control] = (tick, message.value)
        elif kind == "control_change":
            if message.control < 120:
                self.values[message.channel, message.control, tick] = message.value
        elif kind == "program_change":
            bank = self.bank_of(self.bank[message.channel])
            self.bank[message.channel] = {}
            self.values[message.channel, "program", tick] = (message.program, bank)
        elif kind == "pitchwheel":
            self.values[message.channel, "bend", tick] = message.pitch
        elif kind == "aftertouch":
            self.values[message.channel, "pressure", tick] = message.value
        elif kind == "polytouch":
            self.values[message.channel, ("pressure", message.note), tick] = message.value
        elif kind == "track_name":
            self.values.setdefault(("name",), message.name)

    def add_note(self, tick, message):
        waiting = self.open[message.channel, message.note]
        if message.type == "note_on" and message.velocity > 0:
            waiting.append((tick, message.velocity))
        elif waiting:
            start, velocity = waiting.popleft()
            release = 64 if message.type == "note_on" else message.velocity
            self.found["note", start, tick, message.channel, message.note, velocity, release] += 1


def signatures(midi_file):
    """Tempo and time signatures of all tracks, the last one at a tick; keys of each track."""
    found = {}
    for number, messages in enumerate(midi_file.tracks):
        tick = 0
        for message in messages:
            tick += message.time
            if message.type == "set_tempo":
                found["tempo", tick] = message.tempo
            elif message.type == "time_signature":
                found["meter", tick] = (message.numerator, message.denominator,
                                        message.clocks_per_click,
                                        message.notated_32nd_notes_per_beat)
            elif message.type == "key_signature":
                found["key", number, tick] = message.key
    return found


class Converting(Tool):
    def convert(self, source, target, status=0):
        path = os.path.join(self.folder, target)
        code, out, err = self.run_tool("convert", source, path)
        self.assertEqual((code, out), (status, ""), err)
        return path, err

    def there_and_back(self, source):
        project, err = self.convert(source, "there.vrad")
        self.assertEqual(err, self.not_kept_of(source))
        back, err = self.convert(project, "back.mid")
        self.assertEqual(err, "")
        return project, back

    def not_kept_of(self, source):
        """What must be told of a MIDI file, by what `vrad info` says of it."""
        status, out, err = self.run_tool("info", source)
        self.assertEqual((status, err), (0, ""))
        lines = re.findall(r"^ +(\d+)  (.*) \((first at offset 0x[0-9a-f]+)\)$", out, re.M)
        self.assertEqual(bool(lines), "not kept in clips: nothing\n" not in out)
        return "".join(f"vrad: {source}: not kept: {count} x {what}, {place}\n"
                       for count, what, place in lines)

    def events_of(self, path):
        status, out, err = self.run_tool("events", path, "--as", "jsonl")
        self.assertEqual((status, err), (0, ""))
        return out

    def check_with_mido(self, source, back):
        before, after = mido.MidiFile(source), mido.MidiFile(back)
        self.assertEqual(after.ticks_per_beat, before.ticks_per_beat)
        self.assertEqual(len(after.tracks), len(before.tracks))
        for old, new in zip(before.tracks, after.tracks):
            old, new = Messages(old).found, Messages(new).found
            self.assertEqual((old - new, new - old), ({}, {}), source)
        self.assertEqual(signatures(after), signatures(before), source)

    def check_file(self, source):
        project, back = self.there_and_back(source)
        events = self.events_of(source)
        self.assertTrue(events)
        self.assertEqual(self.events_of(project), events)
        self.assertEqual(self.events_of(back), events)
        if mido:
            self.check_with_mido(source, back)

    def test_keeps_every_event_of_the_demo(self):
        self.check_file(os.path.join(ROOT, DEMO))

    def test_keeps_every_event_of_a_small_file(self):
        self.check_file(self.write("notes.mid", NOTES))

    @unittest.skipUnless(real_files(), f"the package {PACKAGE} is not installed")
    def test_keeps_every_event_of_real_files(self):
        for path in real_files():
            with self.subTest(path):
                self.check_file(path)

    def test_writes_the_same_bytes_again(self):
        project, back = self.there_and_back(os.path.join(ROOT, DEMO))
        for source, target in ((back, "again.vrad"), (project, "again.mid")):
            again, _ = self.convert(source, target)
            if target == "again.mid":
                with open(again, "rb") as one, open(back, "rb") as other:
                    self.assertEqual(one.read(), other.read())

    def test_converts_to_its_own_kind(self):
        source = self.write("notes.mid", NOTES)
        self.assertIn("not kept: 1 x lyric, first at offset 0x", self.not_kept_of(source))
        project, back = self.there_and_back(source)
        for source, target in ((project, "copy.vrad"), (back, "copy.mid")):
            copy, _ = self.convert(source, target)
            with open(copy, "rb") as one, open(source, "rb") as other:
                self.assertEqual(one.read(), other.read())

    def test_takes_endings_in_any_case(self):
        source = self.write("notes.mid", NOTES)
        upper, _ = self.convert(source, "A.VRAD")
        self.assertEqual(self.run_tool("check", upper)[0], 0)
        back, _ = self.convert(upper, "A.MIDI")
        self.assertEqual(self.events_of(back), self.events_of(source))

    def test_replaces_an_old_file(self):
        source, old = self.write("notes.mid", NOTES), self.write("old.vrad", b"old")
        self.convert(source, "old.vrad")
        self.assertEqual(self.run_tool("check", old), (0, f"{old}: good, 2 clips\n", ""))
        self.assertEqual(sorted(os.listdir(self.folder)), ["notes.mid", "old.vrad"])

    def test_converts_a_file_in_its_place(self):
        source = self.write("notes.mid", NOTES)
        events = self.events_of(source)
        for _ in range(2):
            self.convert(source, "notes.mid")
            self.assertEqual(self.events_of(source), events)
        self.assertEqual(os.listdir(self.folder), ["notes.mid"])

    def test_goes_through_links(self):
        source = self.write("notes.mid", NOTES)
        for name, target in (("in.mid", source), ("out.vrad", self.write("real.vrad", b"old")),
                             ("loose.vrad", os.path.join(self.folder, "made.vrad"))):
            os.symlink(os.path.basename(target), os.path.join(self.folder, name))
        for name, target in (("out.vrad", "real.vrad"), ("loose.vrad", "made.vrad")):
            self.convert(os.path.join(self.folder, "in.mid"), name)
            path = os.path.join(self.folder, name)
            self.assertTrue(os.path.islink(path))
            self.assertFalse(os.path.islink(os.path.join(self.folder, target)))
            self.assertEqual(self.events_of(path), self.events_of(source))

    def test_keeps_the_rights_of_an_old_file(self):
        source, old = self.write("notes.mid", NOTES), self.write("old.vrad", b"old")
        os.chmod(old, 0o640)
        self.convert(source, "old.vrad")
        self.assertEqual(os.stat(old).st_mode & 0o777, 0o640)

    def test_converts_what_is_whole_of_a_damaged_file(self):
        source = self.write("damaged.mid", NOTES[:-40])
        path, err = self.convert(source, "rest.vrad", status=1)
        self.assertIn(f"vrad: {source}: offset 0x", err)
        self.assertEqual(self.run_tool("check", path)[0], 0)


class BadConversions(Tool):
    def test_unknown_endings(self):
        source = self.write("notes.mid", NOTES)
        for name in ("out.wav", "out", "mid", ".mid.txt"):
            path = os.path.join(self.folder, name)
            self.expect_usage_error(["convert", source, path],
                                    f"OUT: '{path}' ends neither in .vrad nor in .mid")
            self.assertFalse(os.path.exists(path))

    def test_too_few_or_too_many_words(self):
        for words in (["convert"], ["convert", "a.mid"], ["convert", "a.mid", "b.mid", "c.mid"]):
            status, out, err = self.run_tool(*words)
            self.assertEqual((status, out), (2, ""), words)
            self.assertTrue(err.startswith("vrad: "), err)

    def test_a_source_that_is_missing(self):
        self.expect(["convert", "no.mid", os.path.join(self.folder, "out.vrad")], 1, "",
                    "vrad: no.mid: No such file or directory\n")
        self.assertEqual(os.listdir(self.folder), [])

    def test_a_source_that_is_no_music(self):
        source = self.write("text.vrad", b"no music")
        self.expect(["convert", source, os.path.join(self.folder, "out.mid")], 1, "",
                    f"vrad: {source}: offset 0x0: no record of a project is in it\n")
        self.assertEqual(os.listdir(self.folder), ["text.vrad"])

    def test_a_source_whose_ending_is_wrong(self):
        out = os.path.join(self.folder, "out.mid")
        notes = self.write("notes.vrad", NOTES)
        self.expect(["convert", notes, out], 1, "",
                    f"vrad: {notes}: offset 0x0: no record of a project is in it; "
                    "it is a MIDI file, whose name ends in .mid\n")
        os.rename(notes, os.path.join(self.folder, "notes.mid"))
        project = os.path.join(self.folder, "project.vrad")
        self.run_tool("convert", os.path.join(self.folder, "notes.mid"), project)
        wrong = os.path.join(self.folder, "project.mid")
        os.rename(project, wrong)
        self.expect(["convert", wrong, out], 1, "",
                    f"vrad: {wrong}: offset 0x0: not a Standard MIDI File: it does not begin with "
                    "MThd; it is a project, whose name ends in .vrad\n")
        self.assertFalse(os.path.exists(out))

    def test_a_source_that_is_empty_or_a_folder(self):
        out = os.path.join(self.folder, "out.vrad")
        for name, why in (("empty.mid", "offset 0x0: not a Standard MIDI File: it does not "
                           "begin with MThd"),
                          ("empty.vrad", "offset 0x0: no record of a project is in it")):
            empty = self.write(name, b"")
            self.expect(["convert", empty, out], 1, "", f"vrad: {empty}: {why}\n")
        for name in ("folder.mid", "folder.vrad"):
            folder = os.path.join(self.folder, name)
            os.mkdir(folder)
            self.expect(["convert", folder, out], 1, "", f"vrad: {folder}: Is a directory\n")
        self.assertFalse(os.path.exists(out))

    def test_a_target_that_cannot_be_written(self):
        source = self.write("good.mid", GOOD)
        for name in ("no/such/folder/out.vrad", "no/such/folder/out.mid"):
            target = os.path.join(self.folder, name)
            self.expect(["convert", source, target], 1, "",
                        f"vrad: {target}: No such file or directory\n")

    def test_a_device_as_target(self):
        source = self.write("good.mid", GOOD)
        for name in ("full.vrad", "full.mid"):
            target = os.path.join(self.folder, name)
            os.symlink("/dev/full", target)
            self.expect(["convert", source, target], 1, "",
                        f"vrad: {target}: Not a regular file\n")
            self.assertTrue(os.path.islink(target))
        self.assertTrue(stat.S_ISCHR(os.stat("/dev/full").st_mode))

    @unittest.skipUnless(resource, "this system has no limits on files")
    def test_a_full_disk(self):
        source, old = self.write("good.mid", GOOD), self.write("old.vrad", b"old")
        limit = lambda: (signal.signal(signal.SIGXFSZ, signal.SIG_IGN),
                         resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100)))
        self.assertEqual(self.run_tool("convert", source, old, preexec_fn=limit),
                         (1, "", f"vrad: {old}: File too large\n"))
        with open(old, "rb") as file:
            self.assertEqual(file.read(), b"old")
        self.assertEqual(sorted(os.listdir(self.folder)), ["good.mid", "old.vrad"])

    def test_a_folder_as_target(self):
        source = self.write("good.mid", GOOD)
        target = os.path.join(self.folder, "folder.vrad")
        os.mkdir(target)
        self.expect(["convert", source, target], 1, "", f"vrad: {target}: Is a directory\n")
        self.assertEqual(sorted(os.listdir(self.folder)), ["folder.vrad", "good.mid"])
        self.assertEqual(os.listdir(target), [])


class Checking(Tool):
    def make_project(self):
        project = os.path.join(self.folder, "notes.vrad")
        self.assertEqual(self.run_tool("convert", self.write("notes.mid", NOTES), project)[0], 0)
        with open(project, "rb") as file:
            return project, file.read()

    def test_good_files(self):
        project, _ = self.make_project()
        notes = os.path.join(self.folder, "notes.mid")
        self.expect(["check", project, notes], 0,
                    f"{project}: good, 2 clips\n{notes}: good, 2 clips\n")

    def test_a_damaged_record(self):
        _, contents = self.make_project()
        at = contents.rindex(b"\x08vradClip")
        damaged = bytearray(contents)
        damaged[at + 60] ^= 1
        path = self.write("damaged.vrad", damaged)
        self.expect(["check", path], 1, f"{path}: 2 problems, 1 clip could be read\n",
                    f"vrad: {path}: offset {at:#x}: record 'vradClip' is damaged\n"
                    f"vrad: {path}: offset {len(contents):#x}: 1 of 2 clips could be read\n")

    def test_a_damaged_header(self):
        _, contents = self.make_project()
        at = contents.index(b"\x08vradTmpo")
        damaged = contents[:at + 3] + b"?" + contents[at + 4:]
        path = self.write("damaged.vrad", damaged)
        status, out, err = self.run_tool("check", path)
        self.assertEqual((status, out), (1, f"{path}: 1 problem, 2 clips could be read\n"))
        self.assertRegex(err, f"^vrad: .*: offset {at:#x}: [0-9]+ bytes are no record\n$")

    def test_a_project_cut_short(self):
        _, contents = self.make_project()
        path = self.write("cut.vrad", contents[:-1])
        at = contents.rindex(b"\x08vradLast")
        self.expect(["check", path], 1, f"{path}: 2 problems, 2 clips could be read\n",
                    f"vrad: {path}: offset {at:#x}: record 'vradLast' is cut short\n"
                    f"vrad: {path}: offset {len(contents) - 1:#x}: "
                    "the end of the file is missing\n")

    def test_a_damaged_midi_file(self):
        path = self.write("damaged.mid", NOTES[:-40])
        status, out, err = self.run_tool("check", path)
        self.assertEqual(status, 1)
        self.assertRegex(out, "problems?, 2 clips could be read\n$")
        self.assertIn(f"vrad: {path}: offset 0x", err)

    def test_one_bad_file_among_good_ones(self):
        project, _ = self.make_project()
        bad = self.write("bad.mid", b"no music")
        self.expect(["check", bad, project], 1,
                    f"{bad}: can't be read\n{project}: good, 2 clips\n",
                    f"vrad: {bad}: offset 0x0: not a Standard MIDI File: "
                    "it does not begin with MThd\n")

    def test_an_empty_project_file(self):
        path = self.write("empty.vrad", b"")
        self.expect(["check", path], 1, f"{path}: can't be read\n",
                    f"vrad: {path}: offset 0x0: no record of a project is in it\n")


class WhatAMidiFileCannotKeep(Tool):
    def test_is_listed(self):
        edited = os.path.join(self.folder, "muted.vrad")
        notes = self.write("notes.mid", NOTES)
        self.assertEqual(self.run_tool("convert", notes, edited)[0], 0)
        with open(edited, "rb") as file:
            contents = file.read()
        muted = os.path.join(self.folder, "muted.mid")
        self.write("muted.vrad", mute_a_note(contents))
        self.expect(["convert", edited, muted], 0, "",
                    f"vrad: {muted}: not kept: 1 x muted note, left out, first clip 1 at 0t\n")


def mute_a_note(contents):
    """The project with the mute flag of the first note of its last clip set, and its sum."""
    import zlib
    at = contents.rindex(b"\x08vradClip")
    size = int.from_bytes(contents[at + 11:at + 19], "little")
    record = bytearray(contents[at:at + 19 + size])
    notes = record.index(b"\x05VrNLB")
    count = int.from_bytes(record[notes + 16:notes + 20], "little")
    record[notes + 20 + count * 35 + 8 + count * 11 + 10] = 1
    record[23:27] = zlib.crc32(record[27:]).to_bytes(4, "little")
    return contents[:at] + bytes(record) + contents[at + 19 + size:]


if __name__ == "__main__":
    if not mido:
        print("without mido (Debian: python3-mido): messages are compared by the tool alone")
    unittest.main()
