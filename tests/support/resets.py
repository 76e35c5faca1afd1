#!/usr/bin/env python3
"""Whether the functions of reset.h put every record of the rooms back to its start.

A record that a header of a room declares "extern" must stand in the reset of that room.
"""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
ROOMS = ["core", "drive", "compiler", "plot", "parallel", "serial", "tools", "simulate",
         "control", "import", "app"]


def main():
    missing = []
    for room in ROOMS:
        reset = (ROOT / f"tests/support/reset_{room}.cpp").read_text()
        for header in sorted((ROOT / "src" / room).rglob("*.h")):
            for name in re.findall(r"^extern (?!const |template )[\w:<>, ]+? (\w+);", header.read_text(), re.M):
                if f"  {name} = {{}};" not in reset:
                    missing.append(f"{header.relative_to(ROOT)}: {name} is not put back by reset_{room}.cpp")
    print("\n".join(missing) or "Every record is put back.")
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main())
