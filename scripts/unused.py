#!/usr/bin/env python3
"""Functions that a header of src/ declares and nothing in src/ uses, and hooks that nothing fills or calls.

    scripts/unused.py

Tests are no users: what only they call is code that no program runs. A function that has to stay
without a user stands in EXCEPTIONS with the reason; a room that waits for others stands in WAITING with
what it waits for. Exit status 1 when there are more. Exceptions that have found a user are named, so
that they are taken out.
"""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
EXCEPTIONS = {
    # Operations that stand for whoever needs them.
    "CNC_Retool": "the run loop serves its request; no control of the panel asks for it",
    "EStop_Engage": "the E-stop's one-way form, for whoever finds a fault of the machine",
    "Gcode_Step_Display": "the whole text shown anew, line by line",
    "Load_Program_Wire": "the motion file",
    # Plain rules of number texts, beside the fast ones of the writers.
    "Import_Sequence_Text": "what the numbers of the written lines are held against",
    "ToCommaDecimal": "one of the helpers of number texts",
    "ToPointDecimal": "one of the helpers of number texts",
    "WordText": "one of the helpers of number texts",
    "WordValue": "one of the helpers of number texts",
    # What tests, benchmarks and fuzz targets set up and look at.
    "Parse_LineArc_Table": "each of the two tables has one reader and one writer",
    "Read_LineArc_Table": "as above",
    "Write_LineArc_Table": "as above",
    "Remove_Virtual_Clock": "puts the clock of the environment below back",
    "Reset_Simulated_Machine": "a machine without stored settings",
    "Set_Port_Device": "a file in place of the port device",
    "Set_Port_Lock": "a lock of the test's own",
    "Simulation_Settings_Table": "makes a part of docs/simulated_machine.md",
    "Trail_Picture": "what the picture shows",
}
# Headers whose functions are named and do not count, by the beginning of their path.
WAITING = {
    "src/serial/": "windows of the serial boards",
    "src/simulate/board": "the window and the program of the simulated boards",
}
# Made for tests altogether.
NOT_LOOKED_AT = ROOT / "src/platform/scripted"
# What stands before the name where a function is declared or defined: a type, no statement.
BEFORE = (r"^ {0,4}(?!(?:return|else|throw|case|using)\b)(?!.*<<)"
          r"(?:[\w:<>,*&\[\]]+ )*[\w:<>,*&\]]+[ *&]+")


def code_of(path):
    """The text without comments and without what stands in quotes; lines stay lines."""
    pattern = re.compile(r'//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', re.S)
    return pattern.sub(lambda m: "\n" * m.group().count("\n"), path.read_text())


def idle_hooks(texts):
    """Hooks (a `std::function` in a record `..._Host_Operations`) that nothing in src/ fills, or calls."""
    every = "\n".join(texts.values())
    for path, text in texts.items():
        for record in re.finditer(r"^struct \w+_Host_Operations \{.*?^\};", text, re.S | re.M):
            for name in re.findall(r"std::function<[^;=]*>\s+(\w+)\s*=", record.group()):
                if not re.search(rf"[.>]{name}\s*=[^=]", every):
                    yield f"{path.relative_to(ROOT).as_posix()}: nothing fills the hook {name}"
                if not re.search(rf"[.>]{name}\(", every):
                    yield f"{path.relative_to(ROOT).as_posix()}: nothing calls the hook {name}"


def main():
    texts = {path: code_of(path) for path in sorted((ROOT / "src").rglob("*")) if path.suffix in (".h", ".cpp")}
    declared = {}
    for path, text in texts.items():
        if path.suffix != ".h" or NOT_LOOKED_AT in path.parents:
            continue
        for line in text.splitlines():
            found = re.match(BEFORE + r"(\w+)\(", line)
            if found and found.group(1)[0].isupper():
                declared.setdefault(found.group(1), path)
    uses = {}
    for text in texts.values():
        for line in text.splitlines():
            place = re.match(BEFORE + r"(?:\w+(?:<\w*>)?::)*(\w+)\(", line)
            for word in re.finditer(r"\w+", line):
                if place and word.start() == place.start(1):
                    continue  # its own declaration or definition
                uses[word.group()] = uses.get(word.group(), 0) + 1
    unused = {name for name in declared if not uses.get(name)}
    faults, notes = [], [f"{name} has found a user" for name in sorted(set(EXCEPTIONS) & set(declared) - unused)]
    for name in sorted(unused - set(EXCEPTIONS)):
        path = declared[name].relative_to(ROOT).as_posix()
        waits_for = [what for start, what in WAITING.items() if path.startswith(start)]
        if waits_for:
            notes.append(f"{path}: {name} waits for {waits_for[0]}")
        else:
            faults.append(f"{path}: {name} has no user in src/")
    faults += idle_hooks(texts)
    print("\n".join(notes + faults))
    print(f"{len(declared)} functions looked at, {len(faults)} of them, or hooks, without a user and without a reason")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
