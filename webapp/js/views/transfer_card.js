import { Backbone } from '../lib.js';
import { el, setText } from '../dom.js';
import { formatNumber } from '../format.js';
import { icon } from '../icons.js';
import { commonReason, waitingWords } from '../reason_words.js';
import { senderName } from '../sender_name.js';
import { failureWords, groupWords, rateWords, progressWords } from '../transfer_words.js';
import { ConfirmDialog } from './dialog.js';
import { TransferFilesView } from './transfer_files_view.js';

const NAMED_FAILURES = 3;
let lastCard = 0;

/** One transfer: progress, problems, and actions. */
export const TransferCard = Backbone.View.extend({
  tagName: 'article',
  className: 'panel card',

  /** `compact`: as a part of another view, without files and header. */
  initialize({ transfers, connection, notify, compact = false }) {
    Object.assign(this, { transfers, connection, notify, compact });
    this.listenTo(connection, 'change:reachable', this.update);
    this.listenTo(this.model, 'moved change:phase change:problem change:subject change:waitingFor', this.update);
    this.on('show', this.update);
  },

  render() {
    const sending = this.model.get('direction') === 'upload';
    lastCard += 1;
    const id = `transfer-${lastCard}`;
    this.title = el('h2', { id, 'data-test': 'group-title' });
    this.recipients = el('p', { class: 'muted card-recipients' });
    this.state = el('span', { class: 'chip', 'data-test': 'group-state' });
    this.bar = el('span', { class: 'bar-fill' });
    this.progress = el('div', {
      class: 'bar', role: 'progressbar', 'aria-valuemin': '0', 'aria-valuemax': '100',
      'aria-labelledby': id, 'data-test': 'group-progress',
    }, this.bar);
    this.detail = el('span', { 'data-test': 'group-detail' });
    this.pace = el('span', { class: 'card-pace', 'data-test': 'group-rate' });
    this.problemText = el('p', {});
    this.problem = el('div', { class: 'problem', 'data-test': 'group-problem', hidden: true },
      icon('warning'), this.problemText);
    this.filesView = new TransferFilesView({ model: this.model, transfers: this.transfers, run: (action) => this.run(action) });
    this.cancelDialog = new ConfirmDialog({
      yes: sending ? 'Cancel transfer' : 'Cancel download', no: 'Go on', dangerous: true, test: 'cancel-dialog',
    });
    this.el.dataset.test = 'group';
    this.el.classList.toggle('is-compact', this.compact);
    this.el.dataset.groupId = this.model.id;
    this.el.dataset.direction = this.model.get('direction');
    this.el.setAttribute('aria-labelledby', id);
    this.el.append(
      el('div', { class: 'card-head' },
        el('span', { class: 'card-direction', title: sending ? 'Sent by you' : 'Downloaded' },
          icon(sending ? 'send' : 'download')),
        el('div', { class: 'card-titles' }, this.title, this.recipients), this.state),
      this.progress,
      el('div', { class: 'card-numbers' }, this.detail, this.pace),
      this.problem, this.renderActions(), this.filesView.el, this.cancelDialog.el);
    this.update();
    return this;
  },

  renderActions() {
    const { model, transfers } = this;
    const sending = model.get('direction') === 'upload';
    const button = (test, name, label, action, kind = '') => el('button', {
      type: 'button', class: `button small ${kind}`, 'data-test': `group-${test}`,
      onclick: () => this.run(action),
    }, name ? icon(name) : null, label);
    this.buttons = {
      pause: button('pause', 'pause', 'Pause', () => transfers.pause(model)),
      resume: button('resume', 'resume', 'Resume', () => transfers.resume(model)),
      retry: button('retry', 'retry', 'Try again', () => transfers.retry(model), 'primary'),
      finish: button('finish', sending ? 'send' : 'download', sending ? 'Send what was added' : 'Add the rest', () => transfers.finishInterrupted(model)),
      cancel: button('cancel', null, 'Cancel', () => this.cancel(), 'quiet'),
    };
    this.toggle = el('button', {
      type: 'button', class: 'button small quiet files-toggle', 'data-test': 'group-files-toggle',
      'aria-expanded': 'false', onclick: () => this.toggleFiles(),
    }, 'Files', icon('chevron'));
    this.actions = el('div', { class: 'card-actions' }, Object.values(this.buttons), this.compact ? null : this.toggle);
    return this.actions;
  },

  toggleFiles() {
    const open = this.toggle.getAttribute('aria-expanded') !== 'true';
    this.toggle.setAttribute('aria-expanded', String(open));
    this.filesView.setOpen(open);
  },

  async run(action) {
    try {
      await action();
    } catch (error) {
      this.notify({ kind: 'error', text: error.message });
    }
  },

  async cancel() {
    const title = this.model.get('subject') || 'This transfer';
    const sending = this.model.get('direction') === 'upload';
    const [question, consequence] = sending
      ? ['Cancel the transfer?', `“${title}” is not delivered. Your own files stay where they are.`]
      : ['Cancel the download?', `Files of “${title}” that are there already stay; the others are not downloaded.`];
    if (!await this.cancelDialog.ask(question, consequence)) return;
    if (!await this.transfers.cancel(this.model)) {
      this.notify({ kind: 'error', text: `“${title}” could not be cancelled: everything is ${sending ? 'sent' : 'downloaded'} already.` });
    }
  },

  update() {
    // A hidden card is drawn when it is shown.
    if (!this.el.isConnected && this.drawn) return;
    this.drawn = true;
    this.updateTexts();
    this.updateProblem();
    this.updateButtons();
    this.filesView.update();
  },

  updateTexts() {
    const { model } = this;
    const { direction, state, phase, subject, rate, waitingFor } = model.attributes;
    const words = groupWords({ direction, phase, state, waitingFor });
    const fallback = `${direction === 'download' ? 'Download' : 'Transfer'} ${model.id}`;
    setText(this.title, this.compact ? this.whereTo() || fallback : subject || fallback);
    setText(this.recipients, this.compact ? '' : this.whose());
    setText(this.state, words.label);
    this.state.className = `chip chip-${words.tone}`;
    this.state.dataset.state = state;
    this.state.dataset.phase = phase;
    const total = model.totalBytes();
    const finished = state === 'COMPLETED' && model.isFinished();
    const fraction = finished ? 1 : Math.min(1, total > 0 ? model.bytesDone() / total : 0);
    this.bar.style.transform = `scaleX(${fraction})`;
    this.progress.className = `bar bar-${words.tone}`;
    this.progress.setAttribute('aria-valuenow', String(Math.floor(fraction * 100)));
    setText(this.detail, this.detailText(total, finished));
    setText(this.pace, phase === 'cancelled' || waitingFor ? '' : rateWords({ state, rate, secondsLeft: model.timeLeft() }));
  },

  whose() {
    const { direction, recipients, sender } = this.model.attributes;
    if (direction === 'upload') return recipients.length > 0 ? `To ${recipients.join(', ')}` : '';
    return [sender && `From ${senderName(sender)}`, this.whereTo()].filter(Boolean).join(' · ');
  },

  whereTo() {
    const { place } = this.model.attributes;
    return place && `To ${place}`;
  },

  detailText(total, finished) {
    const { model } = this;
    const words = progressWords({
      done: model.files.countIn('COMPLETED'), count: model.fileTotal(),
      bytesDone: Math.min(model.bytesDone(), total), bytesTotal: total, finished,
      known: model.get('filesKnown'),
    });
    if (model.get('phase') !== 'filling') return words;
    return `${words}. Adding files: ${formatNumber(model.get('queuedCount'))} of ${formatNumber(model.get('fileCount'))}`;
  },

  updateProblem() {
    const { model } = this;
    const { direction, state, phase, problem, tokenExpires, waitingFor } = model.attributes;
    const failed = (state === 'ERRORED' || phase === 'interrupted') && phase !== 'cancelled';
    const waits = failed || problem || phase === 'cancelled' ? '' : waitingWords(waitingFor);
    this.problem.hidden = !failed && !problem && !waits;
    this.problem.classList.toggle('is-waiting', Boolean(waits));
    this.problemText.title = waits ? waitingFor.reason : '';
    if (this.problem.hidden) return;
    if (waits) {
      setText(this.problemText, waits);
      return;
    }
    const names = model.files.firstIn('ERRORED', NAMED_FAILURES).map((file) => file.name);
    const words = failed ? failureWords({
      direction, names, total: model.files.countIn('ERRORED'), phase,
      reachable: this.connection.get('reachable'),
      reason: model.knowsAllReasons() ? commonReason([...model.reasons.values()], direction) : '',
      timeLimitOver: tokenExpires > 0 && tokenExpires * 1000 <= Date.now(),
    }) : '';
    setText(this.problemText, [problem, words].filter(Boolean).join(' '));
  },

  updateButtons() {
    const { state, phase } = this.model.attributes;
    const over = this.model.isFinished();
    const interrupted = phase === 'interrupted';
    this.buttons.pause.hidden = over || interrupted || !['TRANSFERRING', 'UNKNWON'].includes(state);
    this.buttons.resume.hidden = over || state !== 'PAUSED';
    this.buttons.retry.hidden = phase !== 'undelivered' && (over || interrupted || state !== 'ERRORED');
    this.buttons.finish.hidden = over || !interrupted;
    this.buttons.cancel.hidden = over;
    this.actions.hidden = this.compact && Object.values(this.buttons).every((button) => button.hidden);
  },
});
