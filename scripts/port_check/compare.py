#!/usr/bin/env python3
"""compare.py RESULTS TRACE: what the virtual machine of port_check.sh said and recorded against what
its bus and its parallel port saw. One line for each case; status 1 on any difference."""
import re
import sys

DATA, STATUS, CONTROL, MARK, DUMMY, RESET = 888, 889, 890, 752, 12, 0xCF9
REGISTERS = (DATA, STATUS, CONTROL)
# Step bit and direction bit of each axis in the data register, and where sample.gc ends, in steps.
AXES = {"X": (0, 1, 10), "Y": (2, 3, -5), "Z": (4, 5, -12)}
END = "Position: X0.010000 Y-0.005000 Z-0.012000 A0.000000"
SETCAP = r'command "sudo setcap cap_sys_rawio,cap_sys_resource\+ep /bin/norvik-port"'
HINT = "Or set Port_Access to Simulated"


def read_results(path):
    """{name: (number, text)} of the cases and {name: [(port, value, real)]} of their records."""
    text = open(path, errors="replace").read().replace("\r", "")
    cases, records = {}, {}
    for kind, number, name, body in re.findall(
            r"=== (case|ports) (\d+) (\S+)\n(.*?)\n?=== end", text, re.S):
        if kind == "case":
            cases[name] = (int(number), body)
        else:
            rows = [line.split(",") for line in body.splitlines()[1:]]
            records[name] = [(int(port), int(value), real == "1") for _, port, value, real in rows]
    if "=== all done" not in text:
        sys.exit("The virtual machine did not come to its end. See the last lines of console.txt "
                 "and results.txt beside " + path)
    return cases, records


def read_trace(path):
    """{number: ([("r" or "w", address, value) on the bus], [(register, value) the port took])}"""
    bus_line = re.compile(r"memory_region_ops_(read|write) .*addr (0x[0-9a-f]+) value (0x[0-9a-f]+)")
    port_line = re.compile(r"parallel_ioport_write .*addr (0x[0-9a-f]+) val (0x[0-9a-f]+)")
    cases, inside = {}, None
    for line in open(path, errors="replace"):
        if bus := bus_line.search(line):
            kind, address, value = bus[1][0], int(bus[2], 16), int(bus[3], 16)
            if address == MARK and kind == "w":
                inside = None if inside == value else value
                if inside is not None:
                    cases[inside] = ([], [])
            elif inside is not None and (address == RESET or
                                         (address - DATA) % DUMMY < 8 and DATA <= address < DATA + 20):
                cases[inside][0].append((kind, address, value))
        elif inside is not None and (port := port_line.search(line)):
            cases[inside][1].append((int(port[1], 16), int(port[2], 16)))
    return cases


def pins(register, value):
    """A control register holds four pins; the rest of its bits belong to the port itself."""
    return value & 0x0F if register == CONTROL else value


class Case:
    def __init__(self, name, cases, records, trace):
        self.faults = []
        self.number, self.text = cases.get(name, (None, ""))
        self.record = records.get(name, [])
        self.bus, self.port = trace.get(self.number, ([], []))
        self.writes = [(address, value) for kind, address, value in self.bus if kind == "w"]
        self.expect(self.number is not None, "did not run")

    def expect(self, holds, fault):
        if not holds:
            self.faults.append(fault)

    def says(self, *patterns):
        for pattern in patterns:
            self.expect(re.search(pattern, self.text, re.M), f'does not say "{pattern}"')

    def untouched(self):
        self.expect(not self.bus, f"accessed the port {len(self.bus)} times")
        self.expect(not self.record, "recorded writes")
        return "no access"

    def record_is_true(self, may_be_empty=False):
        """The recorded writes stand in one piece on the bus and each reached the port; outside of
        the recording the drive may only have been switched on or off."""
        wanted = [(port if real else port + DUMMY, value) for port, value, real in self.record]
        found = [i for i in range(len(self.writes) - len(wanted) + 1)
                 if self.writes[i:i + len(wanted)] == wanted]
        self.expect(wanted or may_be_empty, "recorded nothing")
        self.expect(found, f"the {len(wanted)} recorded writes are not on the bus, which saw "
                           f"{len(self.writes)}: see results.txt and trace.txt")
        seen = [(address & 7, value) for address, value in self.writes]
        self.expect(seen == self.port, "the port saw other writes than the bus")
        dummies = sum(not real for _, _, real in self.record)
        return (f"{len(wanted)} writes ({dummies} dummy) as recorded, "
                f"{len(self.writes) - len(wanted)} more around the recording")

    def reads_are_true(self):
        """Every write follows a read of its register, and a read gives what was written last."""
        written, before = {}, None
        for kind, address, value in self.bus:
            if kind == "w":
                self.expect(before == ("r", address % DUMMY),
                            f"a write to {address} follows no read of it")
                written[address] = value
            elif address in written:
                self.expect(pins(address, value) == pins(address, written[address]),
                            f"{address} read {value} behind a write of {written[address]}")
            before = (kind, address % DUMMY)
        return f"{len(self.bus) - len(self.writes)} reads"

    def steps(self):
        """Where the axes would stand, from the edges of the data register on the bus alone."""
        stand, last = dict.fromkeys(AXES, 0), None
        for _, address, value in self.bus:
            if address != DATA:
                continue
            for axis, (step, direction, _) in AXES.items():
                if last is not None and value >> step & 1 and not last >> step & 1:
                    stand[axis] += -1 if value >> direction & 1 else 1
            last = value
        return stand


