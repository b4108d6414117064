import { el } from '../dom.js';
import { icon } from '../icons.js';
import { chooser } from '../native.js';

/** Accepts files dropped anywhere on the page, and shows that during a drag. */
export class DropOverlay {
  constructor({ intake }) {
    this.intake = intake;
    this.depth = 0;
    this.el = el('div', { class: 'drop-overlay', id: 'drop-overlay', hidden: true, 'aria-hidden': 'true' },
      el('div', { class: 'drop-overlay-frame' },
        el('div', { class: 'drop-overlay-label' }, icon('add'),
          chooser.isThere() ? 'Drop to add' : 'Dropping files needs the Zantrio application')));
  }

  install(parent) {
    parent.append(this.el);
    const on = (type, listener) => window.addEventListener(type, (event) => {
      if (!event.dataTransfer?.types.includes('Files')) return;
      event.preventDefault();
      listener(event);
    });
    on('dragenter', () => this.#move(1));
    on('dragleave', () => this.#move(-1));
    on('dragover', (event) => {
      event.dataTransfer.dropEffect = chooser.isThere() ? 'copy' : 'none';
    });
    on('drop', () => this.#drop());
  }

  // The event for entering a child comes before the one for leaving its parent.
  #move(step) {
    this.depth = Math.max(0, this.depth + step);
    this.el.hidden = this.depth === 0;
  }

  #drop() {
    this.#move(-this.depth);
    if (!chooser.isThere()) return;
    this.intake.dropped();
    window.location.hash = 'message/new';
  }
}
