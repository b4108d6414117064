import { app } from '../native.js';
import { ConfirmDialog } from './dialog.js';

/** Ends the application; asks first while transfers are running. */
export class QuitDialog {
  constructor({ transfers, notify }) {
    Object.assign(this, { transfers, notify });
    this.dialog = new ConfirmDialog({ yes: 'Quit', no: 'Stay', test: 'quit-dialog' });
    this.el = this.dialog.el;
  }

  async ask() {
    const unfinished = this.transfers.some((transfer) => transfer.isUnfinished());
    if (unfinished && !await this.dialog.ask('Not everything is sent yet',
      'Files that have not been sent when you quit have to be sent again.')) return;
    try {
      await app.exit();
    } catch (error) {
      this.notify({ kind: 'error', text: error.message });
    }
  }
}
