import assert from 'node:assert/strict';
import { test } from 'node:test';
import { FileList } from '../../webapp/js/file_list.js';
import { records } from './fakes.js';

test('keeps files in order with their totals', () => {
  const list = new FileList();
  assert.deepEqual(list.add(records(3)), { added: 3, duplicates: 0, unusable: 0 });
  assert.equal(list.bytes, 30);
  assert.equal(list.remove(1).name, '1.txt');
  assert.deepEqual(list.all().map((file) => file.name), ['0.txt', '2.txt']);
  assert.equal(list.bytes, 20);
  assert.equal(list.remove(7), null);
});

test('adds a file once, again after its removal, and no invalid records', () => {
  const list = new FileList();
  assert.deepEqual(list.add([{}, null, { name: 'a' }, { fileURL: 'file:///a' }, ...records(2)]),
    { added: 2, duplicates: 0, unusable: 4 });
  assert.deepEqual(list.add(records(3)), { added: 1, duplicates: 2, unusable: 0 });
  list.remove(0);
  assert.equal(list.add(records(1)).added, 1);
  list.clear();
  assert.equal(list.bytes, 0);
  assert.equal(list.add(records(3)).added, 3);
});
