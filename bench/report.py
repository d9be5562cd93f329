#!/usr/bin/env python3
"""Makes tables, as Markdown, of the measurements of the benchmarks.

    report.py stages RUNS                  where the time of every run goes
    report.py kernels RUNS [LIMITS]        every stage against its target
    report.py whole WHOLE                  whole runs against the peer's
    report.py growth RUNS                  growth with the number of equations
    report.py cholmod PAIRS                the skyline solver against CHOLMOD
    report.py choice CHOICES               the automatic choice against each solver
    report.py direct DIRECT [PHASES]       the sparse direct solver against the skyline and the peer
    report.py refinement RUNS              the part of the refinement in direct runs
    report.py shells SHELLS                refined shells against standard ones

RUNS is the output of morlen_stages, WHOLE that of whole_runs.py, LIMITS that of morlen_limits,
PAIRS that of morlen_cholmod, CHOICES that of choice_runs.py, DIRECT that of direct_runs.py, PHASES
that of morlen_direct_phases, SHELLS that of morlen_shells.
"""

import argparse
import collections
import json
import math
import pathlib

Row = collections.namedtuple("Row", "model figure value unit target at_least")

SOLIDS, SHELLS, FRAMES = ("block", "block10"), ("plate", "roof"), ("frame3d", "portal2d")

# Parts of the speed of a matrix product.
FACTORISATION = {"block": 0.60, "block10": 0.50, "plate": 0.45, "roof": 0.45, "frame3d": 0.45,
                 "portal2d": 0.33}
# Parts of the speed of reading memory.
ITERATION = {"block": 0.75, "block10": 0.60, "plate": 0.85, "roof": 0.85, "frame3d": 0.85,
             "portal2d": 0.75}
# Microseconds an element.
ASSEMBLY = {"block": 0.3, "block10": 5.0, "plate": 1.1, "roof": 1.1, "frame3d": 1.1, "portal2d": 1.1}
# Of a refined shell of so many nodes.
REFINED_SHELL = {3: 2.5, 6: 6.0}
# Parts of the peer's time, by the number of equations up to which they hold.
PEER = {"block": ((15e3, 1.0), (60e3, 0.35), (1e6, 0.5)),
        "block10": ((15e3, 2.1), (60e3, 0.35), (1e6, 0.5)),
        "plate": ((15e3, 0.4), (60e3, 0.55), (300e3, 0.35)),
        "roof": ((15e3, 0.4), (300e3, 0.35)),
        "frame3d": ((15e3, 0.9), (60e3, 0.5), (300e3, 0.35)),
        "portal2d": ((15e3, 1.1), (300e3, 0.65))}
# For all others: ahead.
PEER_AT_MOST = 1.0
# Targets of whole runs with the sparse direct solver: parts of the skyline's time, of its memory
# and of the peer's time; seconds; gigabytes.
DIRECT = {"roof_181": {"time / SkyLine": 0.2, "memory / SkyLine": 0.3, "time / CalculiX": 0.35},
          "plate_181": {"time / SkyLine": 0.2, "memory / SkyLine": 0.3, "time / CalculiX": 0.35},
          "portal2d_199_332": {"time / CalculiX": 0.65},
          "block_24": {"time / SkyLine": 0.25},
          "roof_500": {"time": 30.0, "memory": 3.6}}
# Part of the sparse direct solver's time beside the phases of its libraries.
BESIDE_LIBRARIES = 0.15
# Parts of CHOLMOD's time; higher for solids, because of their numbering.
CHOLMOD = {"plate": 1.3, "roof": 1.3, "frame3d": 0.6, "portal2d": 1.0, "block": 4.5, "block10": 10.0}
# Exponents: of the factorisation, of all iterations together; of every other stage 1.
GROWTH_OF_FACTORISATION = {"block": 2.35, "block10": 2.35, "plate": 2.0, "roof": 2.0}
GROWTH_OF_ITERATIONS = {"block": 1.35, "block10": 1.35, "plate": 1.6, "frame3d": 1.6}
GROWTH_ALLOWANCE = 0.15
# Times of the better solver, and part of a direct run.
CHOICE = 1.2
REFINEMENT = 0.15
# The solvers of the peer; the phases of the libraries of the sparse direct solver.
PEERS = ("spooles", "iterative cholesky")
PHASES = ("order", "analysis", "factorisation", "solution")
# Shorter stages are too noisy to show.
SHORTEST = 0.005

