import assert from 'node:assert/strict';
import { test } from 'node:test';
import { TransferFiles } from '../../webapp/js/transfer_files.js';

function described(count) {
  const files = new TransferFiles();
  files.describe(Array.from({ length: count }, (_, i) => ({ id: String(i), name: `${i}.txt`, folder: null, size: 10 })));
  return files;
}

test('counts files by state as events come in', () => {
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
  assert.equal(files.bytes, 30);
});

test('events may come before the description of their file', () => {
  const files = new TransferFiles();
  files.update('7', 'COMPLETED', 10, 10);
  files.describe([{ id: '7', name: 'late.txt', folder: 'a', size: 10, state: null }]);
  assert.equal(files.count, 1);
  assert.deepEqual([files.at(0).name, files.at(0).state], ['late.txt', 'COMPLETED']);
});

test('a description of an earlier session does not undo an event', () => {
  const files = new TransferFiles();
  files.update('1', 'TRANSFERRING', 1, 10);
  files.describe([{ id: '1', name: 'a', folder: null, size: 10, state: 'COMPLETED' }]);
  assert.equal(files.at(0).state, 'TRANSFERRING');
});

test('a size that turns out otherwise is taken from the event', () => {
  const files = described(1);
  files.update('0', 'TRANSFERRING', 5, 50);
  assert.equal(files.bytes, 50);
});

test('a file that is left out counts nowhere and stays so', () => {
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

test('unknown states count as the idle one', () => {
  const files = described(1);
  files.update('0', 'SOMETHING', 0, 10);
  assert.equal(files.countIn('UNKNWON'), 1);
});

test('takes an event for each of 100,000 files', () => {
  const files = described(100_000);
  for (let i = 0; i < 100_000; i += 1) files.update(String(i), 'COMPLETED', 10, 10);
  assert.equal(files.countIn('COMPLETED'), 100_000);
  assert.equal(files.countIn('UNKNWON'), 0);
  assert.deepEqual(files.firstIn('COMPLETED', 2).map((file) => file.id), ['0', '1']);
});
