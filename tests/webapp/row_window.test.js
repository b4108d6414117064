import assert from 'node:assert/strict';
import { test } from 'node:test';
import { rowWindow } from '../../webapp/js/row_window.js';

const view = { viewHeight: 500, rowHeight: 50, count: 100_000 };

test('holds what is visible and a few rows around it, wherever in the list', () => {
  assert.deepEqual(rowWindow({ ...view, scrollTop: 0 }), { begin: 0, end: 16 });
  assert.deepEqual(rowWindow({ ...view, scrollTop: 2_500_000 }), { begin: 49_994, end: 50_016 });
  assert.deepEqual(rowWindow({ ...view, scrollTop: 4_999_500 }), { begin: 99_984, end: 100_000 });
});

test('stays within a list that is short, empty, or has become shorter', () => {
  assert.deepEqual(rowWindow({ ...view, scrollTop: 0, count: 3 }), { begin: 0, end: 3 });
  assert.deepEqual(rowWindow({ ...view, scrollTop: 0, count: 0 }), { begin: 0, end: 0 });
  assert.deepEqual(rowWindow({ ...view, scrollTop: 9_000, count: 3 }), { begin: 3, end: 3 });
  assert.deepEqual(rowWindow({ ...view, scrollTop: -80, count: 3 }), { begin: 0, end: 3 });
});