MEGA = 1e6


def family(run):
    return run["model"].split("_")[0]


def read_lines(path):
    return [json.loads(line) for line in pathlib.Path(path).read_text().splitlines() if line.strip()]


def markdown(titles, rows):
    print("| " + " | ".join(titles) + " |")
    print("|---" * len(titles) + "|")
    for row in rows:
        print("| " + " | ".join(row) + " |")
    print()


def print_targets(rows):
    """Ratio is how many times better than the target, so that 1 is just reached."""
    cells = []
    for row in rows:
        ratio = row.value / row.target if row.at_least else row.target / row.value
        cells.append((row.model, row.figure, f"{row.value:.3g} {row.unit}".rstrip(),
                      f"{'≥' if row.at_least else '≤'} {row.target:.3g}", f"{ratio:.2f}"))
    markdown(("model", "figure", "value", "target", "ratio"), cells)


# ---------------------------------------------------------------- where the time goes

def stage_figure(run, stage, seconds):
    rates = {"read": "bytes_read", "write text": "bytes_text", "write post": "bytes_post"}
    if stage in rates:
        return f"{run[rates[stage]] / MEGA:.1f} MB, {run[rates[stage]] / MEGA / seconds:.0f} MB/s"
    if stage == "assemble":
        return f"{1e6 * seconds / run['elements']:.2f} µs an element"
    if stage == "factorise" and run["direct"]:
        return f"{1e-9 * run['factorisation_flops'] / seconds:.1f} GFLOP/s"
    if stage == "factorise" and run["iterations"]:
        return f"{seconds * run['iterations'] / run['seconds']['iterate']:.1f} iterations"
    if stage == "iterate":
        speed = run["iteration_traffic"] * run["iterations"] / seconds
        return (f"{run['iterations']} iterations, {1e-9 * speed:.1f} GB/s, "
                f"{speed / run['read_bandwidth']:.2f} of reading")
    return ""


def print_stages(runs):
    for run in runs:
        total = sum(run["seconds"].values())
        print(f"{run['model']}: {run['equations']} equations, {run['elements']} elements, "
              f"{'skyline' if run['direct'] else 'sparse'}, {run['peak_memory'] / MEGA:.0f} MB\n")
        rows = [(stage, f"{1e3 * seconds:.2f}", f"{100 * seconds / total:.1f}",
                 stage_figure(run, stage, seconds))
                for stage, seconds in run["seconds"].items() if seconds > 0.0]
        rows.append(("total", f"{1e3 * total:.2f}", "100", ""))
        markdown(("stage", "ms", "%", "figure"), rows)


# ---------------------------------------------------------------- stages against their targets

def solver_rows(run, limits):
    seconds, name, kind = run["seconds"], run["model"], family(run)
    if run["direct"]:
        if limits.get("dgemm"):
            speed = run["factorisation_flops"] / seconds["factorise"]
            yield Row(name, "factorisation / DGEMM", speed / limits["dgemm"], "",
                      FACTORISATION[kind], True)
        allowed = 1.15 * run["storage"] + 20 * MEGA
    elif run["iterations"]:
        one = seconds["iterate"] / run["iterations"]
        yield Row(name, "iteration / reading", run["iteration_traffic"] / one / run["read_bandwidth"],
                  "", ITERATION[kind], True)
        yield Row(name, "factors", seconds["factorise"] / one, "iterations", 20.0, False)
        yield Row(name, "assembly", 1e6 * seconds["assemble"] / run["elements"], "µs an element",
                  1.5 * ASSEMBLY[kind], False)
        allowed = 1.15 * 16 * run["entries"] + 400 * run["nodes"]
    else:
        return
    yield Row(name, "peak memory", run["peak_memory"] / MEGA, "MB", allowed / MEGA, False)


def text_rows(run):
    seconds, name = run["seconds"], run["model"]
    written = seconds["write text"] + seconds["write post"]
    if seconds["read"] > SHORTEST:
        yield Row(name, "reading", run["bytes_read"] / MEGA / seconds["read"], "MB/s", 300.0, True)
    if written > SHORTEST:
        size = run["bytes_text"] + run["bytes_post"]
        yield Row(name, "writing", size / MEGA / written, "MB/s", 200.0, True)
        yield Row(name, "writing", run["words_written"] / MEGA / written, "million words/s", 25.0, True)


