#!/usr/bin/env python3
"""Draws pictures with the tool and looks at their pixels and their outlines.

Usage: picture_tool_test.py TOOL [unittest options]
"""
import os
import re
import struct
import unittest
import xml.etree.ElementTree
import zlib

from tool_case import DEMO, Tool, header, track

SVG = "{http://www.w3.org/2000/svg}"
LOUD, SOFT = (226, 38, 76), (176, 205, 240)


class PNG:
    """The pixels of a picture of 8 bits to the colour, 3 colours to the pixel."""

    def __init__(self, data):
        assert data[:8] == b"\x89PNG\r\n\x1a\n"
        at, packed = 8, b""
        while at < len(data):
            size, = struct.unpack(">I", data[at:at + 4])
            kind, contents = data[at + 4:at + 8], data[at + 8:at + 8 + size]
            check, = struct.unpack(">I", data[at + 8 + size:at + 12 + size])
            assert zlib.crc32(kind + contents) == check
            if kind == b"IHDR":
                self.width, self.height, *form = struct.unpack(">IIBBBBB", contents)
                assert form == [8, 2, 0, 0, 0], form
            if kind == b"IDAT":
                packed += contents
            at += 12 + size
        self.rows = list(self.unfilter(zlib.decompress(packed)))

    def unfilter(self, data):
        length = self.width * 3
        before = bytearray(length)
        for at in range(0, len(data), length + 1):
            kind, row = data[at], bytearray(data[at + 1:at + 1 + length])
            for i in range(length):
                a = row[i - 3] if i >= 3 else 0
                b, c = before[i], before[i - 3] if i >= 3 else 0
                row[i] = row[i] + (0, a, b, (a + b) // 2, self.nearest(a, b, c))[kind] & 0xFF
            yield row
            before = row

    @staticmethod
    def nearest(a, b, c):
        return min((a, b, c), key=lambda x: (abs(a + b - c - x), (a, b, c).index(x)))

    def pixel(self, x, y):
        return tuple(self.rows[y][3 * x:3 * x + 3])


def size_of(data):
    """Width and height of a PNG."""
    return struct.unpack(">II", data[16:24])


class Picture(Tool):
    def path(self, name):
        return os.path.join(self.folder, name)

    def draw(self, source, name, *options):
        path = self.path(name)
        self.expect(["picture", source, path, *options], 0, "")
        with open(path, "rb") as picture:
            return picture.read()

    def two_notes(self):
        """A bar: beat 1 loud on 60, beat 3 soft on 60."""
        return self.write("two.mid", header(1, 1, 480) + track(
            [0, 0x90, 60, 127], [0x83, 0x60, 0x80, 60, 0],
            [0x83, 0x60, 0x90, 60, 1], [0x83, 0x60, 0x80, 60, 0], [0x83, 0x60, 0xFF, 1, 0]))

    def boxes(self, svg):
        """The colours of the outlines that begin with a box, and those boxes."""
        result = []
        for path in xml.etree.ElementTree.fromstring(svg).iter(SVG + "path"):
            style, outline = path.get("style"), path.get("d")
            colour = re.search(r"fill:rgb\(([\d.]+)%,([\d.]+)%,([\d.]+)%\)", style)
            for box in re.findall(r"M (\d+) (\d+) L (\d+) \2 L \3 (\d+) L \1 \4 Z", outline):
                result.append((tuple(round(float(part) * 2.55) for part in colour.groups()),
                               tuple(map(int, box))))
        return result


class Geometry(Picture):
    # The axis begins at column 100; 1216 pixels leave 1100 for it, 275 to the beat.
    OPTIONS = ("--width", "1216", "--height", "254")  # rows of 10 pixels

    def test_notes_have_their_colours_at_their_places(self):
        png = PNG(self.draw(self.two_notes(), "a.png", *self.OPTIONS))
        self.assertEqual((png.width, png.height), (1216, 254))
        row = 96 + 6 * 10 + 5  # the seventh of thirteen is 60
        self.assertEqual(png.pixel(100 + 137, row), LOUD)
        self.assertEqual(png.pixel(100 + 550 + 137, row), SOFT)
        for column in (100 + 275 + 137, 100 + 825 + 137):
            self.assertEqual(png.pixel(column, row), (255, 255, 255))
        for near in (row - 10, row + 10):
            self.assertNotIn(png.pixel(100 + 137, near), (LOUD, SOFT))

    def test_outlines_say_the_same(self):
        boxes = self.boxes(self.draw(self.two_notes(), "a.svg", *self.OPTIONS))
        self.assertIn((LOUD, (101, 157, 373, 164)), boxes)
        self.assertIn((SOFT, (651, 157, 923, 164)), boxes)

    def test_from_and_to_are_the_edges(self):
        boxes = self.boxes(self.draw(self.two_notes(), "a.svg", *self.OPTIONS,
                                     "--from", "1:3", "--to", "1:4"))
        self.assertIn((SOFT, (101, 157, 1199, 164)), boxes)
        self.assertNotIn(LOUD, [colour for colour, box in boxes if box[3] == 164])

    def test_one_clip(self):
        whole = size_of(self.draw(DEMO, "all.png"))
        one = size_of(self.draw(DEMO, "one.png", "--clip", "4"))
        self.assertLess(one[1], whole[1] / 2)


class Files(Picture):
    def test_same_bytes_again(self):
        for name in ("a.png", "a.svg"):
            self.assertTrue(self.draw(DEMO, name) == self.draw(DEMO, name))

    def test_real_outlines_of_the_demo(self):
        root = xml.etree.ElementTree.fromstring(self.draw(DEMO, "a.svg"))
        self.assertEqual((root.tag, root.get("width")), (SVG + "svg", "1600pt"))

    def test_many_notes_make_no_huge_file(self):
        events = []
        for i in range(50000):
            pitch = 30 + i * 7919 % 70
            events += [[1, 0x90, pitch, 1 + i % 127], [1, 0x80, pitch, 0]]
        svg = self.draw(self.write("many.mid", header(1, 1, 480) + track(*events)), "a.svg")
        xml.etree.ElementTree.fromstring(svg)
        self.assertLess(len(svg), 4_000_000)

    def test_a_file_without_clips(self):
        path = self.write("empty.mid", header(0, 1, 480) + track())
        self.assertEqual(size_of(self.draw(path, "a.png"))[0], 1600)

    def test_replaces_what_was_there(self):
        self.write("a.png", b"old")
        self.assertEqual(size_of(self.draw(self.two_notes(), "a.png"))[0], 1600)
        self.assertEqual(sorted(os.listdir(self.folder)), ["a.png", "two.mid"])

    def test_odd_track_names(self):
        for name in (b"\xff\xfe", b"\xed\xa0\x80", b"\x1b[31m", "Flöte".encode()):
            path = self.write("odd.mid", header(1, 1, 480) + track(
                [0, 0xFF, 3, len(name)], name, [0, 0x90, 60, 9], [9, 0x80, 60, 0]))
            self.draw(path, "a.svg")


class Progress(Picture):
    def test_long_drawing_shows_a_bar_and_takes_it_away(self):
        for name in ("a.png", "a.svg"):
            text = self.on_a_terminal(["picture", self.many_notes(25000), self.path(name)])
            for bar in ("\r[" + " " * 40 + "]   0%", "\r[" + "#" * 20 + " " * 20 + "]  50%"):
                self.assertIn(bar, text)
            self.assertTrue(text.endswith("\r" + " " * 47 + "\r"))

    def test_short_drawing_shows_none(self):
        self.assertEqual(self.on_a_terminal(["picture", DEMO, self.path("a.png")]), "")


class Errors(Picture):
    def refuse(self, text, *options, name="a.svg"):
        self.expect_usage_error(["picture", self.two_notes(), self.path(name), *options],
                                text.format(self.path(name)))
        self.assertFalse(os.path.exists(self.path(name)))

    def test_unknown_ending(self):
        self.refuse("{}: a picture's name ends in .svg or .png", name="a.jpg")
        self.refuse("{}: a picture's name ends in .svg or .png", name="svg")

    def test_absurd_sizes(self):
        for width in ("-1", "0", "319", "16385", "2147483647"):
            self.refuse(f"--width: '{width}' is not 320 to 16384 pixels", "--width", width)
        for height in ("-1", "0", "16385"):
            self.refuse(f"--height: '{height}' is not 1 to 16384 pixels", "--height", height)
        self.refuse("{}: the clips need a height of 137 pixels", "--height", "136")
        self.refuse("{}: the height is at most 4096 pixels at this width",
                    "--width", "16384", "--height", "16384")

    def test_sizes_that_are_no_numbers(self):
        for option in ("--width", "--height"):
            least = "320" if option == "--width" else "1"
            for value in ("x", "", "400px", "99999999999"):
                self.refuse(f"{option}: '{value}' is not {least} to 16384 pixels", option, value)

    def test_empty_ranges(self):
        self.refuse("--from lies at or after --to", "--from", "1:2", "--to", "1:2")
        self.refuse("--from lies at or after the end", "--from", "2:1")

    def test_no_such_clip(self):
        self.refuse("--clip: the file has clips 0 to 0", "--clip", "1")

    def test_missing_folder(self):
        path = self.path("none/a.svg")
        self.expect(["picture", DEMO, path], 1, "", f"vrad: {path}: No such file or directory\n")

    def test_a_folder_in_the_way(self):
        path = self.path("a.svg")
        os.mkdir(path)
        self.expect(["picture", DEMO, path], 1, "", f"vrad: {path}: Is a directory\n")
        self.assertEqual(os.listdir(path), [])

    def test_bad_input_leaves_the_old_picture(self):
        old = self.write("a.svg", b"old")
        self.expect(["picture", "none.mid", old], 1, "",
                    "vrad: none.mid: No such file or directory\n")
        with open(old, "rb") as kept:
            self.assertEqual(kept.read(), b"old")


if __name__ == "__main__":
    unittest.main()
