import assert from 'node:assert/strict';
import { test } from 'node:test';
import { stored } from './libraries.js';
import {
  connection, FakeService, FakeUploads, fileEvent, groupEvent, settled,
} from './fakes.js';

const { Downloads } = await import('../../webapp/js/models/downloads.js');
const { DownloadFlow } = await import('../../webapp/js/download_flow.js');

const MESSAGE = { bucketId: 'b1', bucketType: 'message', subject: 'Fotos: März/April', sender: 'Bo <bo@example.org>' };
const files = (count) => Array.from({ length: count }, (_, i) => ({ id: String(i + 1), path: `d/${i + 1}`, size: 10 }));

function make() {
  stored.clear();
  const manager = new FakeUploads();
  const service = new FakeService();
  const downloads = new Downloads([], { manager, service, connection });
  const over = [];
  downloads.on('over', (transfer) => over.push(transfer.get('state')));
  return { manager, service, downloads, over, flow: new DownloadFlow({ manager, service, connection, transfers: downloads }) };
}

async function begin({ flow }, wanted, options = { automatic: true, whole: true }) {
  const begun = await flow.begin(MESSAGE, wanted, options);
  await flow.fill(begun, MESSAGE, wanted);
  return begun.transfer;
}

test('creates the group with a token and a safe folder name, and fills it in batches while it is paused', async () => {
  const all = make();
  await begin(all, files(4500));
  assert.deepEqual(all.manager.calls, [
    ['createGroup', {
      bucketId: 'b1', bucketType: 'message', token: 'reading', tokenExpires: 9, summary: 'Fotos März April', autoDownload: true,
    }],
    ['pause', '1'], ['queueFiles', '1', 2000], ['queueFiles', '1', 2000], ['queueFiles', '1', 500], ['resume', '1'],
  ]);
  assert.deepEqual(all.manager.queued.map((file) => file.id), files(4500).map((file) => file.id));
  assert.deepEqual(all.manager.queued[1], {
    id: '2', path: 'd/2', size: 10, modified: 5, md5Digest: 'm2', downloadDetails: { url: 'u2-1', expires: 0 },
  });
  const small = make();
  await begin(small, files(2));
  assert.deepEqual(small.manager.calls.slice(1), [['queueFiles', '1', 2]], 'one batch needs no pause');
});

test('downloads nothing if the user chooses no folder', async () => {
  const all = make();
  all.manager.createGroup = async () => null;
  assert.equal(await all.flow.begin(MESSAGE, files(1), { automatic: false, whole: true }), null);
  assert.equal(all.downloads.length, 0);
});

test('reports the end of a download only when all of its files are queued', async () => {
  const all = make();
  const wanted = files(1);
  const begun = await all.flow.begin(MESSAGE, wanted, { automatic: true, whole: true });
  all.downloads.groupChanged(groupEvent('1', { type: 'COMPLETED' }));
  assert.deepEqual(all.over, []);
  await all.flow.fill(begun, MESSAGE, wanted);
  assert.deepEqual(all.over, ['COMPLETED']);
  assert.equal(begun.transfer.isFinished(), true);
});

test('renews expired URLs automatically, but not indefinitely', async () => {
  const all = make();
  all.service.expires = 1000;  // in the past
  const transfer = await begin(all, files(3));
  for (let round = 0; round < 6; round += 1) {
    all.downloads.fileChanged(fileEvent('1', 'ERRORED'));
    all.downloads.fileChanged(fileEvent('3', 'ERRORED'));
    all.downloads.groupChanged(groupEvent('1', { type: 'ERRORED' }));
    if (round === 0) {
      await settled();
      assert.ok(transfer.renewal, 'a failure starts the renewal');
      assert.deepEqual(all.over, [], 'which is no end');
    }
    clearTimeout(transfer.renewal);
    if (transfer.renewal) await all.downloads.renewNow(transfer);
    await settled();
    all.downloads.fileChanged(fileEvent('1', 'TRANSFERRING'));
    all.downloads.fileChanged(fileEvent('3', 'TRANSFERRING'));
    all.downloads.groupChanged(groupEvent('1', { type: 'TRANSFERRING' }));
  }
  assert.deepEqual(all.service.calls.map((call) => call[2]), [3, 2, 2, 2]);
  assert.ok(all.over.length > 0, 'fails in the end');
});