def print_kernels(runs, limits):
    print_targets([row for run in runs for row in (*solver_rows(run, limits), *text_rows(run))])


# ---------------------------------------------------------------- whole runs

def peer_target(run):
    for equations, target in PEER.get(family(run), ()):
        if run["equations"] <= equations:
            return target
    return PEER_AT_MOST


def fastest_peer(run):
    """The solver of the peer with the least time; None when none has succeeded."""
    times = {key: seconds for key, seconds in run["seconds"].items() if key in PEERS and seconds}
    return min(times, key=times.get) if times else None


def peer_cell(run):
    best = fastest_peer(run)
    if best:
        return f"{run['seconds'][best]:.2f} ({best})"
    return "; ".join(f"{key}: {failure}" for key, failure in run["failure"].items() if key in PEERS)


def print_whole(runs):
    cells = []
    for run in runs:
        ours, best = run["seconds"]["ours"], fastest_peer(run)
        cells.append((run["model"], str(run["equations"]), f"{ours:.2f}" if ours else run["failure"]["ours"],
                      peer_cell(run), f"{ours / run['seconds'][best]:.2f}" if ours and best else "",
                      f"≤ {peer_target(run):g}"))
    markdown(("model", "equations", "Morlen, s", "CalculiX, s", "ratio", "target"), cells)


# ---------------------------------------------------------------- the sparse direct solver

def direct_figures(run):
    """Figures by the names of their targets, each with its unit."""
    seconds, megabytes, best = run["seconds"], run["megabytes"], fastest_peer(run)
    if not seconds["direct"]:
        return
    yield "time", seconds["direct"], "s"
    yield "memory", megabytes["direct"] / 1000, "GB"
    if seconds.get("skyline"):
        yield "time / SkyLine", seconds["direct"] / seconds["skyline"], ""
        yield "memory / SkyLine", megabytes["direct"] / megabytes["skyline"], ""
    if best:
        yield "time / CalculiX", seconds["direct"] / seconds[best], ""


def print_direct(runs, phases):
    cells, rows = [], []
    for run in phases:
        run["model"] = run["model"].removesuffix("_Direct")
    for run in runs:
        keys = ("direct", "skyline", fastest_peer(run))
        cells.append((run["model"], str(run["equations"]),
                      *(f"{run['seconds'][key]:.2f} s, {run['megabytes'][key]:.0f} MB"
                        if run["seconds"].get(key) else run["failure"].get(key, "") for key in keys)))
        targets = DIRECT.get(run["model"], {})
        rows += [Row(run["model"], figure, value, unit, targets[figure], False)
                 for figure, value, unit in direct_figures(run) if figure in targets]
    markdown(("model", "equations", "Direct", "SkyLine", "CalculiX"), cells)
    if phases:
        print_phases(phases)
    rows += [Row(run["model"], "solver beside the libraries", part_beside(run), "", BESIDE_LIBRARIES, False)
             for run in phases]
    print_targets(rows)


def part_beside(run):
    seconds = run["seconds"]
    return 1.0 - sum(seconds[phase] for phase in PHASES) / seconds["solver"]


def print_phases(runs):
    cells = [(run["model"], *(f"{1e3 * run['seconds'][phase]:.0f}" for phase in (*PHASES, "solver")),
              f"{part_beside(run):.3f}") for run in runs]
    markdown(("model", *(f"{phase}, ms" for phase in (*PHASES, "solver")), "part beside"), cells)


# ---------------------------------------------------------------- growth

def slope(points):
    """Of the line through the logarithms, by least squares."""
    logs = [(math.log(x), math.log(y)) for x, y in points]
    mean_x, mean_y = (sum(values) / len(logs) for values in zip(*logs))
    above = sum((x - mean_x) * (y - mean_y) for x, y in logs)
    return above / sum((x - mean_x) ** 2 for x, _ in logs)


