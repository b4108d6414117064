// Turns a written message into a transfer:
// message at the service → group in the library → files in batches (announced at the service, queued
// in the library) → the queue is marked as complete.

import { inBatches, nextTurn } from './batches.js';
import { splitPath } from './paths.js';

export const BATCH = 500;

export class SendFlow {
  #uploads;
  #service;
  #connection;
  #transfers;

  constructor({ uploads, service, connection, transfers }) {
    this.#uploads = uploads;
    this.#service = service;
    this.#connection = connection;
    this.#transfers = transfers;
  }

  /** Creates the transfer of the draft's content; returns it before its files are queued. */
  async begin(content) {
    const message = await this.#connection.persistently(() => this.#service.createMessage({
      subject: content.subject, text: content.text, recipients: content.recipients,
    }));
    const group = await this.#uploads.createGroup({
      bucketId: message.bucketId,
      bucketType: content.kind,
      token: message.token,
      tokenExpires: message.tokenExpires,
    });
    if (group.id === null) throw new Error('The application could not begin the transfer.');
    const transfer = this.#transfers.add({
      id: group.id,
      bucketId: message.bucketId,
      subject: content.subject,
      recipients: content.recipients,
      created: message.created,
      tokenExpires: message.tokenExpires,
      phase: 'filling',
      fileCount: content.files.length,
      plannedBytes: content.bytes,
    }, { merge: true });
    if (group.state) transfer.takeGroup(group.state);
    return { transfer, token: message.token };
  }

  /** Queues all files. Ends early, without an error, if the transfer is cancelled meanwhile. */
  async fill(transfer, token, files) {
    let queueing = Promise.resolve();
    for (const batch of inBatches(files, BATCH)) {
      if (transfer.get('phase') !== 'filling') return;
      const { files: announced } = await this.#connection.persistently(
        () => this.#service.announceFiles(transfer.get('bucketId'), token, batch.map(announcement)));
      await queueing;
      queueing = this.#queue(transfer, batch, announced);
      await nextTurn();
    }
    await queueing;
    if (transfer.get('phase') !== 'filling') return;
    await this.#uploads.markQueue(transfer.id);
    transfer.set('phase', 'running');
    if (transfer.get('state') === 'COMPLETED') await this.#transfers.deliver(transfer);
  }

  async #queue(transfer, batch, announced) {
    transfer.files.describe(announced.map((file) => ({
      id: file.id, ...splitPath(file.path), size: file.size,
    })));
    await this.#uploads.queueFiles(transfer.id, announced.map((file, index) => ({
      id: file.id, fileURL: batch[index].fileURL, uploadDetails: file.uploadDetails,
    })));
    transfer.set('queuedCount', transfer.get('queuedCount') + batch.length);
    this.#transfers.batcher.mark(transfer);
  }
}

function announcement({ name, path, size, modified }) {
  return { name, path, size, modified };
}
