import { inBatches } from '../batches.js';
import { rememberedDownload, rememberFilled } from '../download_memory.js';
import { splitPath } from '../paths.js';
import { TransferGroups } from './transfer_groups.js';

export const URL_BATCH = 2000;
const RENEWALS = 3;
// For these failure codes a new URL may help.
const RENEWALS_BY_REASON = { url_expired: RENEWALS, refused: 1 };
const RENEWAL_PAUSE_MS = 300;

/** All downloads. */
export const Downloads = TransferGroups.extend({
  clearedStorageKey: 'zantrio.clearedDownloads',
  clearedIdOf: ({ id, bucketId }) => `${id}:${bucketId}`,

  restored: (group) => ({ direction: 'download', phase: 'running', ...rememberedDownload(group)?.attributes }),

  /** Asks the service for the message of an earlier session's download. */
  async loadMessage(transfer) {
    const bucketId = transfer.get('bucketId');
    try {
      const [message, files] = await this.connection.persistently(() => Promise.all([
        this.service.describeReceived(bucketId), this.service.allReceivedFiles(bucketId),
      ]));
      transfer.set({ subject: message.subject, sender: message.sender });
      const wanted = rememberedDownload({ id: transfer.id, bucketId })?.files;
      this.describe(transfer, wanted ? files.filter((file) => wanted.has(file.id)) : files);
      this.batcher.mark(transfer);
    } catch (error) {
      if (!transfer.isFinished()) transfer.set('problem', `Nothing is known of this message: ${error.message}`);
    }
  },

  /** The library does not report files of an earlier session; only a complete download has all of them. */
  describe(transfer, files) {
    const state = transfer.get('state') === 'COMPLETED' ? 'COMPLETED' : null;
    transfer.files.describe(files.map((file) => ({
      id: file.id, ...splitPath(file.path), size: file.size, state,
    })));
    transfer.set({ filesKnown: state !== null, fileCount: files.length });
  },

  fileChanged(event) {
    const transfer = TransferGroups.prototype.fileChanged.call(this, event);
    if (transfer && event.state.type === 'ERRORED') this.renewSoon(transfer, event.fileId);
    return transfer;
  },

  initialize(models, options) {
    TransferGroups.prototype.initialize.call(this, models, options);
    this.on('reasons', (transfer) => this.renewForReasons(transfer));
  },

  /** The clocks of this computer and the servers may differ, so a refusal can mean an expired URL. */
  renewForReasons(transfer) {
    for (const [fileId, { code }] of transfer.reasons) {
      const most = RENEWALS_BY_REASON[code] ?? 0;
      if ((transfer.renewals.get(fileId) ?? 0) < most) this.addRenewal(transfer, fileId);
    }
  },

  /** URLs expire: a file with an expired URL gets a new one. */
  renewSoon(transfer, fileId) {
    if (!transfer.hasExpiredUrl(fileId) || (transfer.renewals.get(fileId) ?? 0) >= RENEWALS) return;
    this.addRenewal(transfer, fileId);
  },

  addRenewal(transfer, fileId) {
    transfer.renewing ??= new Set();
    transfer.renewing.add(fileId);
    transfer.renewal ??= setTimeout(() => this.renewNow(transfer), RENEWAL_PAUSE_MS);
  },

  async renewNow(transfer) {
    const ids = [...transfer.renewing];
    ids.forEach((id) => transfer.renewals.set(id, (transfer.renewals.get(id) ?? 0) + 1));
    transfer.renewing = null;
    transfer.renewal = null;
    try {
      await this.queueAnew(transfer, ids);
    } catch (error) {
      transfer.set('problem', `The files cannot be fetched any more: ${error.message}`);
      this.failed(transfer);
    }
  },

  /** Queues files again, with new URLs. */
  async queueAnew(transfer, ids) {
    for (const batch of inBatches(ids, URL_BATCH)) {
      const { files } = await this.connection.persistently(
        () => this.service.requestDownloads(transfer.get('bucketId'), batch));
      transfer.takeAddresses(files);
      await this.manager.queueFiles(transfer.id, files);
    }
  },

  completed(transfer) {
    if (transfer.get('phase') === 'filling') return;
    if (!transfer.get('filesKnown')) {
      transfer.files.completeRest();
      transfer.set('filesKnown', true);
    }
    this.sayItIsOver(transfer);
  },

  /** Files that get new URLs have not failed permanently. */
  failed(transfer) {
    return transfer.renewal ? null : TransferGroups.prototype.failed.call(this, transfer);
  },

  /** Queues all files of a download that was being filled when the page was reloaded. */
  async finishInterrupted(transfer) {
    const { count } = transfer.files;
    if (count === 0) throw new Error('The files of this message are not known.');
    await this.queueAnew(transfer, Array.from({ length: count }, (_, index) => transfer.files.at(index).id));
    transfer.set('phase', 'running');
    rememberFilled(transfer);
    await this.resume(transfer);
  },

  /** Retries failed files, with new URLs if the service returns them. */
  async retry(transfer) {
    const failed = transfer.files.indicesIn('ERRORED').map((index) => transfer.files.at(index).id);
    transfer.renewals.clear();
    transfer.set('problem', '');
    if (failed.length > 0) await this.queueAnew(transfer, failed);
    await this.resume(transfer);
  },
});
