import { el } from '../dom.js';
import { atNextFrame } from '../frame_batcher.js';
import { rowWindow } from '../row_window.js';

/**
 * A list of any length that has only its visible rows in the document. All rows have the same height.
 *
 * `makeRow()` builds an empty row, `fillRow(row, index)` shows an entry in it. Rows are reused
 * for different entries as the list scrolls.
 */
export class VirtualList {
  #rows = new Map();
  #spare = [];
  #count = 0;
  #scheduled = false;

  constructor({ id, label, rowHeight, makeRow, fillRow, role = 'list', rowRole = 'listitem' }) {
    Object.assign(this, { rowHeight, makeRow, fillRow, rowRole });
    this.canvas = el('div', { class: 'rows-canvas', role: 'presentation' });
    this.element = el('div', {
      id, class: 'rows', role, tabindex: '0', 'aria-label': label,
      onscroll: () => this.#soon(),
    }, this.canvas);
    this.observer = new ResizeObserver(() => this.#soon());
    this.observer.observe(this.element);
  }

  /** Shows the given number of entries; all of them may have changed. */
  refresh(count) {
    this.#count = count;
    this.canvas.style.height = `${count * this.rowHeight}px`;
    // For lists whose height follows their rows.
    this.element.style.setProperty('--rows-height', `${count * this.rowHeight}px`);
    this.#draw(true);
  }

  /** The row of an entry, if it is in the document. */
  rowAt(index) {
    return this.#rows.get(index);
  }

  remove() {
    this.observer.disconnect();
    this.element.remove();
  }

  #soon() {
    if (this.#scheduled) return;
    this.#scheduled = true;
    atNextFrame(() => {
      this.#scheduled = false;
      this.#draw(false);
    });
  }

  #draw(contentChanged) {
    const { begin, end } = rowWindow({
      scrollTop: this.element.scrollTop,
      viewHeight: this.element.clientHeight,
      rowHeight: this.rowHeight,
      count: this.#count,
    });
    for (const [index, row] of this.#rows) {
      if (index >= begin && index < end) continue;
      this.#rows.delete(index);
      row.remove();
      this.#spare.push(row);
    }
    // From the last to the first, so that each row finds its successor in place.
    for (let index = end - 1; index >= begin; index -= 1) {
      const present = this.#rows.get(index);
      if (!present) this.#insert(index);
      else if (contentChanged) this.#fill(present, index);
    }
  }

  #insert(index) {
    const row = this.#spare.pop() ?? this.makeRow();
    row.setAttribute('role', this.rowRole);
    row.style.transform = `translateY(${index * this.rowHeight}px)`;
    this.#rows.set(index, row);
    this.#fill(row, index);
    // Document order is reading and Tab order.
    this.canvas.insertBefore(row, this.#rows.get(index + 1) ?? null);
  }

  #fill(row, index) {
    row.setAttribute('aria-posinset', index + 1);
    row.setAttribute('aria-setsize', this.#count);
    row.dataset.index = index;
    this.fillRow(row, index);
  }
}
