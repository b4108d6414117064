import { Backbone } from '../lib.js';
import { el } from '../dom.js';
import { icon } from '../icons.js';
import { TransferCard } from './transfer_card.js';

/** All uploads and downloads, one card each, the newest first. */
export const TransfersPage = Backbone.View.extend({
  className: 'page transfers-page',

  initialize(context) {
    Object.assign(this, context);
    this.collections = [this.transfers, this.downloads];
    this.cards = new Map();
    this.collections.forEach((collection) => {
      this.listenTo(collection, 'add', this.addCard);
      this.listenTo(collection, 'remove', this.removeCard);
      this.listenTo(collection, 'change:created', this.arrange);
      this.listenTo(collection, 'add remove state change:phase', this.renderFrame);
    });
    this.on('show', () => this.cards.forEach((card) => card.trigger('show')));
  },

  render() {
    this.clear = el('button', {
      id: 'clear-finished', type: 'button', class: 'button quiet',
      onclick: () => this.collections.forEach((collection) => collection.clearFinished()),
    }, 'Clear finished');
    this.list = el('div', { class: 'cards', id: 'transfer-list' });
    this.empty = el('div', { class: 'empty-state', 'data-test': 'no-transfers' },
      el('div', { class: 'empty-art', 'aria-hidden': 'true' }, icon('transfers')),
      el('h2', {}, 'No transfers yet'),
      el('p', { class: 'muted' }, 'What you send and download appears here, with its progress.'),
      el('a', { class: 'button primary', href: '#message/new' }, 'Send files'));
    this.el.append(
      el('div', { class: 'page-head' }, el('h1', {}, 'Transfers'), this.clear),
      this.empty, this.list);
    this.collections.forEach((collection) => collection.each((transfer) => this.addCard(transfer)));
    this.renderFrame();
    return this;
  },

  addCard(transfer) {
    if (this.cards.has(transfer.cid)) return;
    const card = new TransferCard({
      model: transfer, transfers: transfer.collection, connection: this.connection, notify: this.notify,
    }).render();
    this.cards.set(transfer.cid, card);
    this.list.append(card.el);
    this.arrange();
  },

  removeCard(transfer) {
    this.cards.get(transfer.cid)?.remove();
    this.cards.delete(transfer.cid);
  },

  /** Moves only misplaced cards, so that the focus is kept. */
  arrange() {
    const wanted = [...this.cards.values()].sort((a, b) => newestFirst(a.model, b.model));
    wanted.forEach((card, place) => {
      const present = this.list.children[place];
      if (present !== card.el) this.list.insertBefore(card.el, present);
    });
  },

  renderFrame() {
    const all = this.collections.flatMap((collection) => collection.models);
    this.empty.hidden = all.length > 0;
    this.clear.hidden = !all.some((transfer) => transfer.isFinished());
  },
});

function newestFirst(a, b) {
  return b.get('created') - a.get('created') || Number(b.id) - Number(a.id);
}
