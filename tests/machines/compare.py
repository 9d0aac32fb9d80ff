#!/usr/bin/env python3
"""Compares what the program lists on a machine with what the machine says of itself, row by row.

compare.py MACHINE REPORT: MACHINE is the file that describes it, REPORT the folder that guest.sh has written.
Prints what differs; the status is 1 if anything does.
"""
import collections
import json
import os
import re
import sys

from machine import Machine, Row, lines

SYSTEM_DEVICES, NO_CLASS = "(Standard system devices)", "Other devices"


def place(row):
    return row["bus"], row["address"]


def ids_of(row):
    """The list shows the path of a device without IDs in their place; it alone is of three parts."""
    return tuple(id for id in row["hardware_ids"] if id.count("\\") < 2)


class Comparison:
    def __init__(self, machine, listed):
        self.machine, self.lists, self.faults = machine, listed, []

    def fault(self, text):
        self.faults.append(f"{self.machine.moment}: {text}")

    def rows(self):
        """Nothing missing, nothing doubled, each with its IDs, driver and code."""
        hardware = self.lists["hardware"]
        wanted = collections.Counter(self.machine.rows())
        found = collections.Counter(Row(place(row), ids_of(row), row["driver"] or "", row["problem_code"])
                                    for row in hardware)
        for row in hardware:
            if row["problem_code"] in (10, 31, 32) and row["module"] not in self.machine.fits.get(place(row), ()):
                self.fault(f"{row['name']} would need {row['module']}")
        for title, rows in (("missing", wanted - found), ("wrong or too many", found - wanted)):
            for row, count in sorted(rows.items()):
                ids = ", ".join(row.ids)
                self.fault(f"{title}: {count} x {' '.join(row.place)}: {ids}; driver {row.driver}, code {row.code}")

    def usb_by_lsusb(self):
        """Counted by lsusb as well; root hubs are no devices of the lists."""
        told = collections.Counter(re.findall(r" ID ([0-9a-f]{4}:[0-9a-f]{4})", "\n".join(self.machine.read("lsusb"))))
        for ids, count in told.items():
            name = "USB\\VID_%s&PID_%s" % tuple(ids.upper().split(":"))
            found = sum(name in row["hardware_ids"] for row in self.lists["hardware"])
            if not ids.startswith("1d6b:") and found != count:
                self.fault(f"lsusb tells {count} x {ids}, the list {found}")

    def shorter_lists(self):
        """The other lists hold the rows of the first that belong there, and csv, where it is, tells the same."""
        filters = {
            "hardware": lambda row: True,
            "nodrivers": lambda row: row["problem_code"] == 28 or row["class"] == NO_CLASS,
            "problems": lambda row: row["problem_code"] != 0 or row["class"] == NO_CLASS,
            "nosystem": lambda row: row["manufacturer"] != SYSTEM_DEVICES,
        }
        for name, belongs in filters.items():
            wanted = [row for row in self.lists["hardware"] if belongs(row)]
            if wanted != self.lists[name]:
                self.fault(f"the list {name} has {len(self.lists[name])} rows, not these {len(wanted)}")
            if not os.path.exists(f"{self.machine.report}/{self.machine.moment}/{name}.csv"):
                continue
            text = [",".join([row[key] for key in ("name", "manufacturer", "error_code", "class", "driver_version")] +
                             ["".join(f"{id}|" for id in ids_of(row)) or row["hardware_ids"][0]])
                    for row in self.lists[name]]
            if [line.rstrip("\r") for line in self.machine.read(f"{name}.csv")][1:] != text:
                self.fault(f"the list {name} differs between csv and JSON")

    def problems(self, told):
        """Those that the machine's file tells, and no others."""
        found = [(row["problem_code"], row["hardware_ids"][:1]) for row in self.lists["problems"]]
        for code, start in told:
            match = next((row for row in found if row[0] == code and row[1] and row[1][0].startswith(start)), None)
            if match is None:
                self.fault(f"no row with problem {code} begins with {start}")
            else:
                found.remove(match)
        for code, ids in found:
            self.fault(f"a problem that nobody caused: {code} {ids}")

    def holds(self, told):
        for count, kind in told:
            found = sum(row["class"] == kind for row in self.lists["hardware"])
            if found != count:
                self.fault(f"{found} rows of the class {kind}, not {count}")


def main(path, report):
    """In the file, what follows the first "provoke" holds for the second look at the machine."""
    problems, holds, moment = {"ordinary": [], "provoked": []}, [], "ordinary"
    for line in lines(path):
        keyword, _, rest = line.partition(" ")
        first, _, second = rest.partition(" ")
        if keyword == "provoke":
            moment = "provoked"
        elif keyword == "problem":
            problems[moment].append((int(first), second))
        elif keyword == "has":
            holds.append((int(first), second))
    problems["provoked"] += problems["ordinary"]
    faults, count = [], 0
    for now in ("ordinary", "provoked") if moment == "provoked" else ("ordinary",):
        with open(f"{report}/{now}/lists.json", encoding="utf-8") as file:
            comparison = Comparison(Machine(report, now), json.load(file))
        comparison.rows()
        comparison.usb_by_lsusb()
        comparison.shorter_lists()
        comparison.problems(problems[now])
        if now == "ordinary":
            comparison.holds(holds)
            count = len(comparison.lists["hardware"])
        faults += comparison.faults
    name = os.path.basename(path).removesuffix(".machine")
    for fault in faults:
        print(f"{name}: {fault}")
    print(f"{name}: {count} rows, {', '.join(lines(f'{report}/times'))}; {len(faults)} differ")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
