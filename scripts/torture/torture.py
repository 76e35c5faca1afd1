"""The rounds of scripts/torture.sh. Argument: the program norvik-cli."""
import os
import random
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time

PROGRAM = os.path.abspath(sys.argv[1])
SECONDS = float(os.environ.get("NORVIK_TORTURE_SECONDS", "180"))
SEED = int(os.environ.get("NORVIK_TORTURE_SEED", str(os.getpid())))
ONLY = [row.strip() for row in os.environ.get("NORVIK_TORTURE_ROWS", "").split(",") if row.strip()]
SAMPLES = os.path.abspath("samples")
RECORDS, WIRES = "NORVIK_Program_LineArc_Data.csv", "NORVIK_Program_Wire_Data.csv"
WORK = tempfile.mkdtemp(prefix="norvik_torture_")
choice = random.Random(SEED)


class Row:
    """One line of the table."""

    def __init__(self, what):
        self.what, self.tried, self.lost, self.note = what, 0, [], ""

    def expect(self, holds, text):
        if not holds:
            self.lost.append(text)


def read(path):
    try:
        with open(path, "rb") as file:
            return file.read()
    except FileNotFoundError:
        return None


def home(name):
    folder = os.path.join(WORK, name)
    os.makedirs(folder, exist_ok=True)
    return folder


def words(folder, *rest):
    return [PROGRAM, "--home", folder, "--machine", os.path.join(SAMPLES, "inch.ini"), *rest]


def start(arguments, **options):
    options.setdefault("stdout", subprocess.DEVNULL)
    options.setdefault("stderr", subprocess.PIPE)
    options.setdefault("stdin", subprocess.DEVNULL)
    return subprocess.Popen(arguments, **options)


def run(arguments, timeout=None, **options):
    """Status and standard error of a call; status None: it did not end in time."""
    process = start(arguments, **options)
    try:
        said = process.communicate(timeout=timeout or 60 * SLOWNESS)[1]
        return process.returncode, (said or b"").decode(errors="replace")
    except subprocess.TimeoutExpired:
        process.kill()
        process.communicate()
        return None, "no end"


def long_program(path, lines):
    with open(path, "w", encoding="ascii") as file:
        file.write("G0 X0 Y0 Z0\nF20\n")
        for n in range(lines):
            file.write(f"G1 X{n % 7}.5 Y{n % 5}.25\n")
        file.write("M2\n")


def whole_pair(folder):
    """The two tables are of one compile, as their times tell."""
    paths = [os.path.join(folder, name) for name in (RECORDS, WIRES)]
    if not all(map(os.path.exists, paths)):
        return not any(map(os.path.exists, paths))
    return os.stat(paths[0]).st_mtime_ns == os.stat(paths[1]).st_mtime_ns


class Command:
    """A command that writes, with the results that an earlier and a later call leave."""

    def __init__(self, name, results, *arguments):
        self.name, self.results, self.arguments = name, results, arguments

    def call(self, folder, variant):
        fill = {"variant": variant, "folder": folder}
        return words(folder, *(a.format(**fill) for a in self.arguments))

    def found(self, folder):
        return [read(os.path.join(folder, name)) for name in self.results]

    def prepare(self, folder):
        """Earlier and later results, and how long a call takes."""
        self.states, self.seconds = [], 0
        for variant in ("b", "a"):
            began = time.monotonic()
            status, said = run(self.call(folder, variant))
            self.seconds = max(self.seconds, time.monotonic() - began)
            if status != 0:
                raise RuntimeError(f"{self.name} does not work: {status} {said}")
            self.states.append(self.found(folder))
            if None in self.states[-1]:
                raise RuntimeError(f"{self.name} does not write {self.results}")
        self.before = self.states[1]

    def is_whole(self, folder):
        return self.found(folder) in self.states


class Tool_Command(Command):
    """A change of one tool; the tool file lies in the home folder."""

    def __init__(self):
        super().__init__("tools", ["Tools/Default.tol"])

    def call(self, folder, variant):
        return [PROGRAM, "--home", folder, "tools", "set", "3", "--diameter", "0.25" if variant == "a" else "0.5"]


