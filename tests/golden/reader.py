"""Reads a saved chunk as docs/format.md describes it, in nothing but the standard library.

reader.py FILE               prints what the chunk holds, as JSON
reader.py --compare PROGRAM  puts the golden files that are whole into a folder and has PROGRAM tell
                             each one's fields as JSON, and write chunks of its own in the same way;
                             names every field that this reader sees otherwise, and every damaged
                             golden file that it does not refuse. Exit status 1 if there is any.
"""
import json
import pathlib
import struct
import subprocess
import sys
import tempfile

UNITS = {0: "samples", 1: "ticks"}


class Refused(Exception):
    pass


class Source:
    def __init__(self, data):
        self.data = data
        self.at = 0

    def take(self, num):
        if num < 0 or self.at + num > len(self.data):
            raise Refused(f"{num} bytes are not there at {self.at}")
        self.at += num
        return self.data[self.at - num:self.at]

    def number(self, form):
        return struct.unpack("<" + form, self.take(struct.calcsize("<" + form)))[0]

    def int8(self):
        return self.number("b")

    def int32(self):
        return self.number("i")

    def bool(self):
        return self.number("B") != 0

    def time(self):
        word = self.number("q")
        return [word >> 1, UNITS[word & 1]]


class Record:
    """An open record: `with Record(...) as record` ends at the record's end."""

    def __init__(self, source, tag, versions):
        self.source = source
        found = source.take(source.number("B"))
        if found != tag:
            raise Refused(f"{found} stands where {tag} should")
        self.version = source.number("h")
        if self.version not in versions:
            raise Refused(f"version {self.version} of {tag}")
        size = max(source.number("q"), 0)
        self.end = source.at + size

    def has_more(self):
        return self.source.at < self.end

    def __enter__(self):
        return self

    def __exit__(self, kind, *rest):
        if kind is None:
            self.source.at = self.end


def count_of(source):
    count = source.int32()
    if count < 0:
        raise Refused(f"count {count}")
    return count


def repaired(length):
    if length[0] > 0:
        return length
    return [1000 if length[1] == "ticks" else 1, length[1]]


def read_note(source, version):
    start, pitch, duration = source.time(), source.int8(), source.time()
    on_velocity, off_velocity = source.int8(), source.int8()
    if pitch < 0 or duration[0] < 0 or on_velocity < 1 or off_velocity < 0:
        raise Refused("note out of range")
    duration = repaired(duration)
    quantize_delta, was = [0, start[1]], duration
    if version >= 2:
        quantize_delta, delta = source.time(), source.time()
        if delta[1] == duration[1]:
            was = repaired([duration[0] - delta[0], duration[1]])
        else:
            was = None  # takes the project's tempo; the originals say it
    original = {"pitch": pitch, "duration": was, "onVelocity": on_velocity,
                "offVelocity": off_velocity}
    return {"start": start, "pitch": pitch, "duration": duration, "onVelocity": on_velocity,
            "offVelocity": off_velocity, "quantizeDelta": quantize_delta, "original": original,
            "isMuted": False}


def read_originals(source, notes):
    if source.int32() != len(notes) or source.int32() != 11:
        return
    for note in notes:
        note["original"] = {"pitch": source.int8(), "duration": source.time(),
                            "onVelocity": source.int8(), "offVelocity": source.int8()}


def read_mute_flags(source, notes):
    if source.int32() != len(notes):
        return
    version, size = source.number("h"), source.int32()
    if version < 1:
        return
    for note in notes:
        note["isMuted"] = source.bool()
        if size > 1:
            source.at += size - 1


def read_note_list(source):
    with Record(source, b"VrNLB", (1, 2, 3)) as record:
        notes = [read_note(source, record.version) for _ in range(count_of(source))]
        if record.version >= 3 and record.has_more():
            read_originals(source, notes)
        if record.has_more():
            read_mute_flags(source, notes)
    return notes


def index_of(kind, sub_type):
    if kind == 2 and 1 <= sub_type <= 119:
        return sub_type
    if kind == 5 and 0 <= sub_type <= 127:
        return 122 + sub_type
    if kind in (1, 3, 4):
        return {1: 0, 3: 121, 4: 120}[kind]
    raise Refused(f"sub-stream {kind}, {sub_type}")


def read_segments(source):
    segments, before = [], 0
    for _ in range(count_of(source)):
        start, value = source.time(), source.int32()
        if start[0] < before:
            raise Refused("time goes backwards")
        before = start[0]
        segments.append({"start": start, "value": value})
    return segments


def read_stream(source):
    with Record(source, b"VrCDS", (2,)):
        with Record(source, b"Vrss", (1,)):
            index = index_of(source.number("B"), source.int32())
        with Record(source, b"VrCD", (1,)):
            segments = read_segments(source)
    return {"index": index, "segments": segments}


