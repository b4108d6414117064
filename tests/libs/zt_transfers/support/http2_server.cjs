// A small object store over HTTP/2 and TLS: node http2_server.cjs KEY CERTIFICATE new|old|mute
// When old it offers HTTP/1.1 only; when mute it never answers on its first connection. Prints its port; when its input ends it prints what it has seen and ends.
'use strict';
const crypto = require('node:crypto');
const fs = require('node:fs');
const http2 = require('node:http2');
const https = require('node:https');
const { Readable } = require('node:stream');

const [key, cert] = process.argv.slice(2, 4).map((path) => fs.readFileSync(path));
const objects = new Map();
const seen = { connections: 0, requests: 0, given: 0, mostAtOnce: 0, versions: {} };
let open = 0;

// Counts what the connection takes.
function* piecesOf(body) {
  for (let at = 0; at < body.length; at += 65536) {
    const piece = body.subarray(at, at + 65536);
    seen.given += piece.length;
    yield piece;
  }
}

const server = process.argv[4] === 'old' ? https.createServer({ key, cert }) : http2.createSecureServer({ key, cert, allowHTTP1: true });
server.on('secureConnection', () => { seen.connections += 1; });
let first = null;
server.on('request', (request, response) => {
  first ??= request.stream?.session;
  if (process.argv[4] === 'mute' && request.stream.session === first) return;
  seen.requests += 1;
  seen.versions[request.httpVersion] = (seen.versions[request.httpVersion] ?? 0) + 1;
  open += 1;
  seen.mostAtOnce = Math.max(seen.mostAtOnce, open);
  const parts = [];
  request.on('data', (part) => parts.push(part));
  request.on('end', () => {
    // Answered a little later, so that others can come meanwhile.
    setTimeout(() => {
      open -= 1;
      const body = request.method === 'GET' ? objects.get(request.url) : Buffer.concat(parts);
      if (request.method === 'PUT') objects.set(request.url, body);
      response.writeHead(body ? 200 : 404, {
        etag: `"${crypto.createHash('md5').update(body ?? '').digest('hex')}"`,
        ...(request.method === 'GET' && body ? { 'content-length': body.length } : {}),
      });
      if (request.method === 'GET' && body) Readable.from(piecesOf(body)).pipe(response);
      else response.end();
    }, 20);
  });
});
server.listen(0, '127.0.0.1', () => console.log(server.address().port));
process.stdin.resume();
process.stdin.on('end', () => {
  console.log(JSON.stringify(seen));
  process.exit(0);
});
