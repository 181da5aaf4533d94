#!/usr/bin/env python3
"""Runs zentrelLibTest end to end against the simulated switch library.

A case file holds one or more cases. Each starts with a line "=== <name>";
header lines follow, then sections that begin with "--- <section>":

    === temperature of the first switch
    args: -i 0 -temp            words after the program name (shell quoting)
    status: 0                   expected exit status (default 0)
    signal: QUIT when "text"    send SIGINT/SIGQUIT once stdout ends with text
                                and every thread waits (reads, locks, joins),
    signal: INT while sleeping  or once the program sleeps (a simulated latency),
                                whatever it has written out by then
    timeout: 20                 seconds (default 10, times the launcher factor)
    emulated: skip, REASON      not run under an emulator (--launcher), for
                                the reason given
With ZENTREL_E2E_DEFERRED_SIGNALS set (the ThreadSanitizer run), cases that
send a signal "when" a text appears are skipped: the sanitizer defers a
handler until the C library returns to the program.
    input: fw.bin=fw_valid.bin  copy sample images (--samples) into the working
                                directory first, under the names given
    same: usd_ul.bin usd_dl.bin two files the run leaves, equal byte for byte
    fifo: NAME ...              named pipes (no writer) in the working directory
    zeros: NAME=SIZE ...        files of SIZE zero bytes, made sparse (so a
                                file of gigabytes costs nothing)
    then: -i 0 -ver             run again in the same directory, with a state
                                file shared by both runs (ZENTREL_SIM_STATE);
                                its stdout follows the first run's, and
                                "status" is its exit status
    stdin: closed               standard input closed, or "directory" (reads fail);
                                without it, the stdin section through a pipe
    state: NAME                 ZENTREL_SIM_STATE names NAME in a directory that
                                the cases of one file share, in order (so a run
                                sees what the runs before it left)
    replay: NAME                the simulator answers from the recording
                                recordings/NAME (ZENTREL_SIM_REPLAY) instead
                                of its model; no trace is written
    cwd: unwritable             no file can be created in the working directory
                                (it is removed once the program runs in it,
                                which stops root as well as anyone else)
    calls: start-up only        (with rows) no call but the start-up calls
    --- stdin                   standard input, byte for byte (same escapes)
    --- state                   written to the state file before the run
    --- state after             expected content of the state file after the run
    --- then stdin              standard input of the "then" run
    --- scenario                JSON handed to the simulator
    --- stdout                  expected standard output, exactly
    --- stderr                  expected standard error (default: empty)
    --- calls                   expected library trace, every line
    --- calls after start-up    the same after the start-up calls: the trace's
                                leading ZentrelInitialize, ZentrelDiscoverDevices,
                                ZentrelGetDeviceCount and ZentrelGetDeviceInfo
                                calls (each successful) and its last line
                                "ZentrelExit() = 0x0" are left out; the cases of
                                startup, dispatch and discovery check them whole
    --- calls unordered         the same, compared as a multiset of lines: for
                                threads that call at once (each line names its
                                device, so it is a multiset per device handle)
    --- calls per device A..B   the series of calls that each device from handle
                                A to handle B (hex) makes, in order, written for
                                a device DEVICE ("device=DEVICE"); the trace's
                                lines naming a device hold exactly these series,
                                each in its order, interleaved in any way
    --- rows                    one run a line, "WORDS | FIRST LINE" or
                                "WORDS | FIRST LINE | STATUS": the words after
                                the program name, and the first line of standard
                                output after the banner (escapes as below; the
                                line's newline is implied unless it ends in \\c);
                                the case's other headers and sections apply to
                                every row; STATUS defaults to the "status" header
    --- file NAME               expected content of a file the run writes
    --- hexfile NAME            the same for a binary file: its bytes in hex,
                                any number a line, blanks between them
    --- input NAME              a file put in the working directory first
                                (NAME may name a directory: dir/file)

Expected texts are written line by line; each line stands for its text and a
newline. Escapes: \\t tab, \\r carriage return, \\n newline, \\_ a blank (required for
trailing blanks, which editors strip), \\\\ backslash, \\@ and \\- for a
leading @ or -, \\e for nothing (a last line "\\e" is an empty line, as empty
lines at the end of a section are dropped), \\xHH for the byte HH (binary
files), and \\c at the end of a line for "no newline here". A line
"@name" inserts fragments/name.txt. A line "..." in stdout, stderr, calls,
file and state sections stands for any text, none included: the parts
between such lines must appear in this order, each beginning a line ("\\e..."
is the text "..."). In calls sections, "{A..B}" in a line repeats the line for
every number from A to B, and "{A..B,C,D..E}" for every number listed
("port={0..15,17..143}"); several in one line repeat it for each combination,
the first varying slowest. A file NAME with "*" in it is a pattern
for a name that changes from run to run ("coredump_*.txt"): exactly one file
must match it. Several sections may share one pattern if each ends in
" #N" ("file coredump_*.txt #2"): then exactly as many files match, each
holding the content of a section of its own (threads writing at once). Every file that a run leaves in its
working directory must be listed with a "file" section, an input (which the
run must leave as it was, unless it has a "file" section) or "same". In stderr, the
scenario file's path reads SCENARIO, and the shared state directory STATEDIR.
"""
import argparse
import os
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
FRAGMENTS = os.path.join(HERE, "fragments")