class Setup_Command(Command):
    """A change of a machine file of its own."""

    def __init__(self):
        super().__init__("setup", ["mill.ini"])

    def call(self, folder, variant):
        machine = os.path.join(folder, "mill.ini")
        if not os.path.exists(machine):
            shutil.copy(os.path.join(SAMPLES, "inch.ini"), machine)
        return [PROGRAM, "--home", folder, "--machine", machine, "setup", "set",
                "Axis.Axis_Feed_Rate_Cut", "11" if variant == "a" else "22"]


def commands(folder):
    for variant, size in (("a", 1500), ("b", 2000)):
        long_program(os.path.join(folder, f"{variant}.gc"), size)
    for variant in ("a", "b"):
        with open(os.path.join(folder, "import_" + variant), "wb") as file:
            file.write(read(os.path.join(SAMPLES, "rosette.plt")) * (1 if variant == "a" else 2))
    return [
        Command("compile", [RECORDS, WIRES], "compile", "{folder}/{variant}.gc"),
        Command("import", ["program.gc"], "import", "{folder}/import_{variant}", "--as", "hpgl", "-o",
                "{folder}/program.gc"),
        Command("plot", ["picture.png"], "plot", "{folder}/{variant}.gc", "-o", "{folder}/picture.png",
                "--size", "300"),
        Command("transform", ["moved.gc"], "transform", "offset", "1", "2", "0", "{folder}/{variant}.gc", "-o",
                "{folder}/moved.gc"),
        Command("export", ["path.dxf"], "export", "dxf", "{folder}/{variant}.gc", "--accept-losses", "-o",
                "{folder}/path.dxf"),
        Command("motion", ["motion.mcd"], "--set", "Corrections.Motion_File_Any_Length=True", "motion", "save",
                "{folder}/{variant}.gc", "-o", "{folder}/motion.mcd"),
        Setup_Command(),
        Tool_Command(),
    ]


def ready_commands(name):
    """The commands, each in a folder of its own, with the results of both variants."""
    ready = []
    for command in commands(home(name)):
        folder = home(f"{name}_{command.name}")
        commands(folder)
        # A build without the toolkit writes plain pixels, whatever the name says.
        if command.name == "plot" and run(command.call(folder, "a"))[0] != 0:
            command.arguments = tuple(a.replace(".png", ".ppm") for a in command.arguments)
            command.results = ["picture.ppm"]
        command.prepare(folder)
        ready.append((command, folder))
    return ready


def back_to_before(command, folder):
    for name, content in zip(command.results, command.before):
        path = os.path.join(folder, name)
        if content is not None:
            with open(path, "wb") as file:
                file.write(content)
    for name in (RECORDS, WIRES):
        path = os.path.join(folder, name)
        if os.path.exists(path):
            os.utime(path, ns=(1, 1))


def until(share):
    """True for as long as a row may go on, and for the first round."""
    end = time.monotonic() + SECONDS * share
    yield True
    while time.monotonic() < end:
        yield True


def kills(row):
    ready = ready_commands("kills")
    for _ in until(0.2):
        for command, folder in ready:
            process = start(command.call(folder, "b"))
            time.sleep(choice.uniform(0, command.seconds))
            process.kill()
            process.communicate()
            row.tried += 1
            whole = command.is_whole(folder)
            if command.name == "compile" and not whole:
                whole = not whole_pair(folder)  # told: recognised as no pair
            row.expect(whole, f"{command.name}: torn after a kill")
            back_to_before(command, folder)


def signals(row):
    ready = ready_commands("signals")
    for _ in until(0.12):
        for command, folder in ready:
            number = choice.choice([signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT])
            process = start(command.call(folder, "b"))
            time.sleep(choice.uniform(0, command.seconds))
            process.send_signal(number)
            try:
                process.communicate(timeout=60 * SLOWNESS)
            except subprocess.TimeoutExpired:
                process.kill()
                process.communicate()
            row.tried += 1
            row.expect(process.returncode in (0, 130, -number), f"{command.name}: {process.returncode}")
            row.expect(command.is_whole(folder), f"{command.name}: torn after {number.name}")
            if process.returncode == 0:
                row.expect(command.found(folder) == command.states[0], f"{command.name}: 0, not done")
            back_to_before(command, folder)