def real_run(case):
    case.says("^Port: real, motors will move$", "^Finished$", "^" + END, "^status 0$")
    wanted = {axis: end for axis, (_, _, end) in AXES.items()}
    case.expect(case.steps() == wanted, f"the edges on the bus sum up to {case.steps()} steps")
    return f"{case.record_is_true()}, {case.reads_are_true()}, steps {case.steps()}"


def stopped_run(words, x, y):
    def check(case):
        case.says("^Ended early: " + words, f"^Position: X{x / 1000:.6f} Y{y / 1000:.6f} ",
                  "^status 1$")
        case.expect(case.steps() == {"X": x, "Y": y, "Z": 0},
                    f"the edges on the bus sum up to {case.steps()} steps")
        return f"{case.record_is_true(may_be_empty=True)}, stopped by its input"
    return check


def probe(case):
    case.says("^data 1, control 1, blocked axis rests 1, failures 0$", "^status 0$")
    case.expect(sum(not real for _, _, real in case.record) == 20, "20 dummy writes were to come")
    return case.record_is_true()


def refused(*patterns):
    def check(case):
        case.says("^Port: real, but access is refused: motors will not move", *patterns, HINT,
                  "^status 1$")
        return case.untouched()
    return check


def simulated(case):
    case.says("^Port: simulated machine$", "^Finished$", "^" + END, "^status 0$")
    case.expect(not case.bus, f"accessed the port {len(case.bus)} times")
    return "simulated machine, no access"


def foreign_port(case):
    case.says("^status 1$")
    case.expect(case.bus, "accessed no port at all")
    case.expect(all(address != RESET for _, address, _ in case.bus), "accessed 0xCF9")
    return "the register that resets the computer is refused"


def not_ours(case):
    case.says("^norvik-port: Usage", "^status 1$")
    return case.untouched()


def own_rights(case):
    case.says("sudo setcap -r", "^status 1$")
    return case.untouched()


def done(case):
    case.says("^status 0$")
    return "done"


DEVICE = "^norvik-cli: Access to the port device /dev/port was refused "
INSTRUCTIONS = refused("^norvik-cli: Direct port access was refused", SETCAP)
NO_CAPABILITY = refused(DEVICE + r"\(Operation not permitted", SETCAP)
NO_WRITING = refused(DEVICE + r"\(Permission denied", "Parallel_IODLL 1", SETCAP)
JOIN_GROUP = refused(DEVICE + r"\(Permission denied", "sudo usermod -aG kmem", SETCAP)
CASES = {
    "root-1": real_run, "root-2": real_run, "auto-1": real_run,
    # Another program has left the step pins high: the first edge of each axis must not be lost.
    "left-high-1": real_run, "left-high-2": real_run,
    "estop-1": stopped_run("Stopped: the E-stop input is on", 0, 0),
    # The switch of X is on from the start: the first direction is free, the way back is not.
    "limit-2": stopped_run("Stopped: a limit switch", 30, 20),
    "probe-1": probe, "probe-2": probe,
    "bounded-1": INSTRUCTIONS, "bounded-2": NO_CAPABILITY, "bounded-auto-1": simulated,
    "user-1": INSTRUCTIONS, "user-2": NO_WRITING,
    "user-auto-1": simulated, "user-auto-2": simulated,
    "member-reads-2": NO_WRITING, "member-2": NO_CAPABILITY,
    "stranger-2": JOIN_GROUP,
    "words": INSTRUCTIONS, "setcap": done, "helped-1": real_run, "helped-auto-1": real_run,
    "helped-2": NO_CAPABILITY, "foreign-1": foreign_port, "only-ours": not_ours,
    "capable-itself": own_rights,
}


def main():
    cases, records = read_results(sys.argv[1])
    trace = read_trace(sys.argv[2])
    failed = 0
    for name, check in CASES.items():
        case = Case(name, cases, records, trace)
        told = check(case)
        print(f"{'ok  ' if not case.faults else 'FAIL'} {name}: {told}")
        for fault in dict.fromkeys(case.faults):
            print(f"     {fault}")
        if case.faults:
            failed += 1
            print("     it printed:\n" + re.sub("^", "       ", case.text, flags=re.M))
    print(f"{len(CASES)} cases, {failed} failed: direct port access "
          + ("drives the port as recorded" if failed == 0 else "is NOT as it should be"))
    return 1 if failed else 0


sys.exit(main())
