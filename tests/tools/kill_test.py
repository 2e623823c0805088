"""A save that is killed leaves the old project or the new one, whole, called as kill_test.py TOOL.

`vrad convert` overwrites a project and is killed at random moments of its run. Whatever the moment,
the project can be read without a problem, and beside it lies nothing but files named after it that
end in .new, at most one for each kill.
"""
import os
import random
import subprocess
import time
import unittest

from tool_case import TOOL, Tool, header, track

NUM_KILLS = 200
NUM_NOTES = 8000
SECONDS = 45  # for all kills; a machine that is too busy for that does fewer, and says so


def song(velocity):
    events = [[0x60, 0x90, 60 + i % 12, velocity, 0x30, 60 + i % 12, 0] for i in range(NUM_NOTES)]
    return header(0, 1, 480) + track(*events)


def kill_after(process, seconds):
    """Whether it was still running."""
    try:
        process.wait(seconds)
        return False
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()
        return True


class KilledSaves(Tool):
    def read(self, path):
        with open(path, "rb") as file:
            return file.read()

    def save(self, source):
        return subprocess.Popen([TOOL, "convert", source, self.project])

    def measure(self, source):
        start = time.monotonic()
        self.assertEqual(self.save(source).wait(), 0)
        return time.monotonic() - start

    def check_litter(self):
        for name in set(os.listdir(self.folder)) - {"soft.mid", "loud.mid", "song.vrad"}:
            self.assertRegex(name, r"^song\.vrad\.[0-9]+-[0-9]+\.new$")
            os.remove(os.path.join(self.folder, name))

    def test_leave_a_whole_project(self):
        self.project = os.path.join(self.folder, "song.vrad")
        soft = self.write("soft.mid", song(40))
        loud = self.write("loud.mid", song(90))
        whole = set()
        for source in (soft, loud):
            seconds = self.measure(source)
            whole.add(self.without_identities(self.read(self.project)))
        dice = random.Random(20261121)
        num_tried = num_killed = 0
        start = time.monotonic()
        while num_tried < NUM_KILLS and time.monotonic() - start < SECONDS:
            process = self.save((soft, loud)[num_tried % 2])
            num_killed += kill_after(process, dice.uniform(0, 1.1 * seconds))
            num_tried += 1
            self.assertIn(self.without_identities(self.read(self.project)), whole, num_tried)
            self.check_litter()
        self.expect(["check", self.project], 0, f"{self.project}: good, 1 clip\n")
        print(f"{num_killed} of {num_tried} saves were killed, each taking {seconds:.3f} seconds")
        self.assertGreater(num_killed, num_tried / 4)

    @staticmethod
    def without_identities(project):
        """The notes and all else but the random identity of the clip and the sum over it."""
        last = project.rindex(b"\x08vradLast")
        clip = project.rindex(b"\x08vradClip")
        return project[:clip + 23] + project[clip + 27:last - 17] + project[last - 1:]


if __name__ == "__main__":
    unittest.main()
