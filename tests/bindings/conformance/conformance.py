#!/usr/bin/env python3
"""Holds all doors of the control to the same answers, and prints the table of members and doors.

    conformance.py --bin FOLDER --kind sim|pty|tcp [--only TEXT] [--table FILE] [--without DOOR]

Each door makes the same calls against printers of its own that are in the same state; what they bring back is
compared with what a host in C++ gets.
"""

import argparse
import json
import os
import re
import subprocess
import sys
import tempfile
import threading

from qnctl_door import RUN, Qnctl

HERE = os.path.dirname(os.path.abspath(__file__))
SLICES = 4  # of the members, at the same time: a door mostly waits for its printer


def machine_of_its_own():
    """A printer is another machine: it goes before what keeps this one busy, as far as this user may arrange that."""
    try:
        os.setpriority(os.PRIO_PROCESS, 0, -15)
    except OSError:
        pass


class Printer:
    """Where a door finds a printer of its own, while this lives."""

    MODEL = "R7G"

    def __init__(self, programs, kind):
        self._process = None
        self.address = f"sim:{self.MODEL}"
        if kind == "sim":
            return
        line = ["--pty"] if kind == "pty" else ["--tcp", "0"]
        self._process = subprocess.Popen(
            [os.path.join(programs, "qnsim"), "--model", self.MODEL, "--boot-ms", "300", *line],
            stdout=subprocess.PIPE, text=True, preexec_fn=machine_of_its_own,
        )
        said = self._process.stdout.readline()
        self.address = re.search(r"(/dev/\S+|tcp://\S*\d)", said).group(1)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self._process is not None:
            self._process.terminate()
            self._process.communicate()


def without(address, documents):
    """Documents without the address of a printer, which is one door's own."""
    return json.loads(json.dumps(documents).replace(address, "ADDRESS"))


def heard(document):
    """What a line said in a document, without noise: what was on its way while a search changed the rate comes as bytes
    of which none is text, and how many they are is a matter of the moment."""
    return document | {"received": re.sub("[\0\x80-\xff]", "", document["received"])}


class Suite:
    def __init__(self, programs, kind):
        self._programs = programs
        self._kind = kind
        self.in_time = kind == "sim"
        samples = os.path.join(programs, "conformance_samples")
        events = subprocess.check_output([samples, "events"], text=True).split()
        lines = subprocess.check_output([samples, "calls"], text=True).splitlines()
        # Those that wait stand first, so that they come into slices of their own.
        self.jobs = sorted(map(json.loads, lines), key=lambda job: not job["waits"])
        preparing = [
            job["member"] for job in self.jobs
            if job["member"]["class"] == "clsQuorin" and job["member"]["name"] in ("PortOpen", "PortClose")
        ]
        for job in self.jobs:
            job.update(events=events, preparing=preparing, program=False)
        own = lambda name, *more: [os.path.join(programs, name), *more]
        self._commands = {
            "C++": own("conformance_cpp"),
            "C++ as qnctl": own("conformance_cpp"),
            "C generic": own("conformance_c", "generic"),
            "C typed": own("conformance_c", "typed"),
            "Python": [sys.executable, os.path.join(HERE, "python_door.py")],
        }
        self.doors = ["C generic", "C typed", "Python", "qnctl"]

    def takes(self, door, job):
        return door not in ("qnctl", "C++ as qnctl") or job["member"]["class"] == "QNComm"

    @staticmethod
    def reference(door):
        """Which host in C++ a door is compared with."""
        return "C++ as qnctl" if door == "qnctl" else "C++"

    def run(self, door, jobs):
        """The documents of each job, and of a command line all that the line heard."""
        jobs = [job for job in jobs if self.takes(door, job)]
        with Printer(self._programs, self._kind) as printer, tempfile.TemporaryDirectory() as folder:
            sample = os.path.join(folder, "sample.prg")
            with open(sample, "wb") as file:
                file.write(b'10 PRINT "A"\r\n20 END\r\n')
            os.utime(sample, (1e9, 1e9))  # its time travels with it
            if door == "qnctl":
                program = Qnctl(os.path.join(self._programs, "qnctl"), folder)
                told = {job["at"]: program.run(job | {"address": printer.address}) for job in jobs}
                return {
                    at: (without(printer.address, documents), line and heard(line)) for at, (documents, line) in told.items()
                }
            said = [
                json.dumps(job | {
                    "address": printer.address,
                    "program": door == "C++ as qnctl",
                    "calls": [call["arguments"] for call in job["calls"]],
                }) for job in jobs
            ]
            done = subprocess.run(
                self._commands[door], input="\n".join(said), text=True, cwd=folder, stdout=subprocess.PIPE, timeout=600
            )
            documents = [
                [heard(each) for each in without(printer.address, json.loads(line))] for line in done.stdout.splitlines()
            ]
            if done.returncode != 0 or len(documents) != len(jobs):
                at = jobs[min(len(documents), len(jobs) - 1)]["member"]
                raise SystemExit(f"{door} ended with {done.returncode} at {at['class']}.{at['name']}")
            return {job["at"]: (told, None) for job, told in zip(jobs, documents)}

    def run_all(self, runs):
        """What each door brings back of its jobs; all of them run at the same time."""
        found = {door: {} for door in runs}
        failed = []

        def work(door, part):
            try:
                found[door].update(self.run(door, part))
            except BaseException as error:
                failed.append(error)

        threads = [
            threading.Thread(target=work, args=(door, list(jobs)[first::SLICES]))
            for door, jobs in runs.items() for first in range(min(SLICES, len(jobs)))
        ]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        if failed:
            raise SystemExit("\n".join(map(str, failed)))
        return found


