import { Backbone } from './lib.js';
import { formatCount } from './format.js';
import { chooser } from './native.js';

/**
 * Adds files to the draft. Triggers "outcome" with {kind, text} for the user, and
 * "busy" with a boolean around queries to the native side.
 */
export class Intake {
  constructor(draft) {
    Object.assign(this, Backbone.Events);
    this.draft = draft;
  }

  chooseFiles() {
    return this.#ask(chooser.selectFiles, null);
  }

  chooseFolder() {
    return this.#ask(chooser.selectFolder, null);
  }

  dropped() {
    return this.#ask(chooser.handleDrop,
      'What you dropped cannot be sent. Drop files or folders of this computer.');
  }

  async #ask(method, textWhenNothing) {
    this.trigger('busy', true);
    try {
      const result = await method();
      if (result) {
        this.take(result);
      } else if (textWhenNothing) {
        this.trigger('outcome', { kind: 'error', text: textWhenNothing });
      }
    } catch (error) {
      this.trigger('outcome', { kind: 'error', text: error.message });
    } finally {
      this.trigger('busy', false);
    }
  }

  take(result) {
    const outcome = this.draft.addFiles(result);
    this.trigger('outcome', describe(outcome));
  }
}

function describe({ added, duplicates, unusable }) {
  if (added + duplicates + unusable === 0) {
    return { kind: 'error', text: 'There are no files in it. Hidden files are not sent.' };
  }
  const parts = [];
  if (added > 0) parts.push(`${formatCount(added, 'file')} added`);
  if (duplicates > 0) parts.push(`${formatCount(duplicates, 'file')} already in the list`);
  if (unusable > 0) parts.push(`${formatCount(unusable, 'item')} could not be read`);
  return { kind: unusable > 0 ? 'error' : 'done', text: `${parts.join(', ')}.` };
}
