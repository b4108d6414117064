import { el, setText } from '../dom.js';
import { formatCount, formatDate, formatExpiry, formatSize } from '../format.js';
import { senderName } from '../sender_name.js';
import { VirtualList } from './virtual_list.js';

const ROW_HEIGHT = 76;

/** The received messages, each a link to its files. */
export class MessageList {
  constructor({ messages }) {
    this.messages = messages;
    this.current = null;
    this.list = new VirtualList({
      id: 'message-list', label: 'Received messages', rowHeight: ROW_HEIGHT,
      makeRow: () => this.#makeRow(), fillRow: (row, index) => this.#fillRow(row, index),
    });
    // The rows are links, so Tab stops at each of them and not at the list.
    this.list.element.removeAttribute('tabindex');
    this.el = this.list.element;
  }

  refresh(current = this.current) {
    this.current = current;
    this.list.refresh(this.messages.length);
  }

  #makeRow() {
    return el('div', { class: 'row message-row' },
      el('a', { class: 'message-link', 'data-test': 'message' },
        el('span', { class: 'message-line' },
          el('span', { class: 'message-sender' }), el('span', { class: 'message-date' })),
        el('span', { class: 'message-subject', 'data-test': 'message-subject' }),
        el('span', { class: 'message-sum' })));
  }

  #fillRow(row, index) {
    const message = this.messages.at(index);
    const { subject, sender, created, expires, files, bytes } = message.attributes;
    const link = row.firstChild;
    const [line, title, sum] = link.children;
    link.href = `#received/${encodeURIComponent(message.id)}`;
    link.dataset.bucketId = message.id;
    if (message.id === this.current) link.setAttribute('aria-current', 'true');
    else link.removeAttribute('aria-current');
    setText(line.firstChild, senderName(sender));
    setText(line.lastChild, formatDate(created));
    setText(title, subject || 'No title');
    setText(sum, [`${formatCount(files, 'file')}, ${formatSize(bytes)}`, formatExpiry(expires)].filter(Boolean).join(' · '));
    row.classList.toggle('is-expired', message.isExpired());
  }
}
