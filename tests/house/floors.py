"""Keeps the floors: who may include whom, and where the system may be seen.

floors.py SOURCE_ROOT INSTALLED_HEADERS.txt     prints each violation; exit status 1 if there is any
floors.py --self-test                           plants one violation of each kind and expects it told
"""
import pathlib
import re
import sys
import tempfile

# From the ground up. A file includes from lower floors and from its own folder on its own floor.
# The longest beginning of a name that is listed decides.
FLOORS = [
    ["foundation/vrad_export", "foundation/sys_atomic", "foundation/sys_delayeddeletion",
     "foundation/sys_umid", "foundation/sys_random", "foundation/mem2_",
     "foundation/lumtrace"],
    ["cmn/"],
    ["foundation/time_", "foundation/ticktimesmatter", "foundation/sys_stream",
     "foundation/sys_file", "foundation/i18n_", "ndo/"],
    ["vrad/vrad_version", "vrad/vrad_init", "vrad/vrad_strings", "vrad/vrad_n10n"],
    ["vrad/vrae_"],
    ["vrad/vrad_extendedevent"],
    ["vrad/vrad_extendedeventlist", "vrad/vrad_sortedstore", "vrad/vrad_dumptext",
     "vrad/vrad_eventfiling"],
    ["vrad/vrad_notelist", "vrad/vrad_continuousdata"],
    ["vrad/vrad_continuousdatastream", "vrad/vrad_eventstream"],
    ["vrad/vrad_chunk"],
    ["vrad/vrad_chunkref"],
    ["vrad/vrad_scrub"],
    ["host/"],
    ["tools/"],
]
# Each umbrella, and the folders whose installed headers it includes.
UMBRELLAS = {"foundation/foundation.h": ("foundation/", "cmn/", "ndo/"), "vrad/vrad.h": ("vrad/",)}
LIBRARY = ("foundation/", "cmn/", "ndo/", "vrad/")
OUTSIDE = ("host/", "tools/", "examples/", "bench/")

# What interfaces themselves show of Boost.
BOOST_IN_HEADERS = re.compile(r"boost/(function|intrusive_ptr|smart_ptr/intrusive_ptr)\.hpp$")
# The C++ library has neither folders nor endings in its header names.
STANDARD = re.compile(r"[a-z0-9_]+$")
SYSTEM_FILE = re.compile(r"_(posix|windows)\.(cpp|h)$")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
PLATFORM = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif)\b.*\b(_WIN32|_WIN64|WIN32|__linux__|linux|"
                      r"__unix__|unix|__APPLE__|_MSC_VER|__MINGW\w+|__CYGWIN__|_POSIX\w+)\b")


def find_floor(path):
    """The number of the floor that a file stands on, or None."""
    best = max(((len(name), number) for number, names in enumerate(FLOORS) for name in names
                if path.startswith(name)), default=None)
    return best[1] if best else None


def may_include(path, other):
    mine, its = find_floor(path), find_floor(other)
    if mine is None or its is None:
        return path == other
    same_folder = path.split("/")[0] == other.split("/")[0]
    return its < mine or (its == mine and same_folder)


def complaints_of_include(path, bracket, name, installed):
    in_library = path.startswith(LIBRARY)
    own = name.startswith(LIBRARY)
    if bracket == "<" and not own:
        standard, boost = STANDARD.match(name), name.startswith("boost/")
        if path in installed and not standard and not BOOST_IN_HEADERS.match(name):
            yield f"installed header shows <{name}>"
        elif in_library and not standard and not boost and not SYSTEM_FILE.search(path):
            yield f"<{name}> outside a _posix or _windows file"
        return
    if path in installed and name not in installed:
        yield f"installed header includes {name}, which isn't installed"
    if path.startswith(OUTSIDE) and own and name not in installed:
        yield f"includes {name}, which isn't installed"
        return
    if own and path.startswith("vrad/vrae_") and name.startswith("ndo/"):
        yield f"events never see {name}"
    if path in UMBRELLAS or path.startswith(("examples/", "bench/")):
        return
    if name in UMBRELLAS:
        if in_library:
            yield f"the library includes the umbrella {name}"
    elif (in_library or path.startswith("host/")) and not may_include(path, name):
        yield f"includes {name} of a higher floor"


def complaints_of_umbrella(root, path, installed):
    covered = set(re.findall(r'#include "([^"]+)"', (root / path).read_text()))
    for header in sorted(installed - covered - set(UMBRELLAS)):
        if header.startswith(UMBRELLAS[path]):
            yield f"{path}: lacks {header}"


