import { Backbone } from '../lib.js';
import { TransferFiles } from '../transfer_files.js';

/**
 * One group of the transfer library: a message on its way.
 *
 * `phase` tells what the page itself does with it:
 *   filling      files are being handed over, `handedOver` of `fileCount` so far
 *   interrupted  it was being filled when the page was loaded anew; not all files are there
 *   running      the library has everything
 *   undelivered  the library is done, but the service does not accept the message
 *   delivered    the service has confirmed that the message is complete
 *   cancelled
 * `state` is the library's word for the group. `files` holds its files.
 */
export const Transfer = Backbone.Model.extend({
  defaults: {
    bucketId: '', subject: '', recipients: [], phase: 'running', state: 'UNKNWON', marked: false,
    bytesTransferred: 0, bytesTotal: 0, rate: 0, secondsLeft: 0, handedOver: 0, fileCount: 0,
    plannedBytes: 0, problem: '', created: 0,
  },

  initialize() {
    this.files = new TransferFiles();
  },

  /** Takes in a group object of the library. */
  takeGroup(group) {
    this.set({
      bucketId: group.bucketId,
      state: group.type,
      marked: Boolean(group.marked),
      bytesTransferred: group.bytesTransferred,
      bytesTotal: group.bytesTotal,
      rate: group.bytesTransferredPerSecond,
      secondsLeft: group.estimatedEta,
    });
    if (group.cancelled) this.set('phase', 'cancelled');
  },

  isFinished() {
    const { phase, state } = this.attributes;
    return phase === 'cancelled' || (state === 'COMPLETED' && phase !== 'filling');
  },

  isActive() {
    return !this.isFinished() && this.get('phase') !== 'interrupted';
  },

  /** Whether quitting now would keep files from arriving. */
  isUnfinished() {
    return this.isActive() && this.get('state') !== 'ERRORED';
  },

  /** All bytes that the transfer will have, also while it is being filled. */
  totalBytes() {
    const planned = this.get('phase') === 'filling' ? this.get('plannedBytes') : 0;
    return Math.max(this.get('bytesTotal'), this.files.bytes, planned);
  },

  /** Reports of the group and of its files come at different times; the later one counts. */
  bytesDone() {
    return Math.max(this.get('bytesTransferred'), this.files.bytesDone);
  },

  /** In seconds; the library's own estimate leaves out what it has not been handed yet. */
  timeLeft() {
    const { phase, rate, secondsLeft } = this.attributes;
    if (phase !== 'filling') return secondsLeft;
    return rate > 0 ? Math.max(0, this.totalBytes() - this.bytesDone()) / rate : 0;
  },

  fileTotal() {
    return this.get('phase') === 'filling' ? this.get('fileCount') : this.files.wanted;
  },
});
