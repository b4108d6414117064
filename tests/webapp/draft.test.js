import assert from 'node:assert/strict';
import { test } from 'node:test';
import './libraries.js';
import { records } from './fakes.js';

const { Draft } = await import('../../webapp/js/models/draft.js');

test('names the reasons why it cannot be sent', () => {
  const draft = new Draft();
  assert.deepEqual(draft.problems().map((problem) => problem.field), ['files', 'recipients']);
  draft.addFiles({ files: records(1) });
  draft.set('recipients', 'ann');
  assert.match(draft.problems()[0].text, /“ann” is not an e-mail address/);
  draft.set('recipients', 'ann@example.org');
  assert.deepEqual(draft.problems(), []);
});

test('uses a title from the files unless one is written', () => {
  const draft = new Draft();
  draft.addFiles({ files: records(2), summary: 'Wedding' });
  draft.addFiles({ files: records(2), summary: 'The same files again' });
  draft.set('recipients', 'ann@example.org');
  assert.equal(draft.content().subject, 'Wedding');
  draft.set('subject', ' Mine ');
  assert.equal(draft.content().subject, 'Mine');
  draft.forget(draft.content());
  draft.addFiles({ files: records(3), summary: null });
  assert.equal(draft.content().subject, '0.txt and 2 more');
});

test('keeps files added during sending for the next message', () => {
  const draft = new Draft();
  draft.addFiles({ files: records(2) });
  draft.set({ recipients: 'ann@example.org', text: 'Hello' });
  const content = draft.content();
  draft.addFiles({ files: records(1, 'later') });
  draft.forget(content);
  assert.deepEqual(draft.files.all().map((file) => file.fileURL), ['file:///home/ann/later/0.txt']);
  assert.equal(draft.files.bytes, 10);
  assert.equal(draft.get('text'), '');
});
