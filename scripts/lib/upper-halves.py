"""upper-halves.py: reads `objdump -d --no-show-raw-insn` of x86-64 code and names each function in which a path leads from a write
to a 256- or 512-bit register to a return, a call or a jump out of the function with no vzeroupper between.

Status 1 when there is one, and when so few functions use such registers that something else must have been read.
"""
import re
import sys

LEAST = 40
WRITES_WIDE = re.compile(r"%[yz]mm\d+(\{[^}]*\})*$")  # the last operand is the one that is written


def functions(lines):
    name, code = "", []
    for line in lines:
        if found := re.match(r"[0-9a-f]+ <(.*)>:$", line):
            yield name, code
            name, code = found[1], []
        elif found := re.match(r" +([0-9a-f]+):\t(?:(?:bnd|notrack|rep|repz) )?(.*)", line):
            code.append((int(found[1], 16), found[2].split("#")[0].strip()))
    yield name, code


def unclean_exits(code):
    """Follows each path from the entry, and again where it comes with the halves set to what was reached only without."""
    index = {address: i for i, (address, _) in enumerate(code)}
    reached, open_ends, exits = {0: False}, [0], set()
    while open_ends:
        at = open_ends.pop()
        text, is_set = code[at][1], reached[at]
        operation = text.split(" ")[0]
        if operation.startswith("vzero"):
            is_set = False
        elif WRITES_WIDE.search(text):
            is_set = True
        target = re.search(r" ([0-9a-f]+) <", text) if operation.startswith("j") else None
        inner = index.get(int(target[1], 16)) if target else None
        leaves = operation in ("ret", "call") or (operation.startswith("j") and inner is None)
        if leaves and is_set:
            exits.add(text)
        following = [] if operation in ("ret", "jmp", "ud2") else [at + 1]
        for then in following + ([inner] if inner is not None else []):
            if then < len(code) and (then not in reached or is_set > reached[then]):
                reached[then] = is_set
                open_ends.append(then)
    return exits


wide = unclean = 0
for name, code in functions(sys.stdin):
    if any(WRITES_WIDE.search(text) for _, text in code):
        wide += 1
        if exits := unclean_exits(code):
            unclean += 1
            print(name, *(f"    {text}" for text in sorted(exits)), sep="\n")
print(f"{wide} functions use wide registers, {unclean} leave their upper halves set")
sys.exit(unclean > 0 or wide < LEAST)
