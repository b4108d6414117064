// Sizes, rates, times and names for display. Pure functions.

const UNITS = ['bytes', 'KB', 'MB', 'GB', 'TB', 'PB'];

/** 1 KB is 1000 bytes, as in the system's file manager. */
export function formatSize(bytes) {
  if (!Number.isFinite(bytes) || bytes < 0) return '–';
  if (bytes === 1) return '1 byte';
  let value = bytes;
  let unit = 0;
  while (value >= 999.5 && unit < UNITS.length - 1) {
    value /= 1000;
    unit += 1;
  }
  const digits = unit === 0 || value >= 99.95 ? 0 : 1;
  return `${value.toFixed(digits)} ${UNITS[unit]}`;
}

/** Empty if nothing is transferring. */
export function formatRate(bytesPerSecond) {
  return bytesPerSecond > 0 ? `${formatSize(bytesPerSecond)}/s` : '';
}

/** Remaining time, coarser the longer it is; empty if unknown. */
export function formatTimeLeft(seconds) {
  if (!Number.isFinite(seconds) || seconds <= 0) return '';
  if (seconds < 60) return `${Math.ceil(seconds)} s left`;
  const minutes = Math.round(seconds / 60);
  if (minutes < 60) return `${minutes} min left`;
  const hours = Math.floor(minutes / 60);
  if (hours < 24) return `${hours} h ${minutes % 60} min left`;
  const days = Math.round(hours / 24);
  return days === 1 ? '1 day left' : `${days} days left`;
}

export function formatCount(count, singular, plural = `${singular}s`) {
  return `${formatNumber(count)} ${count === 1 ? singular : plural}`;
}

export function formatNumber(count) {
  return String(count).replace(/\B(?=(\d{3})+(?!\d))/g, ',');
}

/** Whole percent; 100 only when everything is done. */
export function formatPercent(done, total) {
  if (!(total > 0)) return '0 %';
  const percent = Math.floor((done / total) * 100);
  return `${Math.max(0, Math.min(100, percent))} %`;
}

const DAY_MS = 24 * 3600 * 1000;

/** "Today 14:30", "3 May", "3 May 2025": in the local time zone. */
export function formatDate(milliseconds, now = Date.now()) {
  const date = new Date(milliseconds);
  const midnight = new Date(now).setHours(0, 0, 0, 0);
  if (milliseconds >= midnight && milliseconds < midnight + DAY_MS) {
    return `Today ${String(date.getHours()).padStart(2, '0')}:${String(date.getMinutes()).padStart(2, '0')}`;
  }
  if (milliseconds < midnight && milliseconds >= midnight - DAY_MS) return 'Yesterday';
  const day = `${date.getDate()} ${MONTHS[date.getMonth()]}`;
  return date.getFullYear() === new Date(now).getFullYear() ? day : `${day} ${date.getFullYear()}`;
}

const MONTHS = ['Jan', 'Feb', 'Mar', 'Apr', 'May', 'Jun', 'Jul', 'Aug', 'Sep', 'Oct', 'Nov', 'Dec'];

/** The text for an expiry in seconds since 1970; empty for 0, which means never. */
export function formatExpiry(seconds, now = Date.now()) {
  if (!(seconds > 0)) return '';
  const left = seconds * 1000 - now;
  if (left <= 0) return 'Expired';
  if (left < 3600 * 1000) return `Expires in ${Math.ceil(left / 60000)} min`;
  if (left < DAY_MS) return `Expires in ${Math.round(left / 3600000)} h`;
  const days = Math.round(left / DAY_MS);
  return `Expires in ${days} ${days === 1 ? 'day' : 'days'}`;
}

const TYPES = [
  ['Image', 'jpg jpeg png gif webp heic tif tiff bmp svg raw cr2 nef dng psd'],
  ['Video', 'mov mp4 m4v avi mkv webm mxf mpg mpeg wmv r3d'],
  ['Audio', 'mp3 wav aif aiff flac m4a ogg opus'],
  ['Document', 'doc docx odt pages rtf txt md tex'],
  ['PDF', 'pdf'],
  ['Spreadsheet', 'xls xlsx ods numbers csv'],
  ['Presentation', 'ppt pptx odp key'],
  ['Archive', 'zip gz tgz bz2 xz 7z rar tar zst dmg iso'],
  ['Code', 'c cc cpp h hpp py js ts java rs go html css json xml yml yaml sh'],
];
const TYPE_OF = new Map(
  TYPES.flatMap(([type, extensions]) => extensions.split(' ').map((extension) => [extension, type])),
);

export function fileType(name) {
  const dot = name.lastIndexOf('.');
  if (dot <= 0 || dot === name.length - 1) return 'File';
  return TYPE_OF.get(name.slice(dot + 1).toLowerCase()) ?? 'File';
}
