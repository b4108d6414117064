import { el, setText } from '../dom.js';
import { formatNumber, formatSize } from '../format.js';
import { icon } from '../icons.js';
import { failedFileWords } from '../reason_words.js';
import { fileWords, filterLabels } from '../transfer_words.js';
import { VirtualList } from './virtual_list.js';

const ROW_HEIGHT = 48;

const FILTERS = [
  { name: 'all', label: 'all', state: null },
  { name: 'sending', label: 'moving', state: 'TRANSFERRING' },
  { name: 'waiting', label: 'waiting', state: 'UNKNWON' },
  { name: 'done', label: 'done', state: 'COMPLETED' },
  { name: 'failed', label: 'failed', state: 'ERRORED' },
];

/** The files of a transfer, all or those in one state. Does no work while it is closed. */
export class TransferFilesView {
  constructor({ model, transfers, run }) {
    Object.assign(this, { model, transfers, run });
    this.filter = FILTERS[0];
    this.indices = null;
    this.el = el('div', { class: 'card-files', hidden: true });
  }

  setOpen(open) {
    this.el.hidden = !open;
    if (open && !this.list) this.#build();
    this.update();
  }

  update() {
    if (this.el.hidden) return;
    const { files } = this.model;
    for (const { state, counter } of this.tabs) {
      setText(counter, formatNumber(state ? files.countIn(state) : files.count));
    }
    this.indices = files.indicesIn(this.filter.state);
    const count = this.indices ? this.indices.length : files.count;
    this.none.hidden = count > 0;
    this.list.element.hidden = count === 0;
    this.list.refresh(count);
  }

  #build() {
    const labels = filterLabels(this.model.get('direction'));
    this.tabs = FILTERS.map((filter) => {
      const counter = el('span', { class: 'tab-count' });
      const button = el('button', {
        type: 'button', class: 'tab', 'aria-pressed': String(filter === this.filter),
        'data-test': `filter-${filter.name}`, onclick: () => this.#choose(filter),
      }, labels[filter.label], ' ', counter);
      return { ...filter, filter, button, counter };
    });
    this.list = new VirtualList({
      label: 'Files of this transfer', rowHeight: ROW_HEIGHT,
      makeRow: () => this.#makeRow(), fillRow: (row, index) => this.#fillRow(row, index),
    });
    this.none = el('p', { class: 'muted none' }, 'No files in this state.');
    this.el.append(
      el('div', { class: 'tabs', role: 'group', 'aria-label': 'Which files' },
        this.tabs.map(({ button }) => button)),
      this.none, this.list.element);
  }

  #choose(filter) {
    this.filter = filter;
    this.tabs.forEach((tab) => tab.button.setAttribute('aria-pressed', String(tab.filter === filter)));
    this.list.element.scrollTop = 0;
    this.update();
  }

  #fileAt(index) {
    return this.model.files.at(this.indices ? this.indices[index] : index);
  }

  #makeRow() {
    return el('div', { class: 'row transfer-row', 'data-test': 'transfer-file' },
      el('span', { class: 'row-main' },
        el('span', { class: 'row-name' }), el('span', { class: 'row-sub' })),
      el('button', {
        type: 'button', class: 'button small quiet', 'data-test': 'leave-out',
        onclick: (event) => this.#leaveOut(event),
      }, 'Leave out'),
      el('span', { class: 'row-size' }),
      el('span', { class: 'row-state' }, icon('check'), el('span', { 'data-test': 'file-state' })),
      el('span', { class: 'row-bar' }, el('span', { class: 'bar-fill' })));
  }

  #fillRow(row, index) {
    const file = this.#fileAt(index);
    const [main, leaveOut, size, state, bar] = row.children;
    row.dataset.fileId = file.id;
    row.dataset.state = file.leftOut ? 'LEFT_OUT' : file.state;
    setText(main.firstChild, file.name);
    main.firstChild.title = file.name;
    const reason = file.state === 'ERRORED' && !file.leftOut ? this.model.reasons.get(file.id) : null;
    const why = failedFileWords(reason, this.model.get('direction'));
    setText(main.lastChild, why || (file.folder ?? ''));
    main.lastChild.classList.toggle('row-reason', Boolean(why));
    main.lastChild.title = reason ? reason.reason : '';
    leaveOut.hidden = file.state !== 'ERRORED' || file.leftOut;
    leaveOut.setAttribute('aria-label', `Leave out ${file.name}`);
    setText(size, formatSize(file.size));
    setText(state.lastChild, fileWords(file, {
      direction: this.model.get('direction'), known: this.model.get('filesKnown'),
    }));
    const moving = file.state === 'TRANSFERRING' || file.state === 'PAUSED';
    bar.hidden = !moving || file.leftOut;
    bar.firstChild.style.transform = `scaleX(${file.size > 0 ? Math.min(1, file.done / file.size) : 0})`;
  }

  #leaveOut(event) {
    const { fileId } = event.currentTarget.parentElement.dataset;
    this.run(() => this.transfers.leaveOut(this.model, fileId));
  }
}
