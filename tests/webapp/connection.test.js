import assert from 'node:assert/strict';
import { mock, test } from 'node:test';
import './libraries.js';
import { settled } from './fakes.js';

const { Connection } = await import('../../webapp/js/models/connection.js');
const { ServiceUnreachable } = await import('../../webapp/js/service.js');

/** Replaces the clock for one test: a timer runs only when `tick` is called. */
function heldTimers(t) {
  const timers = [];
  t.mock.method(globalThis, 'setTimeout', (callback) => { timers.push(callback); return timers.length; });
  t.mock.method(globalThis, 'clearTimeout', () => {});
  return { tick: () => timers.shift()() };
}

test('counts down, tries again, and continues waiting calls', async (t) => {
  const clock = heldTimers(t);
  const connection = new Connection();
  const responses = [new ServiceUnreachable(), 'there'];
  const call = mock.fn(async () => {
    const response = responses.shift();
    if (response instanceof Error) throw response;
    return response;
  });
  const result = connection.persistently(call);
  await settled();
  assert.equal(connection.get('reachable'), false);
  assert.equal(connection.get('secondsLeft'), 3);
  clock.tick();
  assert.equal(connection.get('secondsLeft'), 2);
  t.mock.method(globalThis, 'fetch', async () => ({ ok: true, status: 200, json: async () => ({}) }));
  await connection.tryNow();
  assert.equal(await result, 'there');
  assert.equal(connection.get('reachable'), true);
  assert.equal(call.mock.callCount(), 2);
  connection.lost('away again');
  assert.equal(connection.get('secondsLeft'), 3);
});

test('waits longer after each failed try', async (t) => {
  heldTimers(t);
  t.mock.method(globalThis, 'fetch', async () => { throw new TypeError('Failed to fetch'); });
  const connection = new Connection();
  connection.lost('away');
  const waits = [connection.get('secondsLeft')];
  for (let i = 0; i < 5; i += 1) {
    await connection.tryNow();
    waits.push(connection.get('secondsLeft'));
  }
  assert.deepEqual(waits, [3, 5, 10, 20, 30, 30]);
});
