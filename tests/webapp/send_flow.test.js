import assert from 'node:assert/strict';
import { test } from 'node:test';
import './libraries.js';
import {
  connection, FakeService, FakeUploads, groupEvent, records, settled,
} from './fakes.js';

const { Transfers } = await import('../../webapp/js/models/transfers.js');
const { SendFlow } = await import('../../webapp/js/send_flow.js');

function make() {
  const uploads = new FakeUploads();
  const service = new FakeService();
  const transfers = new Transfers([], { manager: uploads, service, connection });
  return { uploads, service, transfers, flow: new SendFlow({ uploads, service, connection, transfers }) };
}

const content = (count) => ({
  kind: 'message', subject: 'Film', text: '', recipients: ['ann@example.org'], files: records(count), bytes: count * 10,
});

async function send({ flow }, count) {
  const sent = content(count);
  const { transfer, token } = await flow.begin(sent);
  await flow.fill(transfer, token, sent.files);
  return transfer;
}

test('creates the group, fills it in batches with their upload details, and marks it last', async () => {
  const all = make();
  const transfer = await send(all, 1200);
  assert.deepEqual(all.uploads.calls, [
    ['createGroup', { bucketId: 'b1', bucketType: 'message', token: 'secret', tokenExpires: 9 }],
    ['queueFiles', '1', 500], ['queueFiles', '1', 500], ['queueFiles', '1', 200],
    ['markQueue', '1'],
  ]);
  assert.deepEqual(all.service.calls.map((call) => call[3]), [500, 500, 200]);
  assert.deepEqual(all.uploads.queued[650], {
    id: '651', fileURL: 'file:///home/ann/d/650.txt', uploadDetails: { url: 'u651' },
  });
  assert.equal(transfer.get('phase'), 'running');
  assert.equal(transfer.get('queuedCount'), 1200);
});

test('includes files that are not queued yet in the progress', async () => {
  const all = make();
  const { transfer } = await all.flow.begin(content(1200));
  all.transfers.groupChanged(groupEvent('1', {
    type: 'TRANSFERRING', bytesTransferred: 1000, bytesTotal: 5000, bytesTransferredPerSecond: 100, estimatedEta: 40,
  }));
  assert.equal(transfer.totalBytes(), 12000);
  assert.equal(transfer.timeLeft(), 110);
  all.transfers.groupChanged(groupEvent('1', { type: 'COMPLETED', estimatedEta: 40 }));
  await settled();
  assert.deepEqual(all.service.calls, [], 'the message is not complete');
  transfer.set('phase', 'running');
  assert.equal(transfer.timeLeft(), 40);
});

test('passes on refusals of the service and of the library', async () => {
  const all = make();
  all.service.announceFiles = async () => { throw new Error('The file "x" cannot be taken.'); };
  await assert.rejects(send(all, 1), /cannot be taken/);
  all.transfers.reset();
  all.uploads.createGroup = async () => ({ id: null, state: null });
  await assert.rejects(all.flow.begin(content(1)), /could not begin/);
  assert.equal(all.transfers.length, 0);
});

test('stops filling a transfer that is cancelled meanwhile, and does not mark it', async () => {
  const all = make();
  const sent = content(1200);
  const { transfer, token } = await all.flow.begin(sent);
  const queueFiles = all.uploads.queueFiles.bind(all.uploads);
  all.uploads.queueFiles = async (...parameters) => {
    transfer.set('phase', 'cancelled');
    return queueFiles(...parameters);
  };
  await all.flow.fill(transfer, token, sent.files);
  assert.ok(all.uploads.queued.length < 1200);
  assert.equal(all.uploads.calls.some(([method]) => method === 'markQueue'), false);
});
