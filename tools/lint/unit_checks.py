"""Runs a checker over compilation units: several at a time, within a budget, unchanged ones not."""

import concurrent.futures
import re
import subprocess
import time
from typing import Callable, List, NamedTuple, Optional

from lint.clean_units import CleanUnits
from lint.compilation import Compilation, Unit

# Clang's count of all warnings, also of those that nobody asked for.
COUNTS = re.compile(r'^[0-9]+ (?:warning|error)s?(?: and [0-9]+ errors?)? generated\.\n', re.M)


class Check(NamedTuple):
    name: str
    command: Callable[[Unit], List[str]]
    # The checker's version and rules; if it changes, every unit is checked again.
    rules: str


class Outcome(NamedTuple):
    checked: int
    remembered: int
    not_reached: int
    findings: List[str]


class Run(NamedTuple):
    jobs: int
    # Seconds after which no further unit begins; None for no limit.
    budget: Optional[float]


def run_check(check: Check, compilation: Compilation, units: List[Unit], clean: CleanUnits,
              run: Run) -> Outcome:
    keys = {unit.file: compilation.content_key(unit, check.rules) for unit in units}
    due = [unit for unit in units if not clean.holds(unit.file, keys[unit.file])]
    end = time.monotonic() + run.budget if run.budget is not None else None

    def check_one(unit: Unit) -> Optional[str]:
        if end is not None and time.monotonic() >= end:
            return None
        done = subprocess.run(check.command(unit), cwd=unit.directory, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, encoding='utf-8', errors='replace',
                              check=False)
        if done.returncode == 0:
            clean.add(unit.file, keys[unit.file])
            return ''
        return COUNTS.sub('', done.stdout) or f'{unit.file}: {check.name} ended with {done.returncode}'

    reached, findings = 0, []
    with concurrent.futures.ThreadPoolExecutor(run.jobs) as pool:
        waiting = [pool.submit(check_one, unit) for unit in due]
        try:
            for future in concurrent.futures.as_completed(waiting):
                text = future.result()
                reached += text is not None
                if text:
                    print(text, flush=True)
                    findings.append(text)
        except KeyboardInterrupt:
            pool.shutdown(wait=False, cancel_futures=True)
            raise
    return Outcome(reached, len(units) - len(due), len(due) - reached, findings)
