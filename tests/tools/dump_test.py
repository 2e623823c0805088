#!/usr/bin/env python3
"""Reads the tool's dumps as a stranger would and compares them with its events.

Usage: dump_test.py TOOL [unittest options]
"""
import json
import os
import re
import subprocess
import unittest
import xml.etree.ElementTree

from tool_case import DEMO, NOTES, ROOT, TOOL, Tool, header, track

NOTE = ["Time", "nPitch", "Duration", "nOnVel", "nOffVel", "QuantizeTimeDelta",
        "DurationDeltaFromOriginal", "nOriginalPitch", "OriginalDuration", "nOriginalOnVel",
        "nOriginalOffVel"]


class Dump(Tool):
    def dump(self, path, *options):
        status, out, err = self.run_tool("dump", path, *options)
        self.assertEqual((status, err), (0, ""))
        return out

    def parse(self, path, *options):
        # As bytes: the declaration must name the encoding.
        text = self.dump(path, "--as", "xml", *options)
        return xml.etree.ElementTree.fromstring(text.encode())

    def named(self, name):
        """A file whose only track has a name of these bytes and one note."""
        return self.write("named.mid", header(1, 1, 480) + track(
            [0, 0xFF, 3, len(name)], name, [0, 0x90, 60, 80], [96, 0x80, 60, 64]))


class AsXML(Dump):
    def test_agrees_with_the_events(self):
        events = {}
        status, out, err = self.run_tool("events", DEMO, "--as", "jsonl")
        self.assertEqual((status, err), (0, ""))
        for line in out.splitlines():
            event = json.loads(line)
            events.setdefault(event["clip"], []).append(event)
        clips = self.parse(DEMO).findall("clip")
        self.assertEqual([int(clip.get("number")) for clip in clips], sorted(events))
        for clip in clips:
            self.compare(clip, events[int(clip.get("number"))])

    def compare(self, clip, events):
        channel = clip.get("channel")
        self.assertEqual(events[0]["channel"], None if channel is None else int(channel))
        self.assertEqual(events[0]["track"], int(clip.get("track")))
        notes = [event for event in events if event["name"] == "NoteWithDuration"]
        listed = clip.find("MIDI_Chunk/NoteList")
        self.assertEqual(int(listed.findtext("nNumNotes")), len(notes))
        of_event = sorted((f"{n['time']}{n['unit']}", str(n["pitch"]),
                           f"{n['duration']}{n['duration_unit']}", str(n["on"]), str(n["off"]))
                          for n in notes)
        of_note = sorted(tuple(note.findtext(name) for name in NOTE[:5])
                         for note in listed.findall("Note"))
        self.assertEqual(of_note, of_event)
        streams = {(event["name"], event.get("number"), event.get("pitch")) for event in events
                   if event["name"] not in ("NoteWithDuration", "ShortSysex", "LongSysex")}
        count = clip.findtext("MIDI_Chunk/NumContinuousControllerDataStreams")
        self.assertEqual(int(count), len(streams))

    def test_has_the_nodes_in_order(self):
        root = self.parse(DEMO)
        self.assertEqual(root.tag, "vrad")
        for clip in root:
            self.assertEqual([node.tag for node in clip], ["MIDI_Chunk"])
            chunk = clip[0]
            self.assertEqual([node.tag for node in chunk],
                             ["NoteList", "NumContinuousControllerDataStreams", "UID"])
            self.assertRegex(chunk.findtext("UID"), "^[0-9a-f]{32}$")
            self.assertEqual([node.tag for node in chunk[0]],
                             ["nNumNotes"] + ["Note"] * (len(chunk[0]) - 1))
            for note in chunk[0].findall("Note"):
                self.assertEqual([node.tag for node in note], NOTE)

    def test_a_note_whole(self):
        path = self.write("notes.mid", NOTES)
        note = self.parse(path, "--clip", "1").find("clip/MIDI_Chunk/NoteList/Note")
        self.assertEqual([node.text for node in note],
                         ["0t", "60", "960000t", "80", "33", "0t", "0t", "60", "960000t", "80",
                          "33"])

    def test_begins_as_the_readme_says(self):
        golden = os.path.join(ROOT, "tests", "golden", "demo_dump.xml")
        with open(golden, encoding="utf-8") as lines:
            self.assertTrue(self.dump(DEMO, "--clip", "3", "--as", "xml").startswith(lines.read()))

    def test_one_clip(self):
        clips = self.parse(DEMO, "--clip", "3").findall("clip")
        self.assertEqual([clip.get("name") for clip in clips], ["Lead"])

    def test_a_clip_without_channel_has_no_such_attribute(self):
        self.assertNotIn("channel", self.parse(DEMO, "--clip", "0").find("clip").attrib)

    def test_a_name_with_markup(self):
        name = "<a b=\"c\"> & 'd' ]]> <!-- -->"
        self.assertEqual(self.parse(self.named(name.encode())).find("clip").get("name"), name)

    def test_a_name_in_utf8(self):
        name = "Flöte ♫ 𝄞 \ufffd"
        self.assertEqual(self.parse(self.named(name.encode())).find("clip").get("name"), name)

    def test_bytes_that_are_no_characters_are_escaped(self):
        self.assertEqual(self.parse(self.named(b"Fl\xf6te\x00\n\x1b")).find("clip").get("name"),
                         "Fl\\xf6te\\x00\\x0a\\x1b")

    def test_odd_bytes_make_a_document(self):
        for first in (*range(0, 33), 0x26, 0x3C, *range(0x7E, 0x100, 7), 0xFE, 0xFF):
            name = bytes([first]) + b"a"
            root = self.parse(self.named(name))
            self.assertTrue(root.find("clip").get("name").endswith("a"))

    def test_forbidden_forms_of_utf8_make_a_document(self):
        for name in (b"\xed\xa0\x80", b"\xe0\x80\x80", b"\xf4\x90\x80\x80", b"\xef\xbf\xbe",
                     b"\xef\xbf\xbf", b"\xc2", b"\xe2\x99"):
            escaped = "".join(f"\\x{byte:02x}" for byte in name)
            self.assertEqual(self.parse(self.named(name)).find("clip").get("name"), escaped)

    def test_a_file_without_clips(self):
        path = self.write("empty.mid", header(0, 1, 480) + track())
        self.assertEqual(list(self.parse(path)), [])


