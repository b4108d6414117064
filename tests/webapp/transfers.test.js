import assert from 'node:assert/strict';
import { test } from 'node:test';
import { frames, stored } from './libraries.js';
import {
  connection, FakeService, FakeUploads, fileEvent, group, groupEvent, settled,
} from './fakes.js';

const { Transfers } = await import('../../webapp/js/models/transfers.js');

function make() {
  stored.clear();
  const uploads = new FakeUploads();
  const service = new FakeService();
  const transfers = new Transfers([], { manager: uploads, service, connection });
  return { uploads, service, transfers };
}

function running(transfers, id = '1') {
  return transfers.add({ id, bucketId: 'b1', subject: 'Film', phase: 'running' });
}

test('draws once per frame for thousands of events', () => {
  const { transfers } = make();
  frames.length = 0;
  let drawn = 0;
  const transfer = running(transfers);
  transfer.on('moved', () => { drawn += 1; });
  for (let i = 0; i < 5000; i += 1) transfers.fileChanged(fileEvent(String(i), 'TRANSFERRING', 1));
  assert.equal(frames.length, 1);
  frames.forEach((frame) => frame());
  assert.equal(drawn, 1);
  assert.equal(transfer.files.countIn('TRANSFERRING'), 5000);
});

test('completes the message at the service once its group is complete, and shows a refusal', async () => {
  const { transfers, service, uploads } = make();
  const complete = service.completeMessage.bind(service);
  service.completeMessage = async () => { throw new Error('2 of 3 files have not arrived yet.'); };
  const transfer = running(transfers);
  transfers.groupChanged(groupEvent('1', { type: 'COMPLETED', marked: true }));
  await settled();
  assert.match(transfer.get('problem'), /2 of 3 files/);
  assert.equal(transfer.get('phase'), 'undelivered');
  service.completeMessage = complete;
  await transfers.retry(transfer);
  transfers.groupChanged(groupEvent('1', { type: 'COMPLETED', marked: true }));
  await settled();
  assert.deepEqual([transfer.get('phase'), transfer.get('problem')], ['delivered', '']);
  assert.deepEqual(service.calls, [['completeMessage', 'b1']]);
  assert.equal(await transfers.cancel(transfer), false, 'a delivered message cannot be cancelled');
  assert.deepEqual([transfer.get('phase'), uploads.calls, service.calls.length], ['delivered', [], 1]);
});

test('recalls the transfers of an earlier session from the library and the service', async () => {
  const { transfers, uploads } = make();
  uploads.groups = [group('3', { type: 'TRANSFERRING', marked: true }), group('4')];
  await transfers.load();
  await settled();
  assert.deepEqual(transfers.map((transfer) => transfer.id), ['4', '3']);
  const transfer = transfers.get('3');
  assert.equal(transfer.get('subject'), 'Earlier');
  assert.equal(transfer.files.byId('1').state, 'COMPLETED');
  assert.deepEqual([transfer.files.byId('1').folder, transfer.files.byId('1').name], ['a', 'b.txt']);
  assert.equal(transfers.get('4').get('phase'), 'interrupted', 'not marked, so files are missing');
});

test('continues a failed transfer automatically only after the service was unreachable', async () => {
  const { transfers, uploads, service } = make();
  running(transfers);
  transfers.groupChanged(groupEvent('1', { type: 'ERRORED', marked: true }));
  await settled();
  assert.deepEqual(uploads.calls, [], 'the service is reachable, so the user decides');
  transfers.groupChanged(groupEvent('1', { type: 'TRANSFERRING', marked: true }));
  let away = true;
  service.status = async () => {
    if (!away) return {};
    away = false;
    throw new Error('away');
  };
  transfers.groupChanged(groupEvent('1', { type: 'ERRORED', marked: true }));
  await settled();
  assert.deepEqual(uploads.calls, [['resume', '1']]);
});

test('checks the service if nothing moves between two checks', async () => {
  const { transfers, service } = make();
  let asked = 0;
  service.status = async () => { asked += 1; };
  transfers.checkForStandstill();
  transfers.checkForStandstill();
  running(transfers);
  const sending = (bytesTransferred) => transfers.groupChanged(
    groupEvent('1', { type: 'TRANSFERRING', bytesTransferred, bytesTotal: 10, marked: true }));
  for (const bytes of [1, 2, 3]) {
    sending(bytes);
    transfers.checkForStandstill();
  }
  assert.equal(asked, 0);
  transfers.checkForStandstill();
  assert.equal(asked, 1);
});

test('reports the end of a transfer once, unless it ended before this session', async () => {
  const { transfers, service } = make();
  const over = [];
  transfers.on('over', (transfer) => over.push(transfer.get('state')));
  transfers.groupChanged(groupEvent('1', { type: 'COMPLETED', marked: true }));
  await settled();
  assert.deepEqual(over, [], 'complete when the page was loaded');
  transfers.groupChanged(groupEvent('2', { type: 'TRANSFERRING', marked: true }));
  transfers.groupChanged(groupEvent('2', { type: 'ERRORED', marked: true }));
  await settled();
  transfers.groupChanged(groupEvent('2', { type: 'TRANSFERRING', marked: true }));
  transfers.groupChanged(groupEvent('2', { type: 'COMPLETED', marked: true }));
  transfers.groupChanged(groupEvent('2', { type: 'COMPLETED', marked: true }));
  await settled();
  assert.deepEqual(over, ['ERRORED', 'COMPLETED']);
  assert.equal(service.calls.length, 2);
});

test('leaves a file out and cancels a transfer in the library and at the service', async () => {
  const { transfers, uploads, service } = make();
  const transfer = running(transfers);
  transfers.fileChanged(fileEvent('5', 'ERRORED', 0));
  await transfers.leaveOut(transfer, '5');
  assert.equal(transfer.files.countIn('ERRORED'), 0);
  await transfers.cancel(transfer);
  assert.equal(transfer.isFinished(), true);
  assert.deepEqual(uploads.calls, [['dequeueFiles', '1', [{ id: '5' }]], ['cancel', '1']]);
  assert.deepEqual(service.calls, [['removeFile', 'b1', '5'], ['cancelMessage', 'b1']]);
});
