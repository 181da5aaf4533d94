#!/usr/bin/env python3
"""Two utilities that run at once on one state file both keep their change.

Both read the state file as they start; each then changes a different setting
and waits before it exits (a scenario delays ZentrelExit), so that both have
read the file before either writes it. A third run reads both settings back.

    state_concurrency.py BINARY [LAUNCHER...]
"""
import json
import os
import subprocess
import sys
import tempfile


def main():
    binary, launcher = os.path.abspath(sys.argv[1]), sys.argv[2:]
    work = tempfile.mkdtemp(prefix="zentrel-state-")
    env = dict(os.environ)
    env["ZENTREL_SIM_STATE"] = os.path.join(work, "state.json")
    env.pop("ZENTREL_SIM_TRACE", None)
    slow = dict(env)
    slow["ZENTREL_SIM_SCENARIO"] = os.path.join(work, "slow-exit.json")
    with open(slow["ZENTREL_SIM_SCENARIO"], "w") as f:
        json.dump({"inject": [{"function": "ZentrelExit", "latencyMs": 1500}]}, f)

    def start(args, environment):
        return subprocess.Popen(launcher + [binary] + args, cwd=work, env=environment,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    first = start(["-i", "0", "-SetTagSbTimeout", "3", "1", "77"], slow)
    second = start(["-i", "0", "-SetHealthCfg", "0", "1", "3"], slow)
    failures = []
    for name, proc in (("tag scoreboard run", first), ("health run", second)):
        out, err = proc.communicate(timeout=120)
        if proc.returncode != 0 or err:
            failures.append(f"{name}: status {proc.returncode}, stderr {err!r}")

    def read(args):
        proc = subprocess.run(launcher + [binary] + args, cwd=work, env=env, capture_output=True, timeout=120)
        return proc.stdout.decode()

    tag = read(["-i", "0", "-GetTagSbTimeout", "3", "1"])
    health = read(["-i", "0", "-GetHealthCfg", "0"])
    if "TagSBTimeout value : 77 ms" not in tag:
        failures.append("the tag scoreboard time-out was lost:\n" + tag)
    if "threshold=3" not in health:
        failures.append("the health severity was lost:\n" + health)
    leftovers = sorted(n for n in os.listdir(work) if ".tmp." in n)
    if leftovers:
        failures.append(f"temporary files left behind: {leftovers}")
    for f in failures:
        print("FAIL " + f)
    print(f"{2 - min(len(failures), 2)} passed, {min(len(failures), 2)} failed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
