#!/usr/bin/env python3
"""ratios.py RESULT.json...: a table of varnik's time over each peer's, from Google Benchmark's results.

A case is named operation/count/peer. The figure is the median of the repetitions' processor time, and a ratio below 1
means that we are faster."""
import collections
import json
import statistics
import sys

times = collections.defaultdict(lambda: collections.defaultdict(list))  # operation/count -> peer -> times
rates = {}
for path in sys.argv[1:]:
    try:
        with open(path, encoding="utf-8") as file:
            runs = json.load(file)["benchmarks"]
    except ValueError:
        continue  # no case of this program matched the filter
    for run in runs:
        if run.get("run_type", "iteration") != "iteration":
            continue
        case, _, peer = run["run_name"].rpartition("/")
        times[case][peer].append(run["cpu_time"])
        if peer == "varnik":
            rates.setdefault(case, []).append(run.get("bytes_per_second", 0))

if not times:
    sys.exit("no benchmark has such a name")
width = max(map(len, times))
print(f"{'operation/count':{width}}  {'GB/s':>7}  time over that of the peers")
for case, peers in times.items():
    if "varnik" not in peers:
        continue
    ours = statistics.median(peers["varnik"])
    ratios = [f"{peer} {ours / statistics.median(t):.2f}" for peer, t in peers.items() if peer != "varnik"]
    print(f"{case:{width}}  {statistics.median(rates[case]) / 1e9:7.2f}  {', '.join(ratios)}")
