import assert from 'node:assert/strict';
import { test } from 'node:test';
import {
  formatDate, formatExpiry, formatPercent, formatRate, formatSize, formatTimeLeft,
} from '../../webapp/js/format.js';

test('sizes have one digit below a hundred and never reach four digits', () => {
  const expected = [
    [0, '0 bytes'], [1, '1 byte'], [999, '999 bytes'], [1000, '1.0 KB'], [99_940, '99.9 KB'], [99_960, '100 KB'],
    [999_499, '999 KB'], [999_500, '1.0 MB'], [1_234_567_890, '1.2 GB'], [5e15, '5.0 PB'], [5e18, '5000 PB'],
  ];
  for (const [bytes, text] of expected) assert.equal(formatSize(bytes), text);
  assert.deepEqual([[999, 1000], [1000, 1000], [0, 0]].map(([done, all]) => formatPercent(done, all)), ['99 %', '100 %', '0 %']);
});

test('rates and remaining times use the largest useful unit and are empty if unknown', () => {
  assert.equal(formatRate(0), '');
  assert.equal(formatRate(12_300_000), '12.3 MB/s');
  const expected = [
    [0, ''], [Number.POSITIVE_INFINITY, ''], [0.2, '1 s left'], [59, '59 s left'], [60, '1 min left'],
    [90 * 60, '1 h 30 min left'], [3599, '1 h 0 min left'], [30 * 3600, '1 day left'], [72 * 3600, '3 days left'],
  ];
  for (const [seconds, text] of expected) assert.equal(formatTimeLeft(seconds), text);
});

test('near dates are more exact', () => {
  const now = new Date(2026, 4, 3, 15, 0).getTime();
  assert.equal(formatDate(new Date(2026, 4, 3, 9, 5).getTime(), now), 'Today 09:05');
  assert.equal(formatDate(new Date(2026, 4, 3, 0, 0).getTime(), now), 'Today 00:00');
  assert.equal(formatDate(new Date(2026, 4, 2, 23, 59).getTime(), now), 'Yesterday');
  assert.equal(formatDate(new Date(2026, 3, 30).getTime(), now), '30 Apr');
  assert.equal(formatDate(new Date(2025, 11, 31).getTime(), now), '31 Dec 2025');
});

test('an expiry uses the largest useful unit, and none is empty', () => {
  const expected = [[0, ''], [-5, 'Expired'], [1, 'Expires in 1 min'], [3599, 'Expires in 60 min'],
    [7200, 'Expires in 2 h'], [86400, 'Expires in 1 day'], [13 * 86400, 'Expires in 13 days']];
  for (const [seconds, text] of expected) {
    assert.equal(formatExpiry(seconds === 0 ? 0 : 1_700_000_000 + seconds, 1_700_000_000_000), text);
  }
});
