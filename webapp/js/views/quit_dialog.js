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
    const filling = this.transfers.some((transfer) => transfer.get('phase') === 'filling');
    const moving = this.transfers.some((transfer) => transfer.isMoving());
    if (filling && !await this.dialog.ask('Files are still being added',
      'A transfer has not got all of its files yet. If you quit now, the rest is not sent.')) return;
    if (!filling && moving && !await this.dialog.ask('Transfers are running',
      'They stop now and go on where they were when you open Zantrio again.')) return;
    try {
      await app.exit();
    } catch (error) {
      this.notify({ kind: 'error', text: error.message });
    }
  }
}
