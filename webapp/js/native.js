// What the application offers, by subject.

import { BRIDGES, isAvailable, query } from './bridge.js';

export const app = {
  isThere: () => isAvailable(BRIDGES.app),
  ready: () => query(BRIDGES.app, 'onAppReady'),
  exit: () => query(BRIDGES.app, 'onAppExit'),
};

/** Each gives {files, directoryName, summary}, or null when nothing was chosen. */
export const chooser = {
  isThere: () => isAvailable(BRIDGES.files),
  selectFiles: () => query(BRIDGES.files, 'selectFiles'),
  selectFolder: () => query(BRIDGES.files, 'selectFolder'),
  handleDrop: () => query(BRIDGES.files, 'handleDrop'),
};

export const uploads = {
  isThere: () => isAvailable(BRIDGES.upload),
  getConfiguration: () => query(BRIDGES.upload, 'getConfiguration'),
  setConfiguration: (configuration) => query(BRIDGES.upload, 'setConfiguration', configuration),
  fetchGroups: () => query(BRIDGES.upload, 'fetchGroupsState'),
  createGroup: (parameters) => query(BRIDGES.upload, 'createGroup', parameters),
  queueFiles: (groupId, files) => query(BRIDGES.upload, 'queueFiles', { groupId, files }),
  dequeueFiles: (groupId, files) => query(BRIDGES.upload, 'dequeueFiles', { groupId, files }),
  markQueue: (groupId) => query(BRIDGES.upload, 'markQueue', { groupId }),
  pause: (groupId) => query(BRIDGES.upload, 'pauseGroup', { groupId }),
  resume: (groupId) => query(BRIDGES.upload, 'resumeGroup', { groupId }),
  cancel: (groupId) => query(BRIDGES.upload, 'cancelGroup', { groupId }),
};
