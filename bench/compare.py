#!/usr/bin/env python3
"""Measures whole commands on files, alternately, and prints medians.

compare.py [-n RUNS] FILE... -- NAME=COMMAND...   In COMMAND, {} is replaced by the file. The last column is the CPU
time (user and system) of the first command on the same file divided by that of this one, pair by pair; growth is
relative to the previous file.
"""
import argparse
import os
import shlex
import statistics
import sys


def run(command):
    """Returns the CPU seconds and the peak memory in bytes of one run."""
    pid = os.fork()
    if pid == 0:
        null = os.open(os.devnull, os.O_RDWR)
        os.dup2(null, 1)
        os.dup2(null, 2)
        os.execvp(command[0], command)
    _, status, usage = os.wait4(pid, 0)
    if status != 0:
        sys.exit(f"{shlex.join(command)} failed: {status}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("-n", type=int, default=5)
    parser.add_argument("words", nargs="+")
    arguments = parser.parse_args([w for w in sys.argv[1:] if w != "--"])
    commands = [w.split("=", 1) for w in arguments.words if "=" in w]
    files = [w for w in arguments.words if "=" not in w]
    before = {}
    print(f"{'file':28} {'command':14} {'CPU s':>8} {'MB/s':>7} {'peak MB':>8} {'B/byte':>7} {'growth':>7} {'ratio':>6}")
    for file in files:
        size = os.path.getsize(file)
        runs = {name: [] for name, _ in commands}
        for _ in range(arguments.n):
            for name, command in commands:
                runs[name].append(run([file if w == "{}" else w for w in shlex.split(command)]))
        first = [cpu for cpu, _ in runs[commands[0][0]]]
        for name, _ in commands:
            times = [cpu for cpu, _ in runs[name]]
            cpu = statistics.median(times)
            peak = max(memory for _, memory in runs[name])
            growth = f"{cpu / before[name]:.1f}" if name in before else ""
            ratio = statistics.median(a / b for a, b in zip(first, times) if b > 0)
            print(f"{os.path.basename(file):28} {name:14} {cpu:8.3f} {size / 1e6 / max(cpu, 1e-9):7.0f} {peak / 1e6:8.1f}"
                  f" {peak / size:7.1f} {growth:>7} {ratio:6.2f}")
            before[name] = cpu


main()
