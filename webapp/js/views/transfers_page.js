import { Backbone } from '../lib.js';
import { el } from '../dom.js';
import { icon } from '../icons.js';
import { TransferCard } from './transfer_card.js';

/** All transfers, each on a card, the newest first. */
export const TransfersPage = Backbone.View.extend({
  className: 'page transfers-page',

  initialize(context) {
    Object.assign(this, context);
    this.cards = new Map();
    this.listenTo(this.transfers, 'add', this.addCard);
    this.listenTo(this.transfers, 'remove', this.removeCard);
    this.listenTo(this.transfers, 'add remove state change:phase', this.renderFrame);
    this.on('show', () => this.cards.forEach((card) => card.trigger('show')));
  },

  render() {
    this.clear = el('button', {
      id: 'clear-finished', type: 'button', class: 'button quiet',
      onclick: () => this.transfers.clearFinished(),
    }, 'Clear finished');
    this.list = el('div', { class: 'cards', id: 'transfer-list' });
    this.empty = el('div', { class: 'empty-state', 'data-test': 'no-transfers' },
      el('div', { class: 'empty-art', 'aria-hidden': 'true' }, icon('transfers')),
      el('h2', {}, 'No transfers yet'),
      el('p', { class: 'muted' }, 'What you send appears here, with its progress.'),
      el('a', { class: 'button primary', href: '#message/new' }, 'Send files'));
    this.el.append(
      el('div', { class: 'page-head' }, el('h1', {}, 'Transfers'), this.clear),
      this.empty, this.list);
    this.transfers.each((transfer) => this.addCard(transfer));
    this.renderFrame();
    return this;
  },

  addCard(transfer) {
    if (this.cards.has(transfer.id)) return;
    const card = new TransferCard({
      model: transfer, transfers: this.transfers, connection: this.connection, notify: this.notify,
    }).render();
    this.cards.set(transfer.id, card);
    const next = this.transfers.at(this.transfers.indexOf(transfer) + 1);
    this.list.insertBefore(card.el, this.cards.get(next?.id)?.el ?? null);
  },

  removeCard(transfer) {
    this.cards.get(transfer.id)?.remove();
    this.cards.delete(transfer.id);
  },

  renderFrame() {
    this.empty.hidden = this.transfers.length > 0;
    this.clear.hidden = !this.transfers.some((transfer) => transfer.isFinished());
  },
});
