import { Backbone } from '../lib.js';
import { announce, el, setText } from '../dom.js';
import { fileType, formatCount, formatSize } from '../format.js';
import { changeIcon, icon } from '../icons.js';
import { chooser } from '../native.js';
import { VirtualList } from './virtual_list.js';

const ROW_HEIGHT = 52;
const TYPE_ICONS = {
  Image: 'image', Video: 'video', Audio: 'audio', Archive: 'archive', Document: 'text', PDF: 'text',
  Spreadsheet: 'text', Presentation: 'text', Code: 'text',
};

/** The chosen files, and the buttons to choose more. */
export const FilesPanel = Backbone.View.extend({
  tagName: 'section',
  className: 'panel files-panel',
  attributes: { 'aria-labelledby': 'files-title' },

  initialize({ draft, intake }) {
    Object.assign(this, { draft, intake });
    this.listenTo(draft, 'files', this.refresh);
    this.listenTo(intake, 'busy', this.setBusy);
  },

  render() {
    this.list = new VirtualList({
      id: 'file-list', label: 'Chosen files', rowHeight: ROW_HEIGHT,
      makeRow: () => this.makeRow(), fillRow: (row, index) => this.fillRow(row, index),
    });
    this.count = el('span', { 'data-test': 'file-count' });
    this.size = el('span', { class: 'muted', 'data-test': 'total-size' });
    this.clear = el('button', {
      id: 'clear-files', type: 'button', class: 'button quiet', onclick: () => this.draft.clearFiles(),
    }, 'Remove all');
    this.toolbar = el('div', { class: 'panel-head' },
      el('h2', { id: 'files-title' }, this.count, ' ', this.size),
      el('div', { class: 'panel-tools' },
        this.clear, this.chooseButton('file', false), this.chooseButton('folder', false)));
    this.empty = this.renderEmpty();
    this.el.append(this.toolbar, this.empty, this.list.element);
    this.refresh();
    return this;
  },

  renderEmpty() {
    return el('div', { class: 'drop-zone', id: 'drop-zone' },
      el('div', { class: 'drop-art', 'aria-hidden': 'true' }, icon('folder'), icon('file'), icon('add')),
      el('p', { class: 'drop-title' }, 'Drop files and folders here'),
      el('p', { class: 'muted' }, 'or choose them from this computer'),
      el('div', { class: 'drop-buttons' }, this.chooseButton('file', true), this.chooseButton('folder', true)));
  },

  chooseButton(what, large) {
    const files = what === 'file';
    return el('button', {
      id: large ? `choose-${what}s` : `add-${what}s`,
      type: 'button', class: large ? 'button large' : 'button', disabled: !chooser.isThere(),
      'data-choose': true, onclick: () => (files ? this.intake.chooseFiles() : this.intake.chooseFolder()),
    }, icon(what), large ? (files ? 'Choose files' : 'Choose a folder') : (files ? 'Add files' : 'Add folder'));
  },

  refresh() {
    const { count, bytes } = this.draft.files;
    this.el.classList.toggle('is-empty', count === 0);
    this.toolbar.hidden = count === 0;
    this.list.element.hidden = count === 0;
    this.empty.hidden = count > 0;
    setText(this.count, formatCount(count, 'file'));
    setText(this.size, formatSize(bytes));
    this.list.refresh(count);
  },

  makeRow() {
    return el('div', { class: 'row file-row', 'data-test': 'file-row' },
      el('span', { class: 'row-icon' }, icon('file')),
      el('span', { class: 'row-main' },
        el('span', { class: 'row-name', 'data-test': 'file-name' }),
        el('span', { class: 'row-sub', 'data-test': 'file-folder' })),
      el('span', { class: 'row-type' }),
      el('span', { class: 'row-size' }),
      el('button', { type: 'button', class: 'icon-button', onclick: (event) => this.removeRow(event) },
        icon('remove')));
  },

  fillRow(row, index) {
    const file = this.draft.files.at(index);
    const [picture, main, type, size, remove] = row.children;
    const typeName = fileType(file.name);
    changeIcon(picture.firstChild, TYPE_ICONS[typeName] ?? 'file');
    setText(main.firstChild, file.name);
    main.firstChild.title = file.name;
    setText(main.lastChild, file.path ?? '');
    setText(type, typeName);
    setText(size, formatSize(file.size));
    remove.setAttribute('aria-label', `Remove ${file.name}`);
  },

  removeRow(event) {
    const index = Number(event.currentTarget.parentElement.dataset.index);
    const file = this.draft.removeFile(index);
    announce(`${file.name} removed.`);
    const next = this.list.rowAt(Math.min(index, this.draft.files.count - 1));
    const focus = next?.querySelector('.icon-button') ?? this.el.querySelector('#choose-files');
    focus?.focus({ preventScroll: true });
  },

  setBusy(busy) {
    this.el.querySelectorAll('[data-choose]').forEach((button) => {
      button.disabled = busy || !chooser.isThere();
    });
    this.el.setAttribute('aria-busy', String(busy));
  },
});
