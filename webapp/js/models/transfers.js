import { splitPath } from '../paths.js';
import { TransferGroups } from './transfer_groups.js';

/** All uploads. */
export const Transfers = TransferGroups.extend({
  clearedStorageKey: 'zantrio.cleared',
  clearedIdOf: ({ bucketId }) => bucketId,

  restored: (group) => ({
    direction: 'upload', phase: group.marked || group.cancelled ? 'running' : 'interrupted',
  }),

  /** Asks the service for the message of an earlier session's transfer. */
  async loadMessage(transfer) {
    if (!transfer.get('bucketId')) return;
    try {
      const bucketId = transfer.get('bucketId');
      const [message, { files }] = await this.connection.persistently(() => Promise.all([
        this.service.describeMessage(bucketId), this.service.listFiles(bucketId),
      ]));
      transfer.set({
        subject: message.subject, recipients: message.recipients, created: message.created,
        fileCount: files.length, tokenExpires: message.tokenExpires,
      });
      transfer.files.describe(files.map((file) => ({
        id: file.id, ...splitPath(file.path), size: file.size,
        state: file.arrived ? 'COMPLETED' : null,
      })));
      if (message.state === 'completed') transfer.set('phase', 'delivered');
      this.batcher.mark(transfer);
    } catch (error) {
      transfer.set('problem', `Nothing is known of this transfer: ${error.message}`);
    }
  },

  completed(transfer) {
    return this.deliver(transfer);
  },

  /** Tells the service that all files have arrived. */
  async deliver(transfer) {
    if (!['running', 'undelivered'].includes(transfer.get('phase'))) return;
    transfer.set({ phase: 'running', problem: '' });
    try {
      await this.connection.persistently(
        () => this.service.completeMessage(transfer.get('bucketId')));
      transfer.set('phase', 'delivered');
    } catch (error) {
      transfer.set({
        phase: 'undelivered',
        problem: `All files are sent, but the service does not accept the message: ${error.message}`,
      });
    }
    this.batcher.mark(transfer);
    this.sayItIsOver(transfer);
  },

  /** Retries failed files, or the delivery of the message. */
  retry(transfer) {
    return transfer.get('phase') === 'undelivered' ? this.deliver(transfer) : this.resume(transfer);
  },

  async cancel(transfer) {
    if (!await TransferGroups.prototype.cancel.call(this, transfer)) return false;
    try {
      await this.service.cancelMessage(transfer.get('bucketId'));
    } catch {
      // An incomplete message is not delivered.
    }
    return true;
  },

  /** Sends an interrupted transfer with the files it has. */
  async finishInterrupted(transfer) {
    await this.manager.markQueue(transfer.id);
    transfer.set('phase', 'running');
    if (transfer.get('state') === 'COMPLETED') await this.deliver(transfer);
  },

  async leaveOut(transfer, fileId) {
    await TransferGroups.prototype.leaveOut.call(this, transfer, fileId);
    await this.connection.persistently(
      () => this.service.removeFile(transfer.get('bucketId'), fileId));
    if (transfer.get('state') === 'COMPLETED') await this.deliver(transfer);
  },
});
