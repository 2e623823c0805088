#!/usr/bin/env python3
"""Looks at `vrad state` and `vrad jump`, to the letter.

Usage: state_test.py TOOL [unittest options]
"""
import json
import unittest

from tool_case import DEMO, NOTES, Tool, header, track

NO_POSITION = "'{}' is not a position such as 960000t, 48000s, 12.5sec or BAR:BEAT[:TICK]"


class Printed(Tool):
    def objects(self, *words):
        status, out, err = self.run_tool(*words, "--as", "jsonl")
        self.assertEqual((status, err), (0, ""))
        return [json.loads(line) for line in out.splitlines()]


class State(Printed):
    def state(self, contents, at):
        """All but where it is."""
        found = []
        for line in self.objects("state", self.write("it.mid", contents), "--at", at):
            for field in ("clip", "track", "channel", "time", "unit", "kind"):
                line.pop(field)
            found.append(line)
        return found

    def test_text(self):
        self.expect(["state", self.write("notes.mid", NOTES), "--at", "1:3"], 0, """\
clip 0: track 0, no channel, Piece
       nothing

clip 1: track 1, channel 1
 bar:beat:tick            time
    1:3:000000        1920000t  cc7         100
    1:3:000000        1920000t  bend        +0
    1:3:000000        1920000t  pressure    50
    1:3:000000        1920000t  program     9        bank MSB 3  bank LSB 4
    1:3:000000        1920000t  pressure    62 D4    51
    1:3:000000        1920000t  note        62 D4    for 960000t, velocity 81, release 64
""")

    def test_jsonl(self):
        self.expect(["state", self.write("notes.mid", NOTES), "--at", "1:3", "--as", "jsonl",
                     "--clip", "1"], 0, """\
{"clip":1,"track":1,"channel":1,"time":1920000,"unit":"t","kind":5,"name":"Controller","number":7,"value":100}
{"clip":1,"track":1,"channel":1,"time":1920000,"unit":"t","kind":4,"name":"PitchBend","bend":0}
{"clip":1,"track":1,"channel":1,"time":1920000,"unit":"t","kind":7,"name":"MonoPressure","pressure":50}
{"clip":1,"track":1,"channel":1,"time":1920000,"unit":"t","kind":6,"name":"Program","program":9,"bank_msb":3,"bank_lsb":4}
{"clip":1,"track":1,"channel":1,"time":1920000,"unit":"t","kind":8,"name":"PolyPressure","pitch":62,"pressure":51}
{"clip":1,"track":1,"channel":1,"time":1920000,"unit":"t","kind":3,"name":"NoteWithDuration","pitch":62,"duration":960000,"duration_unit":"t","on":81,"off":64}
""")

    def test_a_change_at_the_position_counts(self):
        contents = header(0, 1, 480) + track([10, 0xB0, 7, 5], [1, 7, 6])
        for at, values in (("19999t", []), ("20000t", [5]), ("21999t", [5]), ("22000t", [6]),
                           ("1000:1", [6])):
            self.assertEqual([line["value"] for line in self.state(contents, at)], values, at)

    def test_a_note_sounds_strictly_between_its_ends(self):
        contents = header(0, 1, 480) + track([10, 0x90, 60, 5], [1, 0x80, 60, 6])
        for at, lengths in (("20000t", []), ("20001t", [1999]), ("21999t", [1]), ("22000t", [])):
            self.assertEqual([line["duration"] for line in self.state(contents, at)], lengths, at)

    def test_the_note_that_ends_first_comes_first(self):
        contents = header(0, 1, 480) + track([0, 0x90, 60, 5], [0, 62, 5], [0, 61, 5],
                                             [10, 61, 0], [10, 60, 0], [10, 62, 0])
        self.assertEqual([line["pitch"] for line in self.state(contents, "10t")], [61, 60, 62])

    def test_bank_alone_is_a_program_without_a_program(self):
        contents = header(0, 1, 480) + track([0, 0xB0, 32, 5])
        self.assertEqual(self.state(contents, "0t"), [{"name": "Program", "bank_lsb": 5}])

    def test_a_position_in_samples(self):
        found = self.objects("state", self.write("it.mid", NOTES), "--at", "1sec", "--clip", "1")
        self.assertEqual({(line["time"], line["unit"]) for line in found}, {(48000, "s")})
        self.assertEqual(found[-1]["duration"], 960000)

    def test_before_the_beginning_there_is_nothing(self):
        self.assertEqual(self.state(NOTES, "0s"), self.state(NOTES, "0t"))
        path = self.write("notes.mid", NOTES)
        self.expect(["state", path, "--at=-1t", "--as", "jsonl"], 0, "")