def races(row):
    folder = home("races")
    commands(folder)
    machine = os.path.join(folder, "mill.ini")
    shutil.copy(os.path.join(SAMPLES, "inch.ini"), machine)
    expected = {}
    for variant in ("a", "b"):
        run(words(folder, "import", f"{folder}/import_{variant}", "--as", "hpgl", "-o", f"{folder}/alone.gc"))
        run(words(folder, "compile", f"{folder}/{variant}.gc"))
        expected[variant] = (read(f"{folder}/alone.gc"), read(f"{folder}/{RECORDS}"), read(f"{folder}/{WIRES}"))
    keys = ["Axis.Axis_Feed_Rate_Cut", "Axis.Axis_Feed_Rate_Travel", "General.Arc_Resolution"]
    for _ in until(0.2):
        started = []
        for n, variant in enumerate("abab"):
            out = f"{folder}/out{n}.gc"
            started.append((variant, out, start(words(folder, "import", f"{folder}/import_{variant}",
                                                      "--as", "hpgl", "-o", out))))
        compiles = [start(words(folder, "compile", f"{folder}/{variant}.gc")) for variant in "ab"]
        for variant, out, process in started:
            process.communicate()
            row.tried += 1
            if process.returncode == 0:
                same = without_name(read(out)) == without_name(expected[variant][0])
                row.expect(same, f"import {variant}: not its own program")
        for process in compiles:
            process.communicate()
            row.tried += 1
        tables = (read(f"{folder}/{RECORDS}"), read(f"{folder}/{WIRES}"))
        row.expect(tables in [expected[v][1:] for v in "ab"], "compile: tables of two programs")
        value = str(choice.randint(2, 30))
        sets = [(key, start([PROGRAM, "--home", folder, "--machine", machine, "setup", "set", key, value]))
                for key in keys]
        for key, process in sets:
            process.communicate()
            row.tried += 1
            if process.returncode != 0:
                continue
            got = subprocess.run([PROGRAM, "--home", folder, "--machine", machine, "setup", "get", key],
                                 capture_output=True, check=False).stdout.decode().strip()
            row.expect(float(got or 0) == float(value), f"setup: {key} is {got}, not {value}")


def without_name(program):
    """A program without the line that names its drawing."""
    return [line for line in (program or b"").splitlines() if b"Original File" not in line]


def full_devices(row):
    """Every output that takes a name, on a device that is always full."""
    folder = home("full_devices")
    commands(folder)
    program = f"{SAMPLES}/contour.gc"
    for arguments in (["import", f"{folder}/import_a", "--as", "hpgl", "-o", "/dev/full"],
                      ["plot", f"{folder}/a.gc", "-o", "/dev/full"],
                      ["transform", "offset", "1", "2", "0", f"{folder}/a.gc", "-o", "/dev/full"],
                      ["export", "dxf", f"{folder}/a.gc", "--accept-losses", "-o", "/dev/full"],
                      ["run", program, "--clock", "virtual", "--trace", "/dev/full"],
                      ["run", program, "--clock", "virtual", "--ports", "/dev/full"]):
        row.tried += 1
        status, said = run(words(folder, *arguments))
        row.expect(status == 1 and said.strip(), f"{arguments[0]} {arguments[-2]} /dev/full: {status}, {said[:80]}")


