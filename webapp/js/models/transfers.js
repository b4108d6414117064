import { Backbone } from '../lib.js';
import { FrameBatcher } from '../frame_batcher.js';
import { splitPath } from '../paths.js';
import { Transfer } from './transfer.js';

/**
 * All transfers, newest first. Takes in the library's events and triggers "moved" with a transfer at
 * most once a frame, however many events there were.
 */
export const Transfers = Backbone.Collection.extend({
  model: Transfer,
  comparator: (transfer) => -Number(transfer.id),

  initialize(models, { uploads, service, connection }) {
    Object.assign(this, { uploads, service, connection });
    this.batcher = new FrameBatcher((changed) => changed.forEach((transfer) => {
      transfer.trigger('moved', transfer);
    }));
  },

  /** Finds out about all groups that the library knows. */
  async load() {
    const groups = await this.uploads.fetchGroups();
    groups.forEach((group) => this.takeGroup(group));
  },

  groupChanged(event) {
    this.takeGroup(event.state);
  },

  fileChanged(event) {
    const transfer = this.get(event.id);
    if (!transfer) return;
    const { type, bytesTransfered, bytesTotal } = event.state;
    if (transfer.files.update(event.fileId, type, bytesTransfered, bytesTotal)) {
      this.batcher.mark(transfer);
    }
  },

  takeGroup(group) {
    let transfer = this.get(group.id);
    if (!transfer) {
      if (this.isHidden(group.bucketId)) return;
      transfer = this.add({
        id: group.id, bucketId: group.bucketId,
        phase: group.marked || group.cancelled ? 'running' : 'interrupted',
      });
      this.recall(transfer);
    }
    const before = transfer.get('state');
    transfer.takeGroup(group);
    this.batcher.mark(transfer);
    if (before !== transfer.get('state')) this.stateChanged(transfer);
  },

  /** Learns from the service what a transfer of an earlier session was about. */
  async recall(transfer) {
    if (!transfer.get('bucketId')) return;
    try {
      const bucketId = transfer.get('bucketId');
      const [message, { files }] = await this.connection.persistently(() => Promise.all([
        this.service.describeMessage(bucketId), this.service.listFiles(bucketId),
      ]));
      transfer.set({
        subject: message.subject, recipients: message.recipients, created: message.created,
        fileCount: files.length,
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

  stateChanged(transfer) {
    const state = transfer.get('state');
    if (state !== 'ERRORED') transfer.set('problem', '');
    if (state === 'COMPLETED') this.deliver(transfer);
    if (state === 'ERRORED') this.checkService();
    this.trigger('state', transfer);
  },

  /** Tells the service that everything has arrived. */
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
  },

  /** A failed transfer may mean that the service is away: then it goes on when the service is back. */
  async checkService() {
    if (this.checking) return;
    this.checking = true;
    try {
      await this.service.status();
    } catch (error) {
      this.connection.lost(error.message);
      await this.connection.persistently(() => this.service.status());
      await Promise.all(this.filter((transfer) => transfer.get('state') === 'ERRORED')
        .map((transfer) => this.resume(transfer)));
    } finally {
      this.checking = false;
    }
  },

  /** To be called every few seconds: where nothing moves any more the service may be away. */
  lookForStandstill() {
    const sending = this.filter((transfer) => transfer.get('state') === 'TRANSFERRING');
    const bytes = sending.reduce((sum, transfer) => sum + transfer.bytesDone(), 0);
    const still = sending.length > 0 && bytes === this.bytesAtLastLook;
    this.bytesAtLastLook = bytes;
    if (still) this.checkService();
  },

  /** Tries again what has failed, be it files or the delivery of all of them. */
  retry(transfer) {
    return transfer.get('phase') === 'undelivered' ? this.deliver(transfer) : this.resume(transfer);
  },

  pause: (transfer) => transfer.collection.uploads.pause(transfer.id),

  resume: (transfer) => transfer.collection.uploads.resume(transfer.id),

  /** Gives false where it is too late: everything was sent while the user was asked. */
  async cancel(transfer) {
    if (transfer.isFinished()) return false;
    await this.uploads.cancel(transfer.id);
    transfer.set('phase', 'cancelled');
    this.batcher.mark(transfer);
    try {
      await this.service.cancelMessage(transfer.get('bucketId'));
    } catch {
      // A message that is not completed reaches nobody.
    }
    return true;
  },

  /** Sends an interrupted transfer with the files that it has. */
  async finishInterrupted(transfer) {
    await this.uploads.markQueue(transfer.id);
    transfer.set('phase', 'running');
    if (transfer.get('state') === 'COMPLETED') await this.deliver(transfer);
  },

  /** Goes on without a file that cannot be sent. */
  async leaveOut(transfer, fileId) {
    await this.uploads.dequeueFiles(transfer.id, [{ id: fileId }]);
    transfer.files.leaveOut(fileId);
    this.batcher.mark(transfer);
    await this.connection.persistently(
      () => this.service.removeFile(transfer.get('bucketId'), fileId));
    if (transfer.get('state') === 'COMPLETED') await this.deliver(transfer);
  },

  /** Takes what is finished from the list, also for later sessions. */
  clearFinished() {
    const finished = this.filter((transfer) => transfer.isFinished());
    const hidden = new Set([...this.hidden(), ...finished.map((t) => t.get('bucketId'))]);
    localStorage.setItem('zantrio.cleared', JSON.stringify([...hidden].slice(-1000)));
    this.remove(finished);
  },

  hidden() {
    try {
      return JSON.parse(localStorage.getItem('zantrio.cleared')) ?? [];
    } catch {
      return [];
    }
  },

  isHidden(bucketId) {
    return this.hidden().includes(bucketId);
  },
});