class Jump(Printed):
    def jump(self, contents, start, end):
        found = []
        path = self.write("it.mid", contents)
        for line in self.objects("jump", path, "--from", start, "--to", end):
            name = line["name"]
            if name in ("NoteOn", "NoteOff"):
                found.append((name, line["pitch"], line["velocity"]))
            elif name == "Controller":
                found.append((name, line["number"], line["value"]))
            else:
                found.append((name, line.get("pitch"), line.get("bend", line.get("pressure"))))
        return found

    def test_text(self):
        self.expect(["jump", self.write("notes.mid", NOTES), "--from", "1:3", "--to", "2:1"], 0,
                    """\
clip 0: track 0, no channel, Piece
       nothing

clip 1: track 1, channel 1
 bar:beat:tick            time
    2:1:000000        2880000t  cc7         90
    2:1:000000        2880000t  note off    62 D4    velocity 64
""")

    def test_jsonl(self):
        self.expect(["jump", self.write("notes.mid", NOTES), "--from", "2:1", "--to", "1:3",
                     "--as", "jsonl"], 0, """\
{"clip":1,"track":1,"channel":1,"time":1920000,"unit":"t","kind":5,"name":"Controller","number":7,"value":100}
{"clip":1,"track":1,"channel":1,"time":1920000,"unit":"t","kind":1,"name":"NoteOn","pitch":62,"velocity":81}
""")

    def test_to_where_it_is_sends_nothing(self):
        for at in ("0t", "480000t", "1:3", "2:1"):
            self.assertEqual(self.jump(NOTES, at, at), [], at)

    def test_what_the_new_position_lacks_goes_to_rest(self):
        self.assertEqual(self.jump(NOTES, "1:3", "480000t"), [
            ("MonoPressure", None, 0), ("PolyPressure", 62, 0), ("NoteOn", 60, 80),
            ("NoteOff", 62, 64)])
        contents = header(0, 1, 480) + track([1, 0xE0, 0, 0], [0, 0xB0, 64, 127], [0, 7, 5])
        self.assertEqual(self.jump(contents, "2000t", "0t"),
                         [("Controller", 64, 0), ("PitchBend", None, 0)])

    def test_notes_at_both_positions_sound_on(self):
        contents = header(0, 1, 480) + track([0, 0x90, 60, 5], [1, 62, 6], [1, 62, 0], [1, 60, 0])
        self.assertEqual(self.jump(contents, "1t", "2001t"), [("NoteOn", 62, 6)])
        self.assertEqual(self.jump(contents, "2001t", "4001t"), [("NoteOff", 62, 64)])

    def test_there_and_back_over_the_demo(self):
        places = ["0t", "2:3:10", "5:1:1", "9:2:5", "12:1:240001", "18:1:1"]
        for start, end in zip(places, places[1:]):
            there = self.objects("jump", DEMO, "--from", start, "--to", end)
            back = self.objects("jump", DEMO, "--from", end, "--to", start)
            for kind, other in (("NoteOn", "NoteOff"), ("NoteOff", "NoteOn")):
                self.assertEqual(
                    sorted((line["clip"], line["pitch"]) for line in there if line["name"] == kind),
                    sorted((line["clip"], line["pitch"]) for line in back if line["name"] == other))


class Demo(Tool):
    def test_a_beat_of_the_demo(self):
        self.expect(["state", DEMO, "--clip", "1", "--at", "2:2"], 0, self.read("demo_state.txt"))


class BadCommandLines(Tool):
    def test_positions_are_required(self):
        path = self.write("notes.mid", NOTES)
        self.expect_usage_error(["state", path], "--at is required")
        self.expect_usage_error(["jump", path, "--to", "1:1"], "--from is required")
        self.expect_usage_error(["jump", path, "--from", "1:1"], "--to is required")

    def test_bad_positions(self):
        path = self.write("notes.mid", NOTES)
        self.expect_usage_error(["state", path, "--at", "12"], "--at: " + NO_POSITION.format("12"))
        self.expect_usage_error(["jump", path, "--from", "x", "--to", "0t"],
                                "--from: " + NO_POSITION.format("x"))
        self.expect_usage_error(["jump", path, "--from", "0t", "--to", ""],
                                "--to: " + NO_POSITION.format(""))
        self.expect_usage_error(["state", path, "--at", "1:4"], "--at: bar 1 has beats 1 to 3")
        self.expect_usage_error(["jump", path, "--from", "0t", "--to", "0:1"],
                                "--to: bars count from 1 to 1073741824")

    def test_bad_clips(self):
        path = self.write("notes.mid", NOTES)
        self.expect_usage_error(["state", path, "--at", "0t", "--clip", "2"],
                                "--clip: the file has clips 0 to 1")
        self.expect_usage_error(["jump", path, "--from", "0t", "--to", "1t", "--clip", "one"],
                                "--clip: 'one' is not the number of a clip")

    def test_bad_file(self):
        self.expect(["state", "none.mid", "--at", "0t"], 1, "",
                    "vrad: none.mid: No such file or directory\n")
        self.expect(["jump", "none.mid", "--from", "0t", "--to", "1t"], 1, "",
                    "vrad: none.mid: No such file or directory\n")


if __name__ == "__main__":
    unittest.main()
