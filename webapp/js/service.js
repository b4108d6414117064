// The service's JSON API.

import { fileEntry, readableEntries } from './received_entries.js';

/** The service is unreachable or too busy; a retry may help. */
export class ServiceUnreachable extends Error {
  constructor(message = 'The service cannot be reached.') {
    super(message);
    this.name = 'ServiceUnreachable';
  }
}

/** The service refused the request; the message says why. */
export class ServiceRefused extends Error {
  constructor(message, status, code) {
    super(message);
    this.name = 'ServiceRefused';
    this.status = status;
    this.code = code;
  }
}

const TIME_LIMIT = 30000;
const WORTH_RETRYING = [408, 429, 502, 503, 504];

async function call(method, path, { body, token } = {}) {
  const headers = {};
  if (body !== undefined) headers['Content-Type'] = 'application/json';
  if (token) headers['X-Zantrio-Token'] = token;
  const abort = new AbortController();
  const timer = setTimeout(() => abort.abort(), TIME_LIMIT);
  try {
    const response = await fetch(path, {
      method, headers, body: body === undefined ? undefined : JSON.stringify(body),
      signal: abort.signal, cache: 'no-store',
    });
    if (!response.ok) throw await refusal(response);
    return response.status === 204 ? null : await response.json();
  } catch (error) {
    if (error instanceof ServiceRefused || error instanceof ServiceUnreachable) throw error;
    throw new ServiceUnreachable();
  } finally {
    clearTimeout(timer);
  }
}

async function refusal(response) {
  if (WORTH_RETRYING.includes(response.status)) {
    return new ServiceUnreachable('The service is too busy to answer.');
  }
  let error = {};
  try {
    error = (await response.json()).error ?? {};
  } catch {
    // Not a response of the service itself; the status is the only reason.
  }
  return new ServiceRefused(
    error.message ?? `The service refused (${response.status}).`, response.status, error.code);
}

const bucketPath = (bucketId) => `/api/messages/${encodeURIComponent(bucketId)}`;

const receivedPath = (bucketId) => `/api/received/${encodeURIComponent(bucketId)}`;
const LISTED_AT_ONCE = 5000;

export const service = {
  status: () => call('GET', '/api/status'),
  createMessage: (message) => call('POST', '/api/messages', { body: message }),
  describeMessage: (bucketId) => call('GET', bucketPath(bucketId)),
  announceFiles: (bucketId, token, files) =>
    call('POST', `${bucketPath(bucketId)}/files`, { body: { files }, token }),
  listFiles: (bucketId) => call('GET', `${bucketPath(bucketId)}/files`),
  removeFile: (bucketId, fileId) =>
    call('DELETE', `${bucketPath(bucketId)}/files/${encodeURIComponent(fileId)}`),
  completeMessage: (bucketId) => call('POST', `${bucketPath(bucketId)}/complete`),
  cancelMessage: (bucketId) => call('DELETE', bucketPath(bucketId)),
  progressOf: (bucketId, group) =>
    call('GET', `${bucketPath(bucketId)}/progress?group=${encodeURIComponent(group)}`),
  listReceived: () => call('GET', '/api/received'),
  describeReceived: (bucketId) => call('GET', receivedPath(bucketId)),
  listReceivedFiles: (bucketId, after = '0') =>
    call('GET', `${receivedPath(bucketId)}/files?count=${LISTED_AT_ONCE}&after=${encodeURIComponent(after)}`),
  requestDownloads: (bucketId, ids) =>
    call('POST', `${receivedPath(bucketId)}/downloads`, { body: { files: ids } }),

  /** The files of a message, in batches, so that the page can draw in between. */
  async allReceivedFiles(bucketId, onProgress = () => {}) {
    const all = [];
    for (let after = '0'; after !== null;) {
      const { files, next } = await this.listReceivedFiles(bucketId, after);
      all.push(...readableEntries(files, fileEntry));
      onProgress(all.length);
      after = next;
    }
    return all;
  },
};
