#!/usr/bin/env python3
"""Runs the tool as a user does and compares what it prints, to the letter.

Usage: cli_test.py TOOL [unittest options]
"""
import os
import re
import signal
import subprocess
import sys
import unittest

from tool_case import DEMO, NOTES, ROOT, TOOL, Tool, header, track

NOTES_AS_JSONL = """\
{"clip":0,"track":0,"channel":null,"time":0,"unit":"t","kind":14,"name":"ShortSysex","data":"41 7f"}
{"clip":0,"track":0,"channel":null,"time":0,"unit":"t","kind":15,"name":"LongSysex","data":"00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f"}
{"clip":1,"track":1,"channel":1,"time":0,"unit":"t","kind":6,"name":"Program","program":9,"bank_msb":3,"bank_lsb":4}
{"clip":1,"track":1,"channel":1,"time":0,"unit":"t","kind":5,"name":"Controller","number":7,"value":100}
{"clip":1,"track":1,"channel":1,"time":0,"unit":"t","kind":4,"name":"PitchBend","bend":0}
{"clip":1,"track":1,"channel":1,"time":0,"unit":"t","kind":3,"name":"NoteWithDuration","pitch":60,"duration":960000,"duration_unit":"t","on":80,"off":33}
{"clip":1,"track":1,"channel":1,"time":960000,"unit":"t","kind":7,"name":"MonoPressure","pressure":50}
{"clip":1,"track":1,"channel":1,"time":960000,"unit":"t","kind":8,"name":"PolyPressure","pitch":62,"pressure":51}
{"clip":1,"track":1,"channel":1,"time":960000,"unit":"t","kind":3,"name":"NoteWithDuration","pitch":62,"duration":1920000,"duration_unit":"t","on":81,"off":64}
{"clip":1,"track":1,"channel":1,"time":2880000,"unit":"t","kind":5,"name":"Controller","number":7,"value":90}
"""

PRESSURES_AT_960000 = "".join(NOTES_AS_JSONL.splitlines(True)[6:8])
NOTE_AT_0, NOTE_AT_960000 = NOTES_AS_JSONL.splitlines(True)[5], NOTES_AS_JSONL.splitlines(True)[8]


class Help(Tool):
    def test_help_names_the_commands(self):
        status, out, err = self.run_tool("--help")
        self.assertEqual((status, err), (0, ""))
        for word in ("Usage: vrad", "info", "events", "--version"):
            self.assertIn(word, out)

    def test_each_command_has_help(self):
        for command, words in (("info", ["FILE"]),
                               ("events", ["FILE", "--clip", "--from", "--to", "--offset",
                                           "--window", "--filter", "--skip-muted", "--note-offs",
                                           "--as", "--list", "960000t", "BAR:BEAT"])):
            status, out, err = self.run_tool(command, "--help")
            self.assertEqual((status, err), (0, ""))
            for word in words:
                self.assertIn(word, out)

    def test_names_all_options(self):
        ranges = {"--clip", "--from", "--to", "--offset", "--window", "--filter", "--skip-muted",
                  "--note-offs", "--as"}
        for command, options in (("info", set()), ("events", ranges | {"--list"}),
                                 ("wire", ranges), ("state", {"--at", "--clip", "--as"}),
                                 ("jump", {"--from", "--to", "--clip", "--as"})):
            status, out, err = self.run_tool(command, "--help")
            self.assertEqual((status, err), (0, ""))
            self.assertEqual(set(re.findall(r"--[a-z-]+", out)), options | {"--help"}, command)

    def test_version_is_the_librarys(self):
        with open(os.path.join(ROOT, "vrad", "vrad_version.h"), encoding="utf-8") as lines:
            version = next(line.split('"')[1] for line in lines if "#define VRAD_VERSION" in line)
        self.expect(["--version"], 0, f"vrad {version}\n")


