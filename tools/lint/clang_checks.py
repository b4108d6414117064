"""The two checks that clang does: clang-tidy, and the analysis of thread-safety attributes."""

import hashlib
import os
import subprocess
from typing import List

from lint.compilation import Compilation, Unit
from lint.unit_checks import Check

THREAD_SAFETY_FOLDER = 'libs/zt_transfers/src/'
THREAD_SAFETY_OPTIONS = ['-fsyntax-only', '-Wno-everything', '-Wthread-safety', '-Wthread-safety-beta',
                         '-Werror=thread-safety', '-Werror=thread-safety-beta']
TIDY_CONFIGURATIONS = ('.clang-tidy', 'tests/.clang-tidy', 'bench/.clang-tidy')
TIDY_OPTIONS = [
#The default of 225000 triples the time; what the analyzer finds, it mostly finds at once.
    '-Xclang', '-analyzer-config', '-Xclang', 'max-nodes=50000',
#The commands are GCC 's: its warnings are the build' s matter.This one replaces a slow check.
    '-Wno-everything', '-Wreserved-identifier', '-Wno-unknown-warning-option']
#Options of GCC's commands that concern its output, with the argument that follows them.
OUTPUT_OPTIONS = ('-o', '-MF', '-MT', '-MQ')


def tidy_check(repository: str, database: str) -> Check:
    """`database` is the folder of compile_commands.json with one command for each source."""
    options = [f'--extra-arg={option}' for option in TIDY_OPTIONS]
    command = ['clang-tidy', '--quiet', '-p', database, *options]
    configurations = [os.path.join(repository, file) for file in TIDY_CONFIGURATIONS]
    rules = [_version('clang-tidy'), *command, *map(_content, configurations)]
    return Check('clang-tidy', lambda unit: [*command, os.path.join(repository, unit.file)],
                 '\n'.join(rules))


def thread_safety_check() -> Check:
    def command(unit: Unit) -> List[str]:
        return ['clang++', *_without_output(unit.arguments[1:]), *THREAD_SAFETY_OPTIONS]
    return Check('thread safety', command, '\n'.join([_version('clang++'), *THREAD_SAFETY_OPTIONS]))


def thread_safety_units(compilation: Compilation) -> List[Unit]:
    return [unit for file, unit in sorted(compilation.units.items())
            if file.startswith(THREAD_SAFETY_FOLDER)]


def _without_output(arguments: List[str]) -> List[str]:
    kept = []
    given = iter(arguments)
    for argument in given:
        if argument in OUTPUT_OPTIONS:
            next(given)
        elif argument not in ('-c', '-MD', '-MMD'):
            kept.append(argument)
    return kept


def _version(program: str) -> str:
    return subprocess.run([program, '--version'], stdout=subprocess.PIPE, encoding='utf-8',
                          check=True).stdout


def _content(path: str) -> str:
    with open(path, 'rb') as file:
        return hashlib.sha256(file.read()).hexdigest()
