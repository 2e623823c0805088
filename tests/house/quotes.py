"""What a text quotes from a source file is what stands there.

A quotation is a line <!-- quoted from PATH --> followed by a fenced block. A source file marks what
is quoted with lines that hold [readme] and [readme end]; any other file is quoted whole.

quotes.py ROOT TEXT...          names each quotation that has drifted; exit status 1 if there is any
quotes.py --update ROOT TEXT... writes the quotations afresh
"""
import pathlib
import re
import sys

QUOTATION = re.compile(r"(<!-- quoted from (\S+) -->\n```\w*\n)(.*?)(^```$)", re.S | re.M)
MARKED = re.compile(r"^[^\n]*\[readme\][^\n]*\n(.*?)^[^\n]*\[readme end\]", re.S | re.M)


def read_source(path):
    text = path.read_text()
    marked = MARKED.search(text)
    return marked.group(1) if marked else text


def check(root, path, update):
    text = path.read_text()
    drifted, found = [], 0

    def renew(match):
        nonlocal found
        found += 1
        source = read_source(root / match.group(2))
        if source != match.group(3):
            drifted.append(f"{path.name}: quotation from {match.group(2)} differs")
        return match.group(1) + source + match.group(4)

    renewed = QUOTATION.sub(renew, text)
    if found != text.count("<!-- quoted from "):
        return [f"{path.name}: a quotation has no fenced block"]
    if update:
        path.write_text(renewed)
        return []
    return drifted if found else [f"{path.name}: quotes nothing"]


def main():
    words = sys.argv[1:]
    update = words[0] == "--update"
    root = pathlib.Path(words[1 if update else 0])
    texts = words[2 if update else 1:]
    complaints = [c for text in texts for c in check(root, root / text, update)]
    print("\n".join(complaints) or f"{len(texts)} texts quote what stands in the sources")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
