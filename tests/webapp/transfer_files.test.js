import assert from 'node:assert/strict';
import { test } from 'node:test';
import { TransferFiles } from '../../webapp/js/transfer_files.js';

function described(count) {
  const files = new TransferFiles();
  files.describe(Array.from({ length: count }, (_, i) => ({ id: String(i), name: `${i}.txt`, folder: null, size: 10 })));
  return files;
}

test('counts files by state', () => {
  const files = described(3);
  assert.equal(files.countIn('UNKNWON'), 3);
  assert.equal(files.update('1', 'TRANSFERRING', 4, 10), true);
  assert.equal(files.update('1', 'TRANSFERRING', 4, 10), false);
  files.update('2', 'ERRORED', 0, 10);
  assert.deepEqual([files.countIn('UNKNWON'), files.countIn('TRANSFERRING'), files.countIn('ERRORED')], [1, 1, 1]);
  assert.equal(files.byId('1').done, 4);
  assert.equal(files.bytesDone, 4);
  assert.deepEqual(files.indicesIn('ERRORED'), [2]);
  assert.equal(files.indicesIn(null), null);
  files.update('2', 'ERRORED', 0, 0);
  assert.equal(files.bytes, 30, 'an event without a size keeps the known one');
});

test('keeps events that come before the description of their file', () => {
  const files = new TransferFiles();
  files.update('7', 'COMPLETED', 10, 10);
  files.update('1', 'TRANSFERRING', 1, 50);
  files.describe([
    { id: '7', name: 'late.txt', folder: 'a', size: 10, state: null },
    { id: '1', name: 'a', folder: null, size: 10, state: 'COMPLETED' },
  ]);
  assert.deepEqual([files.count, files.at(0).name, files.at(0).state], [2, 'late.txt', 'COMPLETED']);
  assert.equal(files.at(1).state, 'TRANSFERRING');
  files.update('1', 'SOMETHING', 0, 50);
  assert.deepEqual([files.countIn('UNKNWON'), files.bytes], [1, 60], 'unknown states are idle; the last size counts');
});

test('does not count a file that was left out, whatever events follow', () => {
  const files = described(2);
  files.update('0', 'ERRORED', 0, 10);
  files.leaveOut('0');
  files.leaveOut('0');
  files.update('0', 'TRANSFERRING', 1, 10);
  assert.equal(files.countIn('ERRORED'), 0);
  assert.equal(files.countIn('TRANSFERRING'), 0);
  assert.equal(files.bytes, 10);
  assert.equal(files.bytesDone, 0);
  assert.equal(files.wanted, 1);
});
