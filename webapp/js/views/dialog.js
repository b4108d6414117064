import { el } from '../dom.js';

let lastId = 0;

/** Asks a question over the page; returns whether the answer was yes. Escape means no. */
export class ConfirmDialog {
  constructor({ yes, no, dangerous = false, test }) {
    lastId += 1;
    this.title = el('h2', { id: `dialog-title-${lastId}` });
    this.text = el('p', {});
    this.yes = el('button', {
      class: dangerous ? 'button danger' : 'button primary', value: 'yes', 'data-test': `${test}-yes`,
    }, yes);
    this.no = el('button', { class: 'button', value: 'no', 'data-test': `${test}-no` }, no);
    this.el = el('dialog', { class: 'dialog', 'aria-labelledby': this.title.id, 'data-test': test },
      el('form', { method: 'dialog' }, this.title, this.text,
        el('div', { class: 'dialog-buttons' }, this.no, this.yes)));
  }

  ask(title, text) {
    this.title.textContent = title;
    this.text.textContent = text;
    this.el.returnValue = '';
    this.el.showModal();
    this.no.focus();
    return new Promise((resolve) => {
      this.el.addEventListener('close', () => resolve(this.el.returnValue === 'yes'), { once: true });
    });
  }
}
