#!/usr/bin/env python3
"""bench-documents.py RESULT.json...: writes what the documents show of the benchmarks: the table of the README, between
its two marks, and the plot of throughput over size. To be run at the top of the tree; the plot is drawn by gnuplot."""
import json
import pathlib
import re
import statistics
import subprocess
import sys

# Title in the table, operation, the peer to compare with and its title.
ROWS = [
    ("base64 encode", "base64_encode", "openssl", "OpenSSL"),
    ("base64 decode", "base64_decode", "openssl", "OpenSSL"),
    ("hex encode", "hex_encode", "loop", "a loop with a table"),
    ("UTF-16 to UTF-8, many scripts", "utf16le_to_utf8:mixed", "u_strToUTF8", "ICU"),
    ("UTF-8 to UTF-16, many scripts", "utf8_to_utf16le:mixed", "icu", "ICU"),
    ("windows-1252 to UTF-8", "cp1252_to_utf8:latin", "icu", "ICU"),
    ("find, first byte frequent", "find_frequent", "memmem", "memmem"),
    ("replace", "replace", "find+append", "std::string find and append"),
    ("remove a byte", "drop_byte", "std", "std::remove"),
    ("load a file", "load_file", "ifstream", "std::ifstream"),
]
# Title, operation, peer, gnuplot's style.
LINES = [
    ("memcpy", "hex_encode", "memcpy", "lc rgb '#999999' lw 1 dt 3"),
    ("hex encode", "hex_encode", "varnik", "lc rgb '#1b6ca8' lw 2"),
    ("base64 encode", "base64_encode", "varnik", "lc rgb '#c0392b' lw 2"),
    ("base64 encode, OpenSSL", "base64_encode", "openssl", "lc rgb '#c0392b' lw 1 dt 2"),
    ("base64 decode", "base64_decode", "varnik", "lc rgb '#2e8b57' lw 2"),
    ("base64 decode, OpenSSL", "base64_decode", "openssl", "lc rgb '#2e8b57' lw 1 dt 2"),
    ("UTF-16 to UTF-8, many scripts", "utf16le_to_utf8:mixed", "varnik", "lc rgb '#8e44ad' lw 2"),
    ("UTF-16 to UTF-8, ICU", "utf16le_to_utf8:mixed", "u_strToUTF8", "lc rgb '#8e44ad' lw 1 dt 2"),
    ("find, first byte frequent", "find_frequent", "varnik", "lc rgb '#d68910' lw 2"),
    ("find, memmem", "find_frequent", "memmem", "lc rgb '#d68910' lw 1 dt 2"),
]
SIZES = [("64 bytes", 40, 160), ("4 KiB", 2**11, 2**14), ("1 MiB", 2**19, 2**22)]  # title, from, below
PLOT = pathlib.Path("docs/pictures/throughput.svg")
README = pathlib.Path("README.md")


def read(paths):
    """{(operation, peer): {bytes: GB/s}}, medians."""
    rates = {}
    for path in paths:
        for run in json.loads(pathlib.Path(path).read_text(encoding="utf-8"))["benchmarks"]:
            if run.get("run_type") == "iteration" and "bytes_per_second" in run:
                operation, size, peer = run["run_name"].split("/", 2)
                rates.setdefault((operation, peer), {}).setdefault(int(size), []).append(run["bytes_per_second"] / 1e9)
    return {key: {n: statistics.median(r) for n, r in sizes.items()} for key, sizes in rates.items()}


def cell(ours, theirs, low, high):
    size = next((n for n in ours if low <= n < high and n in theirs), None)
    if size is None:
        return ""
    digits = 1 if ours[size] >= 1 else 2
    return f"{ours[size]:.{digits}f} GB/s, {ours[size] / theirs[size]:.1f} x"


def table(rates):
    lines = ["| | " + " | ".join(title for title, _, _ in SIZES) + " | beside |", "|---|" + "---:|" * len(SIZES) + "---|"]
    for title, operation, peer, peer_title in ROWS:
        ours, theirs = rates[operation, "varnik"], rates[operation, peer]
        cells = [cell(ours, theirs, low, high) for _, low, high in SIZES]
        lines.append(f"| {title} | {' | '.join(cells)} | {peer_title} |")
    return "\n".join(lines)


def plot(rates):
    script = [
        "set terminal svg size 800,520 font 'sans-serif,13' background rgb 'white'",
        f"set output '{PLOT}'",
        "set logscale x 2; set logscale y",
        "set xtics ('64' 64, '1 Ki' 1024, '4 Ki' 4096, '64 Ki' 65536, '1 Mi' 1048576)",
        "set xlabel 'bytes'; set ylabel 'GB/s'; set key below horizontal maxcols 3 Left reverse; set yrange [0.3:200]; set grid lc rgb '#dddddd'",
    ]
    drawn = []
    for i, (title, operation, peer, style) in enumerate(LINES):
        points = "\n".join(f"{n} {rate}" for n, rate in sorted(rates[operation, peer].items()))
        script.append(f"$d{i} << EOD\n{points}\nEOD")
        drawn.append(f"$d{i} with linespoints {style} pt 7 ps 0.4 title '{title}'")
    script.append("plot " + ", ".join(drawn))
    subprocess.run(["gnuplot"], input="\n".join(script), text=True, check=True)


def main():
    rates = read(sys.argv[1:])
    text = README.read_text(encoding="utf-8")
    begin, end = "<!-- scripts/bench --documents -->\n", "\n<!-- end -->"
    text, count = re.subn(f"(?<={re.escape(begin)}).*?(?={re.escape(end)})", lambda _: table(rates), text, flags=re.S)
    if count != 1:
        sys.exit("README.md has no place for the table")
    README.write_text(text, encoding="utf-8")
    plot(rates)


main()
