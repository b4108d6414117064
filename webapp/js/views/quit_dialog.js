import { app } from '../native.js';
import { ConfirmDialog } from './dialog.js';

/** Quits the application; asks first while transfers are running. */
export class QuitDialog {
  constructor({ collections, notify }) {
    Object.assign(this, { collections, notify });
    this.dialog = new ConfirmDialog({ yes: 'Quit', no: 'Stay', test: 'quit-dialog' });
    this.el = this.dialog.el;
  }

  async ask() {
    const unfinished = this.collections.flatMap(
      (collection) => collection.filter((transfer) => transfer.isUnfinished()));
    const filling = unfinished.some((transfer) => transfer.get('phase') === 'filling');
    if (unfinished.length > 0 && !await this.dialog.ask('Transfers are still running', filling
      ? 'Files are still being added; files not added when you quit must be added again. Everything else continues when you open Zantrio again.'
      : 'They continue when you open Zantrio again.')) return;
    try {
      await app.exit();
    } catch (error) {
      this.notify({ kind: 'error', text: error.message });
    }
  }
}
