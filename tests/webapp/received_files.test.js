import assert from 'node:assert/strict';
import { test } from 'node:test';
import { ReceivedFiles } from '../../webapp/js/received_files.js';

const list = (count) => new ReceivedFiles(Array.from({ length: count }, (_, i) => (
  { id: String(i + 1), path: `Folder ${i % 10}/Note ${i}.txt`, size: 10 })));
const ids = (files) => files.wanted().map((file) => file.id);

test('chooses single files and ranges with their sums, and wants all files if none is chosen', () => {
  assert.equal(list(3).chosenOfShown(), 'none');
  assert.deepEqual(ids(list(3)), ['1', '2', '3']);
  const files = list(20);
  files.choose(3, true);
  files.choose(3, true);
  files.chooseRange(7, 5, true);
  assert.deepEqual([files.chosenCount, files.chosenBytes, files.bytes], [4, 40, 200]);
  files.choose(6, false);
  assert.deepEqual(ids(files), ['4', '6', '8']);
  assert.equal(files.chosenOfShown(), 'some');
});

test('finds files by words of their name and folder, and chooses only shown files', () => {
  const files = list(100);
  files.choose(0, true);
  files.filter(' FOLDER 3/  .txt');
  assert.equal(files.count, 10);
  assert.equal(files.at(1).name, 'Note 13.txt');
  assert.equal(files.chosenOfShown(), 'none');
  files.chooseShown(true);
  assert.equal(files.chosenOfShown(), 'all');
  files.filter('nothing has this');
  assert.equal(files.count, 0);
  files.chooseShown(true);
  files.filter('');
  assert.deepEqual([files.count, files.chosenCount], [100, 11]);
  assert.deepEqual(ids(files).slice(0, 3), ['1', '4', '14']);
});
