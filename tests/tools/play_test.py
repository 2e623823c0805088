#!/usr/bin/env python3
"""Runs `vrad play` where no port is needed: sound in WAV files, and what cannot be played.

Usage: play_test.py TOOL [unittest options]
"""
import array
import math
import os
import re
import resource
import signal
import subprocess
import time
import unittest
import wave

from tool_case import DEMO, NOTES, ROOT, TOOL, Tool, header, track

DEMO_SECONDS = 49.693
RATE = 48000

# At 120 beats a minute: silence for a second, then a note of a second.
NOTE = header(0, 1, 480) + track([0, 0xC0, 19], [0x87, 0x40, 0x90, 69, 100],
                                 [0x87, 0x40, 0x80, 69, 64])
NO_SERVER = dict(os.environ, JACK_DEFAULT_SERVER=f"vrad-test-no-such-server-{os.getpid()}")


def rms(samples):
    return math.sqrt(sum(sample * sample for sample in samples) / len(samples))


class Sound:
    def __init__(self, path):
        with wave.open(path) as sound:
            self.format = sound.getnchannels(), sound.getsampwidth(), sound.getframerate()
            self.seconds = sound.getnframes() / sound.getframerate()
            self.samples = array.array("h", sound.readframes(sound.getnframes()))

    def level(self, start=0, end=None):
        """Between two times, of both channels."""
        end = self.seconds if end is None else end
        return rms(self.samples[round(start * RATE) * 2:round(end * RATE) * 2])


class Play(Tool):
    def path(self, name="out.wav"):
        return os.path.join(self.folder, name)

    def render(self, midi, *options):
        """The sound of a file, or of the demo."""
        source = DEMO if midi is None else self.write("it.mid", midi)
        status, out, err = self.run_tool("play", source, "--wav", self.path(), *options)
        self.assertEqual((status, err), (0, ""))
        sound = Sound(self.path())
        self.assertEqual(out, f"{self.path()}: {sound.seconds:.3f} seconds of sound\n")
        return sound

    def expect_nothing_written(self, before=()):
        self.assertEqual(sorted(os.listdir(self.folder)), sorted(before))


class WAV(Play):
    def test_demo_has_length_and_level(self):
        began = time.monotonic()
        sound = self.render(None)
        self.assertLess(time.monotonic() - began, DEMO_SECONDS)
        self.assertEqual(sound.format, (2, 2, RATE))
        # The piece, and the fading out of its last chord.
        self.assertGreater(sound.seconds, DEMO_SECONDS + 1)
        self.assertLess(sound.seconds, DEMO_SECONDS + 6)
        self.assertGreater(sound.level(), 1000)
        self.assertLess(sound.level(), 2500)
        self.assertGreater(max(sound.samples), 6000)
        for second in range(0, 48, 4):
            self.assertGreater(sound.level(second, second + 4), 200, second)
        self.assertEqual(set(sound.samples[-100:]), {0})

    def test_header_counts_the_bytes(self):
        self.render(NOTE)
        with open(self.path(), "rb") as sound:
            contents = sound.read()
        self.assertEqual(contents[:4], b"RIFF")
        self.assertEqual(int.from_bytes(contents[4:8], "little"), len(contents) - 8)
        self.assertEqual(contents[72:76], b"data")
        self.assertEqual(int.from_bytes(contents[76:80], "little"), len(contents) - 80)

    def test_a_note_begins_and_ends_in_time(self):
        sound = self.render(NOTE)
        self.assertEqual(sound.level(0, 1), 0)
        self.assertGreater(sound.level(1.1, 1.9), 300)
        self.assertLess(sound.level(sound.seconds - 0.05), 20)
        self.assertGreater(sound.seconds, 2)
        self.assertLess(sound.seconds, 6)

    def test_a_louder_note_is_louder(self):
        soft = self.render(NOTE.replace(bytes([0x90, 69, 100]), bytes([0x90, 69, 40])))
        loud = self.render(NOTE)
        self.assertGreater(loud.level(1.1, 1.9), 2 * soft.level(1.1, 1.9))

    def test_same_bytes_each_time(self):
        options = ("--from", "2:1", "--to", "3:1")
        self.render(None, *options)
        os.rename(self.path(), self.path("first.wav"))
        self.render(None, *options)
        with open(self.path(), "rb") as one, open(self.path("first.wav"), "rb") as other:
            self.assertTrue(one.read() == other.read())

    def test_begins_with_what_sounds(self):
        sound = self.render(NOTE, "--from", "1.5sec")
        self.assertGreater(sound.level(0.1, 0.4), 300)
        self.assertGreater(sound.seconds, 0.5)
        self.assertLess(sound.seconds, 4.5)

    def test_to_cuts_and_fades_out(self):
        sound = self.render(NOTE, "--to", "1.25sec")
        self.assertGreater(sound.level(1.1, 1.25), 300)
        self.assertLess(sound.seconds, 5)

    def test_silence_is_silent(self):
        sound = self.render(NOTE, "--to", "1sec")
        self.assertEqual(sound.level(), 0)
        self.assertGreaterEqual(sound.seconds, 1)
        self.assertLess(sound.seconds, 1.1)

    def test_speed(self):
        self.assertEqual(self.render(NOTE, "--speed", "0.5").level(0, 2), 0)
        twice = self.render(NOTE, "--speed", "2")
        self.assertEqual(twice.level(0, 0.5), 0)
        self.assertGreater(twice.level(0.55, 0.95), 300)

    def test_speed_moves_the_bounds_with_the_music(self):
        sound = self.render(NOTE, "--speed", "2", "--from", "1sec", "--to", "2sec")
        self.assertGreater(sound.level(0.05, 0.45), 300)
        self.assertLess(sound.seconds, 4.5)

    def test_passes(self):
        sound = self.render(NOTE, "--to", "2sec", "--passes", "3")
        for start in (1, 3, 5):
            self.assertGreater(sound.level(start + 0.1, start + 0.9), 300, start)
            self.assertLess(sound.level(start + 1.8, start + 2), 60, start)
        self.assertGreater(sound.seconds, 6)
        self.assertLess(sound.seconds, 10)

    def test_a_clip(self):
        drums = self.render(None, "--clip", "5")
        self.assertGreater(drums.level(), 100)
        self.assertEqual(self.render(None, "--clip", "0").level(), 0)

    def test_replaces_an_old_file(self):
        self.write("out.wav", b"old")
        self.render(NOTE)
        self.expect_nothing_written(["it.mid", "out.wav"])


