#!/usr/bin/env python3
"""Times a transfer at the pace of a real line against the floor that wire and pause set.

usage: bench/transfer.py [--count N] [--rate 9600|19200] [--echo] [--bin FOLDER] [--check RATIO]

Makes a definition file of N int parameters, starts kalivor-sim with --paced on it and receives all of them with
kalivor-cli. The floor is the time in which the characters of all exchanges pass the line one after the other
(10 bits each) plus the pause of 20 ms in front of each telegram. Prints floor, measured time, their ratio, and the
processor time of kalivor-cli. With --check the exit status is 1 when the ratio is above RATIO.
"""
import argparse
import os
import resource
import subprocess
import sys
import tempfile
import time

PAUSE_S = 0.020
REQUEST = len("#0102R1F000F\r")
REPLY = len("10102R04D220\r")
VERSION_REQUEST = len("#0102v00BC\r")
VERSION_REPLY = len("10102vAB1-04D2xx\r")


def floor_s(count, rate, echo):
    character_s = 10 / rate
    # With an echo the request is on the wire once all the same: the adapter returns it while it is sent.
    exchange = (REQUEST + REPLY) * character_s + PAUSE_S
    version = (VERSION_REQUEST + VERSION_REPLY) * character_s + PAUSE_S
    del echo
    return version + count * exchange


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--count", type=int, default=200)
    parser.add_argument("--rate", type=int, choices=(9600, 19200), default=9600)
    parser.add_argument("--echo", action="store_true")
    parser.add_argument("--bin", default="build/release/src")
    parser.add_argument("--check", type=float)
    options = parser.parse_args()

    with tempfile.TemporaryDirectory() as folder:
        with open(os.path.join(folder, "VF.INI"), "w", encoding="cp1252") as table:
            table.write("Version  Adressen  Definitionen  Anlagen  Kennung\r\nAB1-123.4  -  DEF.TXT  A  WR\r\n")
        with open(os.path.join(folder, "DEF.TXT"), "w", encoding="cp1252") as definitions:
            definitions.write("Heading\r\n")
            for i in range(options.count):
                definitions.write(f"Gruppe {i // 50}  Parameter {i}  0  30000  {i}  -  0  0  int  "
                                  f"{0x1000 + 2 * i:04X}  V{i}  A  -\r\n")
        arguments = [os.path.join(options.bin, "kalivor-sim"), "--ini-path", folder, "--paced", "--rate",
                     str(options.rate)]
        if options.echo:
            arguments.append("--echo")
        simulator = subprocess.Popen(arguments, stdout=subprocess.PIPE, text=True)
        device = simulator.stdout.readline().strip()
        environment = dict(os.environ, XDG_CONFIG_HOME=folder)
        cli = [os.path.join(options.bin, "kalivor-cli"), "--ini-path", folder, "--port", device, "receive"]
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        start = time.monotonic()
        result = subprocess.run(cli, env=environment, capture_output=True, text=True, check=False)
        measured = time.monotonic() - start
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        simulator.terminate()
        simulator.wait()
        if result.returncode != 0:
            sys.exit(f"kalivor-cli ended with {result.returncode}: {result.stdout}{result.stderr}")

    # At 19200 baud the search for the rate costs the time-out of the query at 9600.
    floor = floor_s(options.count, options.rate, options.echo)
    if options.rate == 19200:
        floor += 0.4 + PAUSE_S
    processor = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    ratio = measured / floor
    print(f"{options.count} int parameters at {options.rate} baud{' with echo' if options.echo else ''}: "
          f"floor {floor:.2f} s, measured {measured:.2f} s, ratio {ratio:.4f}; processor "
          f"{processor / options.count * 1000:.3f} ms an exchange, {processor / measured * 100:.2f} % of a core")
    if options.check and ratio > options.check:
        sys.exit(1)


if __name__ == "__main__":
    main()
