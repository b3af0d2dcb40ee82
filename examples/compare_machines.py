"""Compares the settings of machines.

    compare_machines.py <folder>                                      prints the keys whose values differ
    compare_machines.py <folder> <file> <section> <key> <other file>  gives the key of a file the value of another file

The folder has one settings file for each machine, *.xml. A file that cannot be read is reported, and the others are
compared.
"""
import sys
from pathlib import Path
from typing import Dict, List, Tuple

from mox_xmlapi import MoxError, Settings

Values = Dict[Tuple[str, str], str]


def values_of(path: Path) -> Values:
    """The text of each key, by section and key."""
    with Settings.open(path) as settings:
        return {(name, entry.name): entry.effective_value
                for name, section in settings.items() for entry in reversed(section.entries())}


def read_all(folder: Path) -> Dict[str, Values]:
    machines = {}
    for path in sorted(folder.glob("*.xml")):
        try:
            machines[path.name] = values_of(path)
        except MoxError as error:
            print(error, file=sys.stderr)
    return machines


def differences(machines: Dict[str, Values]) -> List[List[str]]:
    """A table: one row for each key that is not the same everywhere, one column for each machine."""
    keys = sorted({key for values in machines.values() for key in values})
    rows = [["", *machines]]
    for key in keys:
        found = [values.get(key) for values in machines.values()]
        if len(set(found)) > 1:
            rows.append(["/".join(key), *("(none)" if value is None else value for value in found)])
    return rows


def print_table(rows: List[List[str]]) -> None:
    widths = [max(map(len, column)) for column in zip(*rows)]
    for row in rows:
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())


def copy_value(source: Path, target: Path, section: str, key: str) -> None:
    """Writes only the value, and only if nobody else has changed the file meanwhile; keeps the old file beside it."""
    with Settings.open(source) as settings:
        value = settings[section][key]
    with Settings.open(target) as settings:
        settings[section][key] = value
        settings.save(backup=target.with_suffix(".xml.bak"))


def main(arguments: List[str]) -> int:
    if len(arguments) not in (1, 5):
        print(__doc__, file=sys.stderr)
        return 2
    folder = Path(arguments[0])
    try:
        if len(arguments) == 5:
            target, section, key, source = arguments[1:]
            copy_value(folder / source, folder / target, section, key)
        print_table(differences(read_all(folder)))
    except MoxError as error:
        print(error, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
