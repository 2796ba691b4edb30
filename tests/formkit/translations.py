#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Every text of the library stands in every file of translations, and each is translated with the
same places for arguments: translations.py LUPDATE FOLDER-OF-SOURCES"""
import pathlib
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree


def texts(path):
    """The translation element of each context and source."""
    return {(context.findtext("name"), message.findtext("source")): message.find("translation")
            for context in ElementTree.parse(path).getroot() for message in context.iter("message")}


def faults(found, path):
    there = texts(path)
    for key in found.keys() ^ there.keys():
        yield f"{key} is {'missing' if key in found else 'left over'}"
    if path.stem.endswith("template"):
        return
    for key, translation in there.items():
        forms = [form.text for form in translation] or [translation.text]
        if translation.get("type") or not all(forms):
            yield f"{key} is not translated"
        elif any(set(re.findall("%[1-9]", form)) != set(re.findall("%[1-9]", key[1]))
                 for form in forms):
            yield f"{key} has other arguments"


def main(lupdate, sources):
    with tempfile.TemporaryDirectory() as folder:
        fresh = pathlib.Path(folder, "fresh.ts")
        subprocess.run([lupdate, "-silent", sources, "-ts", fresh], check=True,
                       stderr=subprocess.DEVNULL)
        found = texts(fresh)
    files = sorted(pathlib.Path(sources, "translations").glob("*.ts"))
    all_faults = [f"{path.name}: {fault}" for path in files for fault in faults(found, path)]
    print(*all_faults, sep="\n")
    return 1 if all_faults or len(files) < 4 or len(found) < 40 else 0


sys.exit(main(*sys.argv[1:]))
