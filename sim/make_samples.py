#!/usr/bin/env python3
"""Writes the sample images the simulated switches take or refuse.

    make_samples.py OUTDIR                 the set the tests use
    make_samples.py --size MIB NAME.bin    one valid firmware image of MIB MiB

Every firmware image and PLDM package starts with a 32-byte header, all
numbers little-endian: magic ("ZFWI" for firmware, "PLDM" for a PLDM
package), format 1, firmware version (a.b.c.d as one number, a in the top
byte), device id it is built for (0 for any), payload length, CRC-32 of the
payload, 8 zero bytes. The payload follows. The contents are the same on
every run (a fixed seed), so that traces can name their CRC-32.
"""
import os
import random
import struct
import sys
import zlib

HEADER = struct.Struct("<4sIIIII8x")


def version(text):
    a, b, c, d = (int(p) for p in text.split("."))
    return a << 24 | b << 16 | c << 8 | d


def image(magic, ver, device_id, payload):
    return HEADER.pack(magic, 1, version(ver), device_id, len(payload), zlib.crc32(payload)) + payload


def payload(size, seed):
    return random.Random(seed).randbytes(size)


def samples():
    fw = image(b"ZFWI", "4.21.0.3", 0xC010, payload(4096, 1))
    corrupt = bytearray(fw)
    corrupt[HEADER.size + 100] ^= 0x01  # one payload bit flipped: the CRC-32 no longer matches
    usd = bytearray(payload(1024, 5))
    usd[0:4] = b"ZUSD"
    return {
        "fw_valid.bin": fw,
        "fw_corrupt.bin": bytes(corrupt),
        "fw_truncated.bin": fw[:-16],
        "fw_other_device.bin": image(b"ZFWI", "3.6.0.1", 0xC034, payload(2048, 2)),
        "fw_large.bin": image(b"ZFWI", "4.21.1.0", 0, payload(6 << 20, 3)),
        "pldm_pkg.bin": image(b"PLDM", "4.22.0.1", 0, payload(8192, 4)),
        "usd_blob.bin": bytes(usd),
        "usd_too_large.bin": bytes(0x40001),  # one byte more than the region holds
    }


def write(path, data):
    tmp = path + ".tmp"
    with open(tmp, "wb") as f:
        f.write(data)
    os.replace(tmp, path)


def main(argv):
    if len(argv) == 4 and argv[1] == "--size":
        write(argv[3], image(b"ZFWI", "4.21.2.0", 0, payload(int(argv[2]) << 20, 6)))
        return 0
    if len(argv) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    os.makedirs(argv[1], exist_ok=True)
    for name, data in samples().items():
        write(os.path.join(argv[1], name), data)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
