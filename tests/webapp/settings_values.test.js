import assert from 'node:assert/strict';
import { test } from 'node:test';
import { fromForm, toForm } from '../../webapp/js/settings_values.js';

const CONFIGURATION = {
  maxConcurrentTransfers: 8, minMultipartSize: 64_000_000, maxTransferRetries: 5, verifyUploads: true,
  preventSleep: false, throttleBytesPerSecond: 2_500_000, serverTransferProgressInterval: 30,
};
const BOTH = { upload: CONFIGURATION, download: { ...CONFIGURATION, throttleBytesPerSecond: 0 } };

test('converts configurations to the form and back', () => {
  const { changes, problems } = fromForm(toForm(BOTH));
  assert.deepEqual(problems, {});
  assert.deepEqual(changes, {
    common: {
      maxConcurrentTransfers: 8, maxTransferRetries: 5, minMultipartSize: 64_000_000, verifyUploads: true, preventSleep: false,
    },
    upload: { throttleBytesPerSecond: 2_500_000 },
    download: { throttleBytesPerSecond: 0 },
    interval: 30,
  });
});

test('accepts a decimal comma and refuses values out of range', () => {
  const form = { ...toForm(BOTH), throttle: '0,5' };
  assert.equal(fromForm(form).changes.upload.throttleBytesPerSecond, 500_000);
  const { problems } = fromForm({
    ...form, throttle: '', maxConcurrentTransfers: '0', maxTransferRetries: '1.5', minMultipartSize: '4', progressInterval: '-1',
  });
  assert.deepEqual(Object.keys(problems).sort(),
    ['maxConcurrentTransfers', 'maxTransferRetries', 'minMultipartSize', 'progressInterval', 'throttle']);
});
