import assert from 'node:assert/strict';
import { test } from 'node:test';
import { groupWords, rateWords, progressWords } from '../../webapp/js/transfer_words.js';

test('has a label for every state and phase', () => {
  const label = (phase, state, direction = 'upload') => groupWords({ direction, phase, state }).label;
  assert.equal(label('running', 'TRANSFERRING'), 'Sending');
  assert.equal(label('running', 'COMPLETED', 'download'), 'Downloaded');
  assert.equal(label('filling', 'PAUSED', 'download'), 'Preparing');
  assert.equal(label('running', 'something new'), 'Waiting');
  assert.equal(label('filling', 'UNKNWON'), 'Preparing');
  assert.equal(label('filling', 'ERRORED'), 'Failed');
  assert.equal(label('running', 'COMPLETED'), 'Finishing');
  assert.equal(label('delivered', 'COMPLETED'), 'Sent');
  assert.equal(label('cancelled', 'COMPLETED'), 'Cancelled');
  assert.equal(label('interrupted', 'UNKNWON'), 'Interrupted');
});

test('shows files and bytes, and the rate only during a transfer', () => {
  assert.equal(progressWords({ done: 12, count: 5000, bytesDone: 45e6, bytesTotal: 1.2e9 }),
    '12 of 5,000 files, 45.0 MB of 1.2 GB');
  assert.equal(progressWords({ done: 1, count: 1, bytesDone: 5, bytesTotal: 5, finished: true }), '1 file, 5 bytes');
  assert.equal(rateWords({ state: 'TRANSFERRING', rate: 1e6, secondsLeft: 30 }), '1.0 MB/s, 30 s left');
  assert.equal(rateWords({ state: 'TRANSFERRING', rate: 1e6, secondsLeft: 0 }), '1.0 MB/s');
  assert.equal(rateWords({ state: 'PAUSED', rate: 1e6, secondsLeft: 30 }), '');
});
