"""Compares the transfer library with other programs; bench/README.md explains the output."""

import argparse
import contextlib
import pathlib
import shutil
import signal
import statistics
import sys
import tempfile

import loads
import measure
import programs
from harness import process
from web_server import WebServer


def parse(arguments):
    parser = argparse.ArgumentParser(
        prog="bench_transfers",
        description="Compares the transfer library with curl, aria2c and rclone on an nginx on loopback.")
    parser.add_argument("--turns", type=int, default=5, help="how often each does each work (5)")
    parser.add_argument("--scale", type=float, default=1,
                        help="a part of the work, as 0.1: smaller or fewer files (1)")
    parser.add_argument("--connections", type=int, default=8, help="how many each may use (8)")
    parser.add_argument("--only", choices=("down", "up"), help="one direction")
    parser.add_argument("--folder", default="/dev/shm",
                        help="where the files are made (/dev/shm: in memory)")
    parser.add_argument("--limit", type=float, default=600, help="seconds for one run (600)")
    parser.add_argument("--library-program", required=True, help=argparse.SUPPRESS)
    return parser.parse_args(arguments)


class Comparison:
    """Runs all programs in turns in one temporary folder."""

    def __init__(self, options, folder):
        self._options = options
        self._folder = folder
        self._source, self._target = folder / "source", folder / "target"
        self._source.mkdir()
        self._target.mkdir()
        library, *others = programs.compared_with(options.library_program)
        if not library.available():
            raise process.Failure(f"{options.library_program} has not been built")
        self._programs = [library, *(program for program in others if program.available())]
        self.failures = []

    def run(self, server):
        for load in loads.standard(self._options.scale):
            files = loads.make(load, self._source)
            for direction in ("down", "up"):
                if self._options.only in (None, direction):
                    self._compare(server, load, files, direction)
            self._empty(self._source)

    def _compare(self, server, load, files, direction):
        taking_part = [program for program in self._programs if program.fits(direction, files)]
        costs = {program.name: [] for program in taking_part}
        for turn in range(self._options.turns):
            # Each turn begins with a different program.
            first = turn % len(taking_part)
            for program in taking_part[first:] + taking_part[:first]:
                if program.name not in costs:
                    continue
                try:
                    costs[program.name].append(self._turn(server, program, files, direction))
                except process.Failure as failure:
                    self.failures.append(f"{load.name}, {direction}: {failure}")
                    del costs[program.name]
                    self._empty(self._target)
        print_row(load, direction, costs, self._programs[0].name)

    def _turn(self, server, program, files, direction):
        url = f"{server.url}{direction}/"
        folder = self._target if direction == "down" else self._source
        with tempfile.TemporaryDirectory(dir=self._folder) as work:
            work = pathlib.Path(work)
            command, given = program.command(direction, url, folder, files, work,
                                             self._options.connections)
            try:
                cost = measure.run(command, given, work, self._options.limit)
            except process.Failure as failure:
                raise process.Failure(f"{program.name}: {failure}{program.explain(work)}") from None
        fault = loads.fault_in(files, self._target)
        if fault:
            raise process.Failure(f"{program.name}: {fault}")
        self._empty(self._target)
        return cost

    @staticmethod
    def _empty(folder):
        for entry in folder.iterdir():
            shutil.rmtree(entry) if entry.is_dir() else entry.unlink()


def print_row(load, direction, costs, library):
    """Prints medians of each program, and of each turn's ratio of the library to the others."""
    print(f"{load.name}, {direction}: {load.count:,} files, {load.count * load.size >> 20:,} MiB")
    print(f"  {'':14}{'seconds':>9}{'CPU s':>9}{'MiB':>8}     ours by theirs: wall, CPU, memory")
    for name, turns in costs.items():
        wall, cpu, memory = (statistics.median(getattr(cost, field) for cost in turns)
                             for field in ("wall", "cpu", "memory"))
        ratios = ""
        if library in costs and name != library:
            ratios = "".join(f"{ratio(costs[library], turns, field):9.2f}"
                             for field in ("wall", "cpu", "memory"))
        print(f"  {name:14}{wall:9.2f}{cpu:9.2f}{memory:8.0f}     {ratios}", flush=True)


def ratio(ours, theirs, field):
    return statistics.median(getattr(our, field) / max(getattr(their, field), 0.001)
                             for our, their in zip(ours, theirs))


def main(arguments):
    options = parse(arguments)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    try:
        with contextlib.ExitStack() as cleanup:
            folder = pathlib.Path(cleanup.enter_context(
                tempfile.TemporaryDirectory(prefix="zantrio-bench-", dir=options.folder)))
            comparison = Comparison(options, folder)
            server = WebServer(folder / "server", folder / "source", folder / "target")
            cleanup.callback(server.stop)
            comparison.run(server)
            for failure in comparison.failures:
                print(f"bench_transfers: {failure}", file=sys.stderr)
            return 1 if comparison.failures else 0
    except (process.Failure, OSError) as failure:
        print(f"bench_transfers: {failure}", file=sys.stderr)
        return 1
    except KeyboardInterrupt:
        return 130


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