class CaseError(Exception):
    pass


# System calls a sleeping program waits in (x86-64 numbers: under the ARM
# emulator it is the emulator, a host process, that sleeps).
SLEEP_CALLS = {"35", "230"}  # nanosleep, clock_nanosleep


def thread_files(pid, name):
    """The content of /proc/PID/task/*/NAME for each thread still there."""
    try:
        tasks = os.listdir(f"/proc/{pid}/task")
    except OSError:
        return
    for task in tasks:
        try:
            with open(f"/proc/{pid}/task/{task}/{name}") as f:
                yield f.read()
        except OSError:
            pass


def is_sleeping(pid, emulated):
    """True when any thread of the process sleeps (the parallel test's
    threads sleep while the main thread waits to join them). Under the
    emulator only the main thread counts: the emulator's own threads sleep
    from the start, before the program has set up anything."""
    if emulated:
        try:
            with open(f"/proc/{pid}/syscall") as f:
                return f.read().split(" ", 1)[0] in SLEEP_CALLS
        except OSError:
            return False
    return any(text.split(" ", 1)[0] in SLEEP_CALLS for text in thread_files(pid, "syscall"))


def is_blocked(pid):
    """True when every thread of the process waits (at a read, a lock, a
    join): what it was going to do after its last output is done."""
    # The state follows the command name, which may hold blanks and ")".
    return all(text.rsplit(")", 1)[-1].split()[:1] in (["S"], ["D"]) for text in thread_files(pid, "stat"))


def unescape_line(line, where):
    if line != line.rstrip(" \t"):
        raise CaseError(f"{where}: trailing blank; write it as \\_")
    out = []
    i = 0
    newline = True
    while i < len(line):
        c = line[i]
        if c != "\\":
            out.append(c)
            i += 1
            continue
        if i + 1 >= len(line):
            raise CaseError(f"{where}: lone backslash at the end of a line")
        e = line[i + 1]
        if e == "c":
            if i + 2 != len(line):
                raise CaseError(f"{where}: \\c must end its line")
            newline = False
        elif e == "e":
            pass
        elif e == "x":
            digits = line[i + 2:i + 4]
            if not re.fullmatch(r"[0-9a-fA-F]{2}", digits):
                raise CaseError(f"{where}: \\x needs two hex digits")
            # Bytes above 0x7f stand for themselves, as undecodable bytes do.
            value = int(digits, 16)
            out.append(chr(value) if value < 0x80 else chr(0xDC00 + value))
            i += 4
            continue
        elif e in "t_rn\\@-":
            out.append({"t": "\t", "_": " ", "r": "\r", "n": "\n", "\\": "\\", "@": "@", "-": "-"}[e])
        else:
            raise CaseError(f"{where}: unknown escape \\{e}")
        i += 2
    return "".join(out) + ("\n" if newline else "")


def expand(lines, where, depth=0):
    text = []
    for n, line in enumerate(lines, 1):
        if re.fullmatch(r"@[A-Za-z0-9_-]+", line):
            if depth > 4:
                raise CaseError(f"{where}: fragments nest too deep")
            path = os.path.join(FRAGMENTS, line[1:] + ".txt")
            try:
                with open(path, encoding="utf-8") as f:
                    frag = f.read().split("\n")
            except OSError:
                raise CaseError(f"{where}:{n}: no fragment {line}")
            if frag and frag[-1] == "":
                frag.pop()
            text.append(expand(frag, path, depth + 1))
        else:
            text.append(unescape_line(line, f"{where}:{n}"))
    return "".join(text)


# A line "..." of an expected text: any text, none included.
GAP = "..."
RANGE = re.compile(r"\{(\d+(?:\.\.\d+)?(?:,\d+(?:\.\.\d+)?)*)\}")
# The calls a run begins with before its command: the library session and
# the selection of a switch (one-shot) or the discovery (menu).
STARTUP_CALLS = ("ZentrelInitialize(", "ZentrelDiscoverDevices(", "ZentrelGetDeviceCount(", "ZentrelGetDeviceInfo(")
EXIT_CALL = "ZentrelExit() = 0x0\n"
DEVICE_IN_CALL = re.compile(r"\bdevice=(0x[0-9a-f]+)[,)]")
KNOWN_HEADERS = {"args", "status", "signal", "timeout", "input", "same", "then", "stdin", "state", "cwd", "fifo",
                 "replay", "zeros", "emulated", "calls"}


