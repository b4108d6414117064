// Converts between transfer configurations and the settings page's fields. Pure functions.

const MEGABYTE = 1000 * 1000;

/** The form's fields for the configurations {upload, download}; download may be null. */
export function toForm({ upload, download }) {
  return {
    maxConcurrentTransfers: String(upload.maxConcurrentTransfers),
    ...rateFields('limited', 'throttle', upload),
    ...rateFields('downloadLimited', 'downloadThrottle', download),
    maxTransferRetries: String(upload.maxTransferRetries),
    verifyUploads: upload.verifyUploads,
    minMultipartSize: String(Math.max(5, Math.round(upload.minMultipartSize / MEGABYTE))),
    preventSleep: upload.preventSleep,
    progressInterval: String(upload.serverTransferProgressInterval),
  };
}

function rateFields(limited, throttle, configuration) {
  const rate = configuration?.throttleBytesPerSecond ?? 0;
  return { [limited]: rate > 0, [throttle]: rate > 0 ? String(round(rate / MEGABYTE)) : '10' };
}

/**
 * The changes of a filled form: {changes, problems}; problems are texts by field. `changes` is
 * {common, upload, download, interval}: for both managers, for each, and the seconds between reports.
 */
export function fromForm(form) {
  const problems = {};
  const number = (field, { least, most, whole = false }) => {
    const text = String(form[field]).trim();
    const value = Number(text.replace(',', '.'));
    const valid = text !== '' && Number.isFinite(value)
      && value >= least && value <= most && (!whole || Number.isInteger(value));
    if (!valid) problems[field] = `Enter a ${whole ? 'whole ' : ''}number from ${least} to ${most}.`;
    return value;
  };
  const rate = (limited, field) => ({
    throttleBytesPerSecond: form[limited] ? Math.round(number(field, { least: 0.1, most: 10000 }) * MEGABYTE) : 0,
  });
  const changes = {
    common: {
      maxConcurrentTransfers: number('maxConcurrentTransfers', { least: 1, most: 64, whole: true }),
      maxTransferRetries: number('maxTransferRetries', { least: 0, most: 100, whole: true }),
      minMultipartSize: Math.round(number('minMultipartSize', { least: 5, most: 5000 }) * MEGABYTE),
      verifyUploads: Boolean(form.verifyUploads),
      preventSleep: Boolean(form.preventSleep),
    },
    upload: rate('limited', 'throttle'),
    download: rate('downloadLimited', 'downloadThrottle'),
    interval: number('progressInterval', { least: 0, most: 3600, whole: true }),
  };
  return { changes, problems };
}

function round(value) {
  return Math.round(value * 100) / 100;
}
