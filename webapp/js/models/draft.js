import { Backbone } from '../lib.js';
import { FileList } from '../file_list.js';
import { parseRecipients } from '../recipients.js';

/**
 * The message being written. `files` is its list of files; "files" is triggered when the
 * list changes.
 */
export const Draft = Backbone.Model.extend({
  defaults: { kind: 'message', subject: '', recipients: '', text: '' },

  initialize() {
    this.files = new FileList();
  },

  /** Adds a result of the native side; returns how many files were added, known or unusable. */
  addFiles(result) {
    const outcome = this.files.add(result.files ?? [], null);
    if (outcome.added > 0 && !this.get('subject') && result.summary) {
      this.suggestedSubject = result.summary;
    }
    if (outcome.added > 0) this.trigger('files');
    return outcome;
  },

  removeFile(index) {
    const file = this.files.remove(index);
    if (file) this.trigger('files');
    return file;
  },

  clearFiles() {
    this.files.clear();
    this.trigger('files');
  },

  /** The reasons why the message cannot be sent: [{field, text}]. */
  problems() {
    const problems = [];
    if (this.files.count === 0) {
      problems.push({ field: 'files', text: 'Add at least one file or folder.' });
    }
    const { addresses, invalid } = parseRecipients(this.get('recipients'));
    if (invalid.length > 0) {
      problems.push({ field: 'recipients', text: `“${invalid[0]}” is not an e-mail address.` });
    } else if (addresses.length === 0) {
      problems.push({ field: 'recipients', text: 'Add at least one recipient.' });
    }
    return problems;
  },

  /** The content to be sent. */
  content() {
    return {
      kind: this.get('kind'),
      subject: this.get('subject').trim() || this.defaultSubject(),
      text: this.get('text'),
      recipients: parseRecipients(this.get('recipients')).addresses,
      files: this.files.all(),
      bytes: this.files.bytes,
    };
  },

  /** Removes the sent content; files added meanwhile stay. */
  forget(content) {
    this.files.removeAll(content.files);
    this.suggestedSubject = null;
    this.set({ subject: '', recipients: '', text: '' });
    this.trigger('files');
  },

  /** The title of a message without one. */
  defaultSubject() {
    if (this.suggestedSubject) return this.suggestedSubject;
    const count = this.files.count;
    if (count === 0) return '';
    const first = this.files.at(0).name;
    return count === 1 ? first : `${first} and ${count - 1} more`;
  },
});