def expand_ranges(lines):
    """Each line with "{A..B,C}" repeated for every number it lists."""
    out = []
    for line in lines:
        m = RANGE.search(line)
        if not m:
            out.append(line)
            continue
        numbers = []
        for item in m.group(1).split(","):
            low, _, high = item.partition("..")
            numbers.extend(range(int(low), int(high or low) + 1))
        for number in numbers:
            # The rest of the line may hold further ranges; what was put in does not.
            for rest in expand_ranges([line[m.end():]]):
                out.append(line[:m.start()] + str(number) + rest)
    return out


def expand_parts(lines, where):
    """The expected text of a section as the parts between its "..." lines."""
    parts, current = [], []
    for line in lines:
        if line == GAP:
            parts.append(current)
            current = []
        else:
            current.append(line)
    parts.append(current)
    return [expand(part, where) for part in parts]


def at_line_start(text, part, start):
    """Where part first stands in text from start on, beginning a line; -1 if nowhere."""
    if not part:
        return start
    at = start
    while True:
        at = text.find(part, at)
        if at < 0 or at == 0 or text[at - 1] == "\n":
            return at
        at += 1


def compare(parts, actual):
    """None when actual is the parts with any text between them; otherwise where they part."""
    if len(parts) == 1:
        return None if actual == parts[0] else describe(parts[0], actual)
    first, middle, last = parts[0], parts[1:-1], parts[-1]
    if not actual.startswith(first):
        return "before the first '...': " + describe(first, actual[:len(first)])
    at = len(first)
    for number, part in enumerate(middle, 2):
        found = at_line_start(actual, part, at)
        if found < 0:
            return f"part {number} (between '...' lines) is not found after the earlier parts: {part!r}"
        at = found + len(part)
    tail = len(actual) - len(last)
    if not actual.endswith(last) or tail < at or (last and tail > 0 and actual[tail - 1] != "\n"):
        return f"the last part (after the last '...') does not end the text: {last!r}"
    return None


def parse_cases(path):
    with open(path, encoding="utf-8") as f:
        lines = f.read().split("\n")
    if lines and lines[-1] == "":
        lines.pop()
    cases = []
    case = None
    section = None
    for n, line in enumerate(lines, 1):
        where = f"{os.path.basename(path)}:{n}"
        if line.startswith("=== "):
            case = {"name": line[4:].strip(), "headers": {}, "sections": {}, "starts": {}, "line": n}
            cases.append(case)
            section = None
            continue
        if case is None:
            if line.strip() and not line.startswith("#"):
                raise CaseError(f"{where}: text before the first case")
            continue
        if line.startswith("--- "):
            section = line[4:].strip()
            if section in case["sections"]:
                raise CaseError(f"{where}: section {section} given twice")
            case["sections"][section] = []
            case["starts"][section] = n + 1
            continue
        if section is None:
            if not line.strip() or line.startswith("#"):
                continue
            key, sep, value = line.partition(":")
            if not sep:
                raise CaseError(f"{where}: expected 'key: value'")
            case["headers"][key.strip()] = value.strip()
        else:
            case["sections"][section].append(line)
    for case in cases:
        for section, body in case["sections"].items():
            # Blank lines before the next case or section belong to nothing.
            while body and body[-1] == "":
                body.pop()
        extra = set(case["headers"]) - KNOWN_HEADERS
        if extra:
            raise CaseError(f"{path}: case '{case['name']}': unknown header {sorted(extra)}")
        if case["headers"].get("calls", "start-up only") != "start-up only":
            raise CaseError(f"{path}: case '{case['name']}': calls: start-up only is the only choice")
    return cases


def parse_rows(case, path):
    """The rows of a table case: (line number, words, first line, status)."""
    rows = []
    status = case["headers"].get("status", "0")
    for n, line in enumerate(case["sections"]["rows"], case["starts"]["rows"]):
        if not line.strip() or line.startswith("#"):
            continue
        words, sep, rest = line.partition("|")
        if not sep or not rest.startswith(" "):
            raise CaseError(f"{os.path.basename(path)}:{n}: a row is 'WORDS | FIRST LINE [| STATUS]'")
        text, row_status = rest[1:], status
        m = re.fullmatch(r"(.*) \| (\d+)", text)
        if m:
            text, row_status = m.group(1), m.group(2)
        rows.append((n, words.strip(), text, row_status))
    return rows


