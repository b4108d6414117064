// The last saved settings, because the library begins every session with its defaults. They apply
// to uploads and downloads, except the rate limits, which are separate.

import { downloads, uploads } from './native.js';

const PLACE = 'zantrio.settings';

// Default seconds between reports to the service; without reports the reasons for failures are unknown.
const USUAL_INTERVAL = 10;

/** Applies changes to both managers; returns the new configurations, {upload, download}. */
export async function changeSettings({ common, upload, download, interval }) {
  const before = await uploads.getConfiguration();
  const rate = upload?.throttleBytesPerSecond ?? before.throttleBytesPerSecond;
  const wanted = [{ ...common, ...upload, throttleBytesPerSecond: rate }];
  // The native side reads the interval of progress reports from the rate's key, so the rate follows in a
  // second query. Both are sent in one turn, so that no transfer uses the interval as its rate.
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
    // The stored text is not ours; the defaults apply.
  }
  if (uploads.isThere()) await changeSettings({ interval: USUAL_INTERVAL, ...saved });
}
