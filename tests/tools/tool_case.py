"""What the tests of the tool share: small MIDI files, and running the tool on them.

The test program that imports this is called with the tool in front of unittest's options.
"""
import os
import subprocess
import sys
import tempfile
import unittest

TOOL = os.path.abspath(sys.argv.pop(1))
ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
DEMO = os.path.join("examples", "demo.mid")


def chunk(kind, contents):
    return kind + len(contents).to_bytes(4, "big") + contents


def header(form, tracks, division):
    return chunk(b"MThd", b"".join(n.to_bytes(2, "big") for n in (form, tracks, division)))


def track(*events):
    return chunk(b"MTrk", b"".join(bytes(e) for e in events) + b"\x00\xff\x2f\x00")


# One file tick is 2000 library ticks; at 120 beats a minute a library tick is 1/40 sample.
NOTES = header(1, 2, 480) + track(
    [0, 0xFF, 3, 5], b"Piece",
    [0, 0xFF, 0x58, 4, 3, 2, 24, 8],   # 3/4
    [0, 0xF0, 3, 0x41, 0x7F, 0xF7],
    [0, 0xF0, 17], bytes(range(16)), [0xF7],
) + track(
    [0, 0xB1, 0, 3], [0, 32, 4], [0, 0xC1, 9],
    [0, 0xB1, 7, 100],
    [0, 0xE1, 0, 0x40],
    [0, 0x91, 60, 80],                 # 0 to 480
    [0x83, 0x60, 0x81, 60, 33],        # 480
    [0, 0xD1, 50], [0, 0xA1, 62, 51],
    [0, 0x91, 62, 81],                 # 480 to 1440
    [0x87, 0x40, 62, 0],               # 1440
    [0, 0xB1, 7, 90], [0, 123, 0],
    [0, 0xFF, 5, 2], b"la",
)


class Tool(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def write(self, name, contents):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as out:
            out.write(contents)
        return path

    def run_tool(self, *words, **more):
        done = subprocess.run([TOOL, *words], cwd=ROOT, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True, timeout=120, **more)
        return done.returncode, done.stdout, done.stderr

    def on_a_terminal(self, words, is_output_there=False):
        """What the tool writes to a terminal, errors alone or what it prints too."""
        terminal, end = os.openpty()
        run = subprocess.Popen([TOOL, *words], cwd=ROOT, stderr=end,
                               stdout=end if is_output_there else subprocess.DEVNULL)
        os.close(end)
        text = b""
        try:
            while piece := os.read(terminal, 1 << 16):
                text += piece
        except OSError:
            pass  # nobody holds the other end any more
        os.close(terminal)
        self.assertEqual(run.wait(timeout=120), 0)
        return text.decode()

    def many_notes(self, num):
        return self.write("many.mid", header(0, 1, 480) + track(
            b"\x01\x90\x3c\x50\x01\x90\x3c\x00" * num))

    def expect(self, words, status, out, err=""):
        self.assertEqual(self.run_tool(*words), (status, out, err))

    def expect_usage_error(self, words, text):
        self.expect(words, 2, "", f"vrad: {text}\nvrad: see vrad --help\n")

    def events(self, *options):
        path = self.write("notes.mid", NOTES)
        status, out, err = self.run_tool("events", path, "--as", "jsonl", *options)
        self.assertEqual((status, err), (0, ""))
        return out

    def read(self, name):
        """What is expected, as it is kept in tests/golden."""
        with open(os.path.join(ROOT, "tests", "golden", name), encoding="utf-8") as lines:
            return lines.read()
