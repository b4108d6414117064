// The application's bridges, by subject.

import { BRIDGES, isAvailable, query } from './bridge.js';

export const app = {
  isThere: () => isAvailable(BRIDGES.app),
  ready: () => query(BRIDGES.app, 'onAppReady'),
  exit: () => query(BRIDGES.app, 'onAppExit'),
};

/** Each returns {files, directoryName, summary}, or null if nothing was chosen. */
export const chooser = {
  isThere: () => isAvailable(BRIDGES.files),
  selectFiles: () => query(BRIDGES.files, 'selectFiles'),
  selectFolder: () => query(BRIDGES.files, 'selectFolder'),
  handleDrop: () => query(BRIDGES.files, 'handleDrop'),
};

/** The methods of both transfer managers. */
function manager(bridge) {
  return {
    isThere: () => isAvailable(bridge),
    getConfiguration: () => query(bridge, 'getConfiguration'),
    setConfiguration: (configuration) => query(bridge, 'setConfiguration', configuration),
    fetchGroups: () => query(bridge, 'fetchGroupsState'),
    createGroup: (parameters) => query(bridge, 'createGroup', parameters),
    queueFiles: (groupId, files) => query(bridge, 'queueFiles', { groupId, files }),
    dequeueFiles: (groupId, files) => query(bridge, 'dequeueFiles', { groupId, files }),
    pause: (groupId) => query(bridge, 'pauseGroup', { groupId }),
    resume: (groupId) => query(bridge, 'resumeGroup', { groupId }),
    cancel: (groupId) => query(bridge, 'cancelGroup', { groupId }),
  };
}

export const uploads = {
  ...manager(BRIDGES.upload),
  markQueue: (groupId) => query(BRIDGES.upload, 'markQueue', { groupId }),
};

/** `createGroup` returns null if the user chose no folder. */
export const downloads = manager(BRIDGES.download);

export const notifications = {
  isThere: () => isAvailable(BRIDGES.notification),
  show: (properties) => query(BRIDGES.notification, 'handleEvent', { properties }),
};

/** `search` returns an array of {email, name}, both optional, and null elements. */
export const addressBook = {
  isThere: () => isAvailable(BRIDGES.addressBook),
  search: (text) => query(BRIDGES.addressBook, 'search', { query: text }),
};
