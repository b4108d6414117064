// Which rows of a long list belong in the document. Pure functions.

/** The half-open range of rows to render for a scroll position, with a margin on both sides. */
export function rowWindow({ scrollTop, viewHeight, rowHeight, count, spare = 6 }) {
  const first = Math.floor(Math.max(0, scrollTop) / rowHeight) - spare;
  const last = Math.ceil((Math.max(0, scrollTop) + viewHeight) / rowHeight) + spare;
  const end = Math.min(count, Math.max(0, last));
  return { begin: Math.max(0, Math.min(first, end)), end };
}
