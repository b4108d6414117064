import assert from 'node:assert/strict';
import { test } from 'node:test';
import { FrameBatcher } from '../../webapp/js/frame_batcher.js';

test('passes on changes made during a flush with the next frame', () => {
  const frames = [];
  const flushed = [];
  const batcher = new FrameBatcher((changed) => {
    flushed.push([...changed]);
    if (flushed.length === 1) batcher.mark('again');
  }, (frame) => frames.push(frame));
  batcher.mark('first');
  frames.shift()();
  frames.shift()();
  assert.deepEqual(flushed, [['first'], ['again']]);
  assert.equal(frames.length, 0);
});
