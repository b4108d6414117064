import assert from 'node:assert/strict';
import { test } from 'node:test';
import { fromForm, toForm } from '../../webapp/js/settings_values.js';

const CONFIGURATION = {
  maxConcurrentTransfers: 8, minMultipartSize: 64 * 1024 * 1024, maxTransferRetries: 5, verifyUploads: true,
  preventSleep: false, throttleBytesPerSecond: 2_500_000, serverTransferProgressInterval: 30,
};

test('a configuration survives the form, without the interval that only the application sets', () => {
  const { serverTransferProgressInterval, ...rest } = CONFIGURATION;
  const { configuration, problems } = fromForm(toForm(CONFIGURATION));
  assert.deepEqual(problems, {});
  assert.deepEqual(configuration, rest);
  assert.ok(serverTransferProgressInterval > 0);
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
    ...form, throttle: '', maxConcurrentTransfers: '0', maxTransferRetries: '1.5', minMultipartSize: 'many',
  });
  assert.deepEqual(Object.keys(problems).sort(),
    ['maxConcurrentTransfers', 'maxTransferRetries', 'minMultipartSize', 'throttle']);
});