class WAVErrors(Play):
    def fail(self, *words, status=1, **more):
        code, out, err = self.run_tool("play", *words, **more)
        self.assertEqual((code, out), (status, ""), err)
        return err

    def test_soundfont_that_is_not_there(self):
        self.assertEqual(self.fail(DEMO, "--wav", self.path(), "--soundfont", "none.sf2"),
                         "vrad: none.sf2: No such file or directory\n")
        self.expect_nothing_written()

    def test_soundfont_that_is_none(self):
        self.assertEqual(self.fail(DEMO, "--wav", self.path(), "--soundfont", DEMO),
                         f"vrad: {DEMO}: not a SoundFont that can be used\n")
        self.assertEqual(self.fail(DEMO, "--wav", self.path(), "--soundfont", self.folder),
                         f"vrad: {self.folder}: Is a directory\n")
        self.expect_nothing_written()

    def test_places_where_no_file_can_be(self):
        self.assertEqual(self.fail(DEMO, "--wav", self.path("none/out.wav")),
                         f"vrad: {self.path('none/out.wav')}: No such file or directory\n")
        self.assertEqual(self.fail(DEMO, "--wav", self.folder),
                         f"vrad: {self.folder}: Is a directory\n")
        self.expect_nothing_written()

    def test_a_disk_that_is_full(self):
        self.write("out.wav", b"old")

        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 20, 1 << 20))

        err = self.fail(DEMO, "--wav", self.path(), preexec_fn=limit, restore_signals=False)
        self.assertEqual(err, f"vrad: {self.path()}: File too large\n")
        self.expect_nothing_written(["out.wav"])
        with open(self.path(), "rb") as old:
            self.assertEqual(old.read(), b"old")

    def test_an_interrupt_leaves_nothing(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            run = subprocess.Popen([TOOL, "play", DEMO, "--wav", self.path(), "--passes", "1000"],
                                   cwd=ROOT, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   text=True)
            end = time.monotonic() + 60
            while not os.listdir(self.folder) and time.monotonic() < end:
                time.sleep(0.01)
            run.send_signal(number)
            out, err = run.communicate(timeout=60)
            self.assertEqual((run.returncode, out, err),
                             (1, "", f"vrad: {self.path()}: interrupted; nothing is written\n"))
            self.expect_nothing_written()

    def test_a_sound_without_end(self):
        # 2^28 - 1 ticks at a beat each are four years.
        path = self.write("far.mid", header(0, 1, 1) + track([0xFF, 0xFF, 0xFF, 0x7F, 0x90, 60, 1]))
        err = self.fail(path, "--wav", self.path(), status=2)
        self.assertEqual(err.splitlines()[0], "vrad: --wav: 37283 hours of sound; 24 are the most")
        self.assertEqual(self.render_far(path), 1)

    def test_passes_beyond_all_numbers(self):
        # Multiplied out, samples would not fit into 64 bits.
        err = self.fail(DEMO, "--wav", self.path(), "--to", "2305843009213693952t", "--passes",
                        "1000000", status=2)
        self.assertRegex(err, r"^vrad: --wav: \d{11} hours of sound; 24 are the most\n")
        self.expect_nothing_written()

    def render_far(self, path):
        """Seconds of the beginning of a file that is far too long."""
        self.run_tool("play", path, "--wav", self.path(), "--to", "1sec")
        return math.floor(Sound(self.path()).seconds)


class BadCommandLines(Play):
    def test_no_file(self):
        self.expect_usage_error(["play"], "FILE is required")
        self.expect(["play", "none.mid"], 1, "", "vrad: none.mid: No such file or directory\n")

    def test_speeds(self):
        for speed in ("0", "-1", "0.009", "100.1", "fast", "", "nan", "inf", "1e9", "0x1", "1,5"):
            self.expect_usage_error(["play", DEMO, f"--speed={speed}"] if speed else
                                    ["play", DEMO, "--speed", ""],
                                    f"--speed: '{speed}' is not a number from 0.01 to 100")

    def test_passes(self):
        for passes in ("0", "-1", "1000001", "many", "1.5", "99999999999999999999"):
            self.expect_usage_error(["play", DEMO, f"--passes={passes}"],
                                    f"--passes: '{passes}' is not a number from 1 to 1000000")

    def test_ranges(self):
        self.expect_usage_error(["play", DEMO, "--from", "100:1"],
                                "--from lies behind the end, 18:2:000000")
        self.expect_usage_error(["play", DEMO, "--from=-1t"], "--from lies before the beginning")
        for start, end in (("2:1", "1:1"), ("2:1", "2:1")):
            self.expect_usage_error(["play", DEMO, "--from", start, "--to", end],
                                    "--to does not lie behind --from")
        self.expect_usage_error(["play", DEMO, "--from", "0t", "--to", "1t"],
                                "nothing lies between --from and --to")
        self.expect_usage_error(["play", DEMO, "--to", "8"],
                                "--to: '8' is not a position such as 960000t, 48000s, 12.5sec or "
                                "BAR:BEAT[:TICK]")

    def test_names_of_no_file(self):
        self.expect_usage_error(["play", DEMO, "--wav", ""], "--wav: no file is named")
        self.expect_usage_error(["play", DEMO, "--wav", self.path(), "--soundfont", ""],
                                "--soundfont: no file is named")

    def test_clips(self):
        self.expect_usage_error(["play", DEMO, "--clip", "6"], "--clip: the file has clips 0 to 5")

    def test_what_does_not_go_together(self):
        self.expect_usage_error(["play", DEMO, "--wav", self.path(), "--loop"],
                                "--loop: a file has to end; --passes N repeats that often")
        for words in (["--wav", self.path(), "--port", "0"], ["--soundfont", "some.sf2"],
                      ["--wav", self.path(), "--list-ports"]):
            status, out, err = self.run_tool("play", DEMO, *words)
            self.assertEqual((status, out), (2, ""), words)
            self.assertTrue(err.startswith("vrad: --"), err)

    def test_a_file_is_not_written_over_itself(self):
        path = self.write("it.mid", NOTES)
        os.symlink(path, self.path("link"))
        for name in ("it.mid", "link"):
            self.expect_usage_error(["play", path, "--wav", self.path(name)],
                                    "--wav: that is the file to be played")
        with open(path, "rb") as kept:
            self.assertEqual(kept.read(), NOTES)


@unittest.skipIf(os.path.exists("/dev/snd/seq"), "this machine has ports of its own")
class NoPorts(Play):
    def test_are_listed_as_none(self):
        self.assertEqual(self.run_tool("play", "--list-ports", env=NO_SERVER),
                         (0, "no MIDI ports\n", ""))

    def test_cannot_be_played_to(self):
        self.assertEqual(self.run_tool("play", DEMO, env=NO_SERVER), (
            1, "", "vrad: there is no MIDI port to play to; --wav OUT.wav writes sound to a "
                   "file\n"))
        self.assertEqual(self.run_tool("play", DEMO, "--port", "synth", env=NO_SERVER), (
            1, "", "vrad: no MIDI port is named 'synth'; there are no ports\n"))


class Help(Play):
    def test_names_the_options(self):
        status, out, err = self.run_tool("play", "--help")
        self.assertEqual((status, err), (0, ""))
        found = set(re.findall(r"--[a-z-]+", out))
        self.assertEqual(found, {"--help", "--clip", "--from", "--to", "--loop", "--passes",
                                 "--speed", "--port", "--list-ports", "--wav", "--soundfont"})


if __name__ == "__main__":
    unittest.main()
