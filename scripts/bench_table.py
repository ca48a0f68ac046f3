#!/usr/bin/env python3
"""bench_table.py results.json... [--goals goals.csv]: the ratio of speed kttm : peer for every job, size and peer.

Benchmarks are named job/contestant[/size], where the job may itself contain slashes when a size follows; the contestant
"kttm" stands against every other contestant of its job and size; a star marks the best of them. The ratio is the median
time of the peer divided by the median time of kttm, in time of the processor, which other work on the machine disturbs
less than the clock's; of several rounds, each with its results in a file, it is the median. The column "floor" has the
time of a contestant that only moves or compares the bytes, or does the least that the job can do: a limit that nothing
beats by much. Where a floor that is no peer misses the goal, too, the verdict has its ratio. goals.csv has the columns
job,peer,size,goal,asked; an empty size stands for every size. A goal may have been raised: "asked" is what it was, shown
behind the goal where it differs (of a limit in ns), and a ratio between the two is "short of raised". The peer "limit"
stands for a time: its goal is the most ns that one operation of kttm may take. Exit status 1 when a job reported an error.
"""

import argparse
import csv
import json
import os
import re
import statistics
import sys

LIMIT = "limit"
FLOOR = "floor"  # a contestant that is no peer
FLOORS = (FLOOR, "memcpy", "memcmp")
NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def split_name(name):
    """(job, contestant, size) of a benchmark's name; flags that the runner appends are dropped."""
    parts = [p for p in name.split("/") if not re.match(r"(min_time|min_warmup_time|iterations|repeats|threads|manual_time|real_time|process_time)\b", p)]
    size = parts.pop() if len(parts) > 2 and re.fullmatch(r"\d+", parts[-1]) else ""
    if len(parts) < 2:
        return None
    return "/".join(parts[:-1]), parts[-1], size


def read_medians(path):
    """Median time in ns for each (job, size) and contestant, with a contestant LIMIT for one operation of kttm; and the
    errors that runs reported."""
    with open(path, encoding="utf-8") as file:
        runs = json.load(file)["benchmarks"]
    times, errors = {}, []
    for run in runs:
        if run.get("run_type") == "aggregate":
            continue
        key = split_name(run.get("run_name", run["name"]))
        if run.get("error_occurred"):
            errors.append(f"{run['name']}: {run.get('error_message', '')}")
        elif key:
            job, contestant, size = key
            time = run["cpu_time"] * NANOSECONDS[run["time_unit"]]
            times.setdefault((job, size), {}).setdefault(contestant, []).append(time)
            if contestant == "kttm" and run.get("items_per_second"):
                times[job, size].setdefault(LIMIT, []).append(1e9 / run["items_per_second"])
    medians = {key: {who: statistics.median(t) for who, t in group.items()} for key, group in times.items()}
    return medians, errors


def read_goals(path):
    """(goal, asked) for each (job, peer, size)."""
    goals = {}
    if path and os.path.exists(path):
        with open(path, encoding="utf-8", newline="") as file:
            for row in csv.DictReader(line for line in file if not line.startswith("#")):
                goals[(row["job"], row["peer"], row["size"] or "")] = float(row["goal"]), float(row["asked"])
    return goals


def judge(reached, goal, asked):
    """The verdict on a ratio, empty without a goal."""
    if goal is None or reached >= goal:
        return "" if goal is None else "ok"
    return "short of raised" if reached >= asked else "short"


def table(rounds, goals):
    """One row for each job, size and peer: (job, size, peer, kttm ns, peer ns, floor ns, ratio, goal, asked, verdict).
    `rounds` has the medians of each round; what is shown is the median of the rounds."""
    rows = []
    for job, size in sorted(set().union(*rounds), key=lambda key: (key[0], int(key[1] or 0))):
        groups = [medians[job, size] for medians in rounds if (job, size) in medians]
        names = set.intersection(*(set(group) for group in groups))
        if "kttm" not in names:
            continue
        time = {name: statistics.median(group[name] for group in groups) for name in names}

        def ratio(a, b):
            return statistics.median(group[a] / group[b] for group in groups)

        peers = sorted(names - {"kttm", LIMIT, FLOOR})
        best = min(peers, key=time.get, default=None)
        floor = min((name for name in FLOORS if name in names), key=time.get, default=None)
        for peer in peers:
            goal, asked = goals.get((job, peer, size), goals.get((job, peer, ""), (None, None)))
            reached = ratio(peer, "kttm")
            verdict = judge(reached, goal, asked)
            if verdict.startswith("short") and floor == FLOOR and ratio(peer, floor) < goal:
                verdict += f" (floor {ratio(peer, floor):.2f})"
            shown = peer + " *" if peer == best and len(peers) > 1 else peer
            rows.append((job, size, shown, time["kttm"], time[peer], time.get(floor), reached, goal, asked, verdict))
        limit, asked = goals.get((job, LIMIT, size), goals.get((job, LIMIT, ""), (None, None)))
        if limit is not None and LIMIT in names:
            reached = limit / time[LIMIT]
            verdict = judge(reached, 1, limit / asked)
            rows.append((job, size, LIMIT, time[LIMIT], limit, None, reached, 1, 1 if asked == limit else asked, verdict))
    return rows


def goals_without_result(goals, rows):
    measured = {(row[0], row[2].removesuffix(" *"), row[1]) for row in rows}
    measured |= {(job, peer, "") for job, peer, _ in measured}
    return sorted(goals.keys() - measured)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("results", nargs="+", help="a file for each round")
    parser.add_argument("--goals", help="goals.csv")
    parser.add_argument("--partial", action="store_true", help="the run was filtered: do not list goals without a result")
    args = parser.parse_args()
    read = [read_medians(path) for path in args.results]
    errors = sorted(set().union(*(found for _, found in read)))
    goals = read_goals(args.goals)
    rows = table([medians for medians, _ in read], goals)

    width = max([len(row[0]) for row in rows] + [3])
    print(f"{'job':{width}} {'size':>8} {'kttm ns':>12} {'peer':16} {'peer ns':>12} {'floor ns':>12} {'ratio':>7} {'goal':>6} {'asked':>7}")
    for job, size, peer, ours, theirs, floor, ratio, goal, asked, verdict in rows:
        least = "" if floor is None else f"{floor:.1f}"
        shown = "" if goal is None else f"{goal:g}"
        was = "" if asked == goal else f"({asked:g})"
        print(f"{job:{width}} {size:>8} {ours:12.1f} {peer:16} {theirs:12.1f} {least:>12} {ratio:7.2f} {shown:>6} {was:>7} {verdict}".rstrip())
    judged = [row[-1] for row in rows if row[-1]]
    raised = sum(verdict.startswith("short of raised") for verdict in judged)
    absent = [] if args.partial else goals_without_result(goals, rows)
    count = len(judged) + len(absent)
    print(f"\n{judged.count('ok')} of {count} goals reached, {raised} short of raised, {len(absent)} not measured")
    for job, peer, size in absent:
        print(f"not measured: {job} against {peer}{size and ', size '}{size}")
    for error in errors:
        print(f"error: {error}")
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
