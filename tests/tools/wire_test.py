#!/usr/bin/env python3
"""Looks at the messages that a player sends, as `vrad wire` prints them, to the letter.

Usage: wire_test.py TOOL [unittest options]
"""
import json
import unittest

from tool_case import DEMO, NOTES, Tool, header, track

NOTES_ON_THE_WIRE = """\
{"clip":0,"track":0,"channel":null,"time":0,"unit":"t","bytes":"f0 41 7f f7"}
{"clip":0,"track":0,"channel":null,"time":0,"unit":"t","bytes":"f0 00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f f7"}
{"clip":1,"track":1,"channel":1,"time":0,"unit":"t","bytes":"b1 00 03"}
{"clip":1,"track":1,"channel":1,"time":0,"unit":"t","bytes":"b1 20 04"}
{"clip":1,"track":1,"channel":1,"time":0,"unit":"t","bytes":"c1 09"}
{"clip":1,"track":1,"channel":1,"time":0,"unit":"t","bytes":"b1 07 64"}
{"clip":1,"track":1,"channel":1,"time":0,"unit":"t","bytes":"e1 00 40"}
{"clip":1,"track":1,"channel":1,"time":0,"unit":"t","bytes":"91 3c 50"}
{"clip":1,"track":1,"channel":1,"time":960000,"unit":"t","bytes":"d1 32"}
{"clip":1,"track":1,"channel":1,"time":960000,"unit":"t","bytes":"a1 3e 33"}
{"clip":1,"track":1,"channel":1,"time":960000,"unit":"t","bytes":"81 3c 21"}
{"clip":1,"track":1,"channel":1,"time":960000,"unit":"t","bytes":"91 3e 51"}
{"clip":1,"track":1,"channel":1,"time":2880000,"unit":"t","bytes":"b1 07 5a"}
{"clip":1,"track":1,"channel":1,"time":2880000,"unit":"t","bytes":"91 3e 00"}
"""


def file_ticks(count):
    """A delta time."""
    result = [count & 0x7F]
    while count > 0x7F:
        count >>= 7
        result.insert(0, 0x80 | count & 0x7F)
    return result


class Wire(Tool):
    def wire(self, contents, *options):
        """(time, bytes) of each message."""
        path = self.write("it.mid", contents)
        status, out, err = self.run_tool("wire", path, "--as", "jsonl", *options)
        self.assertEqual((status, err), (0, ""))
        messages = [json.loads(line) for line in out.splitlines()]
        self.assertEqual({message["unit"] for message in messages} - {"t"}, set())
        return [(message["time"], message["bytes"]) for message in messages]

    def bytes_of(self, contents, *options):
        return [message for _, message in self.wire(contents, *options)]


