import assert from 'node:assert/strict';
import { test } from 'node:test';
import {
  failureWords, fileWords, groupWords, rateWords, progressWords,
} from '../../webapp/js/transfer_words.js';

test('has a label for every state and phase', () => {
  const label = (phase, state) => groupWords({ phase, state }).label;
  assert.equal(label('running', 'TRANSFERRING'), 'Sending');
  assert.equal(label('running', 'UNKNWON'), 'Waiting');
  assert.equal(label('running', 'something new'), 'Waiting');
  assert.equal(label('filling', 'UNKNWON'), 'Preparing');
  assert.equal(label('filling', 'ERRORED'), 'Failed');
  assert.equal(label('running', 'COMPLETED'), 'Finishing');
  assert.equal(label('delivered', 'COMPLETED'), 'Sent');
  assert.equal(label('cancelled', 'COMPLETED'), 'Cancelled');
  assert.equal(label('interrupted', 'UNKNWON'), 'Interrupted');
});

test('has own texts for downloads, which the page pauses while it fills them', () => {
  const label = (phase, state) => groupWords({ direction: 'download', phase, state }).label;
  assert.equal(label('running', 'TRANSFERRING'), 'Downloading');
  assert.equal(label('running', 'COMPLETED'), 'Downloaded');
  assert.equal(label('filling', 'PAUSED'), 'Preparing');
  assert.equal(label('running', 'PAUSED'), 'Paused');
  assert.equal(fileWords({ state: 'COMPLETED' }, { direction: 'download' }), 'Saved');
  assert.equal(fileWords({ state: 'UNKNWON' }, { direction: 'download', known: false }), '');
  assert.equal(progressWords({ done: 0, count: 3, bytesDone: 5, bytesTotal: 10, known: false }), '5 bytes of 10 bytes');
  assert.match(failureWords({ direction: 'download', names: ['a'], total: 1, phase: 'running' }),
    /could not be downloaded: “a”\. Check that there is room/);
  assert.match(failureWords({ direction: 'download', names: ['a'], total: 1, timeLimitOver: true }), /time .* is over/);
});

test('shows the percentage of a file being sent, and the state of any other', () => {
  assert.equal(fileWords({ state: 'TRANSFERRING', done: 1, size: 4 }), '25 %');
  assert.equal(fileWords({ state: 'UNKNWON' }), 'Waiting');
  assert.equal(fileWords({ state: 'ERRORED', leftOut: true }), 'Left out');
});

test('shows files and bytes, and the rate only during a transfer', () => {
  assert.equal(progressWords({ done: 12, count: 5000, bytesDone: 45e6, bytesTotal: 1.2e9 }),
    '12 of 5,000 files, 45.0 MB of 1.2 GB');
  assert.equal(progressWords({ done: 1, count: 1, bytesDone: 5, bytesTotal: 5, finished: true }), '1 file, 5 bytes');
  assert.equal(rateWords({ state: 'TRANSFERRING', rate: 1e6, secondsLeft: 30 }), '1.0 MB/s, 30 s left');
  assert.equal(rateWords({ state: 'TRANSFERRING', rate: 1e6, secondsLeft: 0 }), '1.0 MB/s');
  assert.equal(rateWords({ state: 'PAUSED', rate: 1e6, secondsLeft: 30 }), '');
});

test('names failed files and a remedy', () => {
  const one = failureWords({ names: ['a.txt'], total: 1, phase: 'running' });
  assert.match(one, /^1 file could not be sent: “a\.txt”\. Check that it is still there/);
  const many = failureWords({ names: ['a', 'b', 'c'], total: 1200, phase: 'running' });
  assert.match(many, /“a”, “b”, “c” and 1,197 more/);
  assert.match(failureWords({ names: ['a'], total: 2, phase: 'running', reachable: false }),
    /^2 files could not be sent; they are tried again as soon as/);
  assert.match(failureWords({ names: [], total: 0, phase: 'running' }), /connection to the service/);
});