def complaints_of_file(root, path, installed):
    if path.startswith(LIBRARY) and path not in UMBRELLAS and find_floor(path) is None:
        yield f"{path}: stands on no floor; give it one in tests/house/floors.py"
    if path in UMBRELLAS:
        yield from complaints_of_umbrella(root, path, installed)
    for number, line in enumerate((root / path).read_text().splitlines(), 1):
        include = INCLUDE.match(line)
        found = complaints_of_include(path, *include.groups(), installed) if include else ()
        for complaint in found:
            yield f"{path}:{number}: {complaint}"
        if PLATFORM.match(line) and not SYSTEM_FILE.search(path) \
                and path != "foundation/vrad_export.h":
            yield f"{path}:{number}: asks for the platform outside a _posix or _windows file"


def find_complaints(root, installed):
    files = sorted(path.relative_to(root).as_posix() for folder in LIBRARY + OUTSIDE
                   for path in (root / folder).rglob("*") if path.suffix in (".h", ".cpp"))
    return files, [c for path in files for c in complaints_of_file(root, path, installed)]


CLEAN = {
    "cmn/cmn_a.h": '#include <boost/function.hpp>\n#include "foundation/sys_atomic.h"\n',
    "foundation/sys_atomic.h": "#include <atomic>\n",
    "foundation/sys_file_posix.cpp": "#include <unistd.h>\n#if defined(__linux__)\n#endif\n",
    "vrad/vrae_event.h": '#include "cmn/cmn_a.h"\n',
    "vrad/vrad_chunk.h": '#include "vrad/vrae_event.h"\n',
    "vrad/vrad.h": '#include "vrad/vrad_chunk.h"\n#include "vrad/vrae_event.h"\n',
    "ndo/ndo_a.h": '#include "cmn/cmn_a.h"\n',
    "host/a.cpp": '#include "vrad/vrad.h"\n#include <fmt/core.h>\n',
}
PLANTS = {
    "higher floor": ("cmn/cmn_b.cpp", '#include "vrad/vrae_event.h"\n'),
    "upper from lower foundation": ("foundation/sys_umid.cpp",
                                    '#include "foundation/time_typed.h"\n'),
    "sideways": ("ndo/ndo_b.cpp", '#include "foundation/time_typed.h"\n'),
    "higher store": ("vrad/vrad_notelist.cpp", '#include "vrad/vrad_chunk.h"\n'),
    "events see ndo": ("vrad/vrae_b.cpp", '#include "ndo/ndo_a.h"\n'),
    "library sees host": ("vrad/vrad_chunk.cpp", '#include "host/a.h"\n'),
    "umbrella with a hole": ("vrad/vrad.h", '#include "vrad/vrad_chunk.h"\n'),
    "umbrella inside": ("vrad/vrad_chunk.cpp", '#include "vrad/vrad.h"\n'),
    "host sees internals": ("host/b.cpp", '#include "vrad/vrad_inner.h"\n'),
    "bench sees internals": ("bench/b.cpp", '#include "vrad/vrad_inner.h"\n'),
    "header shows the system": ("vrad/vrae_event.h", "#include <windows.h>\n"),
    "header shows Boost": ("vrad/vrae_event.h", "#include <boost/thread.hpp>\n"),
    "header shows an internal": ("vrad/vrae_event.h", '#include "vrad/vrae_inner.h"\n'),
    "system in the library": ("vrad/vrad_chunk.cpp", "#include <sys/types.h>\n"),
    "platform": ("vrad/vrad_chunk.cpp", "#ifdef _WIN32\n#endif\n"),
    "no floor": ("vrad/stray.cpp", "\n"),
}


def complaints_of_tree(files):
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for path, text in files.items():
            (root / path).parent.mkdir(parents=True, exist_ok=True)
            (root / path).write_text(text)
        return find_complaints(root, {p for p in CLEAN if p.endswith(".h")})[1]


def self_test():
    wrong = [f"clean tree: {c}" for c in complaints_of_tree(CLEAN)]
    for name, (path, text) in PLANTS.items():
        found = complaints_of_tree({**CLEAN, path: text})
        if len(found) != 1 or not found[0].startswith(path):
            wrong.append(f"{name}: expected one complaint about {path}, got {found}")
    print("\n".join(wrong) or f"{len(PLANTS)} planted violations found")
    return 1 if wrong else 0


def main():
    if sys.argv[1:] == ["--self-test"]:
        return self_test()
    root, listing = map(pathlib.Path, sys.argv[1:3])
    files, complaints = find_complaints(root, set(listing.read_text().split()))
    print("\n".join(complaints) or f"{len(files)} files keep the floors")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
