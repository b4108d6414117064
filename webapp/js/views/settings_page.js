import { Backbone } from '../lib.js';
import { el, setText } from '../dom.js';
import { downloads, uploads } from '../native.js';
import { changeSettings, readSettings, saveSettings } from '../saved_settings.js';
import { fromForm, toForm } from '../settings_values.js';

/** The transfer settings. */
export const SettingsPage = Backbone.View.extend({
  className: 'page settings-page',

  initialize({ notify }) {
    this.notify = notify;
    this.inputs = {};
    this.errors = {};
    this.on('show', this.load);
  },

  render() {
    this.form = el('form', { class: 'settings-form', novalidate: true, onsubmit: (event) => this.save(event) },
      this.section('Speed', [
        this.numberField('maxConcurrentTransfers', 'Files at the same time', 'files',
          'More can be faster with many small files.'),
        this.checkField('limited', 'Limit the upload rate', 'Leaves room for others on your connection.'),
        this.numberField('throttle', 'Upload rate at most', 'MB/s', 'Changes apply at once, also to what is running.'),
        ...(downloads.isThere() ? [
          this.checkField('downloadLimited', 'Limit the download rate', 'The same for what you receive.'),
          this.numberField('downloadThrottle', 'Download rate at most', 'MB/s', 'Changes apply at once, also to what is running.'),
        ] : []),
      ]),
      this.section('Reliability', [
        this.numberField('maxTransferRetries', 'Attempts after a failure', 'times',
          'How often a file is tried again before it counts as failed. Waiting for the network does not count.'),
        this.checkField('verifyUploads', 'Check what arrived',
          'Compares checksums with the service after each file.'),
        this.numberField('minMultipartSize', 'Transfer in parts from', 'MB',
          'Larger files go in several parts at the same time; what failed of them need not be sent again.'),
        this.checkField('preventSleep', 'Keep the computer awake', 'While something is being transferred.'),
        this.numberField('progressInterval', 'Report progress to the service every', 's',
          'So that others see how far a message is, and you see why a file failed. 0 for never.'),
      ]),
      el('div', { class: 'settings-buttons' },
        this.saveButton = el('button', { id: 'save-settings', type: 'submit', class: 'button primary' }, 'Save'),
        this.saved = el('span', { class: 'muted', role: 'status', 'data-test': 'settings-status' })));
    this.form.addEventListener('input', () => this.edited());
    this.missing = el('div', { class: 'empty-state' },
      el('h2', {}, 'Settings belong to the Zantrio application'),
      el('p', { class: 'muted' }, 'Open Zantrio on your computer to change how it transfers files.'));
    this.el.append(el('div', { class: 'page-head' }, el('h1', {}, 'Settings')), this.form, this.missing);
    this.form.hidden = !uploads.isThere();
    this.missing.hidden = uploads.isThere();
    return this;
  },

  section(title, children) {
    return el('fieldset', { class: 'panel' }, el('legend', {}, title), children);
  },

  numberField(name, label, unit, help) {
    const id = `setting-${name}`;
    this.inputs[name] = el('input', {
      id, type: 'text', inputmode: 'decimal', autocomplete: 'off', class: 'number-input',
      'aria-describedby': `${id}-help ${id}-error`,
    });
    this.errors[name] = el('p', { class: 'field-error', id: `${id}-error`, role: 'alert', hidden: true });
    return el('div', { class: 'setting' },
      el('div', {}, el('label', { for: id }, label), el('p', { class: 'muted', id: `${id}-help` }, help), this.errors[name]),
      el('span', { class: 'with-unit' }, this.inputs[name], el('span', { class: 'unit' }, unit)));
  },

  checkField(name, label, help) {
    const id = `setting-${name}`;
    this.inputs[name] = el('input', {
      id, type: 'checkbox', role: 'switch', class: 'switch', 'aria-describedby': `${id}-help`,
    });
    return el('div', { class: 'setting' },
      el('div', {}, el('label', { for: id }, label), el('p', { class: 'muted', id: `${id}-help` }, help)),
      this.inputs[name]);
  },

  async load() {
    if (!uploads.isThere()) return;
    try {
      this.fill(await readSettings());
      setText(this.saved, '');
    } catch (error) {
      this.notify({ kind: 'error', text: error.message });
    }
  },

  fill(configurations) {
    for (const [name, value] of Object.entries(toForm(configurations))) {
      const input = this.inputs[name];
      if (!input) continue;
      if (input.type === 'checkbox') input.checked = value;
      else input.value = value;
    }
    this.edited();
  },

  edited() {
    for (const [limited, rate] of [['limited', 'throttle'], ['downloadLimited', 'downloadThrottle']]) {
      if (this.inputs[rate]) this.inputs[rate].disabled = !this.inputs[limited].checked;
    }
    setText(this.saved, '');
  },

  async save(event) {
    event.preventDefault();
    const form = Object.fromEntries(Object.entries(this.inputs).map(
      ([name, input]) => [name, input.type === 'checkbox' ? input.checked : input.value]));
    const { changes, problems } = fromForm(form);
    this.showProblems(problems);
    setText(this.saved, '');
    if (Object.keys(problems).length > 0) return;
    try {
      this.fill(await changeSettings(changes));
      saveSettings(changes);
      setText(this.saved, 'Saved');
    } catch (error) {
      this.notify({ kind: 'error', text: error.message });
    }
  },

  showProblems(problems) {
    for (const [name, line] of Object.entries(this.errors)) {
      setText(line, problems[name] ?? '');
      line.hidden = !problems[name];
      this.inputs[name].setAttribute('aria-invalid', String(Boolean(problems[name])));
    }
    const first = Object.keys(this.errors).find((name) => problems[name]);
    if (first) this.inputs[first].focus();
  },
});
