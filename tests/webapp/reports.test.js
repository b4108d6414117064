import assert from 'node:assert/strict';
import { test } from 'node:test';
import './libraries.js';
import {
  connection, FakeService, FakeUploads, fileEvent, groupEvent, settled, until,
} from './fakes.js';

const { Downloads } = await import('../../webapp/js/models/downloads.js');
const { TransferReports } = await import('../../webapp/js/transfer_reports.js');
const { commonReason, failedFileWords, waitingWords } = await import('../../webapp/js/reason_words.js');

const failure = (fileId, code) => ({ fileId, code, reason: `sentence of ${code}` });

function make(pauses = [0, 0, 0]) {
  const manager = new FakeUploads();
  const service = new FakeService();
  const reports = new TransferReports({ service, pauses });
  const downloads = new Downloads([], { manager, service, connection, reports });
  const transfer = downloads.add({ id: '1', direction: 'download', bucketId: 'b1', phase: 'running' });
  transfer.files.describe([{ id: 'a', size: 10 }, { id: 'b', size: 10 }]);
  const asked = () => service.calls.filter(([name]) => name === 'progressOf').length;
  return { manager, service, downloads, transfer, asked };
}

test('asks once why several files failed', async () => {
  const { service, downloads, transfer, asked } = make();
  service.reports = { download: { state: 'ERRORED', waitingFor: null, failures: [failure('a', 'wrong_digest'), failure('b', 'disk_trouble')] } };
  downloads.fileChanged(fileEvent('a', 'ERRORED'));
  downloads.fileChanged(fileEvent('b', 'ERRORED'));
  await until(() => transfer.reasons.size === 2);
  assert.equal(transfer.reasons.get('a').code, 'wrong_digest');
  assert.equal(transfer.reasons.get('b').reason, 'sentence of disk_trouble');
  assert.equal(asked(), 1);
  downloads.fileChanged(fileEvent('a', 'TRANSFERRING'));
  assert.equal(transfer.reasons.has('a'), false);
});

test('asks again at once when the transfer ends', async (t) => {
  const start = globalThis.setTimeout;
  t.mock.method(globalThis, 'setTimeout', (task, ms) => (ms > 1000 ? start(task, ms).unref() : start(task, ms)));
  const { service, downloads, transfer, asked } = make([1, 60_000]);
  downloads.fileChanged(fileEvent('a', 'ERRORED'));
  await until(() => asked() === 1);
  service.reports = { download: { state: 'ERRORED', failures: [failure('a', 'wrong_size')] } };
  downloads.groupChanged(groupEvent('1', { type: 'ERRORED' }));
  await until(() => transfer.reasons.get('a')?.code === 'wrong_size');
});

test('stops asking if there are no reports, or none of this file', async () => {
  for (const reports of [{}, { upload: { state: 'ERRORED', failures: [failure('a', 'refused')] } }, null]) {
    const { service, downloads, transfer, asked } = make();
    service.reports = reports ?? undefined;
    if (reports === null) service.progressOf = async () => { service.calls.push(['progressOf']); throw new Error('404'); };
    downloads.fileChanged(fileEvent('a', 'ERRORED'));
    await until(() => asked() >= 3);
    await settled();
    assert.deepEqual([asked(), transfer.reasons.size], [3, 0]);
  }
});

test('requests new URLs of refused files once, and of expired ones more often', async () => {
  for (const [code, max] of [['refused', 1], ['url_expired', 3], ['disk_trouble', 0]]) {
    const { service, downloads, transfer } = make([0]);
    const renewed = () => service.calls.filter(([name]) => name === 'requestDownloads').length;
    service.reports = { download: { state: 'ERRORED', failures: [failure('a', code)] } };
    for (let times = 0; times < 5; times += 1) {
      downloads.fileChanged(fileEvent('a', 'TRANSFERRING'));
      downloads.fileChanged(fileEvent('a', 'ERRORED'));
      await until(() => transfer.reasons.has('a'));
      if (transfer.renewal) {
        clearTimeout(transfer.renewal);
        await downloads.renewNow(transfer);
      }
    }
    assert.equal(renewed(), max, code);
  }
});

test('shows the reason for a wait until bytes move again', async () => {
  const { service, downloads, transfer } = make();
  downloads.groupChanged(groupEvent('1', { type: 'TRANSFERRING', bytesTransferred: 1 }));
  downloads.checkForStandstill();
  service.reports = { download: { state: 'TRANSFERRING', waitingFor: { code: 'disk_full', reason: 'full' }, failures: [] } };
  downloads.checkForStandstill();
  await settled();
  assert.equal(transfer.get('waitingFor').code, 'disk_full');
  downloads.groupChanged(groupEvent('1', { type: 'TRANSFERRING', bytesTransferred: 2 }));
  downloads.checkForStandstill();
  assert.equal(transfer.get('waitingFor'), null);
  transfer.set('waitingFor', { code: 'disk_full' });
  downloads.groupChanged(groupEvent('1', { type: 'PAUSED', bytesTransferred: 2 }));
  assert.equal(transfer.get('waitingFor'), null);
});

test('has a text for each code, and the report\'s sentence for unknown codes', () => {
  assert.equal(failedFileWords({ code: 'refused', reason: 'x' }, 'upload'), 'The server does not take it');
  assert.equal(failedFileWords({ code: 'new_code', reason: 'the moon is full' }, 'upload'), 'the moon is full');
  assert.equal(failedFileWords(null, 'upload'), '');
  assert.match(waitingWords({ code: 'cannot_connect', reason: 'x' }), /cannot be reached/);
  assert.match(waitingWords({ code: 'new_code', reason: 'the moon is full' }), /the moon is full/);
  const full = { code: 'disk_trouble', reason: 'x' };
  assert.equal(commonReason([full, { ...full, reason: 'y' }], 'upload'), 'The disk has a problem');
  assert.match(commonReason([full, { code: 'refused', reason: 'x' }], 'upload'), /list of files/);
  assert.equal(commonReason([], 'upload'), '');
});
