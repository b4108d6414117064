// Turns chosen files of a message into a download: URLs from the service → group in the
// library → files in batches. The group is paused until it has all of its files: with only some it would
// be complete, and its folder would open too early.

import { inBatches, nextTurn } from './batches.js';
import { rememberDownload, rememberFilled } from './download_memory.js';
import { folderName } from './folder_name.js';
import { splitPath } from './paths.js';

export const BATCH = 2000;

export class DownloadFlow {
  #manager;
  #service;
  #connection;
  #transfers;

  constructor({ manager, service, connection, transfers }) {
    this.#manager = manager;
    this.#service = service;
    this.#connection = connection;
    this.#transfers = transfers;
  }

  /**
   * Creates the download of those files of a message ({id, path, size}); gives it before its files are handed
   * over, or null when the user chose no folder. `whole`: these are all files of the message.
   */
  async begin(message, files, { automatic, whole }) {
    const first = await this.#request(message, files.slice(0, BATCH));
    const summary = folderName(message.subject);
    const group = await this.#manager.createGroup({
      bucketId: message.bucketId, bucketType: message.bucketType, token: first.token,
      tokenExpires: first.tokenExpires, summary, autoDownload: automatic,
    });
    if (!group || group.id === null) return null;
    const transfer = this.#transfers.add({
      id: group.id,
      direction: 'download',
      bucketId: message.bucketId,
      subject: message.subject,
      sender: message.sender,
      created: Date.now(),
      tokenExpires: first.tokenExpires,
      phase: 'filling',
      fileCount: files.length,
      plannedBytes: files.reduce((sum, file) => sum + file.size, 0),
      place: automatic ? `Downloads › Zantrio › ${summary}` : `the folder that you chose › ${summary}`,
    }, { merge: true });
    transfer.files.describe(files.map(({ id, path, size }) => ({ id, ...splitPath(path), size })));
    rememberDownload(transfer, whole ? null : files.map((file) => file.id));
    if (group.state) transfer.takeGroup(group.state);
    return { transfer, first };
  }

  /** Queues all files. Ends early, without an error, if the download is cancelled meanwhile. */
  async fill({ transfer, first }, message, files) {
    const inPieces = files.length > BATCH;
    if (inPieces) await this.#manager.pause(transfer.id);
    let begun = 0;
    for (const batch of inBatches(files, BATCH)) {
      if (transfer.get('phase') !== 'filling') return;
      const addresses = begun === 0 ? first : await this.#request(message, batch);
      await this.#queue(transfer, addresses.files);
      begun += batch.length;
      await nextTurn();
    }
    if (transfer.get('phase') !== 'filling') return;
    transfer.set('phase', 'running');
    rememberFilled(transfer);
    if (inPieces) await this.#manager.resume(transfer.id);
    // It may have ended before all of its files were known to be queued.
    if (transfer.get('state') === 'COMPLETED') this.#transfers.completed(transfer);
  }

  #request(message, files) {
    return this.#connection.persistently(
      () => this.#service.requestDownloads(message.bucketId, files.map((file) => file.id)));
  }

  async #queue(transfer, files) {
    transfer.takeAddresses(files);
    await this.#manager.queueFiles(transfer.id, files);
    transfer.set('queuedCount', transfer.get('queuedCount') + files.length);
    this.#transfers.batcher.mark(transfer);
  }
}
