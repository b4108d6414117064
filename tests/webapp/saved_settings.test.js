import assert from 'node:assert/strict';
import { test } from 'node:test';
import { stored } from './libraries.js';
import { until } from './fakes.js';

const { applySavedSettings, changeSettings, saveSettings } = await import('../../webapp/js/saved_settings.js');

/** The native side's managers, whose interval is read from the rate's key. */
function nativeSide(configuration = {}) {
  const calls = [];
  const manager = (name) => {
    const now = { serverTransferProgressInterval: 0, throttleBytesPerSecond: 0, ...configuration };
    return ({ request, onSuccess }) => {
      const { method, parameters } = JSON.parse(request);
      if (method === 'setConfiguration') {
        calls.push([name, parameters]);
        Object.assign(now, parameters);
        if ('serverTransferProgressInterval' in parameters) {
          now.serverTransferProgressInterval = parameters.throttleBytesPerSecond ?? 0;
        }
      }
      setTimeout(() => onSuccess(JSON.stringify(now)), 0);
    };
  };
  globalThis.uploadManagerBridge_IPC = manager('upload');
  globalThis.downloadManagerBridge_IPC = manager('download');
  return calls;
}

test('applies the saved settings to both managers, the interval before the rate', async () => {
  const calls = nativeSide();
  saveSettings({
    common: { maxConcurrentTransfers: 3 }, upload: { throttleBytesPerSecond: 7 }, download: { throttleBytesPerSecond: 0 }, interval: 20,
  });
  await applySavedSettings();
  assert.deepEqual(calls, [
    ['upload', { serverTransferProgressInterval: 20, throttleBytesPerSecond: 20 }],
    ['upload', { maxConcurrentTransfers: 3, throttleBytesPerSecond: 7 }],
    ['download', { maxConcurrentTransfers: 3, throttleBytesPerSecond: 0 }],
  ]);
});

test('sends interval and rate in one turn, and no interval that has not changed', async () => {
  const calls = nativeSide();
  const changing = changeSettings({ upload: { throttleBytesPerSecond: 7 }, interval: 20 });
  await until(() => calls.length > 0);
  assert.equal(calls.length, 2);
  const { upload } = await changing;
  assert.deepEqual(upload, { serverTransferProgressInterval: 20, throttleBytesPerSecond: 7 });
  calls.length = 0;
  await changeSettings({ upload: { throttleBytesPerSecond: 8 }, interval: 20 });
  assert.deepEqual(calls[0], ['upload', { throttleBytesPerSecond: 8 }]);
});

test('only enables reports if no valid settings are saved', async () => {
  for (const text of [null, '{']) {
    const calls = nativeSide({ throttleBytesPerSecond: 500 });
    stored.clear();
    if (text) stored.set('zantrio.settings', text);
    await applySavedSettings();
    assert.deepEqual(calls, [
      ['upload', { serverTransferProgressInterval: 10, throttleBytesPerSecond: 10 }],
      ['upload', { throttleBytesPerSecond: 500 }],
      ['download', {}],
    ]);
  }
});
