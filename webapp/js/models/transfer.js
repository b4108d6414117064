import { Backbone } from '../lib.js';
import { TransferFiles } from '../transfer_files.js';

const MAX_REASONS = 100;

/**
 * One group of the transfer library: a message being sent (direction "upload") or received ("download").
 *
 * `phase` is the page's own state of it:
 *   filling      files are being queued, `queuedCount` of `fileCount` so far
 *   interrupted  the page was reloaded while it was being filled; some files are missing
 *   running      the library has all files
 *   undelivered  the library is done, but the service does not accept the message
 *   delivered    the service has confirmed that the message is complete (uploads only)
 *   cancelled
 * `state` is the library's state of the group. `files` contains its files; `filesKnown` is false while
 * their states are unknown. `place` names a download's folder for display, `addressesExpire` is when the first of its
 * files' URLs expires (seconds since 1970; 0: never, or unknown). `waitingFor` is the reason for a
 * wait, {code, reason}, or null.
 */
export const Transfer = Backbone.Model.extend({
  defaults: {
    direction: 'upload', bucketId: '', sender: '', place: '', filesKnown: true, subject: '', recipients: [], phase: 'running', state: 'UNKNWON', marked: false,
    bytesTransferred: 0, bytesTotal: 0, rate: 0, secondsLeft: 0, queuedCount: 0, fileCount: 0,
    tokenExpires: 0, addressesExpire: 0,
    plannedBytes: 0, problem: '', created: 0, waitingFor: null,
  },

  initialize() {
    this.files = new TransferFiles();
    // Whether it was seen unfinished in this session, so that its end is reported.
    this.running = this.get('phase') === 'filling';
    // Downloads, by file: when its URL expires (seconds since 1970), and how often it was renewed.
    this.expiries = new Map();
    this.renewals = new Map();
    // Failed files, by file: {code, reason}.
    this.reasons = new Map();
  },

  /** Applies a group object of the library. */
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

  /** Applies the library's report to the service. */
  applyReport({ state, waitingFor, failures }) {
    const rests = state === 'TRANSFERRING' && this.get('state') === 'TRANSFERRING';
    this.set('waitingFor', rests ? waitingFor : null);
    for (const { fileId, code, reason } of failures ?? []) {
      if (this.files.byId(fileId)?.state === 'ERRORED') this.reasons.set(fileId, { code, reason });
    }
    this.trigger('reasons', this);
  },

  /** A report contains only the newest hundred failures; the others stay without a reason. */
  knowsAllReasons() {
    return this.reasons.size >= Math.min(this.files.countIn('ERRORED'), MAX_REASONS);
  },

  /** Records when the files' URLs expire. */
  takeAddresses(files) {
    for (const { id, downloadDetails: { expires } } of files) {
      this.expiries.set(id, expires);
      if (expires > 0) this.set('addressesExpire', Math.min(this.get('addressesExpire') || expires, expires));
    }
  },

  /** Whether a file's URL has expired; of an earlier session only the earliest expiry is known. */
  hasExpiredUrl(fileId, now = Date.now()) {
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

  /** Whether quitting now would leave files untransferred. */
  isUnfinished() {
    return this.isActive() && this.get('state') !== 'ERRORED';
  },

  /** The transfer's total bytes, also while it is being filled. */
  totalBytes() {
    const planned = this.get('phase') === 'filling' ? this.get('plannedBytes') : 0;
    return Math.max(this.get('bytesTotal'), this.files.bytes, planned);
  },

  /** Events of the group and of its files come at different times; the later one counts. */
  bytesDone() {
    return Math.max(this.get('bytesTransferred'), this.files.bytesDone);
  },

  /** In seconds; the library's own estimate does not include files that are not queued yet. */
  timeLeft() {
    const { phase, rate, secondsLeft } = this.attributes;
    if (phase !== 'filling') return secondsLeft;
    return rate > 0 ? Math.max(0, this.totalBytes() - this.bytesDone()) / rate : 0;
  },

  fileTotal() {
    return this.get('phase') === 'filling' ? this.get('fileCount') : this.files.wanted;
  },
});