class Events(Tool):
    def test_prints_every_kind_as_jsonl(self):
        self.assertEqual(self.events(), NOTES_AS_JSONL)

    def test_prints_text_unless_told(self):
        self.expect(["events", self.write("notes.mid", NOTES)], 0, """\
clip 0: track 0, no channel, Piece
 bar:beat:tick            time
    1:1:000000              0t  sysex       2 bytes: 41 7f
    1:1:000000              0t  sysex       16 bytes: 00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f

clip 1: track 1, channel 1
 bar:beat:tick            time
    1:1:000000              0t  program     9        bank MSB 3  bank LSB 4
    1:1:000000              0t  cc7         100
    1:1:000000              0t  bend        +0
    1:1:000000              0t  note        60 C4    for 960000t, velocity 80, release 33
    1:2:000000         960000t  pressure    50
    1:2:000000         960000t  pressure    62 D4    51
    1:2:000000         960000t  note        62 D4    for 1920000t, velocity 81, release 64
    2:1:000000        2880000t  cc7         90
""")

    def test_text_says_where_nothing_is(self):
        self.expect(["events", self.write("notes.mid", NOTES), "--from", "2:1", "--clip", "0"], 0,
                    "clip 0: track 0, no channel, Piece\n       nothing\n")

    def test_text_names_the_note_off_marker(self):
        self.expect(["events", self.write("notes.mid", NOTES), "--filter", "bend", "--clip", "1",
                     "--note-offs", "last"], 0, """\
clip 1: track 1, channel 1
 bar:beat:tick            time
    1:1:000000              0t  bend        +0
    2:1:000000        2880000t  marker      note-off
""")

    def test_clip_selects_one(self):
        self.assertEqual(self.events("--clip", "0"), "".join(NOTES_AS_JSONL.splitlines(True)[:2]))
        self.assertEqual(self.events("--clip", "1"), "".join(NOTES_AS_JSONL.splitlines(True)[2:]))

    def test_range_includes_its_start_and_not_its_end(self):
        expected = PRESSURES_AT_960000 + NOTE_AT_960000
        self.assertEqual(self.events("--from", "960000t", "--to", "2880000t"), expected)

    def test_positions_in_all_forms(self):
        expected = PRESSURES_AT_960000 + NOTE_AT_960000
        for start, end in (("24000s", "72000s"), ("0.5sec", "1.5sec"), ("1:2", "2:1"),
                           ("1:1:959999", "1:3:959999"), ("960000t", "1.5sec")):
            self.assertEqual(self.events("--from", start, "--to", end), expected, (start, end))

    def test_bars_follow_the_time_signature(self):
        # In 3/4 bar 2 begins after three beats.
        self.assertEqual(self.events("--from", "2:1"), NOTES_AS_JSONL.splitlines(True)[-1])

    def test_offset_is_taken_off(self):
        out = self.events("--filter", "notes", "--offset", "960000t")
        self.assertEqual(out, NOTE_AT_0.replace('"time":0,', '"time":-960000,')
                         + NOTE_AT_960000.replace('"time":960000,', '"time":0,'))

    def test_offset_may_be_negative(self):
        expected = NOTE_AT_0.replace('"time":0,', '"time":5,')
        for words in (["--offset", "-5t"], ["--offset=-5t"]):
            self.assertEqual(self.events("--filter", "notes", "--to", "1t", *words), expected)

    def test_values_before_the_start_come_at_the_start(self):
        # Only notes go below 0.
        out = self.events("--filter", "cc", "--offset", "960000t")
        self.assertEqual([line.split('"time":')[1].split(",")[0] for line in out.splitlines()],
                         ["0", "1920000"])

    def test_offset_in_samples_puts_values_in_samples(self):
        out = self.events("--filter", "cc", "--offset", "0s")
        self.assertEqual(out.count('"time":0,"unit":"s"'), 1)
        self.assertEqual(out.count('"time":72000,"unit":"s"'), 1)

    def test_window_is_in_output_time(self):
        out = self.events("--filter", "notes", "--offset", "960000t", "--window", "0t..40t")
        self.assertEqual(out, NOTE_AT_960000.replace('"time":960000,', '"time":0,'))
        self.assertEqual(self.events("--filter", "notes", "--window", "0.5sec..2:1"), NOTE_AT_960000)

    def test_bounds_in_ticks_are_those_of_their_samples(self):
        # At 40 ticks to the sample the window [0t, 1t) is empty.
        self.assertEqual(self.events("--window", "0t..39t"), "")
        self.assertEqual(self.events("--filter", "notes", "--window", "0t..40t"), NOTE_AT_0)

    def test_filter_selects_kinds(self):
        for words, kinds in (("notes", [3, 3]), ("bend", [4]), ("program", [6]), ("mono", [7]),
                             ("poly", [8]), ("sysex", [14, 15]), ("cc", [5, 5]), ("cc7", [5, 5]),
                             ("cc1", []), ("bend,cc7,mono", [5, 4, 7, 5])):
            found = [int(line.split('"kind":')[1].split(",")[0])
                     for line in self.events("--filter", words).splitlines()]
            self.assertEqual(found, kinds, words)

    def test_skip_muted_drops_nothing_that_is_not_muted(self):
        self.assertEqual(self.events("--skip-muted"), NOTES_AS_JSONL)

    def test_note_offs_mark_a_release(self):
        for which, time in (("earliest", 960000), ("last", 2880000)):
            out = self.events("--clip", "1", "--filter", "notes", "--note-offs", which)
            marker = (f'{{"clip":1,"track":1,"channel":1,"time":{time},"unit":"t","kind":0,'
                      '"name":"NoEvent"}\n')
            expected = [NOTE_AT_0, NOTE_AT_960000]
            expected.insert(1 if which == "earliest" else 2, marker)
            self.assertEqual(out, "".join(expected), which)
        self.assertNotIn("NoEvent", self.events("--note-offs", "none"))

    def test_display_list_adds_muted_flag_and_tag(self):
        out = self.events("--list", "display", "--filter", "notes", "--to", "1t")
        self.assertEqual(out, NOTE_AT_0.replace("}\n", ',"muted":false,"tag":1}\n'))

    def test_display_list_holds_the_same_events(self):
        out = self.events("--list", "display")
        plain = [line.replace(',"muted":false', "").split(',"tag":')[0] + "}\n"
                 for line in out.splitlines()]
        self.assertEqual(sorted(plain), sorted(NOTES_AS_JSONL.splitlines(True)))

    def test_empty_range_prints_nothing(self):
        self.assertEqual(self.events("--from", "5t", "--to", "5t"), "")

    def test_file_without_clips_prints_nothing(self):
        self.expect(["events", self.write("none.mid", header(0, 1, 480) + track())], 0, "")


