"""The control as a host in Python has it: members as methods and properties. Jobs as Jobs.h has them."""

import inspect
import json
import sys

import qncomm

_READY = {"printer": ("PortOpen",), "fresh claim": ("PortOpen", "PortClose")}


def document_of(value):
    if isinstance(value, qncomm.Settings):
        return "(the settings)"
    if type(value) in qncomm.FIELDS:
        return dict(zip(qncomm.FIELDS[type(value)], map(document_of, value)))
    if isinstance(value, (list, qncomm.Collection)):
        return [document_of(item) for item in value]
    return value


class Door:
    """One control with what is heard of it."""

    def __init__(self, job):
        self.control = qncomm.Control(job["address"], remembered=True, listen=True)
        self.store = qncomm.Settings.in_memory()
        self.control.on_trace(self._hear_line)
        for name in job["events"]:
            self.control.on(name, lambda event, name=name: self._hear(name, event))
        self._forget()

    def _forget(self):
        self.heard = {"events": [], "sent": "", "received": ""}

    def _hear(self, name, event):
        self.heard["events"].append([name, [document_of(value) for value in vars(event).values()]])

    def _hear_line(self, kind, what):
        if kind != "event":
            self.heard[kind] += what.decode("latin-1")

    def given(self, value):
        if value == {}:
            return self.store
        return qncomm.TerminalFont(*value.values()) if isinstance(value, dict) else value

    def _invoke(self, member, arguments):
        parts = {"QNComm": self.control, "clsQuorin": self.control.layer, "clsDataLink": self.control.link}
        of, name, kind = member["class"], member["name"], member["kind"]
        if of not in parts:
            return self.control.call(f"{of}.{name}", self.store, *arguments)
        part = parts[of]
        if len(arguments) > len(member["parameters"]):
            return self.control.call(f"{of}.{name}", *arguments)
        if kind == "let":
            if isinstance(getattr(type(part), name, None), property):
                return setattr(part, name, *arguments)
            return getattr(part, "Set" + name)(*arguments)
        if kind == "get" and not member["parameters"]:
            return getattr(part, name)
        method = getattr(part, name)
        if None in arguments:  # by their names, where one before them is left out
            names = list(inspect.signature(method).parameters)
            missing = [p["default"] is None for p in member["parameters"]]
            named = {n: a for n, a, m in zip(names, arguments, missing) if a is not None or m}
            return method(**named)
        return method(*arguments)

    def call(self, member, arguments):
        backs = [p["name"] for p in member["parameters"] if p["back"]]
        try:
            result = self._invoke(member, [self.given(value) for value in arguments])
            outcome = [document_of(value) for value in result] if isinstance(result, tuple) and backs else None
            if backs and outcome:
                first = outcome.pop(0) if len(outcome) > len(backs) else None
                document = {"result": first, "back": dict(zip(backs, outcome)), "error": None}
            else:
                document = {"result": document_of(result), "back": {}, "error": None}
        except qncomm.QNError as error:
            told = {"number": error.number, "source": error.source, "description": error.description}
            document = {"error": told}
        return document

    def heeded(self, document):
        """The document with what was heard since the one before."""
        document |= self.heard
        self._forget()
        return document


def run(job):
    door = Door(job)
    wanted = _READY.get(job["needs"], ())
    documents = [door.heeded(door.call(member, [])) for member in job["preparing"] if member["name"] in wanted]
    for arguments in job["calls"]:
        if job["needs"] == "open port":
            door.control.show()
        document = door.call(job["member"], arguments)
        if job["needs"] == "open port":
            door.control.show(False)
        documents.append(door.heeded(document))
    door.control.close()
    return documents


for line in sys.stdin:
    print(json.dumps(run(json.loads(line))), flush=True)
