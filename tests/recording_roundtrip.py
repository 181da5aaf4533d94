#!/usr/bin/env python3
"""Records runs of the utility through the recording library, with the
simulator standing in for the vendor's library, and replays each recording
with the simulator: the replay prints the same, exits the same and leaves
the same files, byte for byte.

The runs are those of end-to-end case files (their arguments, input,
scenario, state and input files); cases that send signals or need an
unwritable directory are left out. With --refusals it also checks that a
truncated or corrupted recording is refused naming its line, and that a
call the recording does not hold names itself and what was expected.

    recording_roundtrip.py --binary B --sim LIB --recorder DIR --samples DIR [--refusals] CASE...
"""
import argparse
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "e2e"))
from run_cases import expand, parse_cases, parse_rows  # noqa: E402

HEADER = "zentrel-recording 1\n"


def environment(args, **extra):
    env = {k: v for k, v in os.environ.items() if not k.startswith("ZENTREL_") and k != "LD_LIBRARY_PATH"}
    env["ZENTREL_SIM_STATE"] = ""
    # The recording library exports the data object of the library it
    # loads, as it must: under AddressSanitizer that is no fault.
    env["ASAN_OPTIONS"] = ":".join(filter(None, [env.get("ASAN_OPTIONS"), "detect_odr_violation=0"]))
    env.update(extra)
    return env


def snapshot(cwd):
    """Every file under cwd, by relative path, with its bytes."""
    files = {}
    for root, _, names in os.walk(cwd):
        for name in names:
            path = os.path.join(root, name)
            with open(path, "rb") as f:
                files[os.path.relpath(path, cwd)] = f.read()
    return files


def run(args, words, cwd, env, stdin, timeout):
    proc = subprocess.run([args.binary] + shlex.split(words), cwd=cwd, env=env, input=stdin,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=timeout)
    return proc.returncode, proc.stdout, proc.stderr


def prepare(args, case, cwd):
    h, s = case["headers"], case["sections"]
    os.makedirs(cwd)
    for pair in h.get("input", "").split():
        name, _, sample = pair.partition("=")
        shutil.copyfile(os.path.join(args.samples, sample), os.path.join(cwd, name))
    for section, body in s.items():
        if section.startswith("input "):
            path = os.path.join(cwd, section[6:].strip())
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "wb") as f:
                f.write(expand(body, section).encode("utf-8", errors="surrogateescape"))


def roundtrip(args, case, work, state_dir):
    """Records the case's runs and replays them; a list of failures."""
    h, s = case["headers"], case["sections"]
    record_env = environment(args, LD_LIBRARY_PATH=args.recorder, ZENTREL_RECORD_LIB=args.sim)
    if "state" in h:
        state = os.path.join(state_dir, h["state"])
        if "state" in s:
            with open(state, "w", encoding="utf-8") as f:
                f.write("\n".join(s["state"]) + "\n")
        record_env["ZENTREL_SIM_STATE"] = state
    elif "then" in h:
        record_env["ZENTREL_SIM_STATE"] = os.path.join(work, "state.json")
    if "scenario" in s:
        scenario = os.path.join(work, "scenario.json")
        with open(scenario, "w", encoding="utf-8") as f:
            f.write("\n".join(s["scenario"]) + "\n")
        record_env["ZENTREL_SIM_SCENARIO"] = scenario
    timeout = float(h.get("timeout", "10")) * 3
    runs = [(h.get("args", ""), expand(s["stdin"], "stdin") if "stdin" in s else "")]
    if "then" in h:
        runs.append((h["then"], expand(s["then stdin"], "then stdin") if "then stdin" in s else ""))
    if "rows" in s:
        runs = [(words, runs[0][1]) for _, words, _, _ in parse_rows(case, "rows")]
    recorded, replayed = os.path.join(work, "recorded"), os.path.join(work, "replayed")
    prepare(args, case, recorded)
    prepare(args, case, replayed)
    failures = []
    for number, (words, stdin) in enumerate(runs, 1):
        stdin = stdin.encode("utf-8", errors="surrogateescape")
        recording = os.path.join(work, f"run{number}.rec")
        record_env["ZENTREL_RECORD_FILE"] = recording
        first = run(args, words, recorded, record_env, stdin, timeout)
        second = run(args, words, replayed, environment(args, ZENTREL_SIM_REPLAY=recording), stdin, timeout)
        if first[0] != second[0]:
            failures.append(f"run {number}: exit status {second[0]} on replay, {first[0]} recorded")
        # Threads print in the order they happen to run, even within a line;
        # where a case does not fix its output, the bytes are compared in
        # any order.
        if "stdout" not in s:
            first, second = [(r[0], bytes(sorted(r[1])), r[2]) for r in (first, second)]
        if first[1] != second[1]:
            failures.append(f"run {number}: stdout differs on replay:\n" + "".join(
                f"  {line}\n" for line in difference(first[1], second[1])))
        # What the simulator standing in for the vendor's library says of
        # its scenario and state files is not the library's to replay.
        expected_err = re.sub(rb"(?m)^zentrel-sim: (scenario|state) file .*\n", b"", first[2])
        if second[2] != expected_err:
            failures.append(f"run {number}: stderr on replay: {second[2][:400]!r}, recorded: {first[2][:400]!r}")
    # Names that the utility makes up afresh each run (coredump_<random>.txt)
    # are compared with their numbers left out.
    # (coredump_<random>.txt, or named by an address) are compared with
    # that part left out, as a multiset where threads write them at once.
    before, after = (sorted((re.sub(r"_(0x)?[0-9a-f]{6,}", "_#", name), data) for name, data in files.items())
                     for files in (snapshot(recorded), snapshot(replayed)))
    if [name for name, _ in before] != [name for name, _ in after]:
        failures.append(f"files: recorded run left {[n for n, _ in before]}, replay {[n for n, _ in after]}")
    elif before != after:
        failures.append("files differ on replay: " + ", ".join(
            a[0] for a, b in zip(before, after) if a != b))
    return failures


