#!/usr/bin/env python3
"""Plays to a real JACK server, with a client of ours at the other end that writes down what arrives.

The server runs without hardware and without real-time rights, under a name of its own. Ends with
status 77, after a line that says why, when there is no jackd.

Usage: jack_test.py TOOL RECORDER [unittest options]
"""
import collections
import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

from tool_case import DEMO, ROOT, TOOL, Tool, header, track

RECORDER = os.path.abspath(sys.argv.pop(1))
SERVER = f"vrad-test-{os.getpid()}"
ENVIRONMENT = dict(os.environ, JACK_DEFAULT_SERVER=SERVER, JACK_NO_AUDIO_RESERVATION="1")
RATE = 48000
SERVER_LOG = tempfile.TemporaryFile()
PATIENCE = 60  # seconds that anything may take before the test gives up


def start_server(name):
    # In synchronous mode a cycle waits for its clients, so that a busy machine loses nothing.
    return subprocess.Popen(
        ["jackd", "--no-realtime", "--sync", "-t", "10000", "-n", name,
         "-d", "dummy", "-r", str(RATE), "-p", "256"],
        env=ENVIRONMENT, stdin=subprocess.DEVNULL, stdout=SERVER_LOG, stderr=SERVER_LOG)


def what_servers_said():
    SERVER_LOG.seek(0)
    return SERVER_LOG.read().decode(errors="replace")[-3000:]


def end(process):
    if process.poll() is None:
        process.terminate()
        process.send_signal(signal.SIGCONT)
        try:
            process.wait(10)
        except subprocess.TimeoutExpired:
            process.kill()
    process.wait(10)


class Recording:
    """Runs the recorder; at the end `messages` holds (microsecond, bytes) of all that arrived."""

    def __init__(self, path, environment=ENVIRONMENT):
        self.path = path
        self.environment = environment
        self.messages = []

    def __enter__(self):
        give_up = time.monotonic() + PATIENCE
        while True:
            self.run = subprocess.Popen([RECORDER, self.path, str(2 * PATIENCE)],
                                        env=self.environment,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.DEVNULL, text=True)
            if self.run.stdout.readline() == "ready\n":
                return self
            self.close()
            if time.monotonic() > give_up:
                raise RuntimeError("the JACK server does not answer; it says:\n"
                                   + what_servers_said())
            time.sleep(0.1)

    def __exit__(self, *_):
        self.close()
        if os.path.exists(self.path):
            with open(self.path, encoding="ascii") as lines:
                for line in lines:
                    at, message = line.rstrip().split(" ", 1)
                    self.messages.append((int(at), message))

    def close(self):
        self.run.stdin.close()
        try:
            self.run.wait(PATIENCE)
        finally:
            end(self.run)
            self.run.stdout.close()

    def bytes(self):
        return [message for _, message in self.messages]


class Port(Tool):
    def setUp(self):
        super().setUp()
        self.recording = Recording(os.path.join(self.folder, "recorded.txt"))

    def play(self, *words):
        return self.run_tool("play", *words, env=ENVIRONMENT)

    def wire(self, path, *options):
        """By clip, what a player sends."""
        status, out, err = self.run_tool("wire", path, "--as", "jsonl", *options)
        self.assertEqual((status, err), (0, ""))
        messages = collections.defaultdict(list)
        for line in out.splitlines():
            message = json.loads(line)
            messages[message["clip"]].append(message["bytes"])
        return messages

    def expect_nothing_sounding(self, messages):
        sounding, values = collections.Counter(), {}
        for message in map(bytes.fromhex, messages):
            kind, channel = message[0] & 0xF0, message[0] & 0x0F
            if kind in (0x80, 0x90):
                is_on = kind == 0x90 and message[2] > 0
                sounding[channel, message[1]] += 1 if is_on else -1
            elif kind == 0xB0 and message[1] in (64, 66, 67, 69):
                values[channel, message[1]] = message[2]
            elif kind == 0xE0:
                values[channel, "bend"] = message[1] + 128 * message[2] - 8192
        self.assertEqual({key for key, count in sounding.items() if count != 0}, set())
        self.assertEqual({key for key, value in values.items() if value != 0}, set())


