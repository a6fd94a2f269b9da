# What scripts/faults does: TOOL KILLS.
import os, random, re, subprocess, sys, tempfile, time

tool, kills = os.path.abspath(sys.argv[1]), int(sys.argv[2])
CALLS = "openat newfstatat read write lseek fchmod fchown fsync close rename renameat renameat2 unlink unlinkat getrandom faccessat2".split()
ERRORS = "EIO ENOSPC EINTR EACCES EMFILE EDQUOT".split()
text = b"new text, \xc3\xa4\xc3\xb6\xc3\xbc\n" * 20000
new = text.decode().encode("utf-16le")
folder = tempfile.mkdtemp(prefix="varnik-faults-")
os.chdir(folder)
command = [tool, "convert", "--from", "utf-8", "--to", "utf-16le", "--in-place", "target"]
wrong = 0


def prepare(content):
    for name in os.listdir("."):
        os.remove(name)
    with open("target", "wb") as f:
        f.write(content)
    os.chmod("target", 0o640)


def say(what, why):
    global wrong
    wrong += 1
    print(f"{what}: {why}")


def check(what, status, before, dies=False, temporary_may_stay=False):
    content = open("target", "rb").read()
    if content not in (before, new):
        return say(what, f"the file is neither the old nor the new one: {len(content)} bytes")
    if os.stat("target").st_mode & 0o777 != 0o640:
        say(what, "the mode is another")
    if not dies and status not in (0, 1, 2, 126, 127):
        say(what, f"status {status}")
    if status == 0 and content != new:
        say(what, "status 0, but the file is the old one")
    if not dies and not temporary_may_stay and os.listdir(".") != ["target"]:
        say(what, f"left behind: {os.listdir('.')}")


def traced(*options):
    prepare(text)
    return subprocess.run(["strace", "-f", "-qq", "-o", "/dev/null", *options, *command], capture_output=True, timeout=60).returncode


def counts():
    prepare(text)
    subprocess.run(["strace", "-f", "-qq", "-o", "../" + os.path.basename(folder) + ".trace", *command], check=True, capture_output=True)
    trace = open(folder + ".trace").read()
    os.remove(folder + ".trace")
    names = re.findall(r"^\d+ +(\w+)\(", trace, re.M)
    return {call: names.count(call) for call in CALLS if call in names}, len(names)


made, total = counts()
struck = 0
for call, times in made.items():
    for k in range(1, times + 1):
        for error in ERRORS:
            for more in ("",) if error == "EINTR" else ("", "+"):  # interrupted for good, it tries for good
                status = traced("-e", f"trace={call}", "-e", f"inject={call}:error={error}:when={k}{more}")
                check(f"{call} {k}{more} {error}", status, text, temporary_may_stay=call.startswith("unlink"))
                struck += 1
print(f"{struck} errors injected into {', '.join(made)}")

for k in range(2, total + 1):  # the first is execve
    check(f"killed before call {k}", traced("-e", f"inject=all:signal=SIGKILL:when={k}"), text, dies=True)
print(f"killed before each of {total} system calls")

finished = 0
prepare(text)
begin = time.monotonic()
subprocess.run(command, capture_output=True)
longest = 1.5 * (time.monotonic() - begin)
for k in range(kills):
    prepare(text)
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    time.sleep(random.random() * longest)
    process.kill()
    finished += process.wait() == 0
    check(f"random kill {k}", process.returncode, text, dies=True)
print(f"{kills} kills at random within {longest * 1000:.1f} ms; {finished} came too late")
print(f"{wrong} wrong")
os.chdir("/")
subprocess.run(["rm", "-rf", folder])
sys.exit(wrong != 0)
