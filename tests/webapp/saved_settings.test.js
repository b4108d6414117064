import assert from 'node:assert/strict';
import { test } from 'node:test';

const stored = new Map();
globalThis.localStorage = {
  getItem: (key) => stored.get(key) ?? null, setItem: (key, value) => stored.set(key, value),
};

const { applySavedSettings, saveSettings } = await import('../../webapp/js/saved_settings.js');

/** Managers of the native side with its peculiar interval: its value is that of the rate's key. */
function nativeSide() {
  const calls = [];
  const manager = (name) => ({ request, onSuccess }) => {
    const { parameters } = JSON.parse(request);
    calls.push([name, parameters]);
    onSuccess(JSON.stringify(parameters));
  };
  globalThis.uploadManagerBridge_IPC = manager('upload');
  globalThis.downloadManagerBridge_IPC = manager('download');
  return calls;
}

test('gives the saved settings to both managers, the interval first and the rate after it', async () => {
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

test('without saved settings, or with garbage in their place, nothing is changed', async () => {
  const calls = nativeSide();
  for (const text of [null, '{']) {
    stored.clear();
    if (text) stored.set('zantrio.settings', text);
    await applySavedSettings();
  }
  assert.deepEqual(calls, []);
});