class ErrorsThatNobodyHears(Tool):
    def test_keep_the_exit_status(self):
        damaged = self.write("damaged.mid", NOTES[:-40])
        for words, status in ((["events", "none.mid"], 1), (["events", damaged], 1), (["sing"], 2)):
            with open("/dev/full", "w") as full:
                done = subprocess.run([TOOL, *words], stdout=subprocess.DEVNULL, stderr=full,
                                      timeout=120)
            self.assertEqual(done.returncode, status, words)

    def test_do_not_stop_the_events(self):
        damaged = self.write("damaged.mid", NOTES[:-40])
        with open("/dev/full", "w") as full:
            done = subprocess.run([TOOL, "events", damaged, "--as", "jsonl"], text=True,
                                  stdout=subprocess.PIPE, stderr=full, timeout=120)
        self.assertTrue(done.stdout.startswith(NOTES_AS_JSONL.split("}\n")[0]), done.stdout)


class HelpThatNobodyReads(Tool):
    def test_is_an_error(self):
        for words in (["--help"], ["--version"], ["events", "--help"]):
            with open("/dev/full", "w") as full:
                done = subprocess.run([TOOL, *words], stdout=full, stderr=subprocess.PIPE,
                                      text=True, timeout=120)
            self.assertEqual((done.returncode, done.stderr),
                             (1, "vrad: standard output: No space left on device\n"), words)


