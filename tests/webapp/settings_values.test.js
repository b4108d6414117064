import assert from 'node:assert/strict';
import { test } from 'node:test';
import { fromForm, toForm } from '../../webapp/js/settings_values.js';

const CONFIGURATION = {
  maxConcurrentTransfers: 8, minMultipartSize: 64 * 1024 * 1024, maxTransferRetries: 5, verifyUploads: true,
  preventSleep: false, throttleBytesPerSecond: 2_500_000, serverTransferProgressInterval: 30,
};

test('what the form shows survives it, and nothing else is sent', () => {
  const { configuration, problems } = fromForm(toForm(CONFIGURATION));
  assert.deepEqual(problems, {});
  assert.deepEqual(configuration, {
    maxConcurrentTransfers: 8, maxTransferRetries: 5, verifyUploads: true, throttleBytesPerSecond: 2_500_000,
  });
});

test('no limit is a rate of 0, whatever the rate field holds', () => {
  const form = toForm({ ...CONFIGURATION, throttleBytesPerSecond: 0 });
  assert.equal(form.limited, false);
  const { configuration, problems } = fromForm({ ...form, throttle: 'x' });
  assert.equal(configuration.throttleBytesPerSecond, 0);
  assert.deepEqual(problems, {});
});

test('takes a comma for the decimal point and refuses what is no number in range', () => {
  const form = { ...toForm(CONFIGURATION), throttle: '0,5' };
  assert.equal(fromForm(form).configuration.throttleBytesPerSecond, 500_000);
  const { problems } = fromForm({
    ...form, throttle: '', maxConcurrentTransfers: '0', maxTransferRetries: '1.5',
  });
  assert.deepEqual(Object.keys(problems).sort(),
    ['maxConcurrentTransfers', 'maxTransferRetries', 'throttle']);
});
