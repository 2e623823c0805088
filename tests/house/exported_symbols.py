"""The shared library shows its own names and nobody else's.

exported_symbols.py NM LIBRARY      prints each foreign name; exit status 1 if there is any
"""
import re
import subprocess
import sys

PREFIX = (r"(Cmn|I18N|L10N|Mem2|Ndo|Sys|Time|Vrad|Vrae|Vras)_\w|TickTimesMatter\b|"
          r"SPSAtomicElementBase\b|g?LumTrace|gAvoidOverlapsAndDuplicates$")
OURS = re.compile(rf"({PREFIX})")
# Compiler-made companions of a class, and operators that take one of our classes first.
COMPANION = re.compile(rf"(vtable|typeinfo|typeinfo name|VTT|guard variable|"
                       rf"(non-)?virtual thunk) (for|to) ({PREFIX})|"
                       rf"(operator\W+|intrusive_ptr_(add_ref|release))\(({PREFIX})")


def main():
    nm, library = sys.argv[1:3]
    lines = subprocess.run([nm, "-D", "-C", "--defined-only", library], capture_output=True,
                           text=True, check=True).stdout.splitlines()
    names = [line.split(None, 2)[2] for line in lines]
    foreign = [n for n in names if not OURS.match(n) and not COMPANION.match(n)]
    print("\n".join(foreign) or f"{len(names)} exported symbols, all ours")
    return 1 if foreign or not names else 0


if __name__ == "__main__":
    sys.exit(main())
