#!/usr/bin/env python3
"""Prints how much faster than its peer each measured thing is: bench_ratios.py RESULTS...

RESULTS is a file of Google Benchmark without its ending `.json`. Figures are medians over the repetitions, in
nanoseconds a block or call; a ratio above 1 means faster than the peer, and "best" is the ratio of the fastest
repetitions of both, which other work on the machine disturbs least. Ends with 1 if a benchmark reported an
error, for example a lost block.
"""

import json
import statistics
import sys
from collections import defaultdict
from pathlib import Path

# A row of the table: ours, the peer, the field of the result, and the aim or None.
TIME = "time"


def ring_rows():
    aims = {16: 2.5, 256: 1.25, 4096: None}
    for setting in ("TwoThreads", "TwoThreadsPolling", "OneThread"):
        for size, aim in aims.items():
            ours, peer = (f"Ring/{setting}/{who}/bytes:{size}" for who in ("Qmt", "Boost"))
            yield ours, peer, TIME, aim if setting != "OneThread" else None


def chain_rows():
    coupled = {1: 5, 8: 2}
    threaded = {(1, 256): 2, (4, 256): 1.5}
    for drive in ("Coupled", "Threaded"):
        for stages in (1, 2, 4, 8):
            for in_flight in (32, 256):
                shape = f"stages:{stages}/inFlight:{in_flight}"
                aim = coupled.get(stages) if drive == "Coupled" else threaded.get((stages, in_flight))
                yield f"Chain/{drive}/{shape}", f"Chain/Tbb/{shape}", TIME, aim


def parallel_rows():
    for weight in (1, 256):
        yield f"Parallel/Qmt/weight:{weight}", f"Parallel/Tbb/weight:{weight}", TIME, None


def latency_rows():
    for pause in (0, 500):
        for stages in (1, 4):
            shape = f"stages:{stages}/pause:{pause}"
            for field in (TIME, "p50", "p99"):
                yield f"Latency/Qmt/{shape}", f"Latency/MutexAndCondition/{shape}", field, None


def event_rows():
    for peer in ("EventFd", "MutexAndCondition"):
        for what, fields in (("Signal", (TIME,)), ("SignalSleeper", (TIME, "wakeUp_p50")), ("RoundTrip", (TIME,))):
            for field in fields:
                yield f"Event/{what}/Qmt", f"Event/{what}/{peer}", field, None


def trace_rows():
    for threads in (1, 2):
        for ours in ("Qmt", "QmtShortText"):
            yield f"Trace/{ours}/threads:{threads}", f"Trace/SpdlogRing/threads:{threads}", TIME, 3
        for peer in ("SpdlogNull", "SpdlogAsync"):
            yield f"Trace/Qmt/threads:{threads}", f"Trace/{peer}/threads:{threads}", TIME, None


def rgb_rows():
    for what in ("Shrink", "ShrinkToYuv"):
        for bytes_per_pixel in (4, 3):
            for factor in (2, 4):
                shape = f"bytes:{bytes_per_pixel}/by:{factor}"
                for peer, aim in (("Libyuv", 0.9), ("Swscale", None)):
                    yield f"Rgb/{what}/Qmt/{shape}", f"Rgb/{what}/{peer}/{shape}", TIME, aim
    for peer, aim in (("Memset", 0.95), ("RowCopies", None), ("Swscale", None)):
        yield "Rgb/Double/Qmt", f"Rgb/Double/{peer}", TIME, aim


ROWS = [
    *ring_rows(),
    *chain_rows(),
    *parallel_rows(),
    *latency_rows(),
    *event_rows(),
    *trace_rows(),
    *rgb_rows(),
]


def plain_name(result):
    """The name without what says how it was run."""
    parts = result["run_name"].split("/")
    return "/".join(p for p in parts if p not in ("real_time", "manual_time") and not p.startswith("iterations:"))


def nanoseconds(result, field):
    if field != TIME:
        return result[field] * 1e9
    if "items_per_second" in result:
        return 1e9 / result["items_per_second"]
    return result["real_time"]


def repetitions(results):
    """{(name, field): the figure of each repetition}"""
    figures = defaultdict(list)
    for result in results:
        for field in (TIME, "p50", "p99", "wakeUp_p50"):
            if field == TIME or field in result:
                figures[plain_name(result), field].append(nanoseconds(result, field))
    return figures


def peer_of(name):
    """Chain/Tbb/stages:1 is Tbb."""
    return next(part for part in reversed(name.split("/")) if ":" not in part)


def print_row(figures, ours, peer, field, aim):
    mine, others = (statistics.median(figures[name, field]) for name in (ours, peer))
    best = min(figures[peer, field]) / min(figures[ours, field])
    ratio = others / mine
    name = ours if field == TIME else f"{ours} {field}"
    verdict = "" if aim is None else f"{aim:>5g}  {'reached' if ratio >= aim else 'MISSED'}"
    print(f"{name:<46} {peer_of(peer):<18} {mine:>9.1f} {others:>9.1f} {ratio:>7.2f} {best:>7.2f} {verdict}".rstrip())


def main(names):
    results = []
    for name in names:
        content = json.loads(Path(name + ".json").read_text(encoding="utf-8"))
        results += [result for result in content["benchmarks"] if result["run_type"] == "iteration"]
    faults = [result for result in results if result.get("error_occurred")]
    figures = repetitions(result for result in results if not result.get("error_occurred"))
    print(f"{'':<46} {'peer':<18} {'ours ns':>9} {'peer ns':>9} {'ratio':>7} {'best':>7} {'aim':>5}")
    for ours, peer, field, aim in ROWS:
        if (ours, field) in figures and (peer, field) in figures:
            print_row(figures, ours, peer, field, aim)
    for fault in faults:
        print(f"FAILED: {plain_name(fault)}: {fault['error_message']}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