def describe(expected, actual):
    """A short, readable account of where two outputs part."""
    exp_lines = expected.splitlines(keepends=True)
    act_lines = actual.splitlines(keepends=True)
    for i in range(max(len(exp_lines), len(act_lines))):
        e = exp_lines[i] if i < len(exp_lines) else "<end>"
        a = act_lines[i] if i < len(act_lines) else "<end>"
        if e != a:
            return f"first difference at line {i + 1}:\n  expected {e!r}\n  actual   {a!r}"
    return "outputs differ"


def prepare_files(h, s, args, cwd, where):
    """Puts the case's input files into the working directory: the names
    the run may find there, and the texts written by input sections."""
    inputs = set()
    for pair in h.get("input", "").split():
        name, sep, sample = pair.partition("=")
        if not sep:
            raise CaseError(f"{where}: input: NAME=SAMPLE")
        shutil.copyfile(os.path.join(args.samples, sample), os.path.join(cwd, name))
        inputs.add(name)
    for name in h.get("fifo", "").split():
        os.mkfifo(os.path.join(cwd, name))
        inputs.add(name)
    for pair in h.get("zeros", "").split():
        name, sep, size = pair.partition("=")
        if not sep or not size.isdigit():
            raise CaseError(f"{where}: zeros: NAME=SIZE")
        with open(os.path.join(cwd, name), "wb") as f:
            f.truncate(int(size))
        inputs.add(name)
    written = {}
    for section, body in s.items():
        if section.startswith("input "):
            name = section[6:].strip()
            path = os.path.join(cwd, name)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            written[name] = expand(body, f"{where} input {name}").encode("utf-8", errors="surrogateescape")
            with open(path, "wb") as f:
                f.write(written[name])
            inputs.add(name.split("/")[0])
    return inputs, written


def run_case(case, args, where, state_dir, row=None):
    """Runs a case (or one row of a table case) and returns its failures."""
    h = dict(case["headers"])
    s = case["sections"]
    if row is not None:
        h["args"], h["status"] = row[1], row[3]
    work = tempfile.mkdtemp(prefix="zentrel-e2e-")
    cwd = os.path.join(work, "cwd")
    os.mkdir(cwd)
    trace = os.path.join(work, "trace.txt")
    env = dict(os.environ)
    env.pop("ZENTREL_SIM_SCENARIO", None)
    env.pop("ZENTREL_SIM_STATE", None)
    env["ZENTREL_SIM_TRACE"] = trace
    state = None
    if "state" in h:
        state = os.path.join(state_dir, h["state"])
        env["ZENTREL_SIM_STATE"] = state
        if "state" in s:
            with open(state, "w", encoding="utf-8") as f:
                f.write("\n".join(s["state"]) + "\n")
    elif "state" in s or "state after" in s:
        raise CaseError(f"{where}: a state section needs a state: header")
    if "scenario" in s:
        scenario = os.path.join(work, "scenario.json")
        with open(scenario, "w", encoding="utf-8") as f:
            f.write("\n".join(s["scenario"]) + "\n")
        env["ZENTREL_SIM_SCENARIO"] = scenario
    if "replay" in h:
        env["ZENTREL_SIM_REPLAY"] = os.path.join(HERE, "recordings", h["replay"])
    if args.library_path:
        env["LD_LIBRARY_PATH"] = args.library_path
    inputs, written = prepare_files(h, s, args, cwd, where)
    if "then" in h and state is None:
        env["ZENTREL_SIM_STATE"] = os.path.join(work, "state.json")
    stdin = expand(s["stdin"], where + " stdin").encode("utf-8", errors="surrogateescape") if "stdin" in s else b""
    out = bytearray()
    err = bytearray()
    status = run_once(h, args, h.get("args", ""), cwd, env, stdin, out, err, where)
    if "then" in h:
        then_stdin = expand(s["then stdin"], where + " then stdin").encode() if "then stdin" in s else b""
        status = run_once({}, args, h["then"], cwd, env, then_stdin, out, err, where)
    run = {"cwd": cwd, "trace": trace, "env": env, "status": status, "out": out, "err": err, "inputs": inputs,
           "written": written, "state_dir": state_dir, "state": state, "row": row}
    return check(case, h, run, args)


def valgrind_suppressions(lsan_path, out_path):
    """Writes Memcheck suppressions for the leaks a LeakSanitizer file lists
    ("leak:Func" stands for any stack with Func in it), so that one list
    serves both checkers."""
    entries = []
    with open(lsan_path, encoding="utf-8") as f:
        for line in f:
            line = line.strip()
            if line.startswith("leak:"):
                name = line[5:]
                entries.append(f"{{\n   {name}\n   Memcheck:Leak\n   ...\n   fun:*{name}*\n   ...\n}}\n")
    with open(out_path, "w", encoding="utf-8") as f:
        f.write("".join(entries))


