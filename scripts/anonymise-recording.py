#!/usr/bin/env python3
"""Anonymises a recording of zentrelLibTest's library calls (doc/recording.md).

    anonymise-recording.py RECORDING > ANONYMISED

What names one chip is replaced wherever its bytes appear (requests,
answers, files), so that the anonymised recording still replays: the wafer
lot number of the wafer information, and the debug token identity (token ID
and debug authentication ID) of the debug token parameters. The wafer
number and the die's coordinates are set to zero. Replacements are derived
from the original bytes, so they are the same across recordings of one
switch.
"""
import hashlib
import re
import sys

HEADER = "zentrel-recording 1"
# Byte ranges of the records that hold the identity (offset, length).
WAFER_LOT = (21, 11)
WAFER_DIE = (32, 3)          # wafer number, X and Y coordinates
TOKEN_ID = (4, 8)            # CtiLsb, CtiMsb
TOKEN_AUTH_ID = (12, 64)
TOKEN_PARAMS_BYTES = 76
WAFER_INFO_BYTES = 36


def out_value(line, name):
    m = re.search(rf"\) = 0x[0-9a-f]+ .*?\b{name}=x([0-9a-f]*)", line)
    return bytes.fromhex(m.group(1)) if m else None


def stand_in(original, printable):
    digest = hashlib.sha256(b"zentrel-anonymise" + original).digest()
    if printable:
        text = ("ANON" + digest.hex().upper())[:len(original)]
        return text.encode("ascii")
    return digest[:len(original)] if len(original) <= len(digest) else (digest * 4)[:len(original)]


def main():
    if len(sys.argv) != 2:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    with open(sys.argv[1], encoding="ascii") as f:
        lines = f.read().split("\n")
    if not lines or lines[0] != HEADER:
        print(f"{sys.argv[1]}: not a recording (no \"{HEADER}\" line)", file=sys.stderr)
        return 1
    replacements = {}
    for line in lines:
        wafer = out_value(line, "WaferInfo") if line.startswith("ZentrelSwitchGetWaferInfo(") else None
        if wafer is not None and len(wafer) == WAFER_INFO_BYTES:
            lot = wafer[WAFER_LOT[0]:sum(WAFER_LOT)].rstrip(b"\0")
            if lot:
                replacements[lot] = stand_in(lot, True)
        params = out_value(line, "Params") if line.startswith("ZentrelSwitchGetDebugTokenParams(") else None
        if params is not None and len(params) == TOKEN_PARAMS_BYTES:
            for offset, length in (TOKEN_ID, TOKEN_AUTH_ID):
                part = params[offset:offset + length]
                if part.strip(b"\0"):
                    replacements[part] = stand_in(part, False)

    def anonymise(match, wafer_record):
        data = bytes.fromhex(match.group(1))
        for original, new in replacements.items():
            data = data.replace(original, new)
        if wafer_record and len(data) == WAFER_INFO_BYTES:
            data = data[:WAFER_DIE[0]] + bytes(WAFER_DIE[1]) + data[sum(WAFER_DIE):]
        return "=x" + data.hex()

    out = [lines[0]]
    for line in lines[1:]:
        wafer_call = line.startswith("ZentrelSwitchGetWaferInfo(")
        out.append(re.sub(r"=x([0-9a-f]*)", lambda m: anonymise(m, wafer_call), line))
    sys.stdout.write("\n".join(out))
    return 0


if __name__ == "__main__":
    sys.exit(main())
