import { Backbone } from '../lib.js';
import { el } from '../dom.js';
import { icon } from '../icons.js';
import { downloads as downloadManager } from '../native.js';
import { MessageList } from './message_list.js';
import { MessagePanel } from './message_panel.js';

const REFRESH_MS = 30000;

/** The received messages, and beside them the files of the open one. */
export const ReceivedPage = Backbone.View.extend({
  className: 'page received-page',

  initialize(context) {
    Object.assign(this, context);
    this.listenTo(this.received, 'loaded', this.update);
    this.listenTo(this.transfers, 'change:phase', this.sentToOneself);
    this.on('show', this.open);
  },

  render() {
    this.messageList = new MessageList({ messages: this.received });
    this.refresh = el('button', {
      id: 'refresh-received', type: 'button', class: 'button quiet', onclick: () => this.load(),
    }, icon('refresh'), 'Refresh');
    this.listPanel = el('div', { class: 'panel message-list' }, this.messageList.el);
    this.detail = el('div', { class: 'message-detail' });
    this.columns = el('div', { class: 'received-columns' }, this.listPanel, this.detail);
    this.empty = this.renderEmpty();
    this.waiting = el('p', { class: 'muted', role: 'status' }, 'Asking the service…');
    this.el.append(
      el('div', { class: 'page-head' }, el('h1', {}, 'Received'), this.refresh),
      el('p', { class: 'muted received-notice', 'data-test': 'no-downloads', hidden: downloadManager.isThere() },
        'You can look at what you received; downloading needs the Zantrio application.'),
      this.waiting, this.empty, this.columns);
    setInterval(() => this.el.isConnected && this.load(), REFRESH_MS);
    this.update();
    return this;
  },

  renderEmpty() {
    return el('div', { class: 'empty-state', 'data-test': 'nothing-received' },
      el('div', { class: 'empty-art', 'aria-hidden': 'true' }, icon('received')),
      el('h2', {}, 'Nothing received yet'),
      el('p', { class: 'muted' }, 'When somebody sends you files, they appear here and you choose which to download. '
        + 'To see how that looks, send something to your own address.'),
      el('a', { class: 'button primary', href: '#message/new' }, 'Send files'));
  },

  async load() {
    try {
      await this.received.load();
    } catch (error) {
      this.notify({ kind: 'error', text: error.message });
    }
  },

  sentToOneself(transfer) {
    if (transfer.get('phase') === 'delivered' && this.el.isConnected) this.load();
  },

  open(bucketId) {
    this.wanted = bucketId;
    this.load();
    this.update();
    this.panel?.trigger('show');
  },

  update() {
    const { received } = this;
    const some = received.length > 0;
    this.waiting.hidden = received.loaded || some;
    this.empty.hidden = some || !received.loaded;
    this.columns.hidden = !some;
    if (!some) return;
    // If there is space, a message is always open; a new message does not replace it.
    const shown = received.get(this.wanted) ?? received.get(this.panel?.model) ?? received.first();
    this.columns.classList.toggle('has-open', Boolean(this.wanted));
    this.messageList.refresh(shown.id);
    this.showMessage(shown);
  },

  showMessage(message) {
    if (this.panel?.model !== message) {
      this.panel?.remove();
      this.panel = new MessagePanel({
        model: message, downloads: this.downloads, downloadFlow: this.downloadFlow,
        connection: this.connection, notify: this.notify,
      }).render();
      this.detail.replaceChildren(this.panel.el);
    }
    message.loadFiles();
  },
});
