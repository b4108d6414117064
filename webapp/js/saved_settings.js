// The settings that were saved last, for the library begins every session with its own defaults. They hold
// for sending and for downloading, but for the limits of their rates.

import { downloads, uploads } from './native.js';

const PLACE = 'zantrio.settings';

// Seconds between reports to the service, until somebody chooses: without them nobody could say why a file failed.
const USUAL_INTERVAL = 10;

/** Hands changes to both managers; gives the configurations after them, {upload, download}. */
export async function changeSettings({ common, upload, download, interval }) {
  const before = await uploads.getConfiguration();
  const rate = upload?.throttleBytesPerSecond ?? before.throttleBytesPerSecond;
  const wanted = [{ ...common, ...upload, throttleBytesPerSecond: rate }];
  // The native side takes the interval of progress reports from the rate's place, so the rate follows it: both are
  // asked for in one turn, so that no transfer ever gets to know that rate.
  if (interval !== undefined && interval !== before.serverTransferProgressInterval) {
    wanted.unshift({ serverTransferProgressInterval: interval, throttleBytesPerSecond: interval });
  }
  const changed = await Promise.all(wanted.map((changes) => uploads.setConfiguration(changes)));
  return {
    upload: changed.at(-1),
    download: downloads.isThere() ? await downloads.setConfiguration({ ...common, ...download }) : null,
  };
}

export async function readSettings() {
  return {
    upload: await uploads.getConfiguration(),
    download: downloads.isThere() ? await downloads.getConfiguration() : null,
  };
}

export function saveSettings(changes) {
  localStorage.setItem(PLACE, JSON.stringify(changes));
}

export async function applySavedSettings() {
  let saved = null;
  try {
    saved = JSON.parse(localStorage.getItem(PLACE));
  } catch {
    // Something else wrote there; the defaults hold.
  }
  if (uploads.isThere()) await changeSettings({ interval: USUAL_INTERVAL, ...saved });
}
