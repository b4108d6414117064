import { announce } from '../dom.js';
import { VirtualList } from './virtual_list.js';

/**
 * A virtual list whose entries are chosen with the mouse or the keyboard: arrows, Page Up and Down, Home and
 * End move, Space chooses, Shift extends, Ctrl+A chooses all. It is one stop of the Tab key.
 *
 * `model` provides count, isChosen(i), choose(i, chosen), chooseRange(i, j, chosen), chooseShown(chosen);
 * `fillRow(row, index, chosen)` draws an entry; `changed()` is called after every choice.
 */
export class SelectionList {
  #active = 0;
  #anchor = 0;

  constructor({ id, label, rowHeight, makeRow, fillRow, changed }) {
    Object.assign(this, { id, rowHeight, changed });
    this.model = null;
    this.list = new VirtualList({
      id, label, rowHeight, makeRow, role: 'listbox', rowRole: 'option',
      fillRow: (row, index) => this.#fill(row, index, fillRow),
    });
    this.el = this.list.element;
    this.el.setAttribute('aria-multiselectable', 'true');
    this.el.addEventListener('keydown', (event) => this.#pressed(event));
    this.el.addEventListener('click', (event) => this.#clicked(event));
    this.el.addEventListener('focus', () => this.#pointTo(this.#active));
  }

  /** Shows a different list of entries from its beginning. */
  setModel(model) {
    this.model = model;
    this.#active = 0;
    this.#anchor = 0;
    this.el.scrollTop = 0;
    this.refresh();
  }

  refresh() {
    const count = this.model?.count ?? 0;
    this.#active = Math.max(0, Math.min(this.#active, count - 1));
    this.list.refresh(count);
    this.#pointTo(this.#active);
  }

  #fill(row, index, fillRow) {
    const chosen = this.model.isChosen(index);
    row.id = `${this.id}-${index}`;
    row.setAttribute('aria-selected', String(chosen));
    row.classList.toggle('is-active', index === this.#active);
    fillRow(row, index, chosen);
  }

  #clicked(event) {
    const row = event.target.closest('[role=option]');
    if (!row) return;
    const index = Number(row.dataset.index);
    if (event.shiftKey) this.model.chooseRange(this.#anchor, index, true);
    else this.model.choose(index, !this.model.isChosen(index));
    this.#anchor = index;
    this.#active = index;
    this.#chosen();
  }

  #pressed(event) {
    const count = this.model?.count ?? 0;
    if (count === 0) return;
    const page = Math.max(1, Math.floor(this.el.clientHeight / this.rowHeight) - 1);
    const moves = {
      ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page, Home: -count, End: count,
    };
    if (event.key in moves) {
      this.#move(Math.max(0, Math.min(count - 1, this.#active + moves[event.key])), event.shiftKey);
    } else if (event.key === ' ') {
      this.#anchor = this.#active;
      this.model.choose(this.#active, !this.model.isChosen(this.#active));
      this.#chosen();
    } else if (event.key.toLowerCase() === 'a' && (event.ctrlKey || event.metaKey)) {
      this.model.chooseShown(true);
      this.#chosen();
      announce('All files are chosen.');
    } else {
      return;
    }
    event.preventDefault();
  }

  #move(to, extend) {
    if (extend) this.model.chooseRange(this.#anchor, to, true);
    else this.#anchor = to;
    this.#active = to;
    this.#scrollTo(to);
    if (extend) this.#chosen();
    else this.list.refresh(this.model.count);
    this.#pointTo(to);
  }

  #scrollTo(index) {
    const top = index * this.rowHeight;
    const bottom = top + this.rowHeight - this.el.clientHeight;
    if (this.el.scrollTop > top) this.el.scrollTop = top;
    else if (this.el.scrollTop < bottom) this.el.scrollTop = bottom;
  }

  /** Tells screen readers the current entry; it must be in the document. */
  #pointTo(index) {
    const row = this.list.rowAt(index);
    if (row) this.el.setAttribute('aria-activedescendant', row.id);
    else this.el.removeAttribute('aria-activedescendant');
  }

  #chosen() {
    this.list.refresh(this.model.count);
    this.#pointTo(this.#active);
    this.changed();
  }
}