def full_disks(row):
    """On a small disk in memory, with little room left."""
    disk = home("disk")
    full_devices(row)
    mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=4m", "tmpfs", disk],
                             capture_output=True, check=False).returncode == 0
    if not mounted:
        row.note = "by /dev/full alone: no right to mount a small disk"
        return
    try:
        for command, source in ready_commands("full"):
            for _ in until(0.03):
                subprocess.run(f"rm -rf {disk}/* {disk}/.[!.]*", shell=True, check=False)
                for name in ("a.gc", "b.gc", "import_a", "import_b"):
                    shutil.copy(os.path.join(source, name), disk)
                if os.path.exists(os.path.join(source, "mill.ini")):
                    shutil.copy(os.path.join(source, "mill.ini"), disk)
                if run(command.call(disk, "a"))[0] != 0:
                    row.note = f"{command.name} does not fit at all"
                    break
                before = command.found(disk)
                free = shutil.disk_usage(disk).free
                with open(os.path.join(disk, "filler"), "wb") as file:
                    try:
                        file.write(b"x" * max(0, free - choice.randint(0, 120_000)))
                    except OSError:
                        pass
                status, said = run(command.call(disk, "b"))
                row.tried += 1
                now = command.found(disk)
                if status == 0:
                    row.expect(now != before and None not in now, f"{command.name}: 0, not done")
                else:
                    row.expect(now == before or command.name == "compile" and not whole_pair(disk),
                               f"{command.name}: {status}, torn")
                    row.expect(status == 1 and said.strip(), f"{command.name}: {status}, {said[:80]}")
    finally:
        subprocess.run(["umount", "-l", disk], check=False)


def closed_pipes(row):
    folder = home("pipes")
    commands(folder)
    printing = [("setup", "show"), ("compile", f"{folder}/a.gc"), ("check", f"{folder}/a.gc"),
                ("import", f"{folder}/import_a", "--as", "hpgl", "-o", "-")]
    for arguments in printing:
        call = words(folder, *arguments)
        row.tried += 3
        with open("/dev/full", "wb") as full:
            row.expect(run(call, stdout=full)[0] == 1, f"{arguments[0]} > /dev/full")
        text = shlex.join(call)
        closed = subprocess.run(["sh", "-c", text + " >&-"], capture_output=True, check=False)
        row.expect(closed.returncode == 1, f"{arguments[0]} >&-: {closed.returncode}")
        reader, writer = os.pipe()
        os.close(reader)
        status = run(call, stdout=writer)[0]
        os.close(writer)
        row.expect(status == 1, f"{arguments[0]} | (nobody): {status}")
    for command in commands(folder)[1:6]:
        fifo = os.path.join(folder, command.results[0])
        os.mkfifo(fifo)
        row.tried += 1
        status = run(command.call(folder, "a"), timeout=30 * SLOWNESS)[0]
        row.expect(status == 1, f"{command.name} into a pipe that nobody reads: {status}")


def make_locale(name):
    """Makes the locale from the system's sources, so that it is there whatever is installed."""
    folder = home("locale")
    try:
        subprocess.run(["localedef", "-c", "-i", name, "-f", "UTF-8", f"{folder}/{name}.UTF-8"],
                       capture_output=True, check=False)
    except OSError:
        pass
    return os.path.isdir(f"{folder}/{name}.UTF-8")


def locales(row):
    folder = home("locales")
    commands(folder)
    run(words(folder, "compile", f"{folder}/a.gc"))
    expected = (read(f"{folder}/{RECORDS}"), read(f"{folder}/{WIRES}"))
    made = [name for name in ("de_DE", "tr_TR", "ar_SA") if make_locale(name)]
    row.note = "with comma decimals" if "de_DE" in made else "without comma decimals: none can be made here"
    for name in ("C", "C.UTF-8", "de_DE.UTF-8", "tr_TR.UTF-8", "ar_SA.UTF-8", "no_SUCH", "", "/etc/passwd"):
        environment = dict(os.environ, LC_ALL=name, LANG=name, TZ=name)
        if name.split(".")[0] in made:
            environment["LOCPATH"] = os.path.join(WORK, "locale")
        row.tried += 1
        status, said = run(words(folder, "compile", f"{folder}/a.gc"), env=environment)
        row.expect(status == 0, f"{name}: {status} {said[:80]}")
        row.expect((read(f"{folder}/{RECORDS}"), read(f"{folder}/{WIRES}")) == expected, f"{name}: other tables")


