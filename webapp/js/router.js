import { Backbone } from './lib.js';

export const Router = Backbone.Router.extend({
  routes: {
    '': 'newMessage',
    'message/new': 'newMessage',
    'share/new': 'newShare',
    received: 'received',
    'received/:bucket': 'received',
    transfers: 'transfers',
    settings: 'settings',
    '*unknown': 'newMessage',
  },

  initialize({ shell, draft }) {
    Object.assign(this, { shell, draft });
  },

  newMessage() {
    this.draft.set('kind', 'message');
    this.shell.show('send');
  },

  newShare() {
    this.draft.set('kind', 'share');
    this.shell.show('send');
  },

  received(bucket) {
    this.shell.show('received', bucket);
  },

  transfers() {
    this.shell.show('transfers');
  },

  settings() {
    this.shell.show('settings');
  },
});
