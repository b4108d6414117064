import assert from 'node:assert/strict';
import { test } from 'node:test';
import './libraries.js';
import { connection } from './fakes.js';
import { senderName } from '../../webapp/js/sender_name.js';
import { service } from '../../webapp/js/service.js';

const { ReceivedMessages } = await import('../../webapp/js/models/received.js');

test('lists every message that can be read, whatever its id and whatever else is in the list', async () => {
  const ids = ['constructor', '__proto__', 'toString', 'c1', 'plain'];
  const messages = [
    null, 7, {}, { bucketId: [] }, { bucketId: '' },
    ...ids.map((bucketId, i) => ({ bucketId, sender: [], subject: { a: 1 }, bytes: 'x', created: i + 1 })),
  ];
  const received = new ReceivedMessages([], { service: { listReceived: async () => ({ messages }) }, connection });
  for (let time = 0; time < 2; time += 1) {
    await received.load();
    assert.deepEqual([received.loaded, received.map((message) => message.id)], [true, ids.toReversed()]);
  }
  for (const id of ids) assert.equal(received.get(id).id, id);
  assert.equal(received.get('valueOf'), undefined);
  assert.equal(received.get(received.first()), received.first());
  assert.equal(senderName(received.first().get('sender')), 'Unknown sender');
});

test('leaves out the files of a message that cannot be read', async () => {
  globalThis.fetch = async () => ({
    ok: true, status: 200,
    json: async () => ({
      files: [null, { id: '1', path: 'a', size: 'x' }, { id: [], path: 'b' }, { id: '2', path: {} }, { id: '3', path: 'c', size: 3 }],
      next: null,
    }),
  });
  assert.deepEqual(await service.allReceivedFiles('b'), [{ id: '1', path: 'a', size: 0 }, { id: '3', path: 'c', size: 3 }]);
});
