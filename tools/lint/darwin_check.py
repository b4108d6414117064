"""Compiles the portable sources and those of macOS against the headers of that system (Darwin)."""

import os
import re
import shutil
import subprocess
from typing import List, Optional

from lint.compilation import Compilation, Unit
from lint.unit_checks import Check

# Folders of source roots; below them, what only another system compiles is left out.
ROOTS = ('src', 'libs/shown_text/src', 'libs/zt_transfers/src')
OTHER_SYSTEM = os.path.join('platform', 'linux')
# The zig compiler carries the headers of Darwin's C library, and a C++ library.
OPTIONS = ['-target', 'aarch64-macos.13.0-none', '-std=c++20', '-O0', '-Wall', '-Wextra', '-Werror']
INCLUDES = ['src', 'libs/shown_text/include', 'libs/zt_transfers/include', 'libs/zt_transfers/src', 'libs/cef_qt/include']
# Headers of the other packages, which are the same on every system. Their whole folder would bring
# this system's C library with it.
PACKAGE_FOLDERS = ('/usr/include', '/usr/include/jsoncpp', '/usr/include/x86_64-linux-gnu')
PACKAGES = ('GL', 'KHR', 'Poco', 'curl', 'json', 'openssl', 'pugiconfig.hpp', 'pugixml.hpp', 'sqlite3.h',
            'unicode')
# Headers of frameworks, which the compiler does not carry.
FRAMEWORK = re.compile(r'^\s*#\s*include\s+<((?:CoreFoundation|IOKit)/[^>]+)>', re.M)


def find_compiler(given: Optional[str]) -> Optional[str]:
    return shutil.which(given or 'zig')


def darwin_units(compilation: Compilation, headers: Optional[str], work: str) -> List[Unit]:
    """`headers` is a folder of frameworks' headers. Without it, what needs them is left out. In
    `work` are made links to the headers of packages."""
    folders = [headers, _packages(work)] if headers else [_packages(work)]
    arguments = [*(f'-I{folder}' for folder in INCLUDES), *(f'-isystem{folder}' for folder in folders)]
    units = [Unit(file, arguments, compilation.repository)
             for root in ROOTS for file in _sources(compilation.repository, root)]
    return [unit for unit in units if headers or not _needs_framework(compilation, unit)]


def darwin_check(compiler: str, work: str) -> Check:
    """The compiler makes objects, in `work`, as it cannot check only."""
    version = subprocess.run([compiler, 'version'], stdout=subprocess.PIPE, encoding='utf-8', check=True)

    def command(unit: Unit) -> List[str]:
        output = os.path.join(work, unit.file.replace(os.sep, '-') + '.o')
        return [compiler, 'c++', *OPTIONS, *unit.arguments, '-c', unit.file, '-o', output]
    return Check('darwin', command, '\n'.join([version.stdout, *OPTIONS]))


def _needs_framework(compilation: Compilation, unit: Unit) -> bool:
    for file in compilation.files_of(unit):
        with open(os.path.join(compilation.repository, file), encoding='utf-8') as text:
            if FRAMEWORK.search(text.read()):
                print(f'lint: darwin: {unit.file} is left out: no --darwin-headers')
                return True
    return False


def _sources(repository: str, root: str) -> List[str]:
    found = []
    for folder, _, names in os.walk(os.path.join(repository, root)):
        place = os.path.relpath(folder, repository)
        if OTHER_SYSTEM not in place:
            found += [os.path.join(place, name) for name in names if name.endswith('.cc')]
    return sorted(found)


def _packages(work: str) -> str:
    folder = os.path.join(work, 'include')
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(os.path.join(folder, 'OpenGL'))
    for name in PACKAGES:
        for place in PACKAGE_FOLDERS:
            if os.path.exists(os.path.join(place, name)):
                os.symlink(os.path.join(place, name), os.path.join(folder, name))
                break
    os.symlink('/usr/include/GL/gl.h', os.path.join(folder, 'OpenGL', 'gl.h'))
    return folder