class BadCommandLines(Tool):
    def test_no_command(self):
        status, out, err = self.run_tool()
        self.assertEqual((status, out), (2, ""))
        self.assertTrue(err.startswith("vrad: "), err)

    def test_unknown_command_option_or_word(self):
        path = self.write("notes.mid", NOTES)
        for words in (["sing", path], ["events", path, "--loud"], ["info", path, "extra"],
                      ["events"], ["events", path, "--from"], ["events", path, "--as", "xml"],
                      ["events", path, "--list", "both"], ["events", path, "--note-offs", "all"],
                      ["events", path, "--clip", "one"], ["events", path, "--clip", "1.5"]):
            status, out, err = self.run_tool(*words)
            self.assertEqual((status, out), (2, ""), words)
            self.assertTrue(err.startswith("vrad: "), err)

    def test_names_the_unknown_command(self):
        self.expect_usage_error(["sing"], "'sing' is not a command")
        self.expect_usage_error(["sing", "notes.mid", "--loud"], "'sing' is not a command")

    def test_clips_that_are_no_numbers(self):
        path = self.write("notes.mid", NOTES)
        for number in ("", "one", "1.5", "0x1", "+1", " 1", "1 ", "99999999999999999999"):
            self.expect_usage_error(["events", path, f"--clip={number}"] if number else
                                    ["events", path, "--clip", ""],
                                    f"--clip: '{number}' is not the number of a clip")

    def test_reads_clip_numbers_as_decimal(self):
        self.assertEqual(self.events("--clip", "01"), self.events("--clip", "1"))
        self.expect_usage_error(["events", self.write("notes.mid", NOTES), "--clip", "010"],
                                "--clip: the file has clips 0 to 1")

    def test_bad_positions(self):
        path = self.write("notes.mid", NOTES)
        for option in ("--from", "--to"):
            self.expect_usage_error(
                ["events", path, option, "12"],
                f"{option}: '12' is not a position such as 960000t, 48000s, 12.5sec or "
                "BAR:BEAT[:TICK]")
        self.expect_usage_error(["events", path, "--offset", "1:1"],
                                "--offset: '1:1' is not a length such as 960000t, 48000s or 12.5sec")
        self.expect_usage_error(["events", path, "--window", "1t"],
                                "--window: '1t' is not two positions, POS..POS")

    def test_places_that_the_bars_do_not_have(self):
        path = self.write("notes.mid", NOTES)
        self.expect_usage_error(["events", path, "--from", "0:1"],
                                "--from: bars count from 1 to 1073741824")
        self.expect_usage_error(["events", path, "--to", "2:4"], "--to: bar 2 has beats 1 to 3")
        self.expect_usage_error(["events", path, "--window", "1:1:960000..2:1"],
                                "--window: a beat of bar 1 has ticks 0 to 959999")

    def test_ranges_the_wrong_way_round(self):
        path = self.write("notes.mid", NOTES)
        self.expect_usage_error(["events", path, "--from", "2:1", "--to", "1:1"],
                                "--from lies after --to")
        self.expect_usage_error(["events", path, "--window", "1sec..1t"],
                                "--window ends before it begins")

    def test_clips_that_are_not_there(self):
        path = self.write("notes.mid", NOTES)
        for number in ("2", "-1", "9999999999"):
            self.expect_usage_error(["events", path, f"--clip={number}"],
                                    "--clip: the file has clips 0 to 1")
        self.expect_usage_error(
            ["events", self.write("none.mid", header(0, 1, 480) + track()), "--clip", "0"],
            "--clip: the file has no clips")

    def test_bad_filter(self):
        self.expect_usage_error(
            ["events", self.write("notes.mid", NOTES), "--filter", "notes,drums"],
            "--filter: 'drums' is not one of notes, bend, program (with its bank), mono, poly, "
            "sysex, cc, cc1 to cc119")

    def test_a_bad_command_line_is_told_before_a_bad_file(self):
        self.expect_usage_error(["events", "none.mid", "--from", "x"],
                                "--from: 'x' is not a position such as 960000t, 48000s, 12.5sec or "
                                "BAR:BEAT[:TICK]")


class Readers(Tool):
    """That nobody reads on is told, unless the system ends the program at once."""
    def write_to_nobody(self, **more):
        reader, writer = os.pipe()
        os.close(reader)
        done = subprocess.run([TOOL, "events", DEMO], cwd=ROOT, stdout=writer, text=True,
                              stderr=subprocess.PIPE, timeout=120, **more)
        os.close(writer)
        return done.returncode, done.stderr

    def test_that_are_gone_end_the_program(self):
        self.assertEqual(self.write_to_nobody(), (-signal.SIGPIPE, ""))

    def test_that_are_gone_are_told_where_that_does_not(self):
        # Python ignores the signal, and hands that on if asked to.
        self.assertEqual(self.write_to_nobody(restore_signals=False),
                         (1, "vrad: standard output: Broken pipe\n"))


