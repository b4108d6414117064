"""The programs and libraries of the bundle carry the system's and the compiler's protections."""

import os
import pathlib
import re
import subprocess
import unittest

BUNDLE = pathlib.Path(os.environ['ZANTRIO_BUNDLE'])
ENDBR64 = b'\xf3\x0f\x1e\xfa'  # where an indirect jump may land


def readelf(option: str, file: pathlib.Path) -> str:
    return subprocess.run(['readelf', '-W', option, file], check=True, capture_output=True,
                          text=True, env={**os.environ, 'LC_ALL': 'C'}).stdout


def segment(name: str, file: pathlib.Path) -> str:
    return next((line for line in readelf('-l', file).splitlines() if name in line.split()), '')


def imports(name: str, file: pathlib.Path) -> bool:
    return bool(re.search(rf'UND {name}\b', readelf('--dyn-syms', file)))


class HardeningTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.programs = sorted((BUNDLE / 'bin').iterdir())
        cls.files = cls.programs + sorted((BUNDLE / 'lib').glob('*.so*'))
        assert len(cls.programs) == 2 and len(cls.files) > 2, 'the bundle is not built'

    def holds(self, files, check):
        self.assertEqual([file.name for file in files if not check(file)], [])

    def test_nothing_that_the_loader_wrote_can_be_written_later(self):
        self.holds(self.files, lambda file: segment('GNU_RELRO', file))
        self.holds(self.files, lambda file: re.search(
            r'\(FLAGS\).*BIND_NOW|\(FLAGS_1\).*NOW', readelf('-d', file)))

    def test_no_stack_is_executable(self):
        self.holds(self.files, lambda file: segment('GNU_STACK', file).split()[-2] == 'RW')

    def test_programs_are_loaded_anywhere(self):
        self.holds(self.programs, lambda file: re.search(r'\(FLAGS_1\).*PIE', readelf('-d', file)))

    def test_functions_check_their_frames(self):
        self.holds(self.files, lambda file: imports(r'__stack_chk_fail', file))

    @unittest.skipUnless(os.environ['ZANTRIO_FORTIFIED'] == '1', 'only in optimised builds')
    def test_calls_of_the_c_library_check_their_sizes(self):
        self.holds(self.large(), lambda file: imports(r'__(?!stack)\w+_chk', file))

    @unittest.skipUnless(os.uname().machine == 'x86_64', 'other processors mark nothing')
    def test_indirect_jumps_land_on_marks(self):
        self.holds(self.large(), lambda file: file.read_bytes().count(ENDBR64) > 1000)

    def large(self):
        return [file for file in self.files if file.stat().st_size > 1 << 20]


if __name__ == '__main__':
    unittest.main()
