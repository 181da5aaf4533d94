#!/usr/bin/env python3
"""A debug token made and used as an operator would, signed outside the utility.

Operation 1 writes the payload to be signed; openssl signs it with a
throwaway Ed25519 key; operation 2 wraps that signature into the token; the
token is installed, read back, and removed, each in its own run sharing one
state file. The token's payload and signature are checked against what was
signed: the bytes signed are exactly the token's Sig_Structure, and the
signature verifies with the key.

    debugtoken_roundtrip.py BINARY [LAUNCHER...]
"""
import os
import subprocess
import sys
import tempfile


def read_head(data, pos):
    """The major type, argument and next position of a CBOR item head."""
    major, info = data[pos] >> 5, data[pos] & 0x1F
    pos += 1
    if info < 24:
        return major, info, pos
    width = 1 << (info - 24)
    return major, int.from_bytes(data[pos:pos + width], "big"), pos + width


def bstr(data, pos):
    major, length, pos = read_head(data, pos)
    assert major == 2, f"byte string expected at {pos}"
    return data[pos:pos + length], pos + length


def sign1_parts(token):
    """protected, payload and signature of a tagged COSE_Sign1 object."""
    major, tag, pos = read_head(token, 0)
    assert (major, tag) == (6, 18), "COSE_Sign1 tag expected"
    major, count, pos = read_head(token, pos)
    assert (major, count) == (4, 4), "four-element array expected"
    protected, pos = bstr(token, pos)
    major, pairs, pos = read_head(token, pos)
    assert (major, pairs) == (5, 0), "empty unprotected header expected"
    payload, pos = bstr(token, pos)
    signature, pos = bstr(token, pos)
    assert pos == len(token), "trailing bytes"
    return protected, payload, signature


def bstr_head(length):
    if length < 24:
        return bytes([0x40 | length])
    return bytes([0x58, length]) if length < 256 else bytes([0x59]) + length.to_bytes(2, "big")


def main():
    binary, launcher = os.path.abspath(sys.argv[1]), sys.argv[2:]
    work = tempfile.mkdtemp(prefix="zentrel-token-")
    env = dict(os.environ)
    env["ZENTREL_SIM_STATE"] = os.path.join(work, "state.json")
    for name in ("ZENTREL_SIM_TRACE", "ZENTREL_SIM_SCENARIO"):
        env.pop(name, None)
    failures = []

    def run(*args):
        proc = subprocess.run(launcher + [binary, "-i", "0"] + list(args), cwd=work, env=env,
                              capture_output=True, timeout=120)
        return proc.stdout.decode(errors="replace")

    def openssl(*args):
        subprocess.run(["openssl"] + list(args), cwd=work, check=True, capture_output=True, timeout=60)

    def expect(text, output, what):
        if text not in output:
            failures.append(f"{what}: {text!r} missing from:\n{output}")

    out = run("-GenerateDebugToken", "-o", "1", "-a", "-8", "-p", "0", "-e", "90", "-sd", "1", "-j", "1",
              "-i", "0", "-d", "1", "-al", "0", "-pea", "1", "-fwcli", "1")
    expect("Generated Sig_structure CBOR file corvanecwt.cbor", out, "operation 1")
    cbor = os.path.join(work, "corvanecwt.cbor")
    with open(cbor, "rb") as f:
        to_sign = f.read()
    os.rename(cbor, os.path.join(work, "tosign.cbor"))

    openssl("genpkey", "-algorithm", "ed25519", "-out", "key.pem")
    openssl("pkey", "-in", "key.pem", "-pubout", "-out", "pub.pem")
    openssl("pkeyutl", "-sign", "-inkey", "key.pem", "-rawin", "-in", "tosign.cbor", "-out", "sig.bin")

    out = run("-GenerateDebugToken", "-o", "2", "-s", "sig.bin")
    expect("Generated COSE_Sign1 CBOR file corvanecwt.cbor", out, "operation 2")
    with open(cbor, "rb") as f:
        token = f.read()
    with open(os.path.join(work, "sig.bin"), "rb") as f:
        signature = f.read()
    protected, payload, carried = sign1_parts(token)
    rebuilt = (bytes([0x84, 0x6A]) + b"Signature1" + bstr_head(len(protected)) + protected + b"\x40" +
               bstr_head(len(payload)) + payload)
    if rebuilt != to_sign:
        failures.append("the token's Sig_Structure is not the payload that was signed")
    if carried != signature:
        failures.append("the token does not carry the signature made")
    with open(os.path.join(work, "carried.bin"), "wb") as f:
        f.write(carried)
    try:
        openssl("pkeyutl", "-verify", "-pubin", "-inkey", "pub.pem", "-rawin", "-in", "tosign.cbor",
                "-sigfile", "carried.bin")
    except subprocess.CalledProcessError:
        failures.append("the carried signature does not verify")

    before = run("-GetDebugPortCap")
    out = run("-EnableDebugToken", "-f", "corvanecwt.cbor")
    if "failed" in out:
        failures.append("install failed:\n" + out)
    out = run("-GetDebugToken")
    expect("NumClaims:10\n", out, "read back")
    expect("Claim:1.       Exp Limit (-67002) : 90\n", out, "read back")
    expect("Claim:8.    FwCli-Access (-68100) : restricted\n", out, "read back")
    during = run("-GetDebugPortCap")
    expect("\t\tSerial Debug port enable : 1\n", during, "ports with the token")
    expect("SMAPI CLI Access Mode                      : 0x1\n", during, "ports with the token")
    out = run("-DisableDebugToken")
    if "failed" in out:
        failures.append("remove failed:\n" + out)
    expect(" failed with status 32", run("-GetDebugToken"), "read after removal")
    if run("-GetDebugPortCap") != before:
        failures.append("the debug ports did not close again")
    for f in failures:
        print("FAIL " + f)
    print("passed" if not failures else f"{len(failures)} failed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
