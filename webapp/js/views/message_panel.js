import { Backbone } from '../lib.js';
import { el, setText } from '../dom.js';
import { formatCount, formatDate, formatExpiry, formatNumber, formatSize } from '../format.js';
import { icon } from '../icons.js';
import { downloads as downloadManager } from '../native.js';
import { fileWords } from '../transfer_words.js';
import { SelectionList } from './selection_list.js';
import { TransferCard } from './transfer_card.js';

const ROW_HEIGHT = 48;

/** One received message: its files to choose from, the download buttons, and the download's progress. */
export const MessagePanel = Backbone.View.extend({
  tagName: 'section',
  className: 'message-panel',
  attributes: { 'aria-labelledby': 'message-title' },

  initialize({ downloads, downloadFlow, connection, notify }) {
    Object.assign(this, { downloads, downloadFlow, connection, notify });
    this.listenTo(this.model, 'files change', this.update);
    this.listenTo(downloads, 'add remove', this.updateDownload);
    this.listenTo(downloads, 'moved change:phase', this.updateRows);
    this.on('show', () => this.card?.trigger('show'));
  },

  render() {
    this.meta = el('p', { class: 'muted', 'data-test': 'message-meta' });
    this.text = el('p', { class: 'message-text', 'data-test': 'message-text' });
    this.title = el('h2', { id: 'message-title', 'data-test': 'message-title' });
    this.cardPlace = el('div', { class: 'message-download' });
    this.notice = el('div', { class: 'message-notice', 'data-test': 'message-notice' });
    this.el.append(
      el('a', { class: 'button quiet small back-link', href: '#received' }, icon('back'), 'All messages'),
      el('div', { class: 'message-head' }, this.title, this.meta, this.text),
      this.renderActions(), this.cardPlace, this.notice, this.renderFiles());
    this.update();
    this.updateDownload();
    return this;
  },

  renderActions() {
    this.downloadLabel = el('span', {});
    this.downloadButton = el('button', {
      id: 'download-button', type: 'button', class: 'button primary', onclick: () => this.download(true),
    }, icon('download'), this.downloadLabel);
    this.chooseButton = el('button', {
      id: 'download-to-button', type: 'button', class: 'button', onclick: () => this.download(false),
    }, icon('folder'), 'Download to…');
    this.where = el('p', { class: 'muted message-where' },
      'Goes to the folder Zantrio in your Downloads, which opens when everything is there.');
    this.error = el('p', { class: 'field-error', 'data-test': 'download-error', role: 'alert', hidden: true });
    this.actions = el('div', { class: 'message-actions' },
      el('div', { class: 'message-buttons' }, this.downloadButton, this.chooseButton), this.where, this.error);
    return this.actions;
  },

  renderFiles() {
    this.all = el('input', {
      type: 'checkbox', class: 'check', id: 'choose-all', onchange: () => this.chooseAll(),
    });
    this.sum = el('span', { class: 'muted', 'data-test': 'chosen-sum', role: 'status' });
    this.filterField = el('input', {
      type: 'text', id: 'received-filter', class: 'filter-input', placeholder: 'Find by name or folder',
      'aria-label': 'Find files by name or folder', autocomplete: 'off', spellcheck: 'false', oninput: () => this.filter(),
    });
    this.nothing = el('p', { class: 'muted none', 'data-test': 'no-match' }, 'No file has that in its name or folder.');
    this.selection = new SelectionList({
      id: 'received-files', label: 'Files of this message', rowHeight: ROW_HEIGHT,
      makeRow: () => this.makeRow(), fillRow: (row, index, chosen) => this.fillRow(row, index, chosen),
      changed: () => this.updateSum(),
    });
    this.filesPanel = el('div', { class: 'panel received-files' },
      el('div', { class: 'panel-head' },
        el('label', { class: 'choose-all' }, this.all, el('span', {}, 'All')), this.sum, this.filterField),
      this.nothing, this.selection.el);
    return this.filesPanel;
  },

  makeRow() {
    return el('div', { class: 'row received-row', 'data-test': 'received-file' },
      el('span', { class: 'check', 'aria-hidden': 'true' }, icon('check')),
      el('span', { class: 'row-main' },
        el('span', { class: 'row-name', 'data-test': 'file-name' }),
        el('span', { class: 'row-sub', 'data-test': 'file-folder' })),
      el('span', { class: 'row-size' }),
      el('span', { class: 'row-state' }, icon('check'), el('span', { 'data-test': 'file-state' })));
  },

  fillRow(row, index) {
    const file = this.model.files.at(index);
    const [, main, size, state] = row.children;
    const onTheWay = this.current?.files.byId(file.id);
    row.dataset.fileId = file.id;
    row.dataset.state = onTheWay ? onTheWay.state : '';
    setText(main.firstChild, file.name);
    main.firstChild.title = file.path;
    setText(main.lastChild, file.folder ?? '');
    setText(size, formatSize(file.size));
    const words = onTheWay && this.current.get('phase') !== 'cancelled'
      ? fileWords(onTheWay, { direction: 'download', known: this.current.get('filesKnown') }) : '';
    setText(state.lastChild, words);
    state.hidden = !this.current;
  },

  update() {
    const { subject, sender, created, expires, text, loading, loaded, problem, files } = this.model.attributes;
    const expired = this.model.isExpired();
    const there = this.model.files !== null && !expired;
    setText(this.title, subject || 'No title');
    setText(this.meta, [`From ${sender || 'an unknown sender'}`, formatDate(created), formatExpiry(expires)]
      .filter(Boolean).join(' · '));
    setText(this.text, text);
    this.text.hidden = !text;
    this.actions.hidden = !there;
    this.filesPanel.hidden = !there;
    this.notice.hidden = there;
    setText(this.notice, expired
      ? 'This message has expired, so its files can no longer be downloaded. Ask its sender to send it again.'
      : problem || (loading ? `Reading the list of files: ${formatNumber(loaded)} of ${formatNumber(files)}` : ''));
    if (there && this.selection.model !== this.model.files) this.filter();
    else if (there) this.updateSum();
  },

  updateSum() {
    const { files } = this.model;
    const { chosenCount, chosenBytes, total, bytes } = files;
    setText(this.sum, chosenCount > 0
      ? `${formatNumber(chosenCount)} of ${formatCount(total, 'file')} chosen, ${formatSize(chosenBytes)}`
      : `${formatCount(total, 'file')}, ${formatSize(bytes)}`);
    const chosen = files.chosenOfShown();
    this.all.checked = chosen === 'all';
    this.all.indeterminate = chosen === 'some';
    setText(this.downloadLabel, chosenCount > 0 && chosenCount < total
      ? `Download ${formatCount(chosenCount, 'file')}` : 'Download all');
    const possible = downloadManager.isThere() && total > 0 && !this.beginning;
    this.downloadButton.disabled = !possible;
    this.chooseButton.disabled = !possible;
    this.nothing.hidden = files.count > 0;
    this.selection.el.hidden = files.count === 0;
  },

  chooseAll() {
    this.model.files.chooseShown(this.all.checked);
    this.selection.refresh();
    this.updateSum();
  },

  filter() {
    this.model.files.filter(this.filterField.value);
    this.selection.setModel(this.model.files);
    this.updateSum();
  },

  /** Begins a download of the chosen files, into the automatic folder or one that the user chooses. */
  async download(automatic) {
    const { files } = this.model;
    const wanted = files.wanted();
    this.setBeginning(true);
    try {
      const begun = await this.downloadFlow.begin(this.model.attributes, wanted, {
        automatic, whole: wanted.length === files.total,
      });
      this.showError('');
      if (begun) this.fill(begun, wanted);
    } catch (error) {
      this.showError(`Not downloaded: ${error.message}`);
    } finally {
      this.setBeginning(false);
    }
  },

  fill(begun, wanted) {
    this.downloadFlow.fill(begun, this.model.attributes, wanted).catch((error) => {
      begun.transfer.set({ phase: 'interrupted', problem: error.message });
      this.downloads.batcher.mark(begun.transfer);
    });
  },

  setBeginning(beginning) {
    this.beginning = beginning;
    this.updateSum();
  },

  showError(text) {
    setText(this.error, text);
    this.error.hidden = !text;
  },

  /** Shows the newest download of this message. */
  updateDownload() {
    const newest = this.downloads.filter((download) => download.get('bucketId') === this.model.id)
      .sort((a, b) => b.get('created') - a.get('created'))[0] ?? null;
    if (newest === this.current) return;
    this.card?.remove();
    this.current = newest;
    this.card = newest && new TransferCard({
      model: newest, transfers: this.downloads, connection: this.connection, notify: this.notify, compact: true,
    }).render();
    this.cardPlace.replaceChildren(...(this.card ? [this.card.el] : []));
    this.updateRows(newest);
  },

  updateRows(transfer) {
    if (transfer === this.current && this.model.files && this.el.isConnected) this.selection.refresh();
  },

  remove() {
    this.card?.remove();
    return Backbone.View.prototype.remove.call(this);
  },
});
