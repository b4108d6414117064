import { Backbone } from '../lib.js';
import { el, setText } from '../dom.js';
import { uploads } from '../native.js';
import { Composer } from './composer.js';
import { FilesPanel } from './files_panel.js';

/** The page for choosing files and writing their message. */
export const SendPage = Backbone.View.extend({
  className: 'page send-page',

  initialize(context) {
    Object.assign(this, context);
    this.filesPanel = new FilesPanel(context);
    this.composer = new Composer({ ...context, send: () => this.send() });
    this.listenTo(this.draft, 'change:kind', this.renderTitle);
    this.on('show', () => this.filesPanel.refresh());
  },

  render() {
    this.title = el('h1', {});
    this.el.append(
      el('div', { class: 'page-head' }, this.title,
        el('p', { class: 'page-lead' }, 'Files of any size and number, in one go.')),
      el('div', { class: 'send-columns' },
        this.filesPanel.render().el, this.composer.render().el));
    this.renderTitle();
    return this;
  },

  renderTitle() {
    setText(this.title, this.draft.get('kind') === 'share' ? 'New share' : 'Send files');
  },

  /** Creates the transfer, then queues its files while the transfers page shows the progress. */
  async send() {
    const { sendFlow, draft, transfers } = this;
    if (!uploads.isThere()) throw new Error('Sending needs the Zantrio application.');
    const content = draft.content();
    // A message being sent cannot be edited; files can still be dropped for the next message.
    this.filesPanel.el.inert = true;
    const { transfer, token } = await sendFlow.begin(content).finally(() => {
      this.filesPanel.el.inert = false;
    });
    draft.forget(content);
    Backbone.history.navigate('transfers', { trigger: true });
    sendFlow.fill(transfer, token, content.files).catch((error) => {
      transfer.set({ phase: 'interrupted', problem: error.message });
      transfers.batcher.mark(transfer);
    });
  },
});
