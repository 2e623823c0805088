#!/usr/bin/env python3
"""Edits files with the tool and reads back what comes of it.

Usage: edit_test.py TOOL [unittest options]
"""
import json
import os
import unittest

import tool_case
from tool_case import header, track

# Library ticks of a file tick.
TICK = 2000

# Channel 0: notes at 0, 480 and 960 for 240 file ticks each; volume at 0 and 960, a bend at 480.
# Channel 1: one note.
SONG = header(1, 2, 480) + track(
    [0, 0xB0, 7, 100], [0, 0x90, 60, 80],
    [0x81, 0x70, 0x80, 60, 64],         # 240
    [0x81, 0x70, 0xE0, 0, 0x50],        # 480
    [0, 0x90, 62, 81],
    [0x81, 0x70, 0x80, 62, 64],         # 720
    [0x81, 0x70, 0xB0, 7, 90],          # 960
    [0, 0x90, 64, 82],
    [0x81, 0x70, 0x80, 64, 64],         # 1200
) + track([0, 0x91, 40, 70], [0x83, 0x60, 0x81, 40, 64])

# Channel 0: a note that overlaps the first of the above, and one of another pitch. Channel 2: one.
TAKE = header(1, 3, 480) + track(
    [0x78, 0x90, 60, 99],               # 120
    [0x81, 0x70, 0x80, 60, 64],         # 360
    [0, 0x90, 72, 99],
    [0x78, 0x80, 72, 64],               # 480
) + track() + track([0, 0x92, 50, 51], [0x78, 0x82, 50, 64])

# One note again and again, and a sysex with the last one.
PATTERN = header(1, 1, 480) + track(
    [0, 0x90, 60, 80], [0x78, 0x80, 60, 64],            # 0 to 120
    [0x78, 0x90, 60, 80], [0x78, 0x80, 60, 64],         # 240
    [0x78, 0x90, 60, 80],                               # 480
    [0, 0xF0, 3, 0x41, 0x7F, 0xF7],
    [0x78, 0x80, 60, 64])


