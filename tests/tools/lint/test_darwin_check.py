"""Which sources are compiled with Darwin's headers."""

import os
import unittest

from lint.compilation import Compilation
from lint.darwin_check import darwin_units
from planted_tree import PlantedTree


class DarwinUnits(PlantedTree):
    def test_are_what_macos_compiles_and_need_headers_of_frameworks_only_if_there_are_any(self):
        self.plant({'build/compile_commands.json': '[]',
                    'src/app/a.cc': '', 'src/app/a.h': '', 'src/platform/linux/base/b.cc': '',
                    'src/platform/mac/base/c.cc': '',
                    'libs/zt_transfers/src/platform/mac/d.cc': '#include "platform/mac/d.h"\n',
                    'libs/zt_transfers/src/platform/mac/d.h': '#include <IOKit/pwr_mgt/IOPMLib.h>\n'})
        compilation = Compilation(self.repository, os.path.join(self.repository, 'build'))
        def files(headers):
            units = darwin_units(compilation, headers, os.path.join(self.repository, 'work'))
            return [unit.file for unit in units]
        always = ['src/app/a.cc', 'src/platform/mac/base/c.cc']
        self.assertEqual(files(None), always)
        self.assertEqual(files('/headers'), [*always, 'libs/zt_transfers/src/platform/mac/d.cc'])


if __name__ == '__main__':
    unittest.main()