def mutated(content):
    """The content with a few faults that a broken disk, transfer or editor makes."""
    data = bytearray(content)
    for _ in range(choice.randint(1, 6)):
        place = choice.randrange(len(data) + 1)
        way = choice.randrange(6)
        if way == 0:
            del data[place:]
        elif way == 1:
            data[place:place + choice.randint(1, 50)] = b""
        elif way == 2:
            data[place:place] = bytes(choice.randrange(256) for _ in range(choice.randint(1, 20)))
        elif way == 3:
            data[place:place] = choice.choice([b"9" * 400, b"-", b"1e308", b"\n", b"\0", b"nan", b"\xff\xfe"])
        elif way == 4:
            data[place:place] = data[:choice.randint(0, 2000)]
        elif data:
            data[place % len(data)] ^= 1 << choice.randrange(8)
    return bytes(data)


def hostile_files(row):
    folder = home("hostile")
    names = [name for name in sorted(os.listdir(SAMPLES))
             if os.path.isfile(os.path.join(SAMPLES, name)) and os.path.getsize(os.path.join(SAMPLES, name)) < 300_000]
    kinds = {".dxf": "dxf", ".plt": "hpgl", ".nc": "excellon", ".gbr": "gerber", ".bmp": "picture"}
    limit = 30 * min(SLOWNESS, 4)
    for fixed in ("/dev/zero", "/dev/stdin", folder, "/proc/self/mem", "/nowhere"):
        for arguments in (["compile", fixed], ["check", fixed], ["import", fixed, "--as", "dxf", "-o", f"{folder}/o.gc"]):
            row.tried += 1
            status = run(words(folder, *arguments), timeout=limit)[0]
            row.expect(status in (0, 1, 2), f"{arguments[0]} {fixed}: {status}")
    for _ in until(0.25):
        name = choice.choice(names)
        stem, ending = os.path.splitext(name)
        path = os.path.join(folder, "hostile" + ending)
        with open(path, "wb") as file:
            file.write(mutated(read(os.path.join(SAMPLES, name))))
        if ending in kinds:
            call = words(folder, "import", path, "--as", kinds[ending], "-o", f"{folder}/o.gc")
        elif ending == ".ini":
            call = [PROGRAM, "--home", folder, "--machine", path, "setup", choice.choice(["check", "show"])]
        else:
            call = words(folder, choice.choice(["compile", "check", "estimate"]), path)
        row.tried += 1
        status, said = run(call, timeout=limit)
        if status in (0, 1, 2):
            continue
        kept = os.path.join(tempfile.gettempdir(), f"norvik_torture_lost_{SEED}_{row.tried}{ending}")
        shutil.copy(path, kept)
        row.expect(False, f"{' '.join(call[4:7])}: {status}, kept as {kept}: {said[-200:]}")


def measured_slowness():
    """How much longer a call takes here than on a usual machine, at least 1."""
    folder = home("slowness")
    began = time.monotonic()
    subprocess.run(words(folder, "setup", "show"), stdout=subprocess.DEVNULL, check=True)
    return min(20.0, max(1.0, (time.monotonic() - began) / 0.05))


SLOWNESS = 1.0
ROWS = [("kills", kills), ("signals", signals), ("races", races), ("full disks", full_disks),
        ("closed pipes", closed_pipes), ("locales", locales), ("hostile files", hostile_files)]


def main():
    global SLOWNESS
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    SLOWNESS = measured_slowness()
    rows = []
    try:
        for what, body in ROWS:
            if ONLY and what not in ONLY:
                continue
            choice.seed(f"{SEED} {what}")
            row = Row(what)
            rows.append(row)
            began = time.monotonic()
            body(row)
            print(f"{what}: {time.monotonic() - began:.0f} s", file=sys.stderr, flush=True)
    finally:
        shutil.rmtree(WORK, ignore_errors=True)
    print(f"{'':16}{'tried':>8}{'lost':>8}")
    for row in rows:
        print(f"{row.what:16}{row.tried:8}{len(row.lost):8}  {row.note}")
    for row in rows:
        for text in row.lost[:10]:
            print(f"lost, {row.what}: {text}")
    lost = sum(len(row.lost) for row in rows)
    if lost:
        print(f"The same choices again: NORVIK_TORTURE_SEED={SEED}")
    return 1 if lost else 0


if __name__ == "__main__":
    sys.exit(main())
