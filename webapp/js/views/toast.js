import { el, setText } from '../dom.js';

const SHOWN_FOR = 5000;

/** A short notice at the bottom of the window, read out by screen readers. */
export class Toast {
  constructor() {
    this.text = el('span', { 'data-test': 'notice' });
    this.el = el('div', { class: 'toast', role: 'status', hidden: true }, this.text);
  }

  hide() {
    this.el.hidden = true;
  }

  show({ kind, text }) {
    setText(this.text, text);
    this.el.className = `toast toast-${kind}`;
    this.el.hidden = false;
    clearTimeout(this.timer);
    const longer = kind === 'error' ? 2 : 1;
    this.timer = setTimeout(() => this.hide(), SHOWN_FOR * longer);
  }
}
