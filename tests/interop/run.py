"""Runs the cases: run.py PROBE [WORD…]; with words only the cases whose names contain one."""

import pathlib
import sys
import tempfile
import time
import traceback

import disks
import networks
import stores
import swift_store
from client import Failed


def run_case(case, probe):
    with tempfile.TemporaryDirectory(prefix="zantrio-interop-") as folder:
        begun = time.monotonic()
        try:
            case(probe, pathlib.Path(folder))
        except Failed as failure:
            print(f"FAILED {case.__name__}: {failure}", flush=True)
            return False
        except Exception:
            print(f"FAILED {case.__name__}:\n{traceback.format_exc()}", flush=True)
            return False
        print(f"ok     {case.__name__} ({time.monotonic() - begun:.1f} s)", flush=True)
        return True


def main():
    probe, words = str(pathlib.Path(sys.argv[1]).resolve()), sys.argv[2:]
    missing = disks.needs() + networks.needs() + swift_store.needs()
    if missing:
        print(f"interop: missing here: {', '.join(missing)}", file=sys.stderr)
        return 1
    cases = [
        case
        for case in disks.CASES + networks.CASES + stores.CASES
        if not words or any(word in case.__name__ for word in words)
    ]
    results = [run_case(case, probe) for case in cases]
    print(f"interop: {sum(results)} of {len(results)} passed")
    return 0 if all(results) and results else 1


sys.exit(main())
