#!/usr/bin/env python3
"""Drives the built vn tool the way a user (or a careless script) would.

Every command is run with a normal, an empty, a garbage and a huge argument (and a few
findings of their own); each run must end by itself within a time limit, by exit (never by a
signal), with the documented status: 0 success, 1 bad data, 2 usage. Every command answers
--help, -h and "vn help COMMAND" with its usage and an example, and its example works.

The network command only ever talks to 127.0.0.1: a small HTTP server this script runs, and a
port that is bound but not listening (the connection is refused at once).

    vn_cli_test.py <path to vn>
"""
import http.server
import os
import plistlib
import shlex
import socket
import subprocess
import sys
import tempfile
import threading
import time

TIME_LIMIT = 60  # seconds per run; every run here takes well under one on an idle machine
HUGE = 100_000  # characters: below the kernel's limit of 128 KiB for one argument

SUCCESS, BAD_DATA, USAGE = 0, 1, 2

failures = []
runs = 0


def run(vn, arguments, cwd, env):
    """Runs vn; returns (status, stdout, stderr), recording a failure for a signal or a hang."""
    global runs
    runs += 1
    label = shlex.join([os.fsdecode(a)[:60] for a in arguments])
    try:
        done = subprocess.run([vn, *arguments], cwd=cwd, env=env, capture_output=True,
                              timeout=TIME_LIMIT, stdin=subprocess.DEVNULL)
    except subprocess.TimeoutExpired:
        failures.append(f"vn {label}: still running after {TIME_LIMIT} s")
        return None, b"", b""
    if done.returncode < 0:
        failures.append(f"vn {label}: ended by signal {-done.returncode}\n"
                        f"{done.stderr.decode(errors='replace')[-2000:]}")
        return None, done.stdout, done.stderr
    return done.returncode, done.stdout, done.stderr


def expect(vn, arguments, status, cwd, env, stdout_has=None):
    got, out, err = run(vn, arguments, cwd, env)
    if got is None:
        return out
    label = shlex.join([os.fsdecode(a)[:60] for a in arguments])
    if got != status:
        failures.append(f"vn {label}: status {got}, expected {status}\n"
                        f"stdout: {out.decode(errors='replace')[:500]}\n"
                        f"stderr: {err.decode(errors='replace')[:500]}")
    elif stdout_has is not None and stdout_has.encode() not in out:
        failures.append(f"vn {label}: output lacks {stdout_has!r}:\n"
                        f"{out.decode(errors='replace')[:1000]}")
    return out


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        body = b'{"greeting": "hello from 127.0.0.1"}'
        self.send_response(200)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *args):
        pass


def keyed_archive(path):
    """A small keyed archive (binary property list) like the platform's archiver writes."""
    archive = {
        "$archiver": "NSKeyedArchiver",
        "$version": 100000,
        "$top": {"root": plistlib.UID(1)},
        "$objects": ["$null", "hello"],
    }
    with open(path, "wb") as file:
        plistlib.dump(archive, file, fmt=plistlib.FMT_BINARY)