def growth_rows(kind, runs):
    direct = runs[0]["direct"]
    for stage in runs[0]["seconds"]:
        points = [(run["equations"], run["seconds"][stage]) for run in runs
                  if run["seconds"][stage] > SHORTEST]
        if len(points) < 3 or points[-1][0] < 4 * points[0][0]:
            continue
        exponents = {"factorise": GROWTH_OF_FACTORISATION if direct else {},
                     "iterate": GROWTH_OF_ITERATIONS}.get(stage, {})
        target = exponents.get(kind, 2.0 if direct and stage in ("factorise", "substitute") else 1.0)
        yield Row(kind + (", skyline" if direct else ""), stage, slope(points), "",
                  target + GROWTH_ALLOWANCE, False)


def print_growth(runs):
    series = collections.defaultdict(list)
    for run in sorted(runs, key=lambda run: run["equations"]):
        series[family(run), run["direct"]].append(run)
    print_targets([row for (kind, _), members in series.items() for row in growth_rows(kind, members)])


# ---------------------------------------------------------------- the skyline solver and CHOLMOD

def print_cholmod(pairs):
    """Further columns: CHOLMOD with the zeros in the blocks of coupled nodes, from which it finds a
    better order for some; and with our renumbering, since CHOLMOD orders in its analysis."""
    cells = []
    for pair in pairs:
        ours, theirs = sum(pair["skyline"]), sum(pair["cholmod"])
        cells.append((pair["model"], str(pair["equations"]), f"{1e3 * ours:.1f}", f"{1e3 * theirs:.1f}",
                      f"{ours / theirs:.2f}", f"≤ {CHOLMOD[family(pair)]:g}",
                      f"{ours / sum(pair['cholmod_blocks']):.2f}",
                      f"{(ours + pair['renumber']) / theirs:.2f}"))
    markdown(("model", "equations", "Morlen, ms", "CHOLMOD, ms", "ratio", "target",
              "with zeros", "with renumbering"), cells)


# ---------------------------------------------------------------- the choice and the refinement

def print_choice(runs):
    def cell(seconds):
        return f"{seconds:.2f}" if seconds else "-"

    cells = []
    for run in runs:
        keys = ("automatic", "skyline", "direct", "sparse")
        automatic, skyline, direct, sparse = (run["seconds"].get(key) for key in keys)
        best = min((seconds for seconds in (skyline, direct, sparse) if seconds), default=None)
        ratio = f"{automatic / best:.2f}" if automatic and best else "-"
        cells.append((run["model"], str(run["equations"]), run["chosen"], cell(automatic),
                      cell(skyline), cell(direct), cell(sparse), ratio, f"≤ {CHOICE:g}"))
    markdown(("model", "equations", "chosen", "Automatic, s", "SkyLine, s", "Direct, s", "Sparse, s",
              "ratio",
              "target"), cells)


def print_refinement(runs):
    cells = []
    for run in runs:
        total, refine = sum(run["seconds"].values()), run["seconds"]["refine"]
        cells.append((run["model"], str(run["equations"]), f"{1e3 * refine:.1f}", f"{1e3 * total:.1f}",
                      f"{refine / total:.3f}", f"≤ {REFINEMENT:g}"))
    markdown(("model", "equations", "refinement, ms", "run, ms", "part", "target"), cells)


# ---------------------------------------------------------------- refined shells

def print_shells(runs):
    cells = []
    for run in runs:
        for stage, refined in run["refined"].items():
            standard = run["standard"][stage]
            cells.append((run["model"], str(run["nodes"]), stage, f"{standard:.2f}", f"{refined:.2f}",
                          f"{refined / standard:.2f}", f"≤ {REFINED_SHELL[run['nodes']]:g}"))
    markdown(("model", "nodes", "stage", "standard, µs", "refined, µs", "ratio", "target, µs"), cells)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("table", choices=("stages", "kernels", "whole", "growth", "cholmod",
                                          "choice", "direct", "refinement", "shells"))
    parser.add_argument("runs")
    parser.add_argument("further", nargs="?")
    options = parser.parse_args()
    runs = read_lines(options.runs)
    further = read_lines(options.further) if options.further else []
    if options.table == "kernels":
        print_kernels(runs, further[0] if further else {})
    elif options.table == "direct":
        print_direct(runs, further)
    else:
        {"stages": print_stages, "whole": print_whole, "growth": print_growth,
         "cholmod": print_cholmod, "choice": print_choice,
         "refinement": print_refinement, "shells": print_shells}[options.table](runs)


if __name__ == "__main__":
    main()
