import { app } from '../native.js';
import { ConfirmDialog } from './dialog.js';

/** Ends the application; asks first while transfers are running. */
export class QuitDialog {
  constructor({ collections, notify }) {
    Object.assign(this, { collections, notify });
    this.dialog = new ConfirmDialog({ yes: 'Quit', no: 'Stay', test: 'quit-dialog' });
    this.el = this.dialog.el;
  }

  async ask() {
    const unfinished = this.collections.some((collection) => collection.some((transfer) => transfer.isUnfinished()));
    if (unfinished && !await this.dialog.ask('Transfers are still running',
      'Files that have not been sent when you quit have to be sent again; downloads have to be begun again.')) return;
    try {
      await app.exit();
    } catch (error) {
      this.notify({ kind: 'error', text: error.message });
    }
  }
}
