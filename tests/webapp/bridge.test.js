import assert from 'node:assert/strict';
import { test } from 'node:test';
import { BridgeError, query } from '../../webapp/js/bridge.js';

/** A window with one bridge that answers by the given function. */
function windowWith(answer) {
  const requests = [];
  return { requests, bridge: (call) => { requests.push(call); answer(call); } };
}

test('sends method and parameters as one text and returns the answer as a value', async () => {
  const root = windowWith(({ onSuccess }) => onSuccess('{"id":"7"}\n'));
  assert.deepEqual(await query('bridge', 'createGroup', { bucketId: 'ü"' }, root), { id: '7' });
  assert.deepEqual(JSON.parse(root.requests[0].request), { method: 'createGroup', parameters: { bucketId: 'ü"' } });
  assert.equal(root.requests[0].persistent, false);
});

test('turns failures and unreadable answers into errors that name the method', async () => {
  const failing = windowWith(({ onFailure }) => onFailure(-1, 'The query has been canceled'));
  await assert.rejects(query('bridge', 'm', {}, failing), (error) =>
    error instanceof BridgeError && error.code === -1 && error.message.includes('"m"'));
  const garbled = windowWith(({ onSuccess }) => onSuccess('{'));
  await assert.rejects(query('bridge', 'm', {}, garbled), /"m"/);
});

test('sends half a character as a replacement character, and all other text as it is', async () => {
  const root = windowWith(({ onSuccess }) => onSuccess('null'));
  const path = '\ud800bad\udc00.txt \ud83d\ude00 \\ud800 \\\ud800 "\n';
  await query('bridge', 'queueFiles', { files: [{ path }], '\udfff': 1 }, root);
  const expected = '\ufffdbad\ufffd.txt \ud83d\ude00 \\ud800 \\\ufffd "\n';
  assert.doesNotMatch(root.requests[0].request.replaceAll('\\\\', ''), /\\ud/);
  assert.deepEqual(JSON.parse(root.requests[0].request).parameters, { files: [{ path: expected }], '\ufffd': 1 });
});
