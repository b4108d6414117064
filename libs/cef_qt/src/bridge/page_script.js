// The page's end of the bridge. It runs in every document before the document's own scripts.
//
// The top document exchanges messages with the native side through Qt's web channel transport.
// Documents in frames reach the top document through a message port. Entries are collected while a
// script runs and are sent as one message; the responses of a turn arrive as one message. The
// script uses only functions that it saved before the page's scripts ran, so a page that redefines
// them does not break its bridge.
(function (setup, replaceDialogs) {
  'use strict';
  const isTop = window === window.top;
  // Chromium reuses the window of an empty first document for the next document. The originals
  // saved from the untouched window are therefore stored on the window.
  const mark = Symbol.for('cef_qt.bridge');
  const kept = window[mark] || {
    document: null, connect: null, receive: null,
    transport: (isTop && window.qt && window.qt.webChannelTransport) || null,
    alert: window.alert, confirm: window.confirm, prompt: window.prompt };
  if (kept.document === document) return;
  kept.document = document;
  if (!window[mark]) Object.defineProperty(window, mark, { value: kept });

  const { stringify, parse } = JSON;
  const { defineProperty, getOwnPropertyDescriptor } = Object;
  const { error: ErrorType, map: MapType } = { error: Error, map: Map };
  const call = Function.prototype.call;
  const bind = (f) => call.bind(f);
  const mapGet = bind(Map.prototype.get);
  const mapSet = bind(Map.prototype.set);
  const mapDelete = bind(Map.prototype.delete);
  const mapHas = bind(Map.prototype.has);
  const slice = bind(String.prototype.slice);
  const indexOf = bind(String.prototype.indexOf);
  const postToPort = bind(MessagePort.prototype.postMessage);
  const listen = bind(EventTarget.prototype.addEventListener);
  const isInteger = Number.isInteger;
  const enqueueMicrotask = window.queueMicrotask.bind(window);
  const report = window.reportError
    ? window.reportError.bind(window)
    : (error) => enqueueMicrotask(() => { throw error; });
  const evaluate = window.eval;
  // Kinds of entries sent to the native side; PageEntry::Kind has the same numbers.
  const ATTACH = 0, DETACH = 1, QUERY = 2, PERSISTENT_QUERY = 3, CANCEL = 4, ASKED = 5;
  // Ids of received entries that are not responses; PageChannel::Command has the same numbers.
  const RUN = -1, NAVIGATE = -2, FUNCTIONS = -3;

  // ---- queries of this document

  const pending = new MapType();
  let pendingCount = 0;
  let lastId = 0;

  function throwInvalid(text) {
    throw new ErrorType('Invalid arguments; ' + text);
  }

  function readMember(query, name, type) {
    const value = query[name];
    if (value !== undefined && typeof value !== type) {
      throwInvalid("object member '" + name + "' must have type " + type);
    }
    return value;
  }

  function makeQueryFunction(name, cancelName) {
    return function () {
      const query = arguments[0];
      if (arguments.length !== 1 || query === null ||
          (typeof query !== 'object' && typeof query !== 'function')) {
        throwInvalid('expecting a single object');
      }
      const request = query.request;
      if (typeof request !== 'string') {
        throwInvalid("object member 'request' is required and must have type string");
      }
      const onSuccess = readMember(query, 'onSuccess', 'function');
      const onFailure = readMember(query, 'onFailure', 'function');
      const persistent = readMember(query, 'persistent', 'boolean') === true;
      const id = ++lastId;
      mapSet(pending, id, { name, cancelName, persistent, onSuccess, onFailure });
      collect(persistent ? PERSISTENT_QUERY : QUERY, id, name, request);
      // A lone query is sent immediately; further ones are collected until the script ends.
      if (++pendingCount === 1) flush(); else flushLater();
      return id;
    };
  }

  function makeCancelFunction(cancelName) {
    return function () {
      const id = arguments[0];
      if (arguments.length !== 1 || !isInteger(id)) {
        throwInvalid('expecting a single integer');
      }
      const query = mapGet(pending, id);
      if (!query || query.cancelName !== cancelName) return false;
      forget(id);
      send(CANCEL, id, query.name, '');
      // onFailure runs after the calling script has ended.
      enqueueMicrotask(() => notify(query.onFailure, -1, 'The query has been canceled'));
      return true;
    };
  }

  function forget(id) {
    mapDelete(pending, id);
    --pendingCount;
  }

  function notify(callback, ...values) {
    if (!callback) return;
    try {
      callback(...values);
    } catch (error) {
      report(error);
    }
  }

  // Runs the callback of a response; the code is null for a success.
  function complete(id, code, text) {
    const query = mapGet(pending, id);
    if (!query) return;
    if (code !== null || !query.persistent) forget(id);
    if (code === null) {
      notify(query.onSuccess, text);
    } else {
      notify(query.onFailure, code, text);
    }
  }

  // ---- functions of the page

  const installed = new MapType();

  function install(name, value) {
    if (mapHas(installed, name)) return;
    mapSet(installed, name, value);
    defineProperty(window, name,
                   { value, writable: false, enumerable: false, configurable: true });
  }

  function installFunctions(routers) {
    for (let i = 0; i < routers.length; i += 2) {
      install(routers[i], makeQueryFunction(routers[i], routers[i + 1]));
      install(routers[i + 1], makeCancelFunction(routers[i + 1]));
    }
  }

  // Replaces the predicted functions by those that the document was really given.
  function correctFunctions(routers) {
    const names = new MapType();
    for (let i = 0; i < routers.length; ++i) mapSet(names, routers[i], true);
    installed.forEach((value, name) => {
      const present = getOwnPropertyDescriptor(window, name);
      if (mapHas(names, name)) return;
      if (present && present.value === value) delete window[name];
      mapDelete(installed, name);
    });
    installFunctions(routers);
  }

  // ---- messages from the native side

  function receive(id, code, text) {
    if (id > 0) {
      complete(id, code, text);
    } else if (id === FUNCTIONS) {
      correctFunctions(parse(text));
    } else if (id === NAVIGATE) {
      window.location.assign(text);
    } else if (id === RUN) {
      try {
        evaluate(text);
      } catch (error) {
        report(error);
      }
    }
  }

  // ---- messages to the native side

  function makeKey() {
    const random = new Uint32Array(4);
    crypto.getRandomValues(random);
    let key = '';
    for (let i = 0; i < random.length; ++i) key += random[i].toString(36);
    return key;
  }

  // Shows the native side this document's origin, which the browser knows of every request. Queries
  // are held back there until the request has arrived, or has ended without arriving.
  function showOrigin(kind, key) {
    const ended = () => send(ASKED, 0, '', '');
    try {
      const request = new XMLHttpRequest();
      request.onloadend = ended;
      request.open('POST', setup.originScheme + ':' + kind + '/' + key);
      request.send();
    } catch (error) {
      ended();
    }
  }

  // Queues an entry of this document. Set by startTop or startFrame.
  let collect;
  // Sends all queued entries, in the top document those of its frames too.
  let flush;
  let flushIsDue = false;
  const flushDue = () => {
    flushIsDue = false;
    flush();
  };

  function flushLater() {
    if (flushIsDue) return;
    flushIsDue = true;
    enqueueMicrotask(flushDue);
  }

  function send(kind, id, name, text) {
    collect(kind, id, name, text);
    flushLater();
  }

  if (isTop) {
    startTop();
  } else {
    startFrame();
  }
  installFunctions(isTop ? setup.topRouters : setup.frameRouters);

  function startTop() {
    const documentKey = makeKey();
    const ports = new MapType();         // by frame number
    const frameNumbers = new WeakMap();  // by window
    let lastFrame = 0;
    // A message is one string: a head with the lengths, then the texts. Qt's web channel is slow
    // with arrays and with characters that JSON escapes.
    let heads = '';
    let texts = '';

    flush = () => {
      if (!heads) return;
      const batch = documentKey + heads + '#' + texts;
      heads = '';
      texts = '';
      sendText('{"type":9,"object":"' + setup.object + '","property":' + setup.property +
               ',"value":' + stringify(batch) + '}');
    };

    function collectFor(frame, kind, id, name, text) {
      heads += ';' + frame + ',' + kind + ',' + id + ',' + name.length + ',' + text.length;
      texts += name + text;
    }

    function sendFor(frame, kind, id, name, text) {
      collectFor(frame, kind, id, name, text);
      flushLater();
    }

    collect = (kind, id, name, text) => collectFor(0, kind, id, name, text);

    // The transport usually exists already. After a render process has ended, and in a window's
    // empty first document, Qt adds it later; messages wait for it.
    const waiting = [];
    let sendText = (text) => { waiting[waiting.length] = text; };
    kept.connect = () => {
      sendText = kept.transport.send.bind(kept.transport);
      for (let i = 0; i < waiting.length; ++i) sendText(waiting[i]);
      waiting.length = 0;
    };
    // Qt stores the transport in window.qt and looks its receiver up there for every message.
    if (!kept.receive) {
      const receiver = {};
      defineProperty(receiver, 'onmessage', { value: (event) => kept.receive(event) });
      const qt = {};
      defineProperty(qt, 'webChannelTransport', {
        get: () => receiver,
        set: (transport) => {
          kept.transport = transport;
          kept.connect();
        } });
      defineProperty(window, 'qt', { value: qt, enumerable: false });
    }
    kept.receive = (event) => receiveAll(parse(event.data));

    function receiveAll(message) {
      if (message.object !== setup.object || message.signal !== setup.signal) return;
      const all = message.args[0];
      if (slice(all, 0, documentKey.length) !== documentKey) return;
      let at = indexOf(all, '#');
      const head = parse(slice(all, documentKey.length, at++));
      let batch = null;
      let batchFrame = 0;
      const flushBatch = () => {
        const port = batch && mapGet(ports, batchFrame);
        if (port) postToPort(port, batch);
        batch = null;
      };
      for (let i = 0; i < head.length; i += 4) {
        const frame = head[i];
        const id = head[i + 1];
        const code = head[i + 2];
        const text = slice(all, at, at += head[i + 3]);
        if (frame !== batchFrame) flushBatch();
        batchFrame = frame;
        if (frame === 0) {
          receive(id, code, text);
        } else {
          batch = batch || [];
          batch[batch.length] = [id, code, text];
        }
      }
      flushBatch();
    }

    // Pages in frames can make messages, too. Values of other types could pass for other documents'.
    function isEntry(kind, id, name, text) {
      return isInteger(kind) && isInteger(id) && typeof name === 'string' && typeof text === 'string';
    }

    function attachFrame(source, port, { version, name, said }) {
      if (!isEntry(ATTACH, version, name, said)) return;
      const old = frameNumbers.get(source);
      if (old) detachFrame(old);
      const frame = ++lastFrame;
      frameNumbers.set(source, frame);
      mapSet(ports, frame, port);
      port.onmessage = (event) => {
        const entries = event.data;
        for (let i = 0; i < entries.length; i += 4) {
          if (entries[i] === DETACH) {
            detachFrame(frame);
          } else if (entries[i] !== ATTACH &&
                     isEntry(entries[i], entries[i + 1], entries[i + 2], entries[i + 3])) {
            sendFor(frame, entries[i], entries[i + 1], entries[i + 2], entries[i + 3]);
          }
        }
      };
      sendFor(frame, ATTACH, version, name, said);
    }

    function detachFrame(frame) {
      const port = mapGet(ports, frame);
      if (!port) return;
      port.close();
      mapDelete(ports, frame);
      sendFor(frame, DETACH, 0, '', '');
    }

    // This is the document's first listener, so the page never sees the messages of its frames.
    listen(window, 'message', (event) => {
      const data = event.data;
      if (!data || data.cefQtBridge !== setup.frameToken || !event.ports.length) return;
      event.stopImmediatePropagation();
      attachFrame(event.source, event.ports[0], data);
    }, true);

    replaceDialogs(setup, documentKey, kept, () => flush());
    sendText('{"type":7,"object":"' + setup.object + '","signal":' + setup.signal + '}');
    send(ATTACH, setup.version, window.name, documentKey + '  ' + window.location.href);
    showOrigin('top', documentKey);
    if (kept.transport) kept.connect();
  }

  function startFrame() {
    const channel = new MessageChannel();
    const port = channel.port1;
    let collected = null;

    flush = () => {
      const entries = collected;
      collected = null;
      if (entries) postToPort(port, entries);
    };

    collect = (kind, id, name, text) => {
      collected = collected || [];
      const at = collected.length;
      collected[at] = kind;
      collected[at + 1] = id;
      collected[at + 2] = name;
      collected[at + 3] = text;
    };
    port.onmessage = (event) => {
      const entries = event.data;
      for (let i = 0; i < entries.length; ++i) {
        receive(entries[i][0], entries[i][1], entries[i][2]);
      }
    };
    listen(window, 'pagehide', () => {
      send(DETACH, 0, '', '');
      flush();
    });
    const key = makeKey();
    const { ancestorOrigins, href } = window.location;
    const said = key + ' ' + Array.from(ancestorOrigins).slice(0, -1) + ' ' + href;
    window.top.postMessage({ cefQtBridge: setup.frameToken, version: setup.version,
                             name: window.name, said }, '*', [channel.port2]);
    showOrigin('frame', key);
  }
})