class AsText(Dump):
    def test_is_what_is_printed_unless_told(self):
        self.assertEqual(self.dump(DEMO), self.dump(DEMO, "--as", "text"))

    def test_a_clip_whole(self):
        path = self.write("notes.mid", NOTES)
        self.assertEqual(self.dump(path, "--clip", "1"), """\
clip 1: track 1, channel 1
Notes: 2
  0t pitch 60, duration 960000t, on 80, off 33
  960000t pitch 62, duration 1920000t, on 81, off 64
PitchBend: 1
  0t 0
Controller 7: 2
  0t 100
  2880000t 90
MonoPressure: 1
  960000t 50
Program: 1
  0t 99337
PolyPressure 62: 1
  960000t 51
Sorted list: none
""")

    def test_clips_stand_apart(self):
        parts = self.dump(DEMO).split("\n\n")
        self.assertEqual(len(parts), 6)
        for number, part in enumerate(parts):
            self.assertTrue(part.startswith(f"clip {number}: track "))
            self.assertTrue(re.search("^Sorted list: none$", part, re.MULTILINE))


class Errors(Dump):
    def test_unknown_form(self):
        status, out, err = self.run_tool("dump", DEMO, "--as", "json")
        self.assertEqual((status, out), (2, ""))
        self.assertIn("--as", err)

    def test_no_such_clip(self):
        self.expect_usage_error(["dump", DEMO, "--clip", "6"], "--clip: the file has clips 0 to 5")

    def test_no_such_file(self):
        self.expect(["dump", "none.mid"], 1, "", "vrad: none.mid: No such file or directory\n")

    def test_full_disk(self):
        for form in ("xml", "text"):
            with open("/dev/full", "wb") as full:
                done = subprocess.run([TOOL, "dump", DEMO, "--as", form],
                                      cwd=ROOT, stdout=full, stderr=subprocess.PIPE,
                                      text=True, timeout=120)
            self.assertEqual((done.returncode, done.stderr),
                             (1, "vrad: standard output: No space left on device\n"))


if __name__ == "__main__":
    unittest.main()
