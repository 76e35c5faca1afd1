"""The rounds of scripts/soak.sh. Arguments: norvik-cli, rounds, half steps of the long run."""
import os
import resource
import shutil
import subprocess
import sys
import tempfile
import threading
import time

PROGRAM, ROUNDS, HALF_STEPS = os.path.abspath(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3])
SAMPLES = os.path.abspath("samples")
STEPS_A_UNIT = 4000
failures = []


def expect(holds, text):
    if not holds:
        failures.append(text)
        print("grown:", text, flush=True)


def call(folder, *words):
    arguments = [PROGRAM, "--home", folder, "--machine", os.path.join(SAMPLES, "inch.ini"), *words]
    process = subprocess.Popen(arguments, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    said = process.stderr.read()
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    expect(process.returncode == 0, f"{words[0]}: status {process.returncode}, {said[-200:]}")
    return usage.ru_maxrss


def files_in(folder):
    return {os.path.join(at, name): os.path.getsize(os.path.join(at, name))
            for at, _, names in os.walk(folder) for name in names}


def rounds(folder):
    commands = [("compile", f"{SAMPLES}/pocket.gc"), ("run", f"{SAMPLES}/contour.gc", "--clock", "virtual"),
                ("import", f"{SAMPLES}/rosette.plt", "-o", f"{folder}/out.gc"),
                ("estimate", f"{SAMPLES}/pocket.gc")]
    peaks, first_files = {}, None
    for number in range(ROUNDS):
        for words in commands:
            peaks.setdefault(words[0], []).append(call(folder, *words))
        if number == 1:
            first_files = files_in(folder)
    if first_files is None:
        return
    grown = {path: size for path, size in files_in(folder).items()
             if size > 2 * first_files.get(path, 0) + 1_000_000 or path not in first_files}
    traces = [path for path in grown if os.path.basename(path).startswith("TestFile")]
    for path in traces:  # grows by design, up to its limit
        expect(grown.pop(path) < 110_000_000, f"{path} is beyond its limit")
    expect(not grown, f"files: {grown}")
    for name, values in peaks.items():
        half = len(values) // 2 or 1
        expect(max(values[half:]) < 1.2 * max(values[:half]) + 4000, f"{name}: memory {values[0]} to {values[-1]} kB")


def long_run(folder):
    """Back and forth on the simulated machine; memory and descriptors of the process all the way."""
    units = HALF_STEPS / 2 / STEPS_A_UNIT
    moves = max(1, int(units / 5))
    path = os.path.join(folder, "long.gc")
    with open(path, "w", encoding="ascii") as file:
        file.write("G0 X0 Y0 Z0\nF60\n")
        for number in range(moves):
            file.write(f"G1 X{5 if number % 2 == 0 else 0}\n")
        file.write("M2\n")
    process = subprocess.Popen([PROGRAM, "--home", folder, "--machine", os.path.join(SAMPLES, "inch.ini"),
                                "run", path, "--clock", "virtual", "--trace", os.devnull],
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    seen = []
    reader = threading.Thread(target=lambda: seen.append(process.stdout.read()))
    reader.start()
    looks = []
    while process.poll() is None:
        try:
            with open(f"/proc/{process.pid}/statm", encoding="ascii") as file:
                pages = int(file.read().split()[1])
            if pages > 0:  # 0: it has just ended
                looks.append((pages * resource.getpagesize() // 1024, len(os.listdir(f"/proc/{process.pid}/fd"))))
        except (OSError, IndexError):
            break
        time.sleep(0.5)
    process.wait()
    reader.join()
    expect(process.returncode == 0, f"run: status {process.returncode}")
    expect(b"Finished" in (seen[0] if seen else b""), "run: not finished")
    # The first tenth compiles; what is there then has to be enough.
    settled = looks[len(looks) // 10:]
    expect(len(settled) > 10, f"run: too short to tell, {len(settled)} looks; more half steps show more")
    if len(settled) > 10:
        quarter = len(settled) // 4
        memory = [max(m for m, _ in part) for part in (settled[:quarter], settled[-quarter:])]
        open_files = [max(n for _, n in part) for part in (settled[:quarter], settled[-quarter:])]
        expect(memory[1] < 1.1 * memory[0] + 2000, f"run: memory {memory[0]} to {memory[1]} kB")
        expect(open_files[1] <= open_files[0], f"run: {open_files[0]} to {open_files[1]} open files")
        print(f"run: {moves} moves, memory {memory[0]} to {memory[1]} kB, {open_files[1]} open files")


def main():
    folder = tempfile.mkdtemp(prefix="norvik_soak_")
    try:
        began = time.monotonic()
        rounds(folder)
        print(f"{ROUNDS} rounds: {time.monotonic() - began:.0f} s", flush=True)
        long_run(folder)
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    print("nothing has grown" if not failures else f"{len(failures)} findings")
    return 1 if failures else 0


sys.exit(main())
