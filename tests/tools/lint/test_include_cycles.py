"""Planted source trees: the check finds each cycle and names the lines, and nothing else."""

import unittest

from lint.include_cycles import Root, check
from planted_tree import PlantedTree


class IncludeCycles(PlantedTree):
    def findings(self, **root):
        return check(self.repository, [Root('src', **root)])

    def test_accepts_folders_that_include_downwards_only(self):
        self.plant({
            'src/top/a.cc': '#include "middle/b.h"\n#include "bottom/c.h"\n',
            'src/middle/b.h': '#include "middle/own.h"\n#include "bottom/c.h"\n',
            'src/middle/own.h': '#include "middle/b.h"\n',  # Within one folder: no matter of folders.
            'src/bottom/c.h': '#include <top/a.h>\n#include "elsewhere/d.h"\n// #include "top/a.h"\n',
        })
        self.assertEqual(self.findings(), [])

    def test_tells_a_cycle_of_three_folders_with_the_lines_that_make_it(self):
        self.plant({
            'src/a/one.h': '// Text\n#include "b/two.h"\n',
            'src/b/two.h': '',
            'src/b/other.mm': '#import "b/c/three.h"\n',
            'src/b/c/three.h': '#include "../../a/one.h"\n',
            'src/a/user.cc': '#include "b/c/three.h"\n#include "d/leaf.h"\n',
            'src/d/leaf.h': '',
        })
        self.assertEqual(self.findings(), [
            'src: include cycle: a -> b/c -> a\n'
            '  src/a/user.cc:1: #include "b/c/three.h"\n'
            '  src/b/c/three.h:1: #include "a/one.h"',
            'src: include cycle: b -> b/c -> a -> b\n'
            '  src/b/other.mm:1: #include "b/c/three.h"\n'
            '  src/b/c/three.h:1: #include "a/one.h"\n'
            '  src/a/one.h:2: #include "b/two.h"',
        ])

    def test_tells_who_includes_the_top_from_outside_but_not_its_rooms(self):
        self.plant({
            'src/app/main.h': '#include "app/log/logger.h"\n',
            'src/app/log/logger.h': '',
            'src/files/walk.cc': '#include "app/log/logger.h"\n#include "app/main.h"\n',
        })
        self.assertEqual(self.findings(tops=('app',)), [
            'src: nothing may include app/: src/files/walk.cc:2: #include "app/main.h"',
        ])


if __name__ == '__main__':
    unittest.main()
