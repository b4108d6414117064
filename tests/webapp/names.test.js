import assert from 'node:assert/strict';
import { test } from 'node:test';
import { folderName } from '../../webapp/js/folder_name.js';
import { fromRanges, toRanges } from '../../webapp/js/id_ranges.js';

test('turns a title into the name of one visible folder', () => {
  const expected = [
    ['Holiday', 'Holiday'], ['a/b\\c:d', 'a b c d'], ['../../etc', 'etc'], ['.hidden.', 'hidden'], ['', 'Message'],
    ['..', 'Message'], ['/', 'Message'], ['tab\tnull\0end', 'tab null end'], ['Grüße  – 日本 😀', 'Grüße – 日本 😀'],
    ['broken \ud83d', 'broken'],
  ];
  for (const [title, name] of expected) assert.equal(folderName(title), name);
});

test('cuts a long title between characters to a valid length', () => {
  for (const character of ['x', 'ü', '日', '😀']) {
    const name = folderName(character.repeat(500));
    const bytes = new TextEncoder().encode(name).length;
    assert.ok(bytes <= 120 && bytes > 115, `${bytes} bytes of ${character}`);
    assert.equal(name.replaceAll(character, ''), '');
  }
});

test('converts sets of ids to a short text and back', () => {
  const ids = [...Array.from({ length: 5000 }, (_, i) => String(i + 1)), '7000', '7002', 'a,b', '007'];
  const text = toRanges(ids);
  assert.ok(text.length < 50, text);
  assert.deepEqual(new Set(fromRanges(text)), new Set(ids));
  assert.deepEqual(fromRanges(toRanges([])), []);
});
