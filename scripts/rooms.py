#!/usr/bin/env python3
"""Who includes whom between the rooms of src/, as it really is.

    scripts/rooms.py             the list; fails on a fault of the order
    scripts/rooms.py --drawing   the same as a drawing for a document (mermaid)

A room is a folder with a CMakeLists.txt that declares one (cmake/Rooms.cmake). Their order is that of
the add_subdirectory lines. Two things are faults, each named with the files that make it:

    an include of a room that comes later in the order
    more than three files of one room that include each other in a circle (a header and its source
    count as one file)
"""
import re
import sys
from collections import defaultdict
from pathlib import Path

SOURCE = Path(__file__).resolve().parent.parent / "src"
MOST_FILES_IN_A_CIRCLE = 3


def rooms_in_order(folder):
    """The folders of all rooms, lowest first: a room within another one lies below it when it is added
    before the other is declared, and above it otherwise."""
    text = (folder / "CMakeLists.txt").read_text()
    rooms = []
    for line in re.finditer(r"^\s*(?:(Norvik_Room)\(|add_subdirectory\((\w+)\))", text, re.M):
        if not line[1]:
            rooms += rooms_in_order(folder / line[2])
        elif (own := folder.relative_to(SOURCE).as_posix()) not in rooms:
            rooms.append(own)
    return rooms


def includes_of(path):
    """What the build makes of a room's own files (.inc) is no include of a room."""
    return re.findall(r'^\s*#\s*include\s+"([^"]+)(?<!\.inc)"', path.read_text(), re.M)


def circles(graph):
    """The groups of more than one node of which each reaches each other (Tarjan)."""
    index, low, stack, found = {}, {}, [], []

    def visit(node):
        index[node] = low[node] = len(index)
        stack.append(node)
        for other in sorted(graph[node]):
            if other not in index:
                visit(other)
                low[node] = min(low[node], low[other])
            elif other in stack:
                low[node] = min(low[node], index[other])
        if low[node] == index[node]:
            group = stack[stack.index(node):]
            del stack[stack.index(node):]
            if len(group) > 1:
                found.append(sorted(group))

    for node in sorted(graph):
        if node not in index:
            visit(node)
    return found


def main():
    order = rooms_in_order(SOURCE)
    place = {room: n for n, room in enumerate(order)}
    arrows = defaultdict(list)  # (from, to) -> lines "file includes file"
    within = {room: defaultdict(set) for room in order}
    faults = []

    for path in sorted(SOURCE.rglob("*")):
        if path.suffix not in (".h", ".cpp"):
            continue
        room = path.parent.relative_to(SOURCE).as_posix()
        file = path.relative_to(SOURCE).as_posix()
        if room not in place:
            faults.append(f"{file} lies in no room: declare its folder by Norvik_Room")
            continue
        # A program's own main file chooses the back ends and may see every room.
        is_main = path.name == "main.cpp"
        within[room][path.stem] |= set()
        for include in includes_of(path):
            other = Path(include).parent.as_posix()
            if other not in place:
                faults.append(f"{file} includes {include}, which lies in no room")
            elif other != room:
                if not is_main:
                    arrows[room, other].append(f"{file} includes {include}")
            elif Path(include).stem != path.stem:
                within[room][path.stem].add(Path(include).stem)

    for (room, other), lines in sorted(arrows.items()):
        if place[other] > place[room]:
            faults += [f"an arrow runs up from {room} to {other}: {line}" for line in lines]

    if "--drawing" in sys.argv[1:]:
        draw(order, arrows)
    else:
        for room in order:
            others = sorted((o for r, o in arrows if r == room), key=place.get)
            counted = ", ".join(f"{o} {len(arrows[room, o])}" for o in others)
            print(f"{room:24} -> {counted}" if others else room)
        for room in order:
            for group in circles(within[room]):
                line = f"{room}: {', '.join(group)} include each other"
                print(f"circle in {line}")
                if len(group) > MOST_FILES_IN_A_CIRCLE:
                    faults.append(f"a circle of {len(group)} files in {line}")
    for fault in faults:
        print(f"FAULT: {fault}", file=sys.stderr)
    return 1 if faults else 0


def draw(order, arrows):
    """Arrows that follow from others are left out, as a house shows its stairs and not every way."""
    below = {room: {o for r, o in arrows if r == room} for room in order}

    def reaches(room, seen):
        for other in below[room] - seen:
            seen.add(other)
            reaches(other, seen)
        return seen

    def name(room):
        return room.replace("/", "_")

    print("flowchart TD")
    for room in reversed(order):
        print(f'  {name(room)}["{room}"]')
    for room in reversed(order):
        near = below[room]
        far = set().union(*(reaches(o, set()) for o in near)) if near else set()
        for other in sorted(near - far, key=order.index, reverse=True):
            print(f"  {name(room)} --> {name(other)}")


if __name__ == "__main__":
    sys.exit(main())