def difference(a, b):
    la, lb = a.decode(errors="replace").splitlines(), b.decode(errors="replace").splitlines()
    for i in range(max(len(la), len(lb))):
        x = la[i] if i < len(la) else "<none>"
        y = lb[i] if i < len(lb) else "<none>"
        if x != y:
            return [f"line {i + 1}: recorded {x!r}", f"line {i + 1}: replayed {y!r}"]
    return ["(line ends)"]


def refusals(args, work):
    """A damaged recording is refused naming its line; a call the recording
    does not hold names itself and what the recording expects."""
    failures = []
    cwd = os.path.join(work, "refusals")
    os.makedirs(cwd)
    recording = os.path.join(work, "temp.rec")
    env = environment(args, LD_LIBRARY_PATH=args.recorder, ZENTREL_RECORD_LIB=args.sim,
                      ZENTREL_RECORD_FILE=recording)
    status, out, _ = run(args, "-i 0 -temp", cwd, env, b"", 10)
    with open(recording, encoding="utf-8") as f:
        text = f.read()
    lines = text.splitlines(keepends=True)
    if not text.startswith(HEADER) or status != 0 or len(lines) < 4:
        return [f"recording of -i 0 -temp: status {status}, {text[:200]!r}"]
    # The temperature call and its line.
    number = next(i for i, line in enumerate(lines, 1) if line.startswith("ZentrelGetTemperature("))

    def replay(content, words="-i 0 -temp"):
        path = os.path.join(work, "damaged.rec")
        with open(path, "w", encoding="utf-8") as f:
            f.write(content)
        return run(args, words, cwd, environment(args, ZENTREL_SIM_REPLAY=path), b"", 10)

    def expect(what, result, pattern):
        if not re.search(pattern, result[2].decode(errors="replace")):
            failures.append(f"{what}: stderr {result[2]!r} does not match {pattern!r}")
        if result[1] == out:
            failures.append(f"{what}: printed what the recorded run printed")

    # Cut inside the last line: no end of line.
    expect("truncated", replay(text[:-9]), rf"^zentrel-sim: recording .*damaged\.rec: line {len(lines)}: truncated")
    # Half a byte missing from the temperature.
    damaged = lines[:]
    damaged[number - 1] = re.sub(r"Temperature=x[0-9a-f]", "Temperature=x", damaged[number - 1])
    expect("odd hex", replay("".join(damaged)), rf"line {number}: bad bytes of Temperature")
    # A byte that is not hex, and a record one byte short.
    damaged = lines[:]
    damaged[number - 1] = damaged[number - 1].replace("Temperature=x", "Temperature=xzz", 1)
    expect("not hex", replay("".join(damaged)), rf"line {number}: bad bytes of Temperature")
    discovery = next(i for i, line in enumerate(lines, 1) if line.startswith("ZentrelGetDeviceInfo("))
    damaged = lines[:]
    damaged[discovery - 1] = damaged[discovery - 1].replace(" Info=x00", " Info=x", 1)
    expect("short record", replay("".join(damaged)), rf"line {discovery}: Info holds 1391 bytes, not 1392")
    damaged = lines[:]
    damaged[number - 1] = damaged[number - 1].replace("ZentrelGetTemperature(", "ZentrelGetTemperatur(", 1)
    expect("unknown function", replay("".join(damaged)), rf"line {number}: unknown function ZentrelGetTemperatur")
    expect("no header", replay("".join(lines[1:])), r"line 1: not a recording")
    # Another switch than the one recorded: the call names its device and
    # the recording's next call of that function.
    expect("other call", replay(text, "-i 1 -temp"),
           r"zentrel-sim: replay: ZentrelGetDeviceInfo\(Index=1 Length=1392 Info=\*\) is not in the recording: "
           r"line \d+ expects ZentrelGetDeviceInfo\(Index=0 Length=1392 Info=\*\) \(Index=1, expected Index=0\)")
    expect("no further call", replay("".join(lines[:number - 1] + lines[number:])),
           r"zentrel-sim: replay: ZentrelGetTemperature\(Device=0x100 Temperature=\*\) is not in the recording: "
           r"it holds no further ZentrelGetTemperature call for device 0x100")
    return failures


