// The policy that the page carries itself, whoever serves it.

import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';

function pageAt(path) {
  const html = readFileSync(new URL(path, import.meta.url), 'utf8');
  const [, content] = /<meta http-equiv="Content-Security-Policy" content="([^"]*)">/.exec(html);
  const policy = new Map(content.split(';').map((rule) => rule.trim().split(/\s+/)).map(([name, ...rest]) => [name, rest]));
  return { html, policy };
}

test('the web application has no script or style in its document, and its policy allows none', () => {
  const { html, policy } = pageAt('../../webapp/index.html');
  assert.deepEqual(policy.get('default-src'), ["'self'"]);
  assert.ok(!policy.has('script-src') && !policy.has('style-src'));
  assert.doesNotMatch(html, /<(script|style)>|<script[^>]*>[^<]|\s(on[a-z]+|style)=|unsafe/);
});
