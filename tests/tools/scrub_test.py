#!/usr/bin/env python3
"""What a position passes that is dragged over a file, as the tool prints it, to the letter.

Usage: scrub_test.py TOOL [unittest options]
"""
import json
import unittest

from tool_case import NOTES, Tool, header, track

# Two quarters of a note with bends in it, and a note that begins where the first one ends. One file
# tick is 2000 library ticks.
BENDS = header(0, 1, 480) + track(
    [0, 0xE3, 0, 0x50],                # 2048 at 0
    [0, 0x93, 60, 80],                 # 0 to 960
    [0x83, 0x60, 0xE3, 0, 0x40],       # 0 at 480
    [0x83, 0x60, 0x83, 60, 33],
    [0, 0xE3, 0, 0x60],                # 4096 at 960
    [0, 0x93, 62, 81],                 # 960 to 1440
    [0x83, 0x60, 0x83, 62, 0],
)

THERE = """\
    1:1:000000              0t  > bend to     +2048
    1:1:000000              0t  > note start  60 C4    velocity 80
    1:2:000000         960000t  > bend from   +2048
    1:2:000000         960000t  > bend to     +0
    1:3:000000        1920000t  > note end    60 C4    release 33
    1:3:000000        1920000t  > bend from   +0
"""
HEADING = "clip 0: track 0, channel 3\n bar:beat:tick            time\n"


def reversed_lines(text):
    return "".join(reversed(text.splitlines(True))).replace(">", "<")


