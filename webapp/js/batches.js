// Processes long lists in batches, so that the page can draw and react in between.

export function* inBatches(items, size) {
  for (let begin = 0; begin < items.length; begin += size) {
    yield items.slice(begin, begin + size);
  }
}

/** Resolves in a later task, after the page could draw. */
export function nextTurn() {
  return new Promise((resolve) => {
    setTimeout(resolve, 0);
  });
}