def anonymised(args, work):
    """An anonymised recording replays with the wafer lot and position and
    the debug token identity replaced, everything else as recorded."""
    failures = []
    script = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "scripts", "anonymise-recording.py")
    for words, changed in (("-i 0 -GetWaferInfo", ("LotNumber", "WaferNumber", "XCoord", "YCoord")),
                           ("-i 0 -GetDebugTokenParmas", ("CtiLsb", "CtiMsb", "DebugAuthId"))):
        cwd = tempfile.mkdtemp(dir=work)
        recording, anonymous = os.path.join(cwd, "run.rec"), os.path.join(cwd, "anon.rec")
        env = environment(args, LD_LIBRARY_PATH=args.recorder, ZENTREL_RECORD_LIB=args.sim,
                          ZENTREL_RECORD_FILE=recording)
        recorded = run(args, words, cwd, env, b"", 10)
        with open(anonymous, "wb") as f:
            f.write(subprocess.run([sys.executable, script, recording], stdout=subprocess.PIPE, check=True).stdout)
        replayed = run(args, words, cwd, environment(args, ZENTREL_SIM_REPLAY=anonymous), b"", 10)
        before, after = recorded[1].decode().splitlines(), replayed[1].decode().splitlines()
        if replayed[0] != recorded[0] or replayed[2] or len(before) != len(after):
            failures.append(f"{words}: replay of the anonymised recording: {replayed}")
            continue
        for old, new in zip(before, after):
            is_identity = any(word in old for word in changed)
            if is_identity and old == new:
                failures.append(f"{words}: {old!r} is still there: {new!r}")
            if not is_identity and old != new:
                failures.append(f"{words}: {old!r} became {new!r}")
    return failures


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--binary", required=True)
    parser.add_argument("--sim", required=True)
    parser.add_argument("--recorder", required=True)
    parser.add_argument("--samples", required=True)
    parser.add_argument("--refusals", action="store_true")
    parser.add_argument("cases", nargs="*")
    args = parser.parse_args()
    for name in ("binary", "sim", "recorder", "samples"):
        setattr(args, name, os.path.abspath(getattr(args, name)))
    work = tempfile.mkdtemp(prefix="zentrel-record-")
    failed = passed = skipped = 0
    try:
        if args.refusals:
            for failure in refusals(args, work) + anonymised(args, work):
                print(f"FAIL refusals: {failure}")
                failed += 1
        for path in args.cases:
            state_dir = tempfile.mkdtemp(dir=work)
            for n, case in enumerate(parse_cases(path)):
                h = case["headers"]
                # Runs ended by a signal, in an unwritable directory, with
                # standard input closed, or answered from a recording already.
                if "signal" in h or "cwd" in h or "replay" in h or h.get("stdin", "pipe") != "pipe":
                    skipped += 1
                    continue
                case_dir = tempfile.mkdtemp(dir=work)
                failures = roundtrip(args, case, case_dir, state_dir)
                name = f"{os.path.basename(path)}: {case['name']}"
                for failure in failures:
                    print(f"FAIL {name}: {failure}")
                failed += bool(failures)
                passed += not failures
    finally:
        shutil.rmtree(work, ignore_errors=True)
    print(f"{passed} replayed alike, {failed} failed, {skipped} left out")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
