import assert from 'node:assert/strict';
import { test } from 'node:test';
import { parseRecipients } from '../../webapp/js/recipients.js';

test('reads addresses with and without names, however they are separated', () => {
  assert.deepEqual(parseRecipients(' ann@example.org, Bo Lee <bo@example.org>;\ncy@localhost '), {
    addresses: ['ann@example.org', 'bo@example.org', 'cy@localhost'], invalid: [],
  });
});

test('keeps an address once, whatever its case', () => {
  assert.deepEqual(parseRecipients('Ann@example.org, ann@example.org').addresses, ['ann@example.org']);
});

test('names what is no address', () => {
  assert.deepEqual(parseRecipients('ann, a@b@c, @x, x@, a b@c.d').invalid, ['ann', 'a@b@c', '@x', 'x@', 'a b@c.d']);
  assert.deepEqual(parseRecipients(' , ;\n'), { addresses: [], invalid: [] });
});