class Playing(Port):
    def test_ports_are_listed(self):
        with self.recording:
            self.assertEqual(self.play("--list-ports"), (0, "  0  Jack   jack_recorder:in\n", ""))

    def test_what_arrives_is_what_the_player_sends(self):
        options = ("--from", "3:1", "--to", "5:1")
        with self.recording as recording:
            self.assertEqual(self.play(DEMO, "--port", "jack_recorder:in", *options),
                             (0, "playing to jack_recorder:in\n", ""))
        arrived = recording.bytes()
        sent = self.wire(DEMO, *options)
        self.assertEqual(collections.Counter(arrived),
                         collections.Counter(message for clip in sent.values() for message in clip))
        # Each clip of the demo has a channel, so that its messages can be told from the others.
        for clip, channel in ((1, 0), (2, 1), (3, 2), (4, 3), (5, 9)):
            of_channel = [text for text in arrived if int(text[:2], 16) & 0x0F == channel]
            self.assertEqual(of_channel, sent[clip], f"clip {clip}")
        self.expect_nothing_sounding(arrived)

    def test_messages_arrive_when_they_are_due(self):
        # Notes at 0, 0.5 and 1 second; the last one ends half a second later.
        contents = header(0, 1, 480) + track([0, 0x90, 60, 1], [0x83, 0x60, 62, 2],
                                             [0x83, 0x60, 64, 3], [0x83, 0x60, 60, 0],
                                             [0, 62, 0], [0, 64, 0])
        with self.recording as recording:
            self.assertEqual(self.play(self.write("it.mid", contents))[0], 0)
        self.assertEqual(recording.bytes()[:3], ["90 3c 01", "90 3e 02", "90 40 03"])
        self.assertEqual(sorted(recording.bytes()[3:]), ["90 3c 00", "90 3e 00", "90 40 00"])
        times = [at - recording.messages[0][0] for at, _ in recording.messages]
        for at, due in zip(times, (0, 500, 1000, 1500, 1500, 1500)):
            # As near as a busy machine allows.
            self.assertGreater(at / 1000, due - 300, times)
            self.assertLess(at / 1000, due + 1000, times)

    def test_speed(self):
        contents = header(0, 1, 480) + track([0, 0x90, 60, 1], [0x9E, 0x00, 60, 0])  # 4 seconds
        with self.recording as recording:
            self.assertEqual(self.play(self.write("it.mid", contents), "--speed", "8")[0], 0)
        (start, _), (stop, _) = recording.messages
        self.assertGreater(stop - start, 200000)
        self.assertLess(stop - start, 1500000)

    def test_passes(self):
        contents = header(0, 1, 480) + track([0, 0x90, 60, 1], [10, 60, 0])
        with self.recording as recording:
            self.assertEqual(self.play(self.write("it.mid", contents), "--passes", "3", "--to",
                                       "200000t")[0], 0)
        self.assertEqual(recording.bytes(), ["90 3c 01", "90 3c 00"] * 3)

    def test_a_sysex_that_jack_cannot_take_is_told(self):
        contents = header(0, 1, 480) + track([0, 0xF0, 0x86, 0x8D, 0x21], bytes(100000), [0xF7],
                                             [0, 0xF0, 3, 1, 2, 0xF7])
        with self.recording as recording:
            self.assertEqual(self.play(self.write("it.mid", contents)), (
                1, "playing to jack_recorder:in\n",
                "vrad: jack_recorder:in: 1 message could not be sent\n"))
        self.assertEqual(recording.bytes(), ["f0 01 02 f7"])

    def test_ports_that_are_not_there(self):
        there = "; there are:\n  0  jack_recorder:in\n"
        with self.recording:
            self.assertEqual(self.play(DEMO, "--port", "flute"),
                             (1, "", "vrad: no MIDI port is named 'flute'" + there))
            self.assertEqual(self.play(DEMO, "--port", "1"),
                             (1, "", "vrad: no MIDI port has the number 1" + there))


class Interrupted(Port):
    def interrupt(self, number):
        """What arrives from a loop that is told to end after its first wrap."""
        with self.recording as recording:
            run = subprocess.Popen(
                [TOOL, "play", DEMO, "--from", "3:1", "--to", "3:3", "--loop", "--speed", "4"],
                cwd=ROOT, env=ENVIRONMENT, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                text=True)
            self.assertEqual(run.stdout.readline(), "playing to jack_recorder:in\n")
            time.sleep(1)
            run.send_signal(number)
            out, err = run.communicate(timeout=PATIENCE)
        self.assertEqual((run.returncode, out, err), (0, "", ""))
        return recording.bytes()

    def test_playing_ends_with_nothing_sounding(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            arrived = self.interrupt(number)
            self.assertGreater(len(arrived), 50)
            self.expect_nothing_sounding(arrived)


class ServerGone(Tool):
    def play_while(self, number):
        """Plays to a server that is sent a signal meanwhile, and gives what the tool comes to."""
        name = f"{SERVER}-gone"
        environment = dict(ENVIRONMENT, JACK_DEFAULT_SERVER=name)
        server = start_server(name)
        self.addCleanup(end, server)
        # Not left in good order, since without its server the recorder cannot be.
        recording = Recording(os.path.join(self.folder, "recorded.txt"), environment).__enter__()
        for stream in (recording.run.stdin, recording.run.stdout):
            self.addCleanup(stream.close)
        self.addCleanup(recording.run.wait, PATIENCE)
        self.addCleanup(recording.run.kill)
        run = subprocess.Popen([TOOL, "play", DEMO, "--to", "1:4"], cwd=ROOT, env=environment,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(end, run)
        self.assertEqual(run.stdout.readline(), "playing to jack_recorder:in\n")
        server.send_signal(number)
        began = time.monotonic()
        out, err = run.communicate(timeout=PATIENCE)
        # Ten seconds for the server, once, besides what is played.
        self.assertLess(time.monotonic() - began, 18)
        self.assertEqual((run.returncode, out), (1, ""), err)
        self.assertRegex(err, r"^vrad: jack_recorder:in: \d+ messages? could not be sent\n$")

    def test_a_server_that_dies_does_not_hold_the_tool(self):
        self.play_while(signal.SIGKILL)

    def test_a_server_that_hangs_does_not_hold_the_tool(self):
        self.play_while(signal.SIGSTOP)


if __name__ == "__main__":
    if not shutil.which("jackd"):
        print("skipped: there is no jackd (Debian: jackd2)")
        sys.exit(77)
    RUN = start_server(SERVER)
    try:
        is_right = unittest.main(exit=False).result.wasSuccessful()
    finally:
        end(RUN)
    sys.exit(0 if is_right else 1)
