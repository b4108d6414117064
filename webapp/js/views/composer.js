import { Backbone } from '../lib.js';
import { el, setText } from '../dom.js';
import { formatCount, formatSize } from '../format.js';
import { icon } from '../icons.js';
import { uploads } from '../native.js';
import { RecipientsField } from './recipients_field.js';

/** Title, recipients, message, and the send button. */
export const Composer = Backbone.View.extend({
  tagName: 'form',
  className: 'panel composer',
  attributes: { novalidate: '', 'aria-label': 'Message' },

  initialize({ draft, send }) {
    Object.assign(this, { draft, send });
    this.listenTo(draft, 'files', this.update);
    this.listenTo(draft, 'change', this.takeFromDraft);
  },

  render() {
    this.recipients = new RecipientsField();
    this.fields = {
      recipients: this.recipients.input,
      subject: el('input', { id: 'subject', type: 'text', autocomplete: 'off', maxlength: '200' }),
      text: el('textarea', { id: 'message', rows: '5' }),
    };
    this.errors = { recipients: this.errorLine('recipients'), files: this.errorLine('files') };
    this.sendError = el('p', { class: 'field-error', id: 'send-error', role: 'alert', hidden: true });
    this.sendLabel = el('span', {}, 'Send');
    this.button = el('button', {
      id: 'send-button', type: 'submit', class: 'button primary large wide', disabled: !uploads.isThere(),
    }, icon('send'), this.sendLabel);
    this.summary = el('p', { class: 'muted composer-summary', 'data-test': 'send-summary' });
    this.el.append(
      this.field('recipients', 'To', this.errors.recipients, this.recipients.el),
      this.field('subject', 'Title'),
      this.field('text', 'Message'),
      this.errors.files, this.sendError, this.button, this.summary);
    this.el.addEventListener('submit', (event) => this.submit(event));
    for (const [name, input] of Object.entries(this.fields)) {
      input.addEventListener('input', () => this.edited(name, input.value));
    }
    this.update();
    return this;
  },

  field(name, label, error = null, control = this.fields[name]) {
    return el('div', { class: 'field' }, el('label', { for: this.fields[name].id }, label), control, error);
  },

  errorLine(name) {
    return el('p', { class: 'field-error', id: `${name}-error`, 'data-test': 'form-error', role: 'alert', hidden: true });
  },

  edited(name, value) {
    this.draft.set(name, value);
    if (this.errors[name]) this.showError(name, '');
  },

  takeFromDraft() {
    for (const [name, input] of Object.entries(this.fields)) {
      if (input.value !== this.draft.get(name)) input.value = this.draft.get(name);
    }
  },

  update() {
    const { count, bytes } = this.draft.files;
    if (count > 0) this.showError('files', '');
    this.fields.subject.placeholder = this.draft.defaultSubject() || 'What is it about?';
    setText(this.summary, count > 0 ? `${formatCount(count, 'file')}, ${formatSize(bytes)}` : '');
  },

  showError(name, text) {
    const line = this.errors[name];
    setText(line, text);
    line.hidden = !text;
    this.fields[name]?.setAttribute('aria-invalid', String(Boolean(text)));
  },

  showProblems(problems) {
    Object.keys(this.errors).forEach((name) => {
      this.showError(name, problems.find((problem) => problem.field === name)?.text ?? '');
    });
    if (problems.some((problem) => problem.field === 'recipients')) this.fields.recipients.focus();
  },

  async submit(event) {
    event.preventDefault();
    const problems = this.draft.problems();
    this.showProblems(problems);
    if (problems.length > 0 || this.sending) return;
    this.setSending(true);
    try {
      await this.send();
      setText(this.sendError, '');
    } catch (error) {
      setText(this.sendError, `Not sent: ${error.message}`);
    } finally {
      this.sendError.hidden = !this.sendError.textContent;
      this.setSending(false);
    }
  },

  setSending(sending) {
    this.sending = sending;
    this.button.disabled = sending || !uploads.isThere();
    Object.values(this.fields).forEach((input) => { input.disabled = sending; });
    setText(this.sendLabel, sending ? 'Preparing…' : 'Send');
  },
});
