// Reads the service's entries of received messages and their files. Other people wrote what is in them, so each
// is read by itself: a broken one is left out, and the others stay. Pure.

const textOf = (value) => (typeof value === 'string' ? value : '');
const amountOf = (value) => (Number.isFinite(value) && value >= 0 ? value : 0);
const isId = (value) => typeof value === 'string' && value !== '';

/** The attributes of a message; null without an id. */
export function messageEntry(entry) {
  if (!isId(entry?.bucketId)) return null;
  return {
    bucketId: entry.bucketId,
    bucketType: textOf(entry.bucketType),
    subject: textOf(entry.subject),
    text: textOf(entry.text),
    sender: textOf(entry.sender),
    files: amountOf(entry.files),
    bytes: amountOf(entry.bytes),
    created: amountOf(entry.created),
    expires: amountOf(entry.expires),
  };
}

/** {id, path, size} and what else the service tells; null without an id or a path. */
export function fileEntry(entry) {
  if (!isId(entry?.id) || !isId(entry.path)) return null;
  return { ...entry, size: amountOf(entry.size) };
}

/** The entries of a list that can be read. */
export function readableEntries(list, read) {
  return Array.isArray(list) ? list.map(read).filter(Boolean) : [];
}
