import { Backbone } from '../lib.js';
import { TransferFiles } from '../transfer_files.js';

const MOST_REASONS = 100;

/**
 * One group of the transfer library: a message on its way, out (direction "upload") or in ("download").
 *
 * `phase` tells what the page itself does with it:
 *   filling      files are being handed over, `handedOver` of `fileCount` so far
 *   interrupted  it was being filled when the page was loaded anew; not all files are there
 *   running      the library has everything
 *   undelivered  the library is done, but the service does not accept the message
 *   delivered    the service has confirmed that the message is complete (uploads only)
 *   cancelled
 * `state` is the library's word for the group. `files` holds its files; `filesKnown` is false while
 * nobody has told their states. `place` says in words where a download goes, `addressesExpire` when the first of its
 * files' addresses expires (seconds since 1970; 0: never, or not known). `waitingFor` is what keeps it from
 * going on, {code, reason} or null.
 */
export const Transfer = Backbone.Model.extend({
  defaults: {
    direction: 'upload', bucketId: '', sender: '', place: '', filesKnown: true, subject: '', recipients: [], phase: 'running', state: 'UNKNWON', marked: false,
    bytesTransferred: 0, bytesTotal: 0, rate: 0, secondsLeft: 0, handedOver: 0, fileCount: 0,
    tokenExpires: 0, addressesExpire: 0,
    plannedBytes: 0, problem: '', created: 0, waitingFor: null,
  },

  initialize() {
    this.files = new TransferFiles();
    // Whether it has been seen on its way, so that its end is news.
    this.running = this.get('phase') === 'filling';
    // Of downloads, by file: when its address expires (seconds since 1970), how often it was renewed.
    this.expiries = new Map();
    this.renewals = new Map();
    // Of failed files, by file: {code, reason}.
    this.reasons = new Map();
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
    if (group.type === 'TRANSFERRING') this.running = true;
    else this.set('waitingFor', null);
    if (group.cancelled) this.set('phase', 'cancelled');
  },

  /** Takes in what the library has reported to the service. */
  takeReport({ state, waitingFor, failures }) {
    const rests = state === 'TRANSFERRING' && this.get('state') === 'TRANSFERRING';
    this.set('waitingFor', rests ? waitingFor : null);
    for (const { fileId, code, reason } of failures ?? []) {
      if (this.files.byId(fileId)?.state === 'ERRORED') this.reasons.set(fileId, { code, reason });
    }
    this.trigger('reasons', this);
  },

  /** A report has only the newest hundred; of the others nothing more is to be learned. */
  knowsAllReasons() {
    return this.reasons.size >= Math.min(this.files.countIn('ERRORED'), MOST_REASONS);
  },

  /** Notes until when the addresses of files can be used. */
  takeAddresses(files) {
    for (const { id, downloadDetails: { expires } } of files) {
      this.expiries.set(id, expires);
      if (expires > 0) this.set('addressesExpire', Math.min(this.get('addressesExpire') || expires, expires));
    }
  },

  /** Whether a file's address has expired; of an earlier session only the first expiry of all is known. */
  addressIsOld(fileId, now = Date.now()) {
    const expires = this.expiries.get(fileId) ?? this.get('addressesExpire');
    return expires > 0 && expires * 1000 <= now;
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