class Messages(Wire):
    def test_jsonl(self):
        self.expect(["wire", self.write("notes.mid", NOTES), "--as", "jsonl"], 0,
                    NOTES_ON_THE_WIRE)

    def test_text_unless_told(self):
        self.expect(["wire", self.write("notes.mid", NOTES)], 0, """\
clip 0: track 0, no channel, Piece
 bar:beat:tick            time
    1:1:000000              0t  f0 41 7f..  sysex       2 bytes: 41 7f
    1:1:000000              0t  f0 00 01..  sysex       16 bytes: 00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f

clip 1: track 1, channel 1
 bar:beat:tick            time
    1:1:000000              0t  b1 00 03    cc0         3
    1:1:000000              0t  b1 20 04    cc32        4
    1:1:000000              0t  c1 09       program     9
    1:1:000000              0t  b1 07 64    cc7         100
    1:1:000000              0t  e1 00 40    bend        +0
    1:1:000000              0t  91 3c 50    note on     60 C4    velocity 80
    1:2:000000         960000t  d1 32       pressure    50
    1:2:000000         960000t  a1 3e 33    pressure    62 D4    51
    1:2:000000         960000t  81 3c 21    note off    60 C4    velocity 33
    1:2:000000         960000t  91 3e 51    note on     62 D4    velocity 81
    2:1:000000        2880000t  b1 07 5a    cc7         90
    2:1:000000        2880000t  91 3e 00    note off    62 D4    velocity 64
""")

    def test_times_are_exact_to_the_tick(self):
        # 24 file ticks to the beat at 137 beats a minute: a sample is some 45.7 ticks.
        contents = header(0, 1, 24) + track(
            [0, 0xFF, 0x51, 3, 0x06, 0xAE, 0x14], [1, 0x90, 60, 1], [1, 61, 1], [0, 0xB0, 7, 1],
            [1, 0x80, 60, 2], [1, 61, 3])
        self.assertEqual(self.wire(contents), [
            (40000, "90 3c 01"), (80000, "b0 07 01"), (80000, "90 3d 01"), (120000, "80 3c 02"),
            (160000, "80 3d 03")])

    def test_note_of_no_length_ends_a_tick_later(self):
        contents = header(0, 1, 480) + track([0, 0x90, 60, 9], [0, 0x80, 60, 8])
        self.assertEqual(self.wire(contents), [(0, "90 3c 09"), (1, "80 3c 08")])

    def test_overlapping_notes_of_a_pitch_each_end(self):
        contents = header(0, 1, 480) + track([0, 0x90, 60, 9], [10, 60, 10], [10, 0x80, 60, 1],
                                             [10, 60, 2])
        self.assertEqual(self.wire(contents), [
            (0, "90 3c 09"), (20000, "90 3c 0a"), (40000, "80 3c 01"), (60000, "80 3c 02")])

    def test_a_long_sysex_is_whole(self):
        contents = bytes(n % 128 for n in range(100000))
        length = bytes(file_ticks(len(contents) + 1))
        sent = self.bytes_of(header(0, 1, 480) + track([0, 0xF0], length, contents, [0xF7]))
        self.assertEqual(sent, [(b"\xf0" + contents + b"\xf7").hex(" ")])

    def test_parameters_are_selected_before_their_data(self):
        contents = header(0, 1, 480) + track(
            [0, 0xB0, 101, 0], [0, 100, 0], [0, 6, 12], [0, 7, 90], [10, 0x90, 60, 9],
            [10, 0x80, 60, 8])
        self.assertEqual(self.bytes_of(contents, "--from", "30000t"),
                         ["b0 07 5a", "b0 65 00", "b0 64 00", "b0 06 0c", "90 3c 09", "80 3c 08"])

    def test_two_clips_of_a_channel(self):
        contents = header(1, 2, 480) + track([0, 0x90, 60, 9], [10, 0x80, 60, 1]) + track(
            [5, 0x90, 60, 8], [10, 0x80, 60, 2])
        self.assertEqual(self.wire(contents), [
            (0, "90 3c 09"), (20000, "80 3c 01"), (10000, "90 3c 08"), (30000, "80 3c 02")])

    def test_events_far_apart(self):
        # Some 40 hours.
        far = [0xFF, 0xFF, 0xFF, 0x7F]
        contents = header(0, 1, 1000) + track([0, 0x90, 60, 9], far + [0x80, 60, 1])
        self.assertEqual(self.wire(contents), [(0, "90 3c 09"), (257698036800, "80 3c 01")])

    def test_file_without_clips(self):
        self.expect(["wire", self.write("none.mid", header(0, 1, 480) + track())], 0, "")


class Ranges(Wire):
    def test_starts_with_what_is_in_force_and_sounds(self):
        self.assertEqual(self.wire(NOTES, "--from", "1:3", "--clip", "1"), [
            (1920000, "b1 00 03"), (1920000, "b1 20 04"), (1920000, "c1 09"),
            (1920000, "b1 07 64"), (1920000, "e1 00 40"), (1920000, "d1 32"),
            (1920000, "a1 3e 33"), (1920000, "91 3e 51"), (2880000, "b1 07 5a"),
            (2880000, "91 3e 00")])

    def test_ends_what_sounds(self):
        self.assertEqual(self.wire(NOTES, "--to", "480000t", "--filter", "notes"),
                         [(0, "91 3c 50"), (480000, "81 3c 21")])

    def test_ends_with_pedals_bend_and_pressures_at_rest(self):
        contents = header(0, 1, 480) + track(
            [0, 0xB0, 64, 127], [0, 66, 1], [0, 67, 64], [0, 69, 127], [0, 7, 100],
            [0, 0xE0, 1, 2], [0, 0xD0, 9], [0, 0xA0, 60, 8], [100, 0x90, 60, 1], [1, 60, 0])
        self.assertEqual(sorted(self.bytes_of(contents, "--from", "10t", "--to", "100000t")[8:]), [
            "a0 3c 00", "b0 40 00", "b0 42 00", "b0 43 00", "b0 45 00", "d0 00", "e0 00 40"])

    def test_a_range_is_exact_to_the_sample(self):
        # 40 ticks to the sample: 959999 lies in the one before 960000.
        self.assertEqual(self.wire(NOTES, "--from", "959999t", "--filter", "notes"),
                         self.wire(NOTES, "--from", "959960t", "--filter", "notes"))
        self.assertEqual(self.wire(NOTES, "--from", "959999t", "--filter", "notes")[0],
                         (959960, "91 3c 50"))

    def test_empty_range(self):
        for start, end in (("960000t", "960000t"), ("960001t", "960039t"), ("100:1", "101:1")):
            self.assertEqual(self.wire(NOTES, "--from", start, "--to", end), [])

    def test_ranges_beyond_all_music(self):
        whole = self.wire(NOTES, "--filter", "notes,cc,program")
        self.assertEqual(self.wire(NOTES, "--filter", "notes,cc,program", "--from=-1000t", "--to",
                                   "2305843009213693952t"), whole)

    def test_offset_and_window_are_of_what_is_printed(self):
        self.assertEqual(self.wire(NOTES, "--offset", "960000t", "--filter", "notes"), [
            (-960000, "91 3c 50"), (0, "81 3c 21"), (0, "91 3e 51"), (1920000, "91 3e 00")])
        self.assertEqual(self.wire(NOTES, "--offset", "960000t", "--window", "0t..1920000t",
                                   "--filter", "notes"), [(0, "81 3c 21"), (0, "91 3e 51")])

    def test_filter(self):
        for words, messages in (
                ("notes", ["91 3c 50", "81 3c 21", "91 3e 51", "91 3e 00"]),
                ("bend", ["e1 00 40"]), ("program", ["b1 00 03", "b1 20 04", "c1 09"]),
                ("mono", ["d1 32"]), ("poly", ["a1 3e 33"]), ("cc", ["b1 07 64", "b1 07 5a"]),
                ("cc7", ["b1 07 64", "b1 07 5a"]), ("cc64", [])):
            self.assertEqual(self.bytes_of(NOTES, "--filter", words), messages, words)
        self.assertEqual(len(self.wire(NOTES, "--filter", "sysex")), 2)

    def test_clip_selects_one(self):
        lines = NOTES_ON_THE_WIRE.splitlines(True)
        path = self.write("notes.mid", NOTES)
        self.expect(["wire", path, "--as", "jsonl", "--clip", "0"], 0, "".join(lines[:2]))
        self.expect(["wire", path, "--as", "jsonl", "--clip", "1"], 0, "".join(lines[2:]))

    def test_options_that_change_nothing(self):
        whole = self.wire(NOTES)
        self.assertEqual(self.wire(NOTES, "--skip-muted"), whole)
        self.assertEqual(self.wire(NOTES, "--note-offs", "last"), whole)


