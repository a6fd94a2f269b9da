"""branches.py EXCUSES FOLDER...: reads `llvm-cov show --show-branches=count` and prints, of each file of the folders, how many
branches were taken, then those that were missed.

A branch of a template stands there once an instantiation: the counts are added. The file of excuses has a line for each line of
code that may miss a branch: FILE | the code, as it stands | the reason. Status 1 when a branch is missed without an excuse, when
there are more than twenty, or when one excuses nothing.
"""
import collections
import os
import re
import sys

excuses = {}
with open(sys.argv[1], encoding="utf-8") as file:
    for line in file:
        if line.strip() and not line.startswith("#"):
            path, code, _ = (part.strip() for part in line.split(" | "))
            excuses[path, code] = 0

path, code = "", {}
sides = collections.defaultdict(lambda: [0, 0])  # (path, line, column) to how often it was true and false
for line in sys.stdin:
    if found := re.match(r"(/\S+):$", line):
        path, code = os.path.relpath(found[1]), {}
    elif found := re.match(r"\s*(\d+)\|[^|]*\|(.*)", line):
        code[int(found[1])] = found[2].strip()
    elif found := re.search(r"Branch \((\d+):(\d+)\): \[True: ([\d.kMGTE]+), False: ([\d.kMGTE]+)\]", line):
        at, column = int(found[1]), int(found[2])
        if not path.startswith(tuple(sys.argv[2:])):
            continue
        counts = sides[path, at, column, code.get(at, "")]
        for side in (0, 1):
            counts[side] += found[3 + side] != "0"

missed = collections.Counter()
total = collections.Counter()
report = []
for (path, at, column, text), counts in sorted(sides.items()):
    total[path] += 2
    for side, name in enumerate(("true", "false")):
        if counts[side]:
            continue
        if (path, text) in excuses:
            excuses[path, text] += 1
        else:
            missed[path] += 1
            report.append(f"missed: {path}:{at}:{column} never {name}: {text}")
for path in sorted(total):
    print(f"{path:60} {total[path] - missed[path]:5} of {total[path]:5}  {100 - 100 * missed[path] / total[path]:6.2f} %")
whole, lost, excused = sum(total.values()), sum(missed.values()), sum(excuses.values())
print(f"{'all':60} {whole - lost:5} of {whole:5}  {100 - 100 * lost / max(whole, 1):6.2f} %, {excused} of them excused")
report += [f"excuses nothing: {path}: {code}" for (path, code), uses in excuses.items() if not uses]
if len(excuses) > 20:
    report.append(f"{len(excuses)} lines are excused, at most 20 may be")
print(*report, sep="\n")
sys.exit(1 if report or not whole else 0)
