#!/usr/bin/python3
"""Holds the translations to the sources: nothing untranslated, nothing left behind, and what a translator must
not change (places for values, markup, keys, line breaks) as it is in the source."""

import argparse
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
from collections import Counter
from pathlib import Path

# What a text must keep, each time it has it. "&" marks the letter of a menu entry.
KEPT = re.compile(r"%L?\d+|%L?n|<[^>]*>|&nbsp;|&(?=\w)|\n|\t.*$")


def kept(text):
    """What of a text its translation must have too, counted. On a German keyboard "Ctrl" reads "Strg", and so do
    Qt's own texts of keys in the menus beside."""
    return Counter(part.replace("\tStrg+", "\tCtrl+") for part in KEPT.findall(text))


class Text:
    """One text of a .ts file, or an entry of the template."""

    def __init__(self, context, message):
        self.context = context
        self.source = message.findtext("source")
        self.comment = message.findtext("comment") or ""
        self.hint = message.findtext("extracomment") or ""
        self.counts = message.get("numerus") == "yes"
        translation = message.find("translation")
        self.state = translation.get("type", "finished")
        self.forms = [form.text or "" for form in translation.findall("numerusform")] or [translation.text or ""]

    def __str__(self):
        return f"{self.context}: {self.source!r}"

    def key(self):
        return self.context, self.source, self.comment, self.counts

    def faults(self):
        """What is wrong with its translation, in words."""
        if self.state != "finished":
            yield f"{self}: {self.state}"
            return
        for form in self.forms:
            if not form.strip():
                yield f"{self}: a translation is empty"
            elif kept(form) != kept(self.source):
                yield f"{self}: {form!r} does not keep what must stay"
            elif (form[:1] == " ") != (self.source[:1] == " ") or (form[-1:] == " ") != (self.source[-1:] == " "):
                yield f"{self}: {form!r} begins or ends otherwise"


def read(path):
    """The texts of a .ts file."""
    root = ElementTree.parse(path).getroot()
    return [
        Text(context.findtext("name"), message) for context in root.findall("context") for message in context.findall("message")
    ]


def menu_letters(texts):
    """The faults of the menu bar: two menus with one letter."""
    seen = {}
    for text in texts:
        letter = re.search(r"&(\w)", text.forms[0])
        if text.context == "MenuBar" and letter:
            other = seen.setdefault(letter[1].lower(), text)
            if other is not text:
                yield f"{text} and {other} have the same letter"


def sources_of(lupdate, root, folder):
    """What lupdate finds now, and what it says of it."""
    path = Path(folder) / "now.ts"
    said = subprocess.run(
        [lupdate, "-silent", "-locations", "none", "-no-obsolete", root / "src", "-ts", path],
        check=True,
        capture_output=True,
        text=True,
    )
    return read(path), [line for line in said.stderr.splitlines() if line.strip()]


def compare(name, found, kept):
    """The difference between what the sources say and what a file holds."""
    for key in sorted(found - kept):
        yield f"{name} lacks {key[0]}: {key[1]!r}; run scripts/update-translations"
    for key in sorted(kept - found):
        yield f"{name} has {key[0]}: {key[1]!r}, which nobody says; run scripts/update-translations"


def faults_of(lupdate, root):
    """All faults, in words."""
    folder = root / "packaging" / "translations"
    with tempfile.TemporaryDirectory() as temporary:
        found, said = sources_of(lupdate, root, temporary)
    yield from said
    keys = {text.key() for text in found}
    for path in sorted(folder.glob("*.ts")):
        texts = read(path)
        yield from compare(path.name, keys, {text.key() for text in texts})
        if path.stem != "tavoran-terminal":
            for text in texts:
                yield from (f"{path.name}: {fault}" for fault in text.faults())
            yield from menu_letters(texts)
        elif {(text.key(), text.hint) for text in texts} != {(text.key(), text.hint) for text in found}:
            yield f"{path.name}: hints for translators have changed; run scripts/update-translations"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--lupdate", required=True)
    parser.add_argument("--root", type=Path, required=True)
    arguments = parser.parse_args()
    faults = list(faults_of(arguments.lupdate, arguments.root))
    print("\n".join(faults) or "The translations fit the sources.")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
