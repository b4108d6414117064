// The policies that the pages carry themselves, whoever serves them.

import assert from 'node:assert/strict';
import { createHash } from 'node:crypto';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';

function pageAt(path) {
  const html = readFileSync(new URL(path, import.meta.url), 'utf8');
  const [, content] = /<meta http-equiv="Content-Security-Policy" content="([^"]*)">/.exec(html);
  const policy = new Map(content.split(';').map((rule) => rule.trim().split(/\s+/)).map(([name, ...rest]) => [name, rest]));
  return { html, policy };
}

const hashOf = (text) => `'sha256-${createHash('sha256').update(text).digest('base64')}'`;

test('the loading page runs its own script, and nothing that is put into it', () => {
  const { html, policy } = pageAt('../../packaging/Resources/loading.html');
  assert.deepEqual(policy.get('default-src'), ["'none'"]);
  for (const [tag, rule] of [['script', 'script-src'], ['style', 'style-src']]) {
    const contents = [...html.matchAll(new RegExp(`<${tag}>(.*?)</${tag}>`, 'gs'))].map(([, content]) => hashOf(content));
    assert.deepEqual(policy.get(rule), contents, `${rule} needs the digest of the <${tag}>`);
  }
  assert.doesNotMatch(html, /\s(on[a-z]+|style)=/);
});

test('the web application has no script or style in its document, and its policy allows none', () => {
  const { html, policy } = pageAt('../../webapp/index.html');
  assert.deepEqual(policy.get('default-src'), ["'self'"]);
  assert.ok(!policy.has('script-src') && !policy.has('style-src'));
  assert.doesNotMatch(html, /<(script|style)>|<script[^>]*>[^<]|\s(on[a-z]+|style)=|unsafe/);
});
