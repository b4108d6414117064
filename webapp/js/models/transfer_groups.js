import { Backbone } from '../lib.js';
import { FrameBatcher } from '../frame_batcher.js';
import { Transfer } from './transfer.js';

/**
 * All groups of one of the transfer library's managers, the newest first; the common base of uploads and
 * downloads. Applies the library's events and triggers
 *   "moved"    with a transfer that changed, at most once per frame
 *   "state"    with a transfer whose state changed
 *   "over"     with a transfer that ended in this session, with or without failures; once each time
 * `manager` is the native side's (native.js); the optional `reports` provides the reasons for failures.
 */
export const TransferGroups = Backbone.Collection.extend({
  model: Transfer,
  comparator: (transfer) => -Number(transfer.id),

  initialize(models, { manager, service, connection, reports = null }) {
    Object.assign(this, { manager, service, connection, reports });
    this.on('reasons', (transfer) => this.batcher.mark(transfer));
    this.batcher = new FrameBatcher((changed) => changed.forEach((transfer) => {
      transfer.trigger('moved', transfer);
    }));
  },

  /** Loads all groups of the library. */
  async load() {
    const groups = await this.manager.fetchGroups();
    groups.forEach((group) => this.takeGroup(group));
  },

  groupChanged(event) {
    this.takeGroup(event.state);
  },

  /** Returns the transfer whose file changed, or null. */
  fileChanged(event) {
    const transfer = this.get(event.id);
    if (!transfer) return null;
    const { type, bytesTransfered, bytesTotal } = event.state;
    if (!transfer.files.update(event.fileId, type, bytesTransfered, bytesTotal)) return null;
    if (type === 'ERRORED') this.reports?.wanted(transfer);
    else transfer.reasons.delete(event.fileId);
    this.batcher.mark(transfer);
    return transfer;
  },

  takeGroup(group) {
    let transfer = this.get(group.id);
    if (!transfer) {
      if (this.isHidden(group)) return;
      transfer = this.add({ ...this.restored(group), id: group.id, bucketId: group.bucketId });
      this.loadMessage(transfer);
    }
    const before = transfer.get('state');
    transfer.takeGroup(group);
    this.batcher.mark(transfer);
    if (before !== transfer.get('state')) this.stateChanged(transfer);
  },

  stateChanged(transfer) {
    const state = transfer.get('state');
    if (state !== 'ERRORED') transfer.set('problem', '');
    if (state === 'COMPLETED') this.completed(transfer);
    if (state === 'ERRORED') {
      this.reports?.wantedNow(transfer);
      this.failed(transfer);
    }
    this.trigger('state', transfer);
  },

  /** Triggers "over", unless the transfer ended before this session or it was triggered already. */
  sayItIsOver(transfer) {
    if (!transfer.running) return;
    transfer.running = false;
    this.trigger('over', transfer);
  },

  /** A failure counts only if the service is reachable; otherwise the transfer continues automatically later. */
  async failed(transfer) {
    await this.checkService();
    if (transfer.get('state') === 'ERRORED' && this.connection.get('reachable')) this.sayItIsOver(transfer);
  },

  /** A failed transfer may mean that the service is unreachable; then it continues when the service is back. */
  checkService() {
    this.checking ??= this.askService().finally(() => { this.checking = null; });
    return this.checking;
  },

  async askService() {
    try {
      await this.service.status();
    } catch (error) {
      this.connection.lost(error.message);
      await this.connection.persistently(() => this.service.status());
      // Retries failed files and ends waits.
      await Promise.all(this.filter((transfer) => ['ERRORED', 'TRANSFERRING'].includes(transfer.get('state')))
        .map((transfer) => this.resume(transfer)));
    }
  },

  /** Called every few seconds: if nothing moves any more, the service may be unreachable. */
  checkForStandstill() {
    const moving = this.filter((transfer) => transfer.get('state') === 'TRANSFERRING');
    const still = moving.filter((transfer) => !this.hasMoved(transfer));
    if (still.length === moving.length && still.length > 0) this.checkService();
    still.forEach((transfer) => this.reports?.ask(transfer));
  },

  /** Whether it progressed since the last check. */
  hasMoved(transfer) {
    const bytes = transfer.bytesDone();
    const moved = bytes !== transfer.bytesAtLastLook;
    transfer.bytesAtLastLook = bytes;
    if (moved) transfer.set('waitingFor', null);
    return moved;
  },

  pause(transfer) {
    return this.manager.pause(transfer.id);
  },

  resume(transfer) {
    return this.manager.resume(transfer.id);
  },

  /** Returns false if the transfer was complete before the user answered. */
  async cancel(transfer) {
    if (transfer.isFinished()) return false;
    await this.manager.cancel(transfer.id);
    transfer.set('phase', 'cancelled');
    this.batcher.mark(transfer);
    return true;
  },

  /** Continues without a failed file. */
  async leaveOut(transfer, fileId) {
    await this.manager.dequeueFiles(transfer.id, [{ id: fileId }]);
    transfer.files.leaveOut(fileId);
    transfer.reasons.delete(fileId);
    this.batcher.mark(transfer);
  },

  /** Removes finished transfers from the list, also for later sessions. */
  clearFinished() {
    const finished = this.filter((transfer) => transfer.isFinished());
    const keys = finished.map((transfer) => this.clearedIdOf(transfer.attributes));
    const hidden = new Set([...this.hidden(), ...keys]);
    localStorage.setItem(this.clearedStorageKey, JSON.stringify([...hidden].slice(-1000)));
    this.remove(finished);
  },

  hidden() {
    try {
      return JSON.parse(localStorage.getItem(this.clearedStorageKey)) ?? [];
    } catch {
      return [];
    }
  },

  isHidden(group) {
    return this.hidden().includes(this.clearedIdOf(group));
  },
});
