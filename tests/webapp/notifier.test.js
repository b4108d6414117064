import assert from 'node:assert/strict';
import { test } from 'node:test';
import './libraries.js';

const { Transfer } = await import('../../webapp/js/models/transfer.js');
const { notificationWords } = await import('../../webapp/js/notifier.js');

function over(attributes, states) {
  const transfer = new Transfer({ id: '1', subject: 'Film', ...attributes });
  states.forEach((state, i) => transfer.files.update(String(i), state, 0, 10));
  return transfer;
}
const titleOf = (attributes, states) => notificationWords(over(attributes, states)).title;

test('counts successful and failed files', () => {
  const sent = { direction: 'upload', state: 'COMPLETED', phase: 'delivered', recipients: ['ann@example.org'] };
  assert.deepEqual(notificationWords(over(sent, ['COMPLETED', 'COMPLETED'])),
    { title: '2 files sent', message: '“Film” to ann@example.org' });
  assert.equal(titleOf({ direction: 'download', state: 'COMPLETED' }, ['COMPLETED']), '1 file downloaded');
  assert.equal(titleOf({ direction: 'download', state: 'COMPLETED', fileCount: 3000 }, []), '3,000 files downloaded');
  assert.equal(titleOf({ direction: 'upload', state: 'ERRORED' }, ['ERRORED', 'COMPLETED']), '1 of 2 files could not be sent');
  assert.equal(titleOf({ direction: 'download', state: 'ERRORED' }, []), 'The download has stopped');
  assert.equal(titleOf({ direction: 'upload', state: 'COMPLETED', phase: 'undelivered' }, ['COMPLETED']), 'A message was not delivered');
});