def leveled(value):
    """A value without what differs from one moment to the next."""
    if isinstance(value, list):
        return [leveled(item) for item in value]
    if isinstance(value, dict):
        return {key: 0 if key == "AgeMs" else leveled(item) for key, item in value.items()}
    return value


def searched(document):
    """Whether a printer was searched for in a call. How that goes depends on how quickly a printer of its own process
    answers within the 50 ms of a probe; one in the door's own process (sim) always does, so there it is compared, too."""
    begins = ("AutoConnect", "Searching", "Reading Printer Setup")
    return any(name.endswith("StatusEvent") and told[0].startswith(begins) for name, told in document["events"])


def parted(what, one, other):
    """Where two texts or lists part, in few words."""
    at = next((i for i, (a, b) in enumerate(zip(one, other)) if a != b), min(len(one), len(other)))
    return f"{what}: {json.dumps(one[at : at + 80])[:400]} became {json.dumps(other[at : at + 80])[:400]} at {at}"


def difference(expected, told, call, by_command_line, in_time):
    """What two documents of one call tell differently, if anything; in_time: searches go the same way, too."""
    if expected.get("error") or told.get("error"):
        one, other = expected.get("error") or {}, told.get("error") or {}
        if by_command_line and call and call["form"] not in RUN and one and other:
            # It says where in what was typed the mistake is.
            other = other | {"description": other["description"][: len(one["description"])]}
        if one != other:
            return f"error {json.dumps(one)} became {json.dumps(other)}"
    elif leveled(expected["result"]) != leveled(told["result"]):
        return f"result {json.dumps(expected['result'])[:400]} became {json.dumps(told['result'])[:400]}"
    else:
        for name, value in expected["back"].items():
            if value != told["back"].get(name, value) or (name not in told["back"] and call["form"] == "given"):
                return f"{name} {value!r} came back as {told['back'].get(name)!r}"
    if by_command_line or (not in_time and (searched(expected) or searched(told))):
        return None
    for what in ("events", "sent", "received"):
        if expected[what] != told[what]:
            return parted(what, expected[what], told[what])
    return None


def compared(job, door, expected, told, in_time):
    """How many calls were compared, and the first difference."""
    documents, line = told
    offset = 0 if door == "qnctl" else len(expected) - len(job["calls"])
    if door == "qnctl":
        prepared, expected = expected[: len(expected) - len(job["calls"])], expected[-len(job["calls"]) :]
    count = 0
    for at, (one, other) in enumerate(zip(expected, documents)):
        if other.get("unsaid"):
            continue
        call = job["calls"][at - offset] if at >= offset else None
        wrong = difference(one, other, call, door == "qnctl", in_time)
        if wrong:
            return count, f"{json.dumps(call)}: {wrong}"
        count += call is not None
    if line is not None and (in_time or not any(map(searched, [*prepared, *expected]))):
        said = [one for one, other, call in zip(expected, documents, job["calls"])
                if call["form"] in RUN and not other.get("unsaid")]
        for what in ("sent", "received"):
            whole = "".join(one[what] for one in prepared + said)
            if line[what] != whole:
                return count, parted(what, whole, line[what])
    return count, None


def judged(suite, jobs):
    """For each job and door how many calls were equal, and the difference if there is one."""
    results = {}
    wanted = {door: [job for job in jobs if suite.takes(door, job)] for door in suite.doors}
    runs = dict(wanted)
    for door, part in wanted.items():
        reference = suite.reference(door)
        runs[reference] = {job["at"]: job for job in [*runs.get(reference, ()), *part]}.values()
    found = suite.run_all(runs)
    for door, part in wanted.items():
        for job in part:
            at = job["at"]
            results[at, door] = compared(job, door, found[suite.reference(door)][at][0], found[door][at], suite.in_time)
    return results


def main():
    reader = argparse.ArgumentParser()
    reader.add_argument("--bin", required=True)
    reader.add_argument("--kind", choices=("sim", "pty", "tcp"), default="sim")
    reader.add_argument("--only", default="")
    reader.add_argument("--table")
    reader.add_argument("--without", default="", help="a door that cannot run here")
    options = reader.parse_args()
    suite = Suite(os.path.abspath(options.bin), options.kind)
    suite.doors = [door for door in suite.doors if door != options.without]
    jobs = [job for job in suite.jobs if options.only in "{class}.{name}".format(**job["member"])]
    for at, job in enumerate(jobs):
        job["at"] = at
    return report(suite, jobs, judged(suite, jobs), options.table)


def report(suite, jobs, results, path):
    """Prints and keeps the table; the number of differences."""
    members = {}
    differences = []
    for (at, door), (count, wrong) in sorted(results.items()):
        name = "{class}.{name} ({kind})".format(**jobs[at]["member"])
        cell = members.setdefault(name, {}).setdefault(door, [0, False])
        cell[0] += count
        cell[1] |= wrong is not None
        if wrong:
            differences.append(f"{name}, {door}: {wrong}")
    rows = [f"{'member':48}" + "".join(f"{door:>12}" for door in suite.doors)]
    for name, cells in members.items():
        row = f"{name:48}"
        for door in suite.doors:
            count, wrong = cells.get(door, (0, False))
            row += f"{'DIFFERENT' if wrong else f'{count} equal' if count else '-':>12}"
        rows.append(row)
    calls = sum(count for count, _ in results.values())
    rows.append(f"{len(members)} members, {calls} calls equal to those of C++, {len(differences)} differences")
    print("\n".join(rows + differences))
    if path:
        with open(path, "w", encoding="utf-8") as file:
            file.write("\n".join(rows) + "\n")
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main())