def main():
    vn = os.path.abspath(sys.argv[1])
    work = tempfile.mkdtemp(prefix="vn-cli-test-")
    env = {k: v for k, v in os.environ.items() if "proxy" not in k.lower()}
    env.update(TMPDIR=work, NO_PROXY="*", no_proxy="*", LC_ALL="C.UTF-8")

    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    served = f"http://127.0.0.1:{server.server_address[1]}"
    refusing = socket.socket()  # bound, never listening: connections are refused
    refusing.bind(("127.0.0.1", 0))
    closed = f"http://127.0.0.1:{refusing.getsockname()[1]}"

    archive = os.path.join(work, "settings.archive")  # the name the example uses
    keyed_archive(archive)
    junk = os.path.join(work, "junk.bin")
    with open(junk, "wb") as file:
        file.write(b"bplist00\xff\x00garbage" * 50)
    huge = "9" * HUGE

    oauth = ["--method", "GET", "--consumer-key", "key", "--consumer-secret", "secret"]
    # command: [(arguments, expected status, text the output must hold or None)]
    cases = {
        "coerce": [
            (["int", '"42 items"'], SUCCESS, "result: 42"),
            (["int", ""], SUCCESS, None),
            (["int", "\x01{[zz"], SUCCESS, None),
            (["decimal", huge], SUCCESS, None),
            (["color", "1"], USAGE, None),
            ([], USAGE, None),
        ],
        "log": [
            (["hello", "log"], SUCCESS, "hello log"),
            ([""], SUCCESS, None),
            ([b"\xff\xfe not UTF-8"], BAD_DATA, None),
            (["x" * HUGE], SUCCESS, None),
            ([], USAGE, None),
        ],
        "dispatch-roundtrip": [
            (["50"], SUCCESS, "50 round trips"),
            ([""], BAD_DATA, None),
            (["12abc"], BAD_DATA, None),
            (["99999999999999999999"], BAD_DATA, None),
            (["100001"], BAD_DATA, None),
            (["0"], BAD_DATA, None),
            (["1", "2"], USAGE, None),
        ],
        "picture": [
            (["ZZZ,ZZ9.99", "1234.5", "--locale", "en_US"], SUCCESS, "1,234.50"),
            (["", ""], BAD_DATA, None),
            (["#-#-#", "abc"], BAD_DATA, None),
            (["ZZ9", huge], SUCCESS, None),
            # Mask digits beyond 64 bits: formatted, not read back through the mask.
            (["9" * 30 + "-9", "9" * 25], SUCCESS, "not read back"),
            (["999-9999", "1234567"], SUCCESS, "\"123-4567\" -> 1234567"),
            (["ZZ9", "1", "--locale"], USAGE, None),
            (["ZZ9"], USAGE, None),
        ],
        "date": [
            (["2020-03-01T10:20:30Z"], SUCCESS, "2020-03-01T10:20:30.000Z"),
            ([""], BAD_DATA, None),
            (["2020-13-45T99:99"], BAD_DATA, None),
            ([huge], BAD_DATA, None),
            (["2020-03-01", "--zone", "Mars/Olympus"], BAD_DATA, None),
            (["2020-03-01", "--zone"], USAGE, None),
        ],
        "mime": [
            (["png"], SUCCESS, "image/png"),
            ([""], SUCCESS, None),
            (["\x01.%%"], SUCCESS, None),
            ([huge], SUCCESS, None),
            ([], USAGE, None),
        ],
        "layout": [
            (["dimension", "50%", "320"], SUCCESS, "resolved   160"),
            (["dimension", "", ""], BAD_DATA, None),
            (["align", "a", "b", "c", "d"], BAD_DATA, None),
            (["dimension", huge, "1e308"], SUCCESS, None),
            (["align", "0", "0", "1", "1", huge], BAD_DATA, None),
            (["align", "0", "0", "1", "1", "1e308"], SUCCESS, None),
            (["dimension", "1", "2", "sideways"], USAGE, None),
            (["frobnicate"], USAGE, None),
        ],
        "datatype": [
            (["numeric(10,2)"], SUCCESS, "length: 10"),
            ([""], SUCCESS, None),
            (["((((,,))"], SUCCESS, None),
            (["(" * HUGE], SUCCESS, None),
            ([], USAGE, None),
        ],
        "get": [
            ([served + "/items"], SUCCESS, "hello from 127.0.0.1"),
            ([served + "/items", "--json"], SUCCESS, "greeting"),
            ([closed + "/items"], BAD_DATA, "error: domain NSURLErrorDomain"),
            ([""], BAD_DATA, None),
            (["not a url"], BAD_DATA, None),
            (["localhost"], BAD_DATA, None),
            ([closed + "/" + "a" * HUGE], BAD_DATA, None),
            ([closed, "--data-file", work], BAD_DATA, None),
            ([closed, "--header", "no colon"], BAD_DATA, None),
            ([closed, "--bogus", "x"], USAGE, None),
            ([closed, "--method"], USAGE, None),
            ([], USAGE, None),
        ],
        "oauth": [
            (["--url", "https://api.example.com/p", *oauth, "--nonce", "n", "--timestamp", "1"],
             SUCCESS, "oauth_signature="),
            (["--url", "", *oauth], BAD_DATA, None),
            (["--url", "::::", *oauth], BAD_DATA, None),
            (["--url", "https://a.example/", *oauth, "--nonce", "n", "--timestamp", huge],
             BAD_DATA, None),
            (["--url", "https://a.example/" + "p" * HUGE, *oauth], SUCCESS, None),
            (["--url"], USAGE, None),
        ],
        "warning": [
            (['199 api.example.com "Disk almost full"'], SUCCESS, "code 199"),
            ([""], BAD_DATA, None),
            (["zzz"], BAD_DATA, None),
            (['199 a "' + "x" * HUGE + '"'], SUCCESS, None),
            ([], USAGE, None),
        ],
        "archive": [
            ([archive], SUCCESS, "hello"),
            ([""], BAD_DATA, None),
            ([junk], BAD_DATA, None),
            ([work], BAD_DATA, None),
            (["a" * 5000], BAD_DATA, None),
            ([], USAGE, None),
        ],
        "wkt": [
            (["POINT(1 2)"], SUCCESS, "class       WKTPoint"),
            ([""], BAD_DATA, None),
            (["POINT(1"], BAD_DATA, None),
            (["GEOMETRYCOLLECTION(" * (HUGE // 20)], BAD_DATA, None),
            ([], USAGE, None),
        ],
    }

    listed = expect(vn, ["--help"], SUCCESS, work, env, "exit status")
    listing = listed.decode().split("commands:\n", 1)[-1].split("\n\n", 1)[0]
    commands = [line.split()[0] for line in listing.splitlines()
                if line.split()[0] not in ("tour", "help")]
    missing = sorted(set(commands) - set(cases))
    if missing:
        failures.append(f"commands without cases here: {missing}")

    for name in commands:
        for form in ([name, "--help"], [name, "-h"], ["help", name], [name, "x", "--help"]):
            out = expect(vn, form, SUCCESS, work, env, f"usage: vn {name}")
            if b"example:\n  vn " not in out:
                failures.append(f"vn {shlex.join(form)}: no example")
        out = expect(vn, ["help", name], SUCCESS, work, env)
        example = out.decode().split("example:\n", 1)[-1].strip()
        if name != "get":  # its example names a server that is not running here
            expect(vn, shlex.split(example)[1:], SUCCESS, work, env)
        for arguments, status, output in cases.get(name, []):
            expect(vn, [name, *arguments], status, work, env, output)

    # "--help" is never data: the log file is not even created.
    log_file = os.path.join(work, "vnlog.log")
    if os.path.exists(log_file):
        os.remove(log_file)
    expect(vn, ["log", "--help"], SUCCESS, work, env, "usage: vn log")
    if os.path.exists(log_file):
        failures.append("vn log --help wrote the log file")

    expect(vn, [], USAGE, work, env)
    expect(vn, ["help", "frobnicate"], USAGE, work, env)
    expect(vn, ["frobnicate"], USAGE, work, env)
    expect(vn, ["tour", "x"], USAGE, work, env)
    expect(vn, ["tour", "--help"], SUCCESS, work, env, "usage: vn tour")
    expect(vn, ["tour"], SUCCESS, work, env, "== ")

    server.shutdown()
    refusing.close()
    subprocess.run(["rm", "-rf", work], check=False)
    for failure in failures:
        print("FAIL:", failure, "\n")
    print(f"vn cli: {runs} runs, {len(failures)} problems")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
