import assert from 'node:assert/strict';
import { test } from 'node:test';
import { service, ServiceRefused, ServiceUnreachable } from '../../webapp/js/service.js';

test('tells results, refusals and an unreachable service apart', async (t) => {
  const respond = (status, body) => t.mock.method(globalThis, 'fetch', async () => new Response(body, { status }));
  respond(200, '{"files":3}');
  assert.deepEqual(await service.status(), { files: 3 });
  respond(204);
  assert.equal(await service.cancelMessage('b', 't'), null);
  respond(409, '{"error":{"code":"completed","message":"It is complete."}}');
  await assert.rejects(service.status(), (error) => error instanceof ServiceRefused
    && error.status === 409 && error.code === 'completed' && error.message === 'It is complete.');
  respond(404, '<html>');
  await assert.rejects(service.status(), (error) => error instanceof ServiceRefused && /404/.test(error.message));
  for (const busy of [408, 429, 502, 503, 504]) {
    respond(busy, '{}');
    await assert.rejects(service.status(), ServiceUnreachable);
  }
  t.mock.method(globalThis, 'fetch', async () => { throw new TypeError('Failed to fetch'); });
  await assert.rejects(service.status(), ServiceUnreachable);
});