class BadFiles(Tool):
    COMMANDS = (["info"], ["events"], ["wire"], ["state", "--at", "0t"],
                ["jump", "--from", "0t", "--to", "0t"], ["play"])

    def test_file_that_is_not_there(self):
        for words in self.COMMANDS:
            self.expect([*words, "none.mid"], 1, "", "vrad: none.mid: No such file or directory\n")

    def test_folder(self):
        for words in self.COMMANDS:
            self.expect([*words, self.folder], 1, "", f"vrad: {self.folder}: Is a directory\n")

    def test_empty_file(self):
        path = self.write("empty.mid", b"")
        for words in self.COMMANDS:
            self.expect([*words, path], 1, "", f"vrad: {path}: offset 0x0: not a Standard MIDI "
                                               "File: it does not begin with MThd\n")

    def test_what_is_no_midi_file(self):
        for contents in (b"", b"RIFF", b"\0" * 100):
            path = self.write("odd.mid", contents)
            self.expect(["events", path], 1, "", f"vrad: {path}: offset 0x0: not a Standard MIDI "
                                                 "File: it does not begin with MThd\n")

    def test_header_without_sense(self):
        path = self.write("odd.mid", header(0, 1, 0) + track())
        self.expect(["events", path], 1, "",
                    f"vrad: {path}: offset 0xc: a division of 0 ticks\n")

    def test_damage_is_told_and_the_rest_printed(self):
        path = self.write("cut.mid", NOTES[:-16])
        status, out, err = self.run_tool("events", path, "--as", "jsonl")
        self.assertEqual(status, 1)
        self.assertEqual(out, "".join(NOTES_AS_JSONL.splitlines(True)[:-1]))
        self.assertEqual(err, (
            f"vrad: {path}: offset 0x49: a track of 59 bytes where 43 are left\n"
            f"vrad: {path}: offset 0x78: a message is missing; the rest of the track is not "
            "read\n"))

    def test_output_that_cannot_be_written(self):
        path = self.write("notes.mid", NOTES)
        with open("/dev/full", "w", encoding="utf-8") as full:
            done = subprocess.run([TOOL, "events", path], stdout=full, stderr=subprocess.PIPE,
                                  text=True, timeout=120)
        self.assertEqual((done.returncode, done.stderr),
                         (1, "vrad: standard output: No space left on device\n"))


class Info(Tool):
    def info(self, contents):
        self.write("it.mid", contents)
        done = subprocess.run([TOOL, "info", "it.mid"], cwd=self.folder, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True, timeout=120)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout

    def test_shows_a_file(self):
        self.assertEqual(self.info(NOTES), """\
it.mid
  Standard MIDI File, format 1, 480 ticks to the quarter note
  ends     2:1:000000 (2880000t, 1.500 seconds)
  tempo    120 beats a minute
  meter    3/4
  holds    2 tracks, 2 clips

 clip track channel  name    notes      cc   bends program pressure    poly   sysex
    0     0       -  Piece       0       0       0       0        0       0       2
    1     1       1              2       2       1       1        1       1       0  cc 7

not kept in clips:
      1  channel mode message (controllers 120 to 127) (first at offset 0x7c)
      1  lyric (first at offset 0x7f)
""")

    def test_shows_a_file_without_clips(self):
        self.assertEqual(self.info(header(0, 1, 0xE728) + track()), """\
it.mid
  Standard MIDI File, format 0, 40 ticks to the frame at 25 frames a second
  ends     1:1:000000 (0t, 0.000 seconds)
  tempo    120 beats a minute
  meter    4/4
  holds    1 track, 0 clips

not kept in clips: nothing
""")

    def test_shows_tempo_and_meter_changes(self):
        out = self.info(header(0, 1, 480) + track(
            [0, 0xFF, 0x51, 3, 0x09, 0x27, 0xC0],              # 100 beats a minute
            [0x8F, 0x00, 0xFF, 0x51, 3, 0x06, 0x1A, 0x80],     # 150, after a bar
            [0, 0xFF, 0x58, 4, 6, 3, 24, 8]))
        self.assertIn("  tempo    100 beats a minute at first, 1 change, 100 to 150\n", out)
        self.assertIn("  meter    4/4, 6/8 from bar 2\n", out)
        self.assertIn("  ends     2:1:000000 (3840000t, 2.400 seconds)\n", out)

    def test_shows_problems_that_lose_nothing(self):
        out = self.info(header(1, 1, 480) + track() + track())
        self.assertTrue(out.endswith("\nproblems:\n  offset 0xa: tracks announced: 1, found: 2\n"))

    def test_names_cannot_steer_the_terminal(self):
        out = self.info(header(0, 1, 480) + track([0, 0xFF, 3, 4], b"\x1b[2J", [0, 0xD0, 1]))
        self.assertNotIn("\x1b", out)
        self.assertIn("?[2J", out)