def read_streams(source):
    count = count_of(source)
    most = (len(source.data) - source.at) // 12
    streams = [read_stream(source) for _ in range(count)]
    if sum(len(stream["segments"]) for stream in streams) > most:
        raise Refused("streams share their segments")
    if len({stream["index"] for stream in streams}) < len(streams):
        raise Refused("two streams of one index")
    return sorted(streams, key=lambda stream: stream["index"])


def read_event(source):
    start, contents = source.time(), None
    with Record(source, b"", (1,)) as record:
        if record.has_more() and source.int8() == 0:
            length = source.int32()
            if length > record.end - source.at:
                raise Refused("length beyond the record")
            contents = source.take(length).hex()
    return {"start": start, "contents": contents}


def read_event_stream(source):
    with Record(source, b"VrES", (1,)):
        with Record(source, b"VrTEL", (1,)):
            return [read_event(source) for _ in range(max(source.int32(), 0))]


def read_chunk(source):
    chunk = {"events": [], "uid": "00" * 16, "isLocal": True}
    with Record(source, b"VrChun", (1,)) as record:
        chunk["notes"] = read_note_list(source)
        chunk["streams"] = read_streams(source)
        if record.has_more():
            chunk["events"] = read_event_stream(source)
        if record.has_more():
            chunk["uid"] = source.take(16).hex()
            chunk["isLocal"] = source.bool()
    return chunk


def differences(seen, told, where):
    """Field by field, so that a complaint names the field."""
    if isinstance(told, dict) and isinstance(seen, dict):
        for key in sorted(set(seen) | set(told)):
            yield from differences(seen.get(key), told.get(key), f"{where}.{key}")
    elif isinstance(told, list) and isinstance(seen, list) and len(seen) == len(told):
        for number, (one, other) in enumerate(zip(seen, told)):
            yield from differences(one, other, f"{where}[{number}]")
    elif seen != told:
        yield f"{where}: read {seen!r}, the library has {told!r}"


def compare(folder):
    complaints, paths = [], sorted(folder.glob("*.chunk"))
    for path in paths:
        source = Source(path.read_bytes())
        told = json.loads(path.with_suffix(".json").read_text())
        complaints += differences(read_chunk(source), told, path.stem)
        if source.at != len(source.data):
            complaints.append(f"{path.stem}: ends at {source.at} of {len(source.data)}")
    return len(paths), complaints


def read_golden(path):
    lines = path.read_text().splitlines()
    return bytes(int(word, 16) for line in lines for word in line.split("#")[0].split())


DAMAGED = {
    "chunk_bad_sub_type", "chunk_damaged_misc", "chunk_damaged_notes", "chunk_damaged_stream",
    "chunk_negative_streams", "chunk_null_stream", "chunk_overlapping_streams", "chunk_torn",
    "chunk_torn_flag", "chunk_twin_streams", "chunk_unknown_stream", "chunk_version_2",
    "chunk_zero_on_velocity", "notes_flags_torn", "notes_negative_count",
    "notes_negative_duration", "notes_negative_off_velocity", "notes_negative_on_velocity",
    "notes_negative_pitch", "notes_originals_torn", "notes_torn", "notes_version_0",
    "notes_version_4", "notes_wrong_tag", "notes_zero_on_velocity",
    "notes_zero_on_velocity_and_worse"}


def golden_chunks():
    """Names and bytes; a note list becomes a chunk with nothing else."""
    folder = pathlib.Path(__file__).parent / "format"
    for path in sorted(folder.glob("chunk*.hex")):
        yield path.stem, read_golden(path)
    for path in sorted(folder.glob("notes*.hex")):
        if path.stem == "notes_unsorted":  # taken as it is, but no iterator of the library shows it
            continue
        notes = read_golden(path)
        yield path.stem, b"\x06VrChun" + struct.pack("<hq", 1, len(notes) + 4) + notes + bytes(4)


def put_golden(folder):
    """Gives how many files there are, and complaints."""
    complaints, num = [], 0
    for num, (name, data) in enumerate(golden_chunks(), 1):
        source = Source(data)
        try:
            read_chunk(source)
            (folder / f"{name}.chunk").write_bytes(data[:source.at])
            is_refused = False
        except Refused:
            is_refused = True
        if is_refused != (name in DAMAGED):
            complaints.append(f"{name}: {'refused' if is_refused else 'taken'}")
    return num, complaints


def main():
    if sys.argv[1] != "--compare":
        print(json.dumps(read_chunk(Source(pathlib.Path(sys.argv[1]).read_bytes())), indent=1))
        return 0
    with tempfile.TemporaryDirectory() as name:
        num_golden, complaints = put_golden(pathlib.Path(name))
        subprocess.run([sys.argv[2], name], check=True)
        num_compared, more = compare(pathlib.Path(name))
    complaints += more
    print("\n".join(complaints) or f"{num_compared} chunks agree, {num_golden} golden files are read")
    return 1 if complaints or num_golden == 0 or num_compared <= num_golden - len(DAMAGED) else 0


if __name__ == "__main__":
    sys.exit(main())
