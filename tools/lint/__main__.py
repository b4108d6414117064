"""script/lint: the checks that need no running program. See --help."""

import argparse
import json
import os
import subprocess
import sys
import time
from typing import List

from lint import include_cycles
from lint.changes import BaseUnknown, base, changed_files
from lint.clang_checks import thread_safety_check, thread_safety_units, tidy_check
from lint.clean_units import CleanUnits
from lint.compilation import Compilation, Unit
from lint.darwin_check import darwin_check, darwin_units, find_compiler
from lint.unit_checks import Check, Run, run_check

CHECKS = ('format', 'cycles', 'thread-safety', 'tidy', 'darwin')
DESCRIPTION = """\
Checks the sources without running them; without a name, all checks:

  format         script/format --check
  cycles         the folders of each source root include each other in one direction only
  thread-safety  clang's analysis of the lock annotations in libs/zt_transfers
  tidy           clang-tidy
  darwin         what macOS compiles, with the zig compiler, which carries that system's headers: the
                 one of --zig or on the PATH. Without a compiler the check is skipped. What includes
                 headers of frameworks is checked if --darwin-headers names a folder that has them.

What was clean and has not changed since is not checked again. Exits with 1 if there are findings.
"""


def parse(arguments: List[str]) -> argparse.Namespace:
    parser = argparse.ArgumentParser(prog='script/lint', description=DESCRIPTION,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('checks', nargs='*', metavar='CHECK', help=', '.join(CHECKS))
    parser.add_argument('--changed', nargs='?', const='', metavar='BASE',
                        help='tidy only what changed since BASE, and what includes it; without '
                        'BASE: $LINT_BASE, or the nearer of the last release tag (v*) and the '
                        'commit in .ci/passed; without any of these the whole tree')
    parser.add_argument('--under', action='append', metavar='PATH',
                        help='tidy only sources below PATH; may be repeated')
    parser.add_argument('--budget', type=float, metavar='SECONDS',
                        help='begin no source after this time; prints how many were not reached')
    parser.add_argument('--zig', default=os.environ.get('LINT_ZIG'), metavar='PROGRAM',
                        help='the compiler for "darwin"; without it $LINT_ZIG')
    parser.add_argument('--darwin-headers', default=os.environ.get('LINT_DARWIN_HEADERS'), metavar='FOLDER',
                        help='has CoreFoundation/*.h and IOKit/*.h; without it $LINT_DARWIN_HEADERS')
    parser.add_argument('-j', '--jobs', type=int, default=os.cpu_count(), metavar='N')
    options = parser.parse_args(arguments)
    for name in options.checks:
        if name not in CHECKS:
            parser.error(f'there is no check "{name}"; there are: {", ".join(CHECKS)}')
    return options


def main(repository: str) -> int:
    options = parse(sys.argv[1:])
    build = os.path.join(repository, 'build', 'default')
    passed = True
    for name in options.checks or CHECKS:
        begin = time.monotonic()
        if name == 'format':
            good = subprocess.run(['script/format', '--check'], cwd=repository).returncode == 0
        elif name == 'cycles':
            findings = include_cycles.check(repository)
            print('\n'.join(findings), end='\n' if findings else '')
            good = not findings
        elif name == 'darwin' and not find_compiler(options.zig):
            print(f'lint: darwin skipped: there is no compiler {options.zig or "zig on the PATH"}')
            continue
        else:
            good = check_units(name, repository, build, options)
        print(f'lint: {name} {"passed" if good else "FAILED"} ({time.monotonic() - begin:.0f} s)',
              flush=True)
        passed = passed and good
    return 0 if passed else 1


def check_units(name: str, repository: str, build: str, options: argparse.Namespace) -> bool:
    compilation = Compilation(repository, build)
    check: Check
    if name == 'thread-safety':
        units = thread_safety_units(compilation)
        check = thread_safety_check()
    elif name == 'darwin':
        work = os.path.join(build, 'lint', 'darwin')
        units = darwin_units(compilation, options.darwin_headers, work)
        check = darwin_check(find_compiler(options.zig), work)
    else:
        units = tidy_units(repository, compilation, options)
        check = tidy_check(repository, write_database(build, compilation))
    clean = CleanUnits(os.path.join(build, 'lint', name + '.clean'))
    outcome = run_check(check, compilation, units, clean, Run(options.jobs, options.budget))
    print(f'lint: {name}: {outcome.checked} sources checked, {outcome.remembered} unchanged since '
          f'they were clean, {outcome.not_reached} not reached, {len(outcome.findings)} with findings')
    return not outcome.findings


def tidy_units(repository: str, compilation: Compilation, options: argparse.Namespace) -> List[Unit]:
    """Newest changes first; sources that changed themselves before those that include changes."""
    since = None
    if options.changed is not None:
        since = base(repository, options.changed)
        print(f'lint: tidy: changes since {since}' if since else
              'lint: tidy: no known base: the whole tree, newest changes first')
    changed = changed_files(repository, since)
    units = [compilation.units[file] for file in changed if file in compilation.units]
    if since:
        touched, direct = set(changed), {unit.file for unit in units}
        units += [unit for file, unit in sorted(compilation.units.items())
                  if file not in direct and touched & compilation.files_of(unit)]
    under = [os.path.join(os.path.normpath(path), '') for path in options.under or ()]
    return [unit for unit in units if not under or unit.file.startswith(tuple(under))]


def write_database(build: str, compilation: Compilation) -> str:
    """One command for each source: clang-tidy checks a source once for every command it finds."""
    folder = os.path.join(build, 'lint')
    os.makedirs(folder, exist_ok=True)
    entries = [{'file': os.path.join(compilation.repository, unit.file), 'directory': unit.directory,
                'arguments': unit.arguments} for unit in compilation.units.values()]
    with open(os.path.join(folder, 'compile_commands.json'), 'w', encoding='utf-8') as file:
        json.dump(entries, file)
    return folder


if __name__ == '__main__':
    try:
        sys.exit(main(os.getcwd()))
    except BaseUnknown as error:
        print(f'lint: {error}', file=sys.stderr)
        sys.exit(2)
    except KeyboardInterrupt:
        sys.exit(130)
