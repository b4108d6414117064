import assert from 'node:assert/strict';
import { test } from 'node:test';
import { parseRecipients } from '../../webapp/js/recipients.js';

test('separates recipients in every form, keeps each address once, and names invalid ones', () => {
  assert.deepEqual(parseRecipients(' Ann@example.org, Bo Lee <bo@example.org>;\ncy@localhost, ann@example.org '), {
    addresses: ['ann@example.org', 'bo@example.org', 'cy@localhost'], invalid: [],
  });
  assert.deepEqual(parseRecipients('ann, a@b@c, @x, x@, a b@c.d').invalid, ['ann', 'a@b@c', '@x', 'x@', 'a b@c.d']);
  assert.deepEqual(parseRecipients(' , ;\n'), { addresses: [], invalid: [] });
});