def command_line(h, args, words, cwd, where):
    """The program's argv: under the launcher or valgrind, in a working
    directory that is removed first for "cwd: unwritable"."""
    argv = shlex.split(args.launcher) + [args.binary] + shlex.split(words)
    if args.valgrind:
        # Its findings go to a log beside the working directory; any line
        # there fails the case (see check).
        # No C library clean-up at exit: it would flush standard output
        # once more after a signal handler wrote it out and ended the
        # process (with _exit, which never flushes otherwise).
        argv = [args.valgrind_path, "-q", "--error-exitcode=99", "--leak-check=full", "--run-libc-freeres=no",
                "--errors-for-leak-kinds=definite,indirect", "--show-leak-kinds=definite,indirect",
                "--suppressions=" + args.valgrind_supp,
                "--log-file=" + os.path.join(os.path.dirname(cwd), "valgrind.%p.log")] + argv
    if h.get("cwd", "") == "unwritable":
        argv = ["sh", "-c", 'rmdir "$1" && shift && exec "$@"', "sh", cwd] + argv
    elif "cwd" in h:
        raise CaseError(f"{where}: cwd: unwritable is the only choice")
    return argv


def start(h, argv, cwd, env, where):
    """Starts the program with the standard input the case asks for."""
    stdin_kind = h.get("stdin", "pipe")
    if stdin_kind not in ("pipe", "closed", "directory"):
        raise CaseError(f"{where}: stdin: closed or directory")
    child_stdin = subprocess.PIPE
    close_stdin = stdin_kind == "closed"

    def preexec():
        # A case that ends by a signal leaves no core file behind.
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        if close_stdin:
            os.close(0)

    directory_fd = None
    if close_stdin:
        child_stdin = None
    elif stdin_kind == "directory":
        directory_fd = os.open(cwd, os.O_RDONLY)
        child_stdin = directory_fd
    try:
        return subprocess.Popen(argv, cwd=cwd, env=env, stdin=child_stdin, preexec_fn=preexec,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    except OSError as e:
        raise CaseError(f"{where}: cannot start {argv[0]}: {e}")
    finally:
        if directory_fd is not None:
            os.close(directory_fd)


def send_signal(h, proc, out, args, deadline, where):
    """Sends the case's signal once the program has reached the point the
    "signal" header names."""
    m = re.fullmatch(r'(INT|QUIT) (?:when "(.*)"|while sleeping)', h["signal"])
    if not m:
        raise CaseError(f"{where}: signal: INT|QUIT when \"text\", or INT|QUIT while sleeping")
    if m.group(2) is None:
        reached = lambda: is_sleeping(proc.pid, bool(args.launcher))
        what = "the program never slept"
    else:
        wanted = unescape_line(m.group(2) + "\\c", where).encode()
        reached = lambda: bytes(out).endswith(wanted)
        what = "the output never ended with the signal's text"
    while not reached() and proc.poll() is None and time.monotonic() < deadline:
        time.sleep(0.01)
    if not reached():
        if proc.poll() is None:
            proc.kill()
            proc.wait()
        raise CaseError(f"{where}: {what}; output:\n" + bytes(out).decode(errors="replace"))
    # Other threads may still be on their way to where they wait (a
    # second thread of the parallel test claiming its switch): the
    # signal goes once all of them wait, or at the deadline.
    while m.group(2) is not None and not is_blocked(proc.pid) and proc.poll() is None \
            and time.monotonic() < deadline:
        time.sleep(0.01)
    if proc.poll() is None:
        proc.send_signal(signal.SIGINT if m.group(1) == "INT" else signal.SIGQUIT)
        # Standard input stays open until the signal has been handled:
        # a handler run late (ThreadSanitizer runs them at its next
        # chance) must not find the prompt already answered by its end.
        try:
            proc.wait(max(0.1, min(5.0, deadline - time.monotonic())))
        except subprocess.TimeoutExpired:
            pass


def run_once(h, args, words, cwd, env, stdin, out, err, where):
    """Runs the program once, collecting its output; its exit status."""
    proc = start(h, command_line(h, args, words, cwd, where), cwd, env, where)

    def pump(stream, sink):
        while True:
            chunk = os.read(stream.fileno(), 65536)
            if not chunk:
                return
            sink.extend(chunk)

    readers = [threading.Thread(target=pump, args=(proc.stdout, out), daemon=True),
               threading.Thread(target=pump, args=(proc.stderr, err), daemon=True)]
    for r in readers:
        r.start()
    if proc.stdin is not None:
        try:
            proc.stdin.write(stdin)
            proc.stdin.flush()
        except BrokenPipeError:
            pass
    timeout = float(h.get("timeout", "10")) * args.slow
    deadline = time.monotonic() + timeout
    if "signal" in h:
        send_signal(h, proc, out, args, deadline, where)
    if proc.stdin is not None:
        try:
            proc.stdin.close()
        except BrokenPipeError:
            pass
    try:
        proc.wait(max(0.1, deadline - time.monotonic()))
    except subprocess.TimeoutExpired:
        proc.kill()
        proc.wait()
        for r in readers:
            r.join(5)
        raise CaseError(f"{where}: timed out after {timeout:g}s; output so far:\n{bytes(out).decode(errors='replace')}")
    for r in readers:
        r.join(5)
    return proc.returncode


def after_startup(actual, expect_exit):
    """The trace without its start-up calls and its closing ZentrelExit;
    None and a reason when it does not begin or end so."""
    lines = actual.splitlines(keepends=True)
    if not lines or not lines[0].startswith("ZentrelInitialize("):
        return None, "the trace does not begin with ZentrelInitialize"
    first = 0
    while first < len(lines) and lines[first].startswith(STARTUP_CALLS) and lines[first].endswith(") = 0x0\n"):
        first += 1
    if lines[-1] == EXIT_CALL and len(lines) > first:
        lines.pop()
    elif expect_exit:
        return None, "the trace does not end with " + EXIT_CALL.strip()
    return "".join(lines[first:]), None


def check_per_device(section, body, actual, where):
    """The failures of a "calls per device A..B" section."""
    m = re.fullmatch(r"calls per device (0x[0-9a-fA-F]+)\.\.(0x[0-9a-fA-F]+)", section)
    if not m:
        raise CaseError(f"{where}: calls per device FIRST..LAST (handles in hex)")
    series = expand(expand_ranges(body), f"{where} {section}").splitlines(keepends=True)
    by_device = {}
    for line in actual.splitlines(keepends=True):
        named = DEVICE_IN_CALL.search(line)
        if named:
            by_device.setdefault(int(named.group(1), 16), []).append(line)
    failures = []
    for device in range(int(m.group(1), 16), int(m.group(2), 16) + 1):
        expected = "".join(line.replace("DEVICE", f"{device:#x}") for line in series)
        got = "".join(by_device.pop(device, []))
        if got != expected:
            failures.append(f"calls of device {device:#x}: " + describe(expected, got))
    for device in sorted(by_device):
        failures.append(f"calls of device {device:#x}, which the section does not name")
    return failures


def check_calls(case, h, run, where):
    """The failures of the case's calls sections against the trace."""
    s = case["sections"]
    try:
        with open(run["trace"], encoding="utf-8") as f:
            actual = f.read()
    except OSError:
        actual = ""
    failures = []
    if h.get("calls") == "start-up only":
        rest, problem = after_startup(actual, run["status"] == 0)
        if problem or rest:
            failures.append("calls: " + (problem or "calls after the start-up calls:\n" + rest))
    for section, body in s.items():
        if not section.startswith("calls"):
            continue
        if section.startswith("calls per device"):
            failures += check_per_device(section, body, actual, where)
            continue
        if section not in ("calls", "calls unordered", "calls after start-up"):
            raise CaseError(f"{where}: unknown section {section}")
        lines = expand_ranges(body)
        if section == "calls unordered":
            expected = "".join(sorted(expand(lines, f"{where} {section}").splitlines(keepends=True)))
            got = "".join(sorted(actual.splitlines(keepends=True)))
            if got != expected:
                failures.append(f"{section} (sorted): " + describe(expected, got))
            continue
        got = actual
        if section == "calls after start-up":
            got, problem = after_startup(actual, int(h.get("status", "0")) == 0)
            if problem:
                failures.append(f"{section}: {problem}")
                continue
        problem = compare(expand_parts(lines, f"{where} {section}"), got)
        if problem:
            failures.append(f"{section}: {problem}")
    return failures


def file_sections(s):
    """The file and hexfile sections: by name, and those sharing a pattern."""
    files, shared = {}, {}
    for section, body in s.items():
        kind, _, name = section.partition(" ")
        if kind in ("file", "hexfile"):
            m = re.fullmatch(r"(.*\*.*) #\d+", name.strip())
            if m:
                shared.setdefault(m.group(1), []).append((kind, body, section))
            else:
                files[name.strip()] = (kind, body)
    return files, shared


def wanted_bytes(kind, body, where):
    if kind == "hexfile":
        try:
            return bytes.fromhex(" ".join(body))
        except ValueError:
            raise CaseError(f"{where}: not hex bytes")
    return expand(body, where).encode("utf-8", errors="surrogateescape")


def name_pattern(name):
    return re.compile(".*".join(re.escape(part) for part in name.split("*")))


def check_files(case, run, where):
    """The failures of the files a run left: those the case expects, and
    no other file but its inputs."""
    s = case["sections"]
    cwd = run["cwd"]
    failures = []
    files, shared = file_sections(s)
    present = sorted(os.listdir(cwd)) if os.path.isdir(cwd) else []
    matched = set()
    for name, sections in shared.items():
        found = [p for p in present if name_pattern(name).fullmatch(p)]
        matched.update(found)
        if len(found) != len(sections):
            failures.append(f"file {name}: {len(found)} files match, expected {len(sections)}: {found}")
            continue
        contents = {}
        for p in found:
            with open(os.path.join(cwd, p), "rb") as f:
                contents[p] = f.read()
        for kind, body, section in sections:
            wanted = wanted_bytes(kind, body, f"{where} {section}")
            same = [p for p, data in contents.items() if data == wanted]
            if not same:
                failures.append(f"{section}: no file of {sorted(contents)} holds its content")
                continue
            del contents[same[0]]
    for name, (kind, body) in files.items():
        path_name = name
        if "*" in name:
            found = [p for p in present if name_pattern(name).fullmatch(p)]
            if len(found) != 1:
                failures.append(f"file {name}: {len(found)} files match, expected one: {found}")
                matched.update(found)
                continue
            path_name = found[0]
        matched.add(path_name)
        path = os.path.join(cwd, path_name)
        if not os.path.exists(path):
            failures.append(f"file {name} was not written")
            continue
        with open(path, "rb") as f:
            data = f.read()
        if kind == "hexfile":
            expected_bytes = wanted_bytes(kind, body, f"{where} hexfile {name}")
            if data != expected_bytes:
                failures.append(f"hexfile {name}: expected {expected_bytes.hex(' ')}, got {data.hex(' ')}")
            continue
        # Compared byte for byte (each byte one character).
        parts = [part.encode("utf-8", errors="surrogateescape").decode("latin-1")
                 for part in expand_parts(body, f"{where} file {name}")]
        problem = compare(parts, data.decode("latin-1"))
        if problem:
            failures.append(f"file {name}: {problem}")
    same = case["headers"].get("same", "").split()
    if same:
        contents = []
        for name in same:
            try:
                with open(os.path.join(cwd, name), "rb") as f:
                    contents.append(f.read())
            except OSError:
                contents.append(None)
                failures.append(f"file {name} was not written")
        if None not in contents and any(c != contents[0] for c in contents):
            failures.append("files differ: " + " ".join(same))
    for name in present:
        if name in run["written"] and name not in matched:
            with open(os.path.join(cwd, name), "rb") as f:
                if f.read() != run["written"][name]:
                    failures.append(f"input file {name} was changed")
            continue
        if name not in matched and name not in run["inputs"] and name not in same:
            failures.append(f"unexpected file {name} in the working directory")
    return failures


def first_line(text):
    """The first line of standard output after the banner, with its newline."""
    banner = expand(["@banner"], "banner")
    if text.startswith(banner):
        text = text[len(banner):]
    end = text.find("\n")
    return text if end < 0 else text[:end + 1]


def check(case, h, run, args):
    s = case["sections"]
    where = case["name"]
    failures = []
    actual_out = bytes(run["out"]).decode("utf-8", errors="replace")
    actual_err = bytes(run["err"]).decode("utf-8", errors="replace")
    if "scenario" in s:
        actual_err = actual_err.replace(run["env"]["ZENTREL_SIM_SCENARIO"], "SCENARIO")
    actual_err = actual_err.replace(run["state_dir"], "STATEDIR")
    # The ARM emulator reports a program that dies by a signal on its own
    # account; the program itself printed nothing.
    actual_err = re.sub(r"(?m)^qemu: uncaught target signal \d+ \([^)]*\)( - core dumped)?\n", "", actual_err)
    status = int(h.get("status", "0"))
    if run["status"] != status:
        failures.append(f"exit status {run['status']}, expected {status}")
    if run["row"] is not None:
        expected = unescape_line(run["row"][2], f"{where}:{run['row'][0]}")
        if first_line(actual_out) != expected:
            failures.append(f"first line: expected {expected!r}, actual {first_line(actual_out)!r}")
    if "stdout" in s:
        problem = compare(expand_parts(s["stdout"], where + " stdout"), actual_out)
        if problem:
            failures.append("stdout: " + problem)
    problem = compare(expand_parts(s.get("stderr", []), where + " stderr"), actual_err)
    if problem:
        failures.append("stderr: " + problem)
    failures += check_calls(case, h, run, where)
    failures += check_files(case, run, where)
    if "state after" in s:
        try:
            with open(run["state"], encoding="utf-8") as f:
                actual = f.read()
        except OSError:
            actual = "<no state file>\n"
        problem = compare(expand_parts(s["state after"], where + " state after"), actual)
        if problem:
            failures.append("state after: " + problem)
    if args.valgrind:
        work = os.path.dirname(run["cwd"])
        for name in sorted(os.listdir(work)):
            if name.startswith("valgrind.") and os.path.getsize(os.path.join(work, name)) > 0:
                with open(os.path.join(work, name), encoding="utf-8", errors="replace") as f:
                    failures.append("valgrind:\n" + f.read())
    if failures and args.verbose:
        failures.append("whole stdout:\n" + actual_out)
    return failures


def main():
    p = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    p.add_argument("--binary", required=True)
    p.add_argument("--launcher", default="", help="command to run the binary with, e.g. an emulator")
    p.add_argument("--library-path", default="", help="LD_LIBRARY_PATH for the run")
    p.add_argument("--slow", type=float, default=1.0, help="factor for every timeout")
    p.add_argument("--samples", default="", help="directory of the simulator's sample images")
    p.add_argument("--verbose", action="store_true")
    p.add_argument("--valgrind", action="store_true",
                   help="run the binary under valgrind memcheck; leaks listed in --leaks are allowed")
    p.add_argument("--leaks", default=os.path.join(os.path.dirname(HERE), "lsan.supp"),
                   help="LeakSanitizer suppression file of the leaks the utility keeps on purpose")
    p.add_argument("--every", type=int, default=1, metavar="N",
                   help="run only every Nth case of each file, from the first (and the cases before it that "
                        "share its state file); for slow runs such as --valgrind")
    p.add_argument("cases", nargs="+")
    args = p.parse_args()
    args.binary = os.path.abspath(args.binary)
    if args.valgrind:
        if args.launcher:
            p.error("--valgrind runs the native binary: no --launcher")
        # Debian's valgrind is a shell script around valgrind.bin: a shell
        # started in a removed directory (cwd: unwritable) complains of it.
        args.valgrind_path = shutil.which("valgrind.bin") or shutil.which("valgrind") or "valgrind"
        args.valgrind_supp = os.path.join(tempfile.mkdtemp(prefix="zentrel-e2e-vg-"), "valgrind.supp")
        valgrind_suppressions(args.leaks, args.valgrind_supp)
    passed = failed = 0
    for path in args.cases:
        try:
            cases = parse_cases(path)
        except CaseError as e:
            print(f"ERROR {e}")
            failed += 1
            continue
        state_dir = tempfile.mkdtemp(prefix="zentrel-e2e-state-")
        picked = set(range(0, len(cases), max(1, args.every)))
        for i in sorted(picked):
            state = cases[i]["headers"].get("state")
            if state is not None:
                picked.update(j for j in range(i) if cases[j]["headers"].get("state") == state)
        for case in (cases[i] for i in sorted(picked)):
            where = f"{os.path.basename(path)}:{case['line']} '{case['name']}'"
            if os.environ.get("ZENTREL_E2E_DEFERRED_SIGNALS") and "when" in case["headers"].get("signal", ""):
                # ThreadSanitizer runs a handler only when the C library
                # returns to the program, not while stdio waits in a read:
                # a signal at a prompt is handled after the prompt's answer.
                print(f"skip {where} (signals are deferred under ThreadSanitizer)")
                continue
            if args.launcher and case["headers"].get("emulated", "").startswith("skip"):
                print(f"skip {where} (under the emulator: {case['headers']['emulated']})")
                continue
            try:
                runs = [(where, None)]
                if "rows" in case["sections"]:
                    runs = [(f"{os.path.basename(path)}:{row[0]} '{case['name']}' {row[1]}", row)
                            for row in parse_rows(case, path)]
            except CaseError as e:
                runs = []
                failed += 1
                print(f"FAIL {where}\n  {e}")
            for run_where, row in runs:
                started = time.monotonic()
                try:
                    failures = run_case(case, args, run_where, state_dir, row)
                except CaseError as e:
                    failures = [str(e)]
                if failures:
                    failed += 1
                    print(f"FAIL {run_where}")
                    for f in failures:
                        print("  " + f.replace("\n", "\n  "))
                else:
                    passed += 1
                    print(f"ok   {run_where} ({time.monotonic() - started:.1f}s)")
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    sys.exit(main())
