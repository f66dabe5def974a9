"""The control as a command line has it. What a call gives is read from the program's JSON documents and its
trace; a command line hears no events, and writes one trace for all calls of a job."""

import json
import os
import subprocess

# The forms whose arguments are in order as far as anyone can tell before the member runs.
RUN = ("given", "left out", "by name", "unknown value")


class Unsaid(Exception):
    """A command line has no words for that."""


def word_of(value, parameter):
    if parameter and parameter["type"] == "names" and not isinstance(value, list):
        raise Unsaid  # every word is a list of names
    if isinstance(value, (bool, int, float)):
        return str(value)
    if isinstance(value, str) and value != "":
        return value
    if parameter and parameter["type"] == "names" and value and all(isinstance(item, str) for item in value):
        return ",".join(value)
    if parameter and parameter["type"] == "font" and value:
        return f"{value['Name']},{value['Size']}"
    raise Unsaid


def words_of(member, arguments):
    parameters = member["parameters"]
    words = [member["name"]]
    by_name = None in arguments
    for at, argument in enumerate(arguments):
        parameter = parameters[at] if at < len(parameters) else None
        if argument is not None:
            word = word_of(argument, parameter)
            words.append(f"{parameter['name']}:={word}" if by_name else word)
    if member["kind"] == "let" and len(words) == 1:
        raise Unsaid  # that reads the property
    return words


def document_of(line):
    told = json.loads(line)
    if "error" in told:
        error = {key: told["error"][key] for key in ("number", "source", "description")}
        return {"error": error}
    return {"result": told["result"], "back": told.get("arguments") or {}, "error": None}


def bytes_of(trace):
    """All that was sent and received, as the trace has it."""
    heard = {"sent": "", "received": ""}
    with open(trace, encoding="utf-8") as lines:
        for line in lines:
            record = json.loads(line)
            kind = {"tx": "sent", "rx": "received"}.get(record["kind"])
            if kind:
                heard[kind] += record["bytes"]
    return heard


class Qnctl:
    def __init__(self, program, folder):
        self._program = program
        self._folder = folder

    def _run(self, address, words, text=None):
        settings = os.path.join(self._folder, "settings.ini")
        trace = os.path.join(self._folder, "trace.jsonl")
        for file in (settings, trace):
            if os.path.exists(file):
                os.unlink(file)
        command = [self._program, "--json", "--port", address, "--settings", settings, "--trace", trace]
        done = subprocess.run(
            command + words, cwd=self._folder, input=text, text=True, timeout=300,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
        )
        return [line for line in done.stdout.splitlines() if line.startswith("{")], trace

    def run(self, job):
        """The documents of the calls, and what the line heard of all of them."""
        documents = []
        lines = []
        for call in job["calls"]:
            documents.append({"unsaid": True})
            try:
                words = words_of(job["member"], call["arguments"])
            except Unsaid:
                continue
            if call["form"] in RUN:
                lines.append((len(documents) - 1, words))
            else:
                said, _ = self._run(job["address"], ["call", "--", *words])
                documents[-1] = document_of(said[-1])
        if not lines:
            return documents, None
        text = "".join(" ".join('"' + word.replace('"', '""') + '"' for word in words) + "\n" for _, words in lines)
        said, trace = self._run(job["address"], ["batch", "--keep-going", "--show-args", "-"], text)
        for (at, _), line in zip(lines, said):
            documents[at] = document_of(line)
        return documents, bytes_of(trace)