class Edit(tool_case.Tool):
    def setUp(self):
        super().setUp()
        self.song = self.write("song.mid", SONG)
        self.out = os.path.join(self.folder, "out.vrad")

    def run_for(self, status, *words):
        done, out, err = self.run_tool(*words)
        self.assertEqual(done, status, err)
        return out, err

    def edit(self, *commands, status=0):
        return self.run_for(status, "edit", self.song, self.out, *commands)

    def events(self, path=None, **wanted):
        lines = self.run_for(0, "events", path or self.out, "--as", "jsonl")[0].splitlines()
        events = [json.loads(line) for line in lines]
        return [e for e in events if all(e.get(k) == v for k, v in wanted.items())]

    def notes(self, channel=0):
        return [(e["time"] // TICK, e["pitch"], e["duration"] // TICK)
                for e in self.events(channel=channel, kind=3)]

    def times(self, **wanted):
        return [e["time"] // TICK for e in self.events(**wanted)]


class Commands(Edit):
    def test_nudge_times_moves_everything(self):
        out, _ = self.edit("nudge times 960000t")
        self.assertEqual(out, "nudge times 960000t\n"
                         "  track 0, channel 0: notes: 3 changed; other events: 3 moved\n"
                         "  track 1, channel 1: notes: 1 changed\n")
        self.assertEqual(self.notes(), [(480, 60, 240), (960, 62, 240), (1440, 64, 240)])
        self.assertEqual(self.times(kind=5), [480, 1440])
        self.assertEqual(self.times(kind=4), [960])

    def test_nudge_takes_a_range(self):
        self.edit("nudge times 96000t 960000t 1920000t")
        self.assertEqual(self.notes(), [(0, 60, 240), (528, 62, 240), (960, 64, 240)])
        self.assertEqual(self.times(kind=4), [528])

    def test_nudge_counts_a_note_that_takes_the_place_of_an_equal_one(self):
        self.song = self.write("pattern.mid", PATTERN)
        out, _ = self.edit("nudge times 480000t", "undo", "redo", "nudge times 480000t 1:2 9:1")
        changed = "  track 0, channel 0: notes: 3 changed\n  track 0, no channel: " \
                  "other events: 1 moved\n"
        self.assertEqual(out, "nudge times 480000t\n" + changed + "undo\n" + changed +
                         "redo\n" + changed + "nudge times 480000t 1:2 9:1\n" +
                         changed.replace("3", "2"))
        self.assertEqual(self.notes(), [(240, 60, 120), (720, 60, 120), (960, 60, 120)])

    def test_a_range_ends_in_front_of_the_sysex_at_its_end(self):
        self.song = self.write("pattern.mid", PATTERN)
        for command in ("erase-range 0t 960000t", "nudge times 1t 0t 960000t",
                        "copy-range 0t 960000t 7t"):
            self.edit(command)
            self.assertEqual(self.times(kind=14), [480], command)
        self.edit("erase-range 960000t 960001t")
        self.assertEqual(self.times(kind=14), [])
        self.assertEqual(len(self.notes()), 2)

    def test_nudge_starts_keeps_ends(self):
        self.edit("--clip", "0", "nudge starts 200000t")
        self.assertEqual(self.notes(), [(100, 60, 140), (580, 62, 140), (1060, 64, 140)])
        self.assertEqual(self.times(kind=5), [0, 960])

    def test_nudge_starts_refuses_to_leave_a_note_no_length(self):
        out, _ = self.edit("nudge starts 480000t")
        self.assertEqual(out, "nudge starts 480000t\n"
                         "  track 1, channel 1: notes: 1 changed\n")
        self.assertEqual(self.notes(), [(0, 60, 240), (480, 62, 240), (960, 64, 240)])

    def test_nudge_durations_shortens(self):
        out, _ = self.edit("--clip", "0", "nudge durations -80000t")
        self.assertIn("notes: 3 shortened\n", out)
        self.assertEqual(self.notes(), [(0, 60, 200), (480, 62, 200), (960, 64, 200)])

    def test_nudge_pitches_lowers_for_a_positive_length_and_raises_for_a_negative_one(self):
        self.edit("--clip", "0", "nudge pitches 12t")
        self.assertEqual([n[1] for n in self.notes()], [59, 61, 63])
        self.edit("--clip", "0", "nudge pitches -12t")
        self.assertEqual([n[1] for n in self.notes()], [61, 63, 65])

    def test_erase_range_takes_what_begins_in_it(self):
        out, _ = self.edit("erase-range 1t 1920000t")
        self.assertEqual(out, "erase-range 1t 1920000t\n"
                         "  track 0, channel 0: notes: 1 dropped; other events: 1 dropped\n")
        self.assertEqual(self.notes(), [(0, 60, 240), (960, 64, 240)])

    def test_a_range_can_be_told_in_bars(self):
        self.edit("erase-range 1:2 1:3")
        self.assertEqual(self.notes(), [(0, 60, 240), (960, 64, 240)])

    def test_copy_range_keeps_the_original(self):
        out, _ = self.edit("--clip", "0", "copy-range 0t 960000t 3840000t")
        self.assertIn("notes: 1 added; other events: 1 added\n", out)
        self.assertEqual(self.notes(),
                         [(0, 60, 240), (480, 62, 240), (960, 64, 240), (1920, 60, 240)])
        self.assertEqual(self.times(kind=5), [0, 960, 1920])

    def test_copy_range_takes_what_was_there_before_it(self):
        out, _ = self.edit("--clip", "0", "copy-range 0t 3840000t 960000t")
        self.assertIn("notes: 3 added; other events: 3 added\n", out)
        self.assertEqual(self.notes(),
                         [(0, 60, 240), (480, 62, 240), (480, 60, 240), (960, 64, 240),
                          (960, 62, 240), (1440, 64, 240)])
        self.assertEqual([(e["time"] // TICK, e["value"]) for e in self.events(kind=5)],
                         [(0, 100), (480, 100), (960, 90), (1440, 90)])

    def test_erase_stream_takes_one_controller(self):
        out, _ = self.edit("erase-stream cc7")
        self.assertIn("other events: 2 dropped\n", out)
        self.assertEqual(self.times(kind=5), [])
        self.assertEqual(self.times(kind=4), [480])

    def test_erase_stream_leaves_the_others_where_the_clip_lacks_it(self):
        out, _ = self.edit("erase-stream cc6")
        self.assertEqual(out, "erase-stream cc6\n  nothing changed\n")
        self.assertEqual(self.times(kind=5), [0, 960])

    def test_quantize_moves_to_the_grid(self):
        self.edit("nudge times 300t", "quantize")
        self.assertEqual([e["time"] for e in self.events(channel=0, kind=3)], [0, 960000, 1920000])
        self.edit("nudge times 600t", "quantize")
        self.assertEqual([e["time"] for e in self.events(channel=0, kind=5)], [1000, 1921000])


class Merge(Edit):
    def setUp(self):
        super().setUp()
        self.take = self.write("a take.mid", TAKE)

    def test_goes_to_the_clip_of_the_same_track_and_channel(self):
        out, _ = self.edit(f'merge "{self.take}"')
        self.assertIn("  track 0, channel 0: notes: 2 added\n", out)
        self.assertEqual(self.notes(), [(0, 60, 240), (120, 60, 240), (360, 72, 120),
                                        (480, 62, 240), (960, 64, 240)])

    def test_makes_a_clip_where_there_is_none(self):
        self.edit(f'merge "{self.take}"')
        self.assertEqual([(e["track"], e["time"], e["pitch"]) for e in self.events(channel=2)],
                         [(2, 0, 50)])

    def test_avoiding_cuts_what_is_overlapped(self):
        out, _ = self.edit(f'merge "{self.take}" avoiding')
        self.assertIn("  track 0, channel 0: notes: 2 added, 1 shortened\n", out)
        self.assertEqual(self.notes()[0], (0, 60, 120))

    def test_a_clip_that_is_undone_is_not_saved(self):
        self.edit(f'merge "{self.take}"', "undo")
        self.assertEqual(self.events(channel=2), [])
        self.assertIn("2 clips", self.run_for(0, "info", self.out)[0])

    def test_a_track_that_is_undone_is_not_saved(self):
        self.edit(f'merge "{self.take}"')
        self.assertIn("  holds    3 tracks, 3 clips\n", self.run_for(0, "info", self.out)[0])
        self.edit(f'merge "{self.take}"', "undo")
        self.assertIn("  holds    2 tracks, 2 clips\n", self.run_for(0, "info", self.out)[0])

    def test_says_where_a_take_is_damaged_and_takes_the_rest(self):
        take = self.write("cut.mid", TAKE[:-6])
        out, err = self.edit(f'merge "{take}"', status=1)
        self.assertIn("cut.mid: offset 0x", err)
        self.assertIn("  track 0, channel 0: notes: 2 added\n", out)
        self.assertEqual(len(self.notes()), 5)

    def test_of_the_file_itself_avoiding_changes_nothing(self):
        out, _ = self.edit(f'merge "{self.song}" avoiding')
        self.assertTrue(out.endswith(" avoiding\n  nothing changed\n"))

    def test_names_the_file_that_it_cannot_read(self):
        _, err = self.edit("merge nothing.mid", status=1)
        self.assertIn("nothing.mid: No such file or directory", err)
        self.assertFalse(os.path.exists(self.out))


class UndoAndRedo(Edit):
    def test_undo_takes_back_one_command(self):
        self.edit("nudge times 960000t", "erase-range 0t 100000000t", "undo")
        self.assertEqual(self.notes(), [(480, 60, 240), (960, 62, 240), (1440, 64, 240)])

    def test_redo_repeats_it(self):
        self.edit("erase-stream cc7", "undo", "redo")
        self.assertEqual(self.times(kind=5), [])

    def test_undoing_everything_gives_the_song_back(self):
        self.edit("nudge times 960000t", "erase-range 1:1 1:3", "copy-range 1:1 3:1 1000t",
                  "nudge pitches 1t", "quantize", "erase-stream bend", *["undo"] * 6)
        self.assertEqual(self.events(), self.events(self.song))

    def test_a_command_that_changes_nothing_is_a_step(self):
        self.edit("nudge times 960000t", "erase-stream cc6", "undo")
        self.assertEqual(self.notes()[0], (480, 60, 240))
        self.edit("nudge times 960000t", "erase-stream cc6", "undo", "undo")
        self.assertEqual(self.notes()[0], (0, 60, 240))
        self.edit("nudge times 960000t", "nudge times 0t", "undo", "undo", "redo", "redo")
        self.assertEqual(self.notes()[0], (480, 60, 240))

    def test_redo_of_a_command_that_changed_nothing_changes_nothing(self):
        self.edit("erase-stream cc6", "nudge times 960000t", "undo", "undo", "redo")
        self.assertEqual(self.notes()[0], (0, 60, 240))

    def test_a_command_ends_what_can_be_redone(self):
        _, err = self.edit("nudge times 960000t", "undo", "erase-stream cc6", "redo", status=2)
        self.assertIn("'redo': there is nothing to redo", err)

    def test_redo_more_often_than_undone_is_a_mistake(self):
        _, err = self.edit("erase-stream cc7", "undo", "redo", "redo", status=2)
        self.assertIn("'redo': there is nothing to redo", err)

    def test_undo_tells_what_changed(self):
        out, _ = self.edit("erase-stream cc7", "undo")
        self.assertTrue(out.endswith("undo\n  track 0, channel 0: other events: 2 added\n"))

    def test_without_a_step_is_a_mistake_and_nothing_is_saved(self):
        _, err = self.edit("erase-stream cc7", "undo", "undo", status=2)
        self.assertIn("'undo': there is nothing to undo", err)
        self.assertFalse(os.path.exists(self.out))


class Readme(Edit):
    def test_shows_what_the_tool_prints(self):
        out, _ = self.run_for(0, "edit", tool_case.DEMO, self.out, "--clip", "4",
                              "erase-range 2:1 3:1", "nudge times 480000t 5:1 6:1", "undo")
        with open(os.path.join(tool_case.ROOT, "README.md"), encoding="utf-8") as readme:
            self.assertIn(out, readme.read())


class Saving(Edit):
    def test_in_place(self):
        self.edit("nudge times 960000t")
        self.run_for(0, "edit", self.out, self.out, "nudge times 960000t")
        self.assertEqual(self.notes()[0], (960, 60, 240))

    def test_tracks_end_behind_their_contents(self):
        self.edit("nudge times 960000t")
        self.assertIn("  ends     1:4:480000 (3360000t, ", self.run_for(0, "info", self.out)[0])
        self.edit("nudge times 960000t", "undo")
        self.assertIn("  ends     1:3:480000 (2400000t, ", self.run_for(0, "info", self.out)[0])

    def test_notes_may_begin_before_the_beginning(self):
        self.edit("--clip", "1", "nudge times -480000t")
        self.assertEqual(self.notes(1), [(-240, 40, 480)])

    def test_values_may_not(self):
        _, err = self.edit("nudge times -1t", status=2)
        self.assertIn("a project cannot hold the controllers, bends, programs or pressures that now "
                      "lie before the beginning, in track 0", err)
        self.assertFalse(os.path.exists(self.out))
        self.edit("nudge times -1t", "nudge times 1t")
        self.assertEqual(self.events(), self.events(self.song))

    def test_the_limits_of_time_are_told(self):
        far = "2305843009213693952t"  # 2^61
        for command in (f"nudge times {far}", f"nudge times -{far}", f"nudge durations {far}",
                        f"quantize {far}"):
            commands = ["erase-stream cc7", "erase-stream bend", command, command]
            _, err = self.edit(*commands, status=2)
            self.assertIn(f"'{command}': it leads beyond the limits of time", err)
            self.edit(*commands[:-1])
            self.run_for(0, "check", self.out)

    def test_into_a_folder_or_where_there_is_none_leaves_nothing_behind(self):
        os.mkdir(self.out)
        for out, why in ((self.out, "Is a directory"),
                         (os.path.join(self.folder, "none", "out.vrad"),
                          "No such file or directory")):
            self.expect(["edit", self.song, out, "quantize"], 1, "", f"vrad: {out}: {why}\n")
        self.assertEqual(sorted(os.listdir(self.folder)), ["out.vrad", "song.mid"])
        self.assertEqual(os.listdir(self.out), [])


class Mistakes(Edit):
    def test_a_command_is_checked_before_the_file_is_read(self):
        _, err = self.run_for(2, "edit", "nothing.mid", self.out, "shift 3t")
        self.assertIn("'shift' is not one of merge,", err)

    def test_the_output_is_a_project(self):
        _, err = self.run_for(2, "edit", self.song, "out.mid", "quantize")
        self.assertIn("'out.mid' does not end in .vrad", err)
        _, err = self.run_for(2, "edit", self.song, "out", "quantize")
        self.assertIn("'out' does not end in .vrad", err)

    def test_empty_commands(self):
        for command in ("", " ", '""'):
            self.edit(command, status=2)
        self.run_for(2, "edit", self.song, self.out)

    def test_a_range_ends_behind_its_beginning(self):
        _, err = self.edit("erase-range 2t 1t", status=2)
        self.assertIn("'erase-range 2t 1t': the range ends before it begins", err)

    def test_a_place_that_the_bars_do_not_have(self):
        _, err = self.edit("erase-range 1:5 2:1", status=2)
        self.assertIn("'erase-range 1:5 2:1': the start of the range: bar 1 has beats 1 to 4", err)

    def test_a_clip_that_the_file_does_not_have(self):
        _, err = self.edit("--clip", "9", "quantize", status=2)
        self.assertIn("--clip: the file has clips 0 to 1", err)


if __name__ == "__main__":
    unittest.main()