class Scrub(Tool):
    def scrub(self, start, end, *options, contents=BENDS):
        status, out, err = self.run_tool("scrub", self.write("bends.mid", contents),
                                         "--from", start, "--to", end, *options)
        self.assertEqual((status, err), (0, ""))
        return out

    def test_help(self):
        status, out, err = self.run_tool("scrub", "--help")
        self.assertEqual((status, err), (0, ""))
        for word in ("FILE", "--from", "--to", "--back", "--clip", "--as", "BAR:BEAT"):
            self.assertIn(word, out)

    def test_forward_in_order(self):
        self.assertEqual(self.scrub("0t", "1920000t"), HEADING + THERE)

    def test_backward_is_the_same_way_reversed(self):
        self.assertEqual(self.scrub("1920000t", "0t"), HEADING + reversed_lines(THERE))

    def test_back_goes_to_where_it_began(self):
        self.assertEqual(self.scrub("0t", "1920000t", "--back"),
                         HEADING + THERE + reversed_lines(THERE))

    def test_back_of_a_way_backward_goes_forward(self):
        self.assertEqual(self.scrub("1920000t", "0t", "--back"),
                         HEADING + reversed_lines(THERE) + THERE)

    def test_starts_are_passed_behind_their_tick_and_ends_at_it(self):
        lines = THERE.splitlines(True)
        self.assertEqual(self.scrub("1t", "1919999t"), HEADING + "".join(lines[2:4]))
        self.assertEqual(self.scrub("1919999t", "1920001t", "--as", "jsonl").count("\n"), 4)
        self.assertEqual(self.scrub("1919999t", "1920000t"), HEADING + "".join(lines[4:]))

    def test_a_bend_before_the_first_is_nought_wherever_the_way_begins(self):
        out = self.scrub("0t", "1t", "--back", "--as", "jsonl")
        self.assertEqual([json.loads(line)["name"] for line in out.splitlines()],
                         ["BendAfter", "NoteStart", "NoteStart", "BendAfter"])
        first = header(0, 1, 480) + track([0x83, 0x60, 0xE3, 0, 0x50])
        self.assertEqual(self.scrub("0t", "2:1", contents=first),
                         HEADING + "    1:2:000000         960000t  > bend from   +0\n"
                         "    1:2:000000         960000t  > bend to     +2048\n")

    def test_the_bend_before_is_known_where_the_way_begins_late(self):
        out = self.scrub("900000t", "960000t")
        self.assertEqual(out, HEADING + "    1:2:000000         960000t  > bend from   +2048\n")

    def test_a_note_that_sounds_where_the_way_begins_has_its_end_alone(self):
        out = self.scrub("1000000t", "1920000t", "--as", "jsonl").splitlines()
        self.assertEqual([json.loads(line)["name"] for line in out], ["NoteEnd", "BendBefore"])

    def test_jsonl(self):
        self.assertEqual(self.scrub("0t", "1t", "--as", "jsonl"), """\
{"clip":0,"track":0,"channel":3,"time":0,"unit":"t","direction":"forward","type":2,"name":"BendAfter","bend":2048}
{"clip":0,"track":0,"channel":3,"time":0,"unit":"t","direction":"forward","type":3,"name":"NoteStart","pitch":60,"on":80,"off":33}
""")
        self.assertEqual(self.scrub("1920000t", "1919999t", "--as", "jsonl"), """\
{"clip":0,"track":0,"channel":3,"time":1920000,"unit":"t","direction":"backward","type":1,"name":"BendBefore","bend":0}
{"clip":0,"track":0,"channel":3,"time":1920000,"unit":"t","direction":"backward","type":0,"name":"NoteEnd","pitch":60,"on":80,"off":33}
""")

    def test_positions_in_all_forms(self):
        for start, end in (("0s", "48000s"), ("0sec", "1sec"), ("1:1", "1:3"), ("0t", "1:3")):
            self.assertEqual(self.scrub(start, end), HEADING + THERE, (start, end))

    def test_nowhere_passes_nothing(self):
        self.assertEqual(self.scrub("960000t", "960000t", "--back"),
                         "clip 0: track 0, channel 3\n       nothing\n")
        self.assertEqual(self.scrub("960000t", "960000t", "--as", "jsonl"), "")

    def test_far_away_passes_nothing(self):
        self.assertEqual(self.scrub("100:1", "9000:1", "--as", "jsonl"), "")

    def test_clip_selects_one(self):
        path = self.write("notes.mid", NOTES)
        _, out, _ = self.run_tool("scrub", path, "--from", "0t", "--to", "9:1", "--as", "jsonl")
        self.assertEqual({json.loads(line)["clip"] for line in out.splitlines()}, {1})
        self.expect(["scrub", path, "--from", "0t", "--to", "9:1", "--clip", "0"], 0,
                    "clip 0: track 0, no channel, Piece\n       nothing\n")

    def test_other_kinds_are_no_transitions(self):
        out = self.scrub("0t", "9:1", "--as", "jsonl", contents=NOTES)
        self.assertEqual([json.loads(line)["name"] for line in out.splitlines()],
                         ["BendAfter", "NoteStart", "NoteEnd", "NoteStart", "NoteEnd"])

    def test_positions_are_required(self):
        path = self.write("bends.mid", BENDS)
        self.expect_usage_error(["scrub", path, "--from", "0t"], "--to is required")
        self.expect_usage_error(["scrub", path, "--to", "0t"], "--from is required")

    def test_absurd_arguments(self):
        path = self.write("bends.mid", BENDS)
        for words, option in ((["--from", "x", "--to", "0t"], "--from"),
                              (["--from", "0t", "--to", ""], "--to"),
                              (["--from", "0t", "--to", "0:1"], "--to"),
                              (["--from", "99999999999999999999t", "--to", "0t"], "--from"),
                              (["--from", "0t", "--to", "1:7"], "--to"),
                              (["--from", "0t", "--to", "1t", "--clip", "1"], "--clip"),
                              (["--from", "0t", "--to", "1t", "--clip", "one"], "--clip"),
                              (["--from", "0t", "--to", "1t", "--as", "xml"], "--as")):
            status, out, err = self.run_tool("scrub", path, *words)
            self.assertEqual((status, out), (2, ""), words)
            self.assertTrue(err.startswith(f"vrad: {option}: "), err)

    def test_a_file_that_cannot_be_read(self):
        status, out, err = self.run_tool("scrub", self.write("bad.mid", b"MThx"), "--from", "0t",
                                         "--to", "1t")
        self.assertEqual((status, out), (1, ""))
        self.assertIn("bad.mid: offset 0x0: ", err)


if __name__ == "__main__":
    unittest.main()
