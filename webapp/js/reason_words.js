// Sentences for the reasons of failures and waits. The codes are the transfer library's
// (docs/transfers.md); its own sentence is the detail. Pure functions.

const FILE = {
  url_expired: 'Its address has expired',
  token_expired: 'The time for this transfer is over',
  bad_url: 'The service gave no usable address',
  bad_request: 'The service asked for something that cannot be sent',
  source_missing: 'The file is not there any more',
  source_unreadable: 'The file cannot be read',
  source_changed: 'The file was changed while it was sent',
  unsafe_path: 'Its name is not allowed on this computer',
  target_missing: 'Its folder is not there',
  target_unusable: 'Its folder cannot be written to',
  disk_full: 'The disk is full',
  disk_trouble: 'The disk has a problem',
  server_busy: 'The server is too busy',
  server_trouble: 'The server has a problem',
  wrong_digest: 'It arrived with different content',
  wrong_size: 'It arrived with a different size',
  server_changed: 'It keeps changing on the server',
  cannot_connect: 'The server cannot be reached',
  connection_lost: 'The connection was lost repeatedly',
  proxy_auth: 'The proxy wants a login',
  not_trusted: 'The certificate of the server is not valid',
  queue_unreadable: 'Its description on disk is damaged',
};

const REFUSED = { upload: 'The server does not take it', download: 'The server does not give it' };

const WAITING = {
  disk_full: 'The disk is full. It continues automatically when there is space.',
  disk_trouble: 'The disk has a problem. It continues automatically when that is solved.',
  target_missing: 'The folder is missing. It continues automatically when the disk is connected.',
  cannot_connect: 'The server cannot be reached. It continues automatically when it can.',
  connection_lost: 'The connection was lost. It continues automatically in a moment.',
  server_busy: 'The server is busy. It continues automatically later.',
  server_trouble: 'The server has a problem. It continues automatically when that is solved.',
  not_trusted: 'The certificate of the server cannot be verified. It continues automatically when it can.',
};

/** A short text for a failed file; empty if no reason is known. */
export function failedFileWords(reason, direction) {
  if (!reason) return '';
  if (reason.code === 'refused') return REFUSED[direction] ?? REFUSED.upload;
  return FILE[reason.code] ?? reason.reason;
}

/** Why a transfer waits and what ends the wait; empty if it does not wait or the reason is unknown. */
export function waitingWords(reason) {
  if (!reason) return '';
  return WAITING[reason.code] ?? `It waits and continues automatically: ${reason.reason}.`;
}

/** Why files failed, in one sentence; empty if no reason is known. */
export function commonReason(reasons, direction) {
  const words = new Set(reasons.map((reason) => failedFileWords(reason, direction)));
  if (words.size > 1) return 'The list of files says why.';
  return [...words][0] ?? '';
}