class BadCommandLines(Tool):
    def test_are_those_of_events(self):
        path = self.write("notes.mid", NOTES)
        self.expect_usage_error(["wire", path, "--from", "2:1", "--to", "1:1"],
                                "--from lies after --to")
        self.expect_usage_error(["wire", path, "--clip", "2"], "--clip: the file has clips 0 to 1")
        self.expect_usage_error(["wire", path, "--from", "x"],
                                "--from: 'x' is not a position such as 960000t, 48000s, 12.5sec or "
                                "BAR:BEAT[:TICK]")

    def test_bad_file(self):
        self.expect(["wire", "none.mid"], 1, "", "vrad: none.mid: No such file or directory\n")

    def test_damaged_file_is_played_as_far_as_it_goes(self):
        path = self.write("cut.mid", NOTES[:-16])
        status, out, err = self.run_tool("wire", path, "--as", "jsonl", "--to", "960000t")
        self.assertEqual(status, 1)
        self.assertEqual(out, "".join(NOTES_ON_THE_WIRE.splitlines(True)[:8])
                         + NOTES_ON_THE_WIRE.splitlines(True)[10])
        self.assertEqual(err.count("vrad: "), 2)


class TooManyNotes(Tool):
    def test_are_told(self):
        for num, told in ((16384, ""), (16385, "1 note was"), (16387, "3 notes were")):
            path = self.write("many.mid", header(0, 1, 480) + track(
                *([0, 0x90, n % 128, 1] for n in range(num))))
            status, out, err = self.run_tool("wire", path, "--as", "jsonl")
            self.assertEqual((status, err), (1, f"vrad: {told} left out: more than 16384 would "
                                                "sound at once\n") if told else (0, ""), num)
            self.assertEqual(out.count("\n"), 2 * 16384)


class Demo(Tool):
    def test_a_beat_of_the_demo(self):
        self.expect(["wire", DEMO, "--clip", "1", "--from", "2:1", "--to", "2:2"], 0, self.read("demo_wire.txt"))

    def test_each_note_begins_and_ends(self):
        status, out, err = self.run_tool("wire", DEMO, "--as", "jsonl", "--filter", "notes")
        self.assertEqual((status, err), (0, ""))
        sounding = {}
        num_notes = 0
        for line in out.splitlines():
            message = json.loads(line)
            status, pitch, velocity = bytes.fromhex(message["bytes"])
            key = message["clip"], pitch
            is_on = status & 0xF0 == 0x90 and velocity > 0
            sounding[key] = sounding.get(key, 0) + (1 if is_on else -1)
            num_notes += is_on
            self.assertGreaterEqual(sounding[key], 0, line)
        self.assertEqual(num_notes, 134 + 51 + 35 + 63 + 303)
        self.assertEqual(set(sounding.values()), {0})


if __name__ == "__main__":
    unittest.main()
