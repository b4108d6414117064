import { Backbone } from '../lib.js';
import { messageEntry, readableEntries } from '../received_entries.js';
import { ReceivedFiles } from '../received_files.js';
import { ServiceRefused } from '../service.js';

/**
 * A received message. `files` is null until they are loaded; "files" is triggered then, and
 * while loading progresses (attributes loading, loaded, problem).
 */
export const ReceivedMessage = Backbone.Model.extend({
  idAttribute: 'bucketId',
  defaults: {
    subject: '', text: '', sender: '', files: 0, bytes: 0, created: 0, expires: 0,
    loading: false, loaded: 0, problem: '',
  },

  initialize() {
    this.files = null;
  },

  isExpired(now = Date.now()) {
    const expires = this.get('expires');
    return expires > 0 && expires * 1000 <= now;
  },

  async loadFiles() {
    if (this.files || this.get('loading') || this.isExpired()) return;
    const { service, connection } = this.collection;
    this.set({ loading: true, loaded: 0, problem: '' });
    try {
      const files = await connection.persistently(
        () => service.allReceivedFiles(this.id, (loaded) => this.set({ loaded })));
      this.files = new ReceivedFiles(files);
    } catch (error) {
      this.set('problem', error.message);
    } finally {
      this.set('loading', false);
      this.trigger('files', this);
    }
  },
});

/** All received messages, the newest first. `loaded`: a request for them has ended, successfully or not. */
export const ReceivedMessages = Backbone.Collection.extend({
  model: ReceivedMessage,
  comparator: (message) => -message.get('created'),

  // Backbone keeps the models in an object, by their ids: without a prefix an id such as "constructor" or "c1" would
  // find what is no message, or another one.
  modelId: ({ bucketId } = {}) => (bucketId === undefined ? undefined : `bucket:${bucketId}`),

  get(wanted) {
    return Backbone.Collection.prototype.get.call(this, typeof wanted === 'string' ? { bucketId: wanted } : wanted);
  },

  initialize(models, { service, connection }) {
    Object.assign(this, { service, connection, loaded: false, problem: '' });
  },

  /** Asks the service; known messages stay the same objects. */
  load() {
    this.loading ??= this.ask().finally(() => { this.loading = null; });
    return this.loading;
  },

  async ask() {
    try {
      const { messages } = await this.connection.persistently(() => this.service.listReceived());
      this.set(readableEntries(messages, messageEntry));
      Object.assign(this, { loaded: true, problem: '' });
    } catch (error) {
      if (!(error instanceof ServiceRefused)) throw error;
      this.problem = error.message;
    }
    this.trigger('loaded');
  },
});
