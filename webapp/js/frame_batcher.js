// Collects changed items and passes them on once per frame.

/** Calls back at the next frame, or soon if no frames are drawn (a hidden window). */
export function atNextFrame(callback, limit = 250) {
  let done = false;
  const once = () => {
    if (done) return;
    done = true;
    callback();
  };
  requestAnimationFrame(once);
  setTimeout(once, limit);
}

export class FrameBatcher {
  #changed = new Set();
  #scheduled = false;
  #flush;
  #schedule;

  /** `flush(set)` gets all items marked since the last frame. */
  constructor(flush, schedule = atNextFrame) {
    this.#flush = flush;
    this.#schedule = schedule;
  }

  mark(key) {
    this.#changed.add(key);
    if (this.#scheduled) return;
    this.#scheduled = true;
    this.#schedule(() => {
      const changed = this.#changed;
      this.#changed = new Set();
      this.#scheduled = false;
      this.#flush(changed);
    });
  }
}