test('renews the URLs of other failed files when the user retries', async () => {
  const all = make();
  const transfer = await begin(all, files(3));
  all.downloads.groupChanged(groupEvent('1', { type: 'TRANSFERRING' }));
  all.downloads.fileChanged(fileEvent('2', 'ERRORED'));
  all.downloads.groupChanged(groupEvent('1', { type: 'ERRORED' }));
  await settled();
  assert.deepEqual(all.over, ['ERRORED']);
  assert.equal(all.service.calls.length, 1);
  await all.downloads.retry(transfer);
  assert.deepEqual(all.service.calls[1], ['requestDownloads', 'b1', 1]);
  assert.deepEqual(all.manager.calls.slice(-2), [['queueFiles', '1', 1], ['resume', '1']]);
  all.service.requestDownloads = async () => { throw new Error('The message has expired; its files are gone.'); };
  await all.downloads.renewNow(Object.assign(transfer, { renewing: new Set(['1']) }));
  assert.match(transfer.get('problem'), /The message has expired/);
});

test('recalls a download of an earlier session with its chosen files', async () => {
  const all = make();
  all.service.expires = 2000;
  await begin(all, files(2).slice(1), { automatic: true, whole: false });
  const later = new Downloads([], { manager: all.manager, service: all.service, connection });
  later.groupChanged(groupEvent('1', { type: 'TRANSFERRING', bytesTotal: 7 }));
  await settled();
  const transfer = later.get('1');
  assert.deepEqual(['subject', 'place', 'phase'].map((name) => transfer.get(name)),
    ['For you', 'Downloads › Zantrio › Fotos März April', 'running']);
  assert.deepEqual([transfer.files.count, transfer.files.at(0).name], [1, 'c.txt']);
  assert.equal(transfer.get('filesKnown'), false);
  assert.equal(transfer.hasExpiredUrl('2', 1_999_000), false);
  assert.equal(transfer.hasExpiredUrl('2', 2_000_000), true, 'the URLs of the earlier session have expired');
  later.groupChanged(groupEvent('1', { type: 'COMPLETED', bytesTotal: 7, bytesTransferred: 7 }));
  assert.equal(transfer.files.countIn('COMPLETED'), 1);
});

test('queues the remaining files of a download that a reload interrupted', async () => {
  const all = make();
  await all.flow.begin(MESSAGE, files(2), { automatic: true, whole: true });
  const later = new Downloads([], { manager: all.manager, service: all.service, connection });
  later.groupChanged(groupEvent('1', { type: 'PAUSED' }));
  await settled();
  const transfer = later.get('1');
  assert.equal(transfer.get('phase'), 'interrupted');
  await later.finishInterrupted(transfer);
  assert.deepEqual(all.manager.calls.slice(-2), [['queueFiles', '1', 2], ['resume', '1']]);
  assert.equal(transfer.get('phase'), 'running');
});

test('shows a new download of a message whose earlier download was cleared', async () => {
  const all = make();
  await begin(all, files(1));
  all.downloads.groupChanged(groupEvent('1', { type: 'COMPLETED' }));
  all.downloads.clearFinished();
  assert.equal(all.downloads.length, 0);
  all.downloads.groupChanged(groupEvent('1', { type: 'COMPLETED' }));
  assert.equal(all.downloads.length, 0);
  all.downloads.groupChanged(groupEvent('2', { type: 'TRANSFERRING' }));
  assert.equal(all.downloads.length, 1);
});
