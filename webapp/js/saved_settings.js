// The settings that were saved last, for the library begins every session with its own defaults. They hold
// for sending and for downloading, but for the limits of their rates.

import { downloads, uploads } from './native.js';

const PLACE = 'zantrio.settings';

/** Hands changes to both managers; gives the configurations after them, {upload, download}. */
export async function changeSettings({ common, upload, download, interval }) {
  // The native side takes the interval of progress reports from the rate's place, so the rate follows it.
  if (interval !== undefined) {
    await uploads.setConfiguration({ serverTransferProgressInterval: interval, throttleBytesPerSecond: interval });
  }
  return {
    upload: await uploads.setConfiguration({ ...common, ...upload }),
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
  if (saved && uploads.isThere()) await changeSettings(saved);
}
