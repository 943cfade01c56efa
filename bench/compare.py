#!/usr/bin/env python3
"""Times two builds of the benchmarks against each other, in turns, so that a noisy machine is fair to both:

    bench/compare.py OLD/orlix_bench NEW/orlix_bench [--isa=avx2] [--benchmark_filter=REGEX] [--rounds=N]

Prints for every benchmark the best times, and how much of the old speed the new build has; below 0.97 with a mark.
"""
import json
import subprocess
import sys


def run(program, options):
    isa = [o for o in options if o.startswith("--isa")]
    rest = [o for o in options if not o.startswith("--isa")]
    out = subprocess.run([program, *isa, *rest, "--benchmark_format=json"], check=True, capture_output=True, text=True)
    return {b["name"]: b for b in json.loads(out.stdout)["benchmarks"]}


def time_of(benchmark):
    if "GB/s" in benchmark:
        return 1 / benchmark["GB/s"]  # the best round
    return benchmark["real_time"]


def main():
    old, new, *options = sys.argv[1:]
    rounds = int(next((o.split("=")[1] for o in options if o.startswith("--rounds")), "3"))
    options = [o for o in options if not o.startswith("--rounds")]
    best = {}
    for i in range(rounds):
        for which, program in enumerate((old, new) if i % 2 == 0 else (new, old)):
            which = which if i % 2 == 0 else 1 - which
            for name, benchmark in run(program, options).items():
                entry = best.setdefault(name, [{}, {}])[which]
                entry["time"] = min(entry.get("time", float("inf")), time_of(benchmark))
                entry["share"] = max(entry.get("share", 0), benchmark.get("share", 0))
    for name, (a, b) in best.items():
        if a and b:
            ratio = a["time"] / b["time"]
            print(f"{ratio:6.3f} {'<' if ratio < 0.97 else ' '}  share {a['share']:.2f} -> {b['share']:.2f}  {name}")


main()
