import assert from 'node:assert/strict';
import { test } from 'node:test';
import { inBatches } from '../../webapp/js/batches.js';

test('cuts a list into pieces of at most the size, in order and without loss', () => {
  const items = Array.from({ length: 1001 }, (_, i) => i);
  const batches = [...inBatches(items, 500)];
  assert.deepEqual(batches.map((batch) => batch.length), [500, 500, 1]);
  assert.deepEqual(batches.flat(), items);
  assert.deepEqual([...inBatches([], 500)], []);
});