class Progress(Tool):
    NO_BAR = "\r" + " " * 47 + "\r"

    def errors_on_a_terminal(self, num_bytes):
        """The same while it reads a file of at least so many bytes."""
        sysex = b"\x00\xf0\x86\x8d\x21" + bytes(100000) + b"\xf7"
        path = self.write("long.mid", header(0, 1, 480) +
                          track(sysex * (num_bytes // len(sysex) + 1)))
        return self.on_a_terminal(["info", path])

    def test_long_print_shows_a_bar_and_takes_it_away(self):
        path = self.many_notes(50000)
        for words in (["events"], ["wire"], ["scrub", "--from", "0t", "--to", "90000:1", "--back"]):
            text = self.on_a_terminal([*words, path, "--as", "jsonl"])
            self.assertIn("\r[" + "#" * 12 + " " * 28 + "]  30%", text)
            self.assertTrue(text.endswith(self.NO_BAR))

    def test_long_dump_shows_a_bar_and_takes_it_away(self):
        path = self.many_notes(50000)
        for form in ("text", "xml"):
            text = self.on_a_terminal(["dump", path, "--as", form])
            self.assertIn("\r[" + " " * 40 + "]   0%", text)
            self.assertRegex(text, r"\r\[#{28,31} {9,12}\]  7[0-9]%")
            self.assertTrue(text.endswith(self.NO_BAR))
        self.assertEqual(self.on_a_terminal(["dump", self.many_notes(5000)]), "")

    def test_short_print_shows_none(self):
        self.assertEqual(self.on_a_terminal(["events", self.many_notes(5000)]), "")

    def test_print_on_the_same_terminal_shows_none(self):
        text = self.on_a_terminal(["events", self.many_notes(50000), "--as", "jsonl"], True)
        self.assertEqual(text.count("\n"), 50000)
        self.assertNotIn("%", text)

    def test_long_work_shows_a_bar_and_takes_it_away(self):
        text = self.errors_on_a_terminal(6 << 20)
        self.assertIn("\r[" + "#" * 40 + "] 100%", text)
        self.assertTrue(text.endswith("\r" + " " * 47 + "\r"))

    def test_short_work_shows_none(self):
        self.assertEqual(self.errors_on_a_terminal(1 << 20), "")


class Demo(Tool):
    def test_script_writes_the_file_in_the_repository(self):
        path = os.path.join(self.folder, "demo.mid")
        subprocess.run([sys.executable, os.path.join(ROOT, "examples", "make_demo.py"), path],
                       check=True, timeout=120)
        with open(path, "rb") as new, open(os.path.join(ROOT, DEMO), "rb") as kept:
            self.assertTrue(new.read() == kept.read())

    def test_info(self):
        self.expect(["info", DEMO], 0, self.read("demo_info.txt"))

    def test_events_of_a_bar(self):
        self.expect(["events", DEMO, "--from", "2:1", "--to", "2:2"], 0,
                    self.read("demo_events.txt"))

    def test_events_of_a_bar_as_jsonl(self):
        self.expect(["events", DEMO, "--from", "2:1", "--to", "2:2", "--as", "jsonl"], 0,
                    self.read("demo_events.jsonl"))


if __name__ == "__main__":
    unittest.main()
