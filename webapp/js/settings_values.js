// Between the transfer configuration and what the settings page shows. Pure functions.

const MEGABYTE = 1000 * 1000;

/** What the form's fields show for a configuration. */
export function toForm(configuration) {
  const throttle = configuration.throttleBytesPerSecond;
  return {
    maxConcurrentTransfers: String(configuration.maxConcurrentTransfers),
    limited: throttle > 0,
    throttle: throttle > 0 ? String(round(throttle / MEGABYTE)) : '10',
    maxTransferRetries: String(configuration.maxTransferRetries),
    verifyUploads: configuration.verifyUploads,
  };
}

/**
 * The configuration of a filled form: {configuration, problems}, problems being texts by field.
 * Only what the application acts on has a field (parts of a file, staying awake and reports of progress do
 * not yet); what is not sent keeps its value.
 */
export function fromForm(form) {
  const problems = {};
  const number = (field, text, { least, most, whole }) => {
    const value = Number(String(text).trim().replace(',', '.'));
    const valid = String(text).trim() !== '' && Number.isFinite(value)
      && value >= least && value <= most && (!whole || Number.isInteger(value));
    if (!valid) problems[field] = `Enter a ${whole ? 'whole ' : ''}number from ${least} to ${most}.`;
    return value;
  };
  const concurrent = number('maxConcurrentTransfers', form.maxConcurrentTransfers,
    { least: 1, most: 64, whole: true });
  const retries = number('maxTransferRetries', form.maxTransferRetries,
    { least: 0, most: 100, whole: true });
  const throttle = form.limited
    ? number('throttle', form.throttle, { least: 0.1, most: 10000, whole: false }) : 0;
  return {
    problems,
    configuration: {
      maxConcurrentTransfers: concurrent,
      maxTransferRetries: retries,
      throttleBytesPerSecond: Math.round(throttle * MEGABYTE),
      verifyUploads: Boolean(form.verifyUploads),
    },
  };
}

function round(value) {
  return Math.round(value * 100) / 100;
}
