// What a transfer and its files are called in front of a person. Pure functions.

import {
  formatCount, formatNumber, formatPercent, formatRate, formatSize, formatTimeLeft,
} from './format.js';

const GROUP = {
  TRANSFERRING: { label: 'Sending', tone: 'active' },
  ERRORED: { label: 'Failed', tone: 'error' },
  COMPLETED: { label: 'Finishing', tone: 'active' },
  PAUSED: { label: 'Paused', tone: 'paused' },
  UNKNWON: { label: 'Waiting', tone: 'paused' },
};

/** The label and tone of a transfer's state. */
export function groupWords({ phase, state }) {
  if (phase === 'cancelled') return { label: 'Cancelled', tone: 'paused' };
  if (phase === 'delivered') return { label: 'Sent', tone: 'done' };
  if (phase === 'undelivered') return { label: 'Not delivered', tone: 'error' };
  if (phase === 'interrupted') return { label: 'Interrupted', tone: 'error' };
  if (phase === 'filling' && state !== 'ERRORED' && state !== 'PAUSED') {
    return { label: state === 'UNKNWON' ? 'Preparing' : 'Sending', tone: 'active' };
  }
  return GROUP[state] ?? GROUP.UNKNWON;
}

const FILE = {
  COMPLETED: 'Sent', ERRORED: 'Failed', PAUSED: 'Paused', UNKNWON: 'Waiting',
};

export function fileWords(file) {
  if (file.leftOut) return 'Left out';
  if (file.state === 'TRANSFERRING') return formatPercent(file.done, file.size);
  return FILE[file.state] ?? FILE.UNKNWON;
}

/** "12 of 5,000 files, 45 MB of 1.2 GB" */
export function progressWords({ done, count, bytesDone, bytesTotal, finished }) {
  if (finished) return `${formatCount(count, 'file')}, ${formatSize(bytesTotal)}`;
  return `${formatNumber(done)} of ${formatCount(count, 'file')}, `
    + `${formatSize(bytesDone)} of ${formatSize(bytesTotal)}`;
}

/** "12.3 MB/s, 3 min left"; empty while nothing moves. */
export function paceWords({ state, rate, secondsLeft }) {
  if (state !== 'TRANSFERRING') return '';
  return [formatRate(rate), formatTimeLeft(secondsLeft)].filter(Boolean).join(', ');
}

/** What failed and what one can do about it; an empty text when nothing did. */
export function failureWords({ names, total, phase, reachable = true }) {
  if (phase === 'interrupted') {
    return 'Not all files were added before this page was loaded anew. Send what was added, or cancel and send again.';
  }
  if (!reachable) {
    return total === 0 ? 'Sending goes on as soon as the service can be reached.'
      : `${formatCount(total, 'file')} could not be sent; they are tried again as soon as the service can be reached.`;
  }
  if (total === 0) {
    return 'Sending stopped. Check the connection to the service, then try again.';
  }
  const listed = names.map((name) => `“${name}”`).join(', ');
  const more = total > names.length ? ` and ${formatNumber(total - names.length)} more` : '';
  const there = total === 1 ? 'it is still there and can be read' : 'they are still there and can be read';
  const it = total === 1 ? 'it' : 'them';
  return `${formatCount(total, 'file')} could not be sent: ${listed}${more}. `
    + `Check that ${there}; else the service did not take ${it}. Try again, or leave ${it} out.`;
}
