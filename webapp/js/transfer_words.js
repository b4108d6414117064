// Texts for transfers and their files. Pure functions.

import {
  formatCount, formatNumber, formatPercent, formatRate, formatSize, formatTimeLeft,
} from './format.js';

const WORDS = {
  upload: {
    moving: 'Sending', done: 'Sent', over: { label: 'Finishing', tone: 'active' }, verb: 'sent',
    stopped: 'Sending stopped.',
    interrupted: 'This page was reloaded before all files were added. Send the added files, or cancel and send again.',
    continues: 'Sending continues as soon as the service can be reached.',
    advice: (one) => `Check that ${one ? 'it is' : 'they are'} still there and can be read. Otherwise the service refused ${one ? 'it' : 'them'}.`,
  },
  download: {
    moving: 'Downloading', done: 'Saved', over: { label: 'Downloaded', tone: 'done' }, verb: 'downloaded',
    stopped: 'The download stopped.',
    interrupted: 'Not all files were added. Add the others, or cancel and download again.',
    continues: 'The download continues as soon as the service can be reached.',
    advice: () => 'Check that there is room in the folder and that you may write to it. Otherwise the service has wrong content.',
  },
};

const wordsOf = (direction) => WORDS[direction] ?? WORDS.upload;

/** The label and tone of a transfer's state. */
export function groupWords({ direction, phase, state, waitingFor = null }) {
  const words = wordsOf(direction);
  if (phase === 'cancelled') return { label: 'Cancelled', tone: 'paused' };
  if (phase === 'delivered') return { label: 'Sent', tone: 'done' };
  if (phase === 'undelivered') return { label: 'Not delivered', tone: 'error' };
  if (phase === 'interrupted') return { label: 'Interrupted', tone: 'error' };
  if (phase === 'filling' && state !== 'ERRORED' && (state !== 'PAUSED' || direction === 'download')) {
    return { label: state === 'TRANSFERRING' ? words.moving : 'Preparing', tone: 'active' };
  }
  if (state === 'TRANSFERRING' && waitingFor) return { label: 'Waiting', tone: 'paused' };
  if (state === 'TRANSFERRING') return { label: words.moving, tone: 'active' };
  if (state === 'ERRORED') return { label: 'Failed', tone: 'error' };
  if (state === 'COMPLETED') return words.over;
  return { label: state === 'PAUSED' ? 'Paused' : 'Waiting', tone: 'paused' };
}

const FILE = { ERRORED: 'Failed', PAUSED: 'Paused', UNKNWON: 'Waiting' };

/** A file's state; `known` is false if it has not been reported yet. */
export function fileWords(file, { direction = 'upload', known = true } = {}) {
  if (file.leftOut) return 'Left out';
  if (file.state === 'TRANSFERRING') return formatPercent(file.done, file.size);
  if (file.state === 'COMPLETED') return wordsOf(direction).done;
  if (file.state === 'UNKNWON' && !known) return '';
  return FILE[file.state] ?? FILE.UNKNWON;
}

/** The labels of the file filters. */
export function filterLabels(direction) {
  const { moving, done } = wordsOf(direction);
  return { all: 'All', moving, waiting: 'Waiting', done, failed: 'Failed' };
}

/** "12 of 5,000 files, 45 MB of 1.2 GB"; without the files if `known` is false. */
export function progressWords({ done, count, bytesDone, bytesTotal, finished, known = true }) {
  if (finished) return `${formatCount(count, 'file')}, ${formatSize(bytesTotal)}`;
  const bytes = `${formatSize(bytesDone)} of ${formatSize(bytesTotal)}`;
  return known ? `${formatNumber(done)} of ${formatCount(count, 'file')}, ${bytes}` : bytes;
}

/** "12.3 MB/s, 3 min left"; empty if nothing is transferring. */
export function rateWords({ state, rate, secondsLeft }) {
  if (state !== 'TRANSFERRING') return '';
  return [formatRate(rate), formatTimeLeft(secondsLeft)].filter(Boolean).join(', ');
}

/** The failure and a remedy; empty if nothing failed. */
export function failureWords({ direction, names, total, phase, reachable = true, timeLimitOver = false, reason = '' }) {
  const words = wordsOf(direction);
  if (phase === 'interrupted') return words.interrupted;
  const failed = `${formatCount(total, 'file')} could not be ${words.verb}`;
  if (!reachable) {
    return total === 0 ? words.continues
      : `${failed}; ${total === 1 ? 'it is' : 'they are'} tried again as soon as the service can be reached.`;
  }
  if (timeLimitOver) return `${total === 0 ? words.stopped : `${failed}.`} The service's time limit for it is over; start again.`;
  if (total === 0) return `${words.stopped} Check the connection to the service, then try again.`;
  const listed = names.map((name) => `“${name}”`).join(', ');
  const more = total > names.length ? ` and ${formatNumber(total - names.length)} more` : '';
  const why = reason ? `${reason}${/[.?]$/.test(reason) ? '' : '.'}` : words.advice(total === 1);
  return `${failed}: ${listed}${more}. ${why} Try again, or leave ${total === 1 ? 'it' : 'them'} out.`;
}
