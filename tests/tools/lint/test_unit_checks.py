"""The checks of single sources: planted faults are found, and what changed is checked again."""

import json
import os
import unittest

from lint.clang_checks import thread_safety_check
from lint.clean_units import CleanUnits
from lint.compilation import Compilation
from lint.unit_checks import Run, run_check
from planted_tree import PlantedTree

SOURCES = os.path.join(os.environ['ZANTRIO_SOURCE'], 'libs', 'zt_transfers', 'src')
COUNTER = '''#include "base/mutex.h"
using namespace zt_transfers;
class CCounter {
 public:
  void add() { %s ++count_; }
  bool wait() {
    CMutexLock lock(mutex_);
    changed_.wait(mutex_, [this]() REQUIRES(mutex_) { return count_ > 0; });
    lock.unlock();
    return %s;
  }
 private:
  CMutex mutex_;
  CConditionVariable changed_;
  int count_ GUARDED_BY(mutex_) = 0;
};
'''


class UnitChecks(PlantedTree):
    def run_over(self, files, budget=None):
        """The outcome of the thread-safety check over what is planted."""
        self.plant(files)
        commands = [{'directory': self.repository, 'file': file,
                     'command': f'c++ -std=c++20 -I{SOURCES} -I. -o {file}.o -c {file}'}
                    for file in files if file.endswith('.cc')]
        self.plant({'build/compile_commands.json': json.dumps(commands)})
        compilation = Compilation(self.repository, os.path.join(self.repository, 'build'))
        clean = CleanUnits(os.path.join(self.repository, 'build', 'clean'))
        units = sorted(compilation.units.values())
        return run_check(thread_safety_check(), compilation, units, clean, Run(2, budget))

    def test_accepts_members_that_are_used_with_their_mutex_held(self):
        outcome = self.run_over({'good.cc': COUNTER % ('const CMutexLock lock(mutex_);', 'true')})
        self.assertEqual((outcome.checked, outcome.findings), (1, []))

    def test_finds_a_member_that_is_used_without_its_mutex(self):
        outcome = self.run_over({'never.cc': COUNTER % ('', 'true'),
                                 'late.cc': COUNTER % ('const CMutexLock lock(mutex_);', 'count_ > 0')})
        self.assertEqual(len(outcome.findings), 2)
        for finding in outcome.findings:
            self.assertIn("'count_' requires holding mutex 'mutex_'", finding)

    def test_checks_again_only_what_changed_or_includes_a_change(self):
        tree = {'a.cc': '#include "a.h"\n', 'a.h': '#include "deep.h"\n', 'deep.h': '// One\n',
                'b.cc': 'int b;\n'}
        self.assertEqual(self.run_over(tree).checked, 2)
        again = self.run_over(tree)
        self.assertEqual((again.checked, again.remembered), (0, 2))
        changed = self.run_over({**tree, 'deep.h': '// Two\n'})
        self.assertEqual((changed.checked, changed.remembered), (1, 1))

    def test_checks_again_what_had_findings_and_tells_what_the_budget_left_out(self):
        tree = {'bad.cc': COUNTER % ('', 'true')}
        self.assertEqual(len(self.run_over(tree).findings), 1)
        self.assertEqual(len(self.run_over(tree).findings), 1)
        outcome = self.run_over(tree, budget=0)
        self.assertEqual((outcome.not_reached, outcome.findings), (1, []))


if __name__ == '__main__':
    unittest.main()
