#!/usr/bin/env python3
"""Whether the links and file names in the project's documents and comments lead somewhere.

A link must lead to a file, and behind "#" to a heading of it. A name in backquotes that ends like a
source or a document must be a file: from the top, from src/, beside the document, or, without a
folder, anywhere. So must the name of a source in a comment.
"""
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
NAME = re.compile(r"^[\w./-]+\.(?:h|cpp|md|sh|py|cmake|ini|gc)$")


def anchors(path):
    headings = re.findall(r"^#+ +(.*)$", path.read_text(), re.M)
    return {re.sub(r"[^\w\- ]", "", h.lower()).replace(" ", "-") for h in headings}


def main():
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, text=True,
                            capture_output=True, check=True).stdout.splitlines()
    files = [ROOT / name for name in listed if (ROOT / name).is_file()]
    names = {file.name for file in files}
    faults, looked_at = [], 0
    for document in (f for f in files if f.suffix == ".md"):
        where = document.relative_to(ROOT)
        text = re.sub(r"^```.*?^```", "", document.read_text(), flags=re.M | re.S)
        for target in re.findall(r"\]\(([^)\s]+)\)", text):
            if re.match(r"[a-z]+:", target):
                continue
            looked_at += 1
            path, _, anchor = target.partition("#")
            file = document.parent / path if path else document
            if not file.exists():
                faults.append(f"{where}: the link to {target} leads nowhere")
            elif anchor and anchor not in anchors(file):
                faults.append(f"{where}: {target}: there is no such heading")
        for name in re.findall(r"`([^`\n]+)`", text):
            if not NAME.match(name):
                continue
            looked_at += 1
            places = (ROOT / name, ROOT / "src" / name, document.parent / name)
            if not any(p.exists() for p in places) and ("/" in name or name not in names):
                faults.append(f"{where}: there is no file {name}")
    for source in (f for f in files if f.suffix in (".h", ".cpp")):
        for number, line in enumerate(source.read_text().splitlines(), 1):
            if "//" not in line or "#include" in line:
                continue
            for name in re.findall(r"[\w/]+\.(?:h|cpp)\b", line.split("//", 1)[1]):
                looked_at += 1
                places = (ROOT / name, ROOT / "src" / name, source.parent / name)
                if not any(p.exists() for p in places) and ("/" in name or name not in names):
                    faults.append(f"{source.relative_to(ROOT)}:{number}: there is no file {name}")
    print("\n".join(faults) or f"{looked_at} links and names lead somewhere")
    return 1 if faults or not looked_at else 0


if __name__ == "__main__":
    sys.exit(main())
