// Turns a message's title into a folder name. Pure.

const LONGEST = 120;  // bytes of UTF-8; file systems take 255 a name
const LONE_SURROGATES = /[\ud800-\udbff](?![\udc00-\udfff])|(?<![\ud800-\udbff])[\udc00-\udfff]/g;

const bytesOf = (text) => new TextEncoder().encode(text).length;

function shorten(text) {
  let length = 0;
  let bytes = 0;
  for (const character of text) {
    bytes += bytesOf(character);
    if (bytes > LONGEST) break;
    length += character.length;
  }
  return text.slice(0, length);
}

/** Never empty, hidden, or a path. */
export function folderName(title) {
  const oneName = title.replace(LONE_SURROGATES, '').replace(/[/\\:\s\u0000-\u001f\u007f]+/g, ' ').replace(/^[\s.]+/, '');
  return shorten(oneName).replace(/[\s.]+$/, '') || 'Message';
}
