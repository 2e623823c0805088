#!/usr/bin/env python3
"""Reads real MIDI files a second time, with mido, and compares what a player sends.

For each file it works out from mido's messages what `vrad wire --as jsonl` must print: each channel
message and each sysex that a clip keeps, in the right clip and at the right time, every note with
its note-off and its release velocity, and no other message but those that a stop sends at the end.
What a clip does not keep is what `check_against_mido.py` finds reported.

Ends with status 77, after a line that says why, when mido or the files cannot be had.

Usage: check_wire_against_mido.py TOOL [FILE...]
"""
import collections
import json
import os
import sys

import check_against_mido

PEDALS = (64, 66, 67, 69)


def note_messages(event):
    pitch, end = event["pitch"], event["time"] + event["duration"]
    yield event["time"], 0x90, [pitch, event["on"]]
    # A release velocity of 64 goes out as a note-on of velocity 0.
    yield (end, 0x90, [pitch, 0]) if event["off"] == 64 else (end, 0x80, [pitch, event["off"]])


def program_messages(event):
    for field, number in (("bank_msb", 0), ("bank_lsb", 32)):
        if field in event:
            yield event["time"], 0xB0, [number, event[field]]
    if "program" in event:
        yield event["time"], 0xC0, [event["program"]]


def messages_of(event):
    """(time, status without channel, data) of each message of an event."""
    kind, time = event["kind"], event["time"]
    if kind == 3:
        yield from note_messages(event)
    elif kind == 4:
        bend = event["bend"] + 8192
        yield time, 0xE0, [bend & 0x7F, bend >> 7]
    elif kind == 5:
        yield time, 0xB0, [event["number"], event["value"]]
    elif kind == 6:
        yield from program_messages(event)
    elif kind == 7:
        yield time, 0xD0, [event["pressure"]]
    elif kind == 8:
        yield time, 0xA0, [event["pitch"], event["pressure"]]
    else:
        yield time, 0xF0, [int(byte, 16) for byte in event["data"].split()] + [0xF7]


def expected_messages(expectation):
    """By clip: how often each (time, bytes) is to be sent."""
    result = collections.defaultdict(collections.Counter)
    for event in expectation.events:
        for time, status, data in messages_of(event):
            status |= event["channel"] if event["channel"] is not None else 0
            result[event["clip"]][time, bytes([status] + data).hex(" ")] += 1
    return result


def sent_messages(lines):
    """The same of what was printed, which must be in order of time in each clip."""
    result, times = collections.defaultdict(collections.Counter), collections.defaultdict(int)
    for line in lines:
        message = json.loads(line)
        if message["unit"] != "t":
            sys.exit(f"a time that is not in ticks: {line}")
        if message["time"] < times[message["clip"]]:
            sys.exit(f"a time before the one above it: {line}")
        times[message["clip"]] = message["time"]
        result[message["clip"]][message["time"], message["bytes"]] += 1
    return result


def resets(expectation, clip):
    """What a stop sends for a clip: what brings to rest the pedals, bend and pressures left off."""
    values = {}
    for event in sorted(expectation.events, key=lambda event: event["time"]):
        if event["clip"] == clip and event["channel"] is not None:
            for _, status, data in messages_of(event):
                key = bytes([status | event["channel"]] + data[:-1])
                values[key if status in (0xA0, 0xB0) else key[:1]] = bytes(data)
    for key, data in values.items():
        status = key[0] & 0xF0
        if status == 0xE0 and data != b"\x00\x40":
            yield (key + b"\x00\x40").hex(" ")
        elif data[-1] != 0 and (status in (0xA0, 0xD0) or status == 0xB0 and key[1] in PEDALS):
            yield (key + b"\x00").hex(" ")


def check(tool, path):
    expectation = check_against_mido.Expectation(path)
    expected = expected_messages(expectation)
    lines = check_against_mido.run(tool, "wire", path, "--as", "jsonl").splitlines()
    sent = sent_messages(lines)
    is_right, num_resets = True, 0
    last = max((time for clip in expected.values() for time, _ in clip), default=0)
    for clip in sorted(expected.keys() | sent.keys()):
        missing, extra = expected[clip] - sent[clip], sent[clip] - expected[clip]
        stop = {key: count for key, count in extra.items() if key[0] >= last}
        wanted = collections.Counter(resets(expectation, clip))
        if collections.Counter(text for _, text in stop) == wanted:
            extra -= collections.Counter(stop)
        num_resets += len(stop)
        is_right = is_right and not extra and not missing
        check_against_mido.show_difference(f"clip {clip}", missing, extra)
    num_notes = sum(event["kind"] == 3 for event in expectation.events)
    print(f"{'ok' if is_right else 'WRONG'}  {os.path.basename(path)}: {len(lines)} messages, "
          f"{num_notes} notes, {num_resets} sent by the stop")
    return is_right


if __name__ == "__main__":
    check_against_mido.main(check)
