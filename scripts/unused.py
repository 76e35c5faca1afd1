#!/usr/bin/env python3
"""Functions that a header of src/ declares and nothing in src/ uses.

    scripts/unused.py

Tests are no users: what only they call is code that no program runs. A function that has to stay
without a user stands in EXCEPTIONS with the reason. Exit status 1 when there are others, or when an
exception has found a user.
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
    "Parse_Wire_Table": "as above",
    "Remove_Virtual_Clock": "puts the clock of the environment below back",
    "Reset_Simulated_Machine": "a machine without stored settings",
    "Set_Port_Device": "a file in place of the port device",
    "Set_Port_Lock": "a lock of the test's own",
    "Simulation_Settings_Table": "makes a part of docs/simulated_machine.md",
    "Trail_Picture": "what the picture shows",
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
    faults = [f"{declared[name].relative_to(ROOT)}: {name} has no user in src/" for name in sorted(unused - set(EXCEPTIONS))]
    faults += [f"scripts/unused.py: {name} is no exception any more" for name in sorted(set(EXCEPTIONS) - unused)]
    print("\n".join(faults) or f"{len(declared) - len(EXCEPTIONS)} functions, each with a user; {len(EXCEPTIONS)} exceptions.")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
