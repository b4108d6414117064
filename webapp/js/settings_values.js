// Between the transfer configuration and what the settings page shows. Pure functions.

const MEGABYTE = 1000 * 1000;
const MEBIBYTE = 1024 * 1024;

/** What the form's fields show for a configuration. */
export function toForm(configuration) {
  const throttle = configuration.throttleBytesPerSecond;
  return {
    maxConcurrentTransfers: String(configuration.maxConcurrentTransfers),
    limited: throttle > 0,
    throttle: throttle > 0 ? String(round(throttle / MEGABYTE)) : '10',
    maxTransferRetries: String(configuration.maxTransferRetries),
    minMultipartSize: String(round(configuration.minMultipartSize / MEBIBYTE)),
    verifyUploads: configuration.verifyUploads,
    preventSleep: configuration.preventSleep,
  };
}

/**
 * The configuration of a filled form: {configuration, problems}, problems being texts by field.
 * The interval of progress reports is not among the fields: the application takes it from the service.
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
  const multipart = number('minMultipartSize', form.minMultipartSize,
    { least: 5, most: 5000, whole: false });
  const throttle = form.limited
    ? number('throttle', form.throttle, { least: 0.1, most: 10000, whole: false }) : 0;
  return {
    problems,
    configuration: {
      maxConcurrentTransfers: concurrent,
      maxTransferRetries: retries,
      minMultipartSize: Math.round(multipart * MEBIBYTE),
      throttleBytesPerSecond: Math.round(throttle * MEGABYTE),
      verifyUploads: Boolean(form.verifyUploads),
      preventSleep: Boolean(form.preventSleep),
    },
  };
}

function round(value) {
  return Math.round(value * 100) / 100;
}
