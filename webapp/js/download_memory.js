// The page's record of downloads for later sessions: the library keeps the group and its files, but does
// not report which files they are. Kept in the browser's own storage.

import { fromRanges, toRanges } from './id_ranges.js';

const PLACE = 'zantrio.downloads';
const MAX_DOWNLOADS = 50;

const keyOf = ({ id, bucketId }) => `${id}:${bucketId}`;

function readAll() {
  try {
    return JSON.parse(localStorage.getItem(PLACE)) ?? {};
  } catch {
    return {};
  }
}

/** `ids`: of the chosen files, null for all files of the message. Not all of them are queued yet. */
export function rememberDownload(transfer, ids) {
  write(transfer, { ...known(transfer), files: ids && toRanges(ids), filled: false });
}

/** The library has all files. */
export function rememberFilled(transfer) {
  const entry = readAll()[keyOf(transfer.attributes)];
  if (entry) write(transfer, { ...entry, ...known(transfer), filled: true });
}

const known = (transfer) => {
  const { created, place, tokenExpires, addressesExpire } = transfer.attributes;
  return { created, place, tokenExpires, addressesExpire };
};

function write(transfer, entry) {
  const all = { ...readAll(), [keyOf(transfer.attributes)]: entry };
  const kept = Object.entries(all).sort(([, a], [, b]) => b.created - a.created).slice(0, MAX_DOWNLOADS);
  try {
    localStorage.setItem(PLACE, JSON.stringify(Object.fromEntries(kept)));
  } catch {
    // The storage is full; the download does not depend on it.
  }
}

/**
 * {attributes, files}: the attributes to set, and the chosen files' ids or null; null if forgotten. The phase is
 * "interrupted" if the page was reloaded before all files were queued.
 */
export function rememberedDownload(group) {
  const found = readAll()[keyOf(group)];
  if (!found) return null;
  const { files, filled, ...attributes } = found;
  const phase = filled ? 'running' : 'interrupted';
  return { attributes: { ...attributes, phase }, files: files ? new Set(fromRanges(files)) : null };
}
