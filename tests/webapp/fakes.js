// Fakes of the native side and the service that record their calls.

export class FakeUploads {
  constructor() {
    this.calls = [];
    this.queued = [];
    this.groups = [];
  }

  async fetchGroups() { return this.groups; }

  async createGroup(parameters) {
    this.calls.push(['createGroup', parameters]);
    return { id: '1', state: group('1') };
  }

  async queueFiles(groupId, files) {
    this.calls.push(['queueFiles', groupId, files.length]);
    this.queued.push(...files);
    return {};
  }
}
for (const method of ['markQueue', 'pause', 'resume', 'cancel', 'dequeueFiles']) {
  FakeUploads.prototype[method] = async function record(...parameters) {
    this.calls.push([method, ...parameters]);
    return {};
  };
}

export class FakeService {
  constructor() {
    this.calls = [];
    this.announced = 0;
  }

  async status() { return {}; }

  async createMessage() { return { bucketId: 'b1', token: 'secret', tokenExpires: 9, created: 1 }; }

  async describeMessage() { return { subject: 'Earlier', recipients: ['ann@example.org'], created: 1, state: 'open' }; }

  async listFiles() {
    return { files: [{ id: '1', path: 'a/b.txt', size: 5, arrived: true }, { id: '2', path: 'c.txt', size: 7 }] };
  }

  async progressOf(bucketId, id) {
    this.calls.push(['progressOf', bucketId, id]);
    return this.reports ?? {};
  }

  async describeReceived() { return { subject: 'For you', sender: 'Bo <bo@example.org>' }; }

  async allReceivedFiles() {
    return [{ id: '1', path: 'a/b.txt', size: 5 }, { id: '2', path: 'c.txt', size: 7 }];
  }

  async requestDownloads(bucketId, ids) {
    this.calls.push(['requestDownloads', bucketId, ids.length]);
    return {
      token: 'reading', tokenExpires: 9,
      files: ids.map((id) => ({
        id, path: `d/${id}`, size: 10, modified: 5, md5Digest: `m${id}`,
        downloadDetails: { url: `u${id}-${this.calls.length}`, expires: this.expires ?? 0 },
      })),
    };
  }

  async announceFiles(bucketId, token, files) {
    this.calls.push(['announceFiles', bucketId, token, files.length]);
    return {
      files: files.map((file) => {
        this.announced += 1;
        return { id: String(this.announced), path: file.name, size: file.size, uploadDetails: { url: `u${this.announced}` } };
      }),
    };
  }
}
for (const method of ['completeMessage', 'cancelMessage', 'removeFile']) {
  FakeService.prototype[method] = async function record(...parameters) {
    this.calls.push([method, ...parameters]);
  };
}

/** A connection whose calls succeed or fail at once. */
export const connection = { persistently: (call) => call(), lost() {}, get: (name) => name === 'reachable' };

/** A group object of the upload library. */
export function group(id, changes = {}) {
  return {
    id, type: 'UNKNWON', bucketId: 'b1', bucketType: 'message', paused: false, empty: true, bytesTransferred: 0,
    bytesTotal: 0, percentTransferred: 0, bytesTransferredPerSecond: 0, estimatedEta: 0, cancelled: false, marked: false,
    ...changes,
  };
}

/** A group event of the native side. */
export function groupEvent(id, changes) {
  const state = group(id, changes);
  return { id, bucketId: state.bucketId, type: state.type, state };
}

/** A file event of group 1, whose files have ten bytes. */
export function fileEvent(fileId, type, done = 0) {
  return {
    id: '1', bucketId: 'b1', fileId, type, state: { type, bytesTransfered: done, bytesTotal: 10, percentTransferred: 0 },
  };
}

/** File records of the native side. */
export function records(count, folder = 'd') {
  return Array.from({ length: count }, (_, i) => ({
    fileURL: `file:///home/ann/${folder}/${i}.txt`, name: `${i}.txt`, path: null, size: 10, created: 0, modified: 5,
  }));
}

/** Waits until the condition is true, at most ten seconds. */
export async function until(condition) {
  const limit = Date.now() + 10_000;
  while (!condition()) {
    if (Date.now() > limit) throw new Error(`waited ten seconds for ${condition}`);
    await new Promise((resolve) => { setTimeout(resolve, 1); });
  }
}

/** Waits until all resolved promises have been handled; timers are not waited for. */
export const settled = () => new Promise((resolve) => { setImmediate(resolve); });
