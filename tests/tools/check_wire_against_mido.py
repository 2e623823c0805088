#!/usr/bin/env python3
"""Reads real MIDI files a second time, with mido, and compares what a player sends.

For each file it works out from mido's messages what `vrad wire --as jsonl` must print: each channel
message and each sysex that a clip keeps, in the right clip and at the right time, every note with
its note-off and its release velocity, and no other message. What a clip does not keep is what
`check_against_mido.py` finds reported. A player that is stopped behind the end must send besides
what brings pedals, bend and pressures to rest, and nothing else.

Ends with status 77, after a line that says why, when mido or the files cannot be had.

Usage: check_wire_against_mido.py TOOL [FILE...]
"""
import collections
import json
import os
import sys

import check_against_mido

PEDALS = (64, 66, 67, 69)
TICKS_BEHIND = 960000  # from the last message to the stop


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


def behind(sent, last):
    """The time of the stop: the first tick of its sample, whichever that is at the tempo."""
    times = {time for clip in sent.values() for time, _ in clip if time > last}
    return times.pop() if len(times) == 1 else last + TICKS_BEHIND


def send(tool, path, *options):
    lines = check_against_mido.run(tool, "wire", path, "--as", "jsonl", *options).splitlines()
    return sent_messages(lines)


def is_same(what, expected, sent):
    is_right = True
    for clip in sorted(expected.keys() | sent.keys()):
        missing, extra = expected[clip] - sent[clip], sent[clip] - expected[clip]
        is_right = is_right and not extra and not missing
        check_against_mido.show_difference(f"{what}, clip {clip}", missing, extra)
    return is_right


def check(tool, path):
    expectation = check_against_mido.Expectation(path)
    expected = expected_messages(expectation)
    sent = send(tool, path)
    is_right = is_same("whole file", expected, sent)
    last = max((time for clip in expected.values() for time, _ in clip), default=0)
    stop = [(clip, text) for clip in expected for text in resets(expectation, clip)]
    if stop:
        sent_to_stop = send(tool, path, "--to", f"{last + TICKS_BEHIND}t")
        for clip, text in stop:
            expected[clip][behind(sent_to_stop, last), text] += 1
        is_right = is_same("with a stop", expected, sent_to_stop) and is_right
    num_messages = sum(sum(clip.values()) for clip in sent.values())
    num_notes = sum(event["kind"] == 3 for event in expectation.events)
    print(f"{'ok' if is_right else 'WRONG'}  {os.path.basename(path)}: {num_messages} messages, "
          f"{num_notes} notes, {len(stop)} values reset by a stop")
    return is_right


if __name__ == "__main__":
    check_against_mido.main(check)
