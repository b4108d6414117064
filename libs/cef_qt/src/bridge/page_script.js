// The page's end of the bridge: installed in every document before its own scripts run.
//
// The top document talks to the native side through Qt's web channel transport; documents in frames
// talk to the top one through a message port. What a document sends is collected during its running
// script and sent as one message; answers come as one message a turn. Only functions kept here from
// before the page's scripts are used, so that a page cannot break its bridge by redefining them.
(function (setup) {
  'use strict';
  const isTop = window === window.top;
  // A window whose first document was empty is given to the next one as it is: what was found in
  // the untouched window is kept with it.
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
  // Kinds of what is sent; the native side knows them by the same numbers.
  const HELLO = 0, BYE = 1, QUERY = 2, PERSISTENT_QUERY = 3, CANCEL = 4;
  // Ids of what is received that is not an answer.
  const RUN = -1, NAVIGATE = -2, FUNCTIONS = -3;

  // ---- queries of this document

  const pending = new MapType();
  let pendingCount = 0;
  let lastId = 0;

  function fail(text) {
    throw new ErrorType('Invalid arguments; ' + text);
  }

  function readMember(query, name, type) {
    const value = query[name];
    if (value !== undefined && typeof value !== type) {
      fail("object member '" + name + "' must have type " + type);
    }
    return value;
  }

  function makeQueryFunction(name, cancelName) {
    return function () {
      const query = arguments[0];
      if (arguments.length !== 1 || query === null ||
          (typeof query !== 'object' && typeof query !== 'function')) {
        fail('expecting a single object');
      }
      const request = query.request;
      if (typeof request !== 'string') {
        fail("object member 'request' is required and must have type string");
      }
      const onSuccess = readMember(query, 'onSuccess', 'function');
      const onFailure = readMember(query, 'onFailure', 'function');
      const persistent = readMember(query, 'persistent', 'boolean') === true;
      const id = ++lastId;
      mapSet(pending, id, { name, cancelName, persistent, onSuccess, onFailure });
      collect(persistent ? PERSISTENT_QUERY : QUERY, id, name, request);
      // A single query leaves at once; others are collected until the script ends.
      if (++pendingCount === 1) flush(); else flushLater();
      return id;
    };
  }

  function makeCancelFunction(cancelName) {
    return function () {
      const id = arguments[0];
      if (arguments.length !== 1 || !isInteger(id)) {
        fail('expecting a single integer');
      }
      const query = mapGet(pending, id);
      if (!query || query.cancelName !== cancelName) return false;
      forget(id);
      send(CANCEL, id, query.name, '');
      // The page hears of it once the calling script is done.
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

  // code is null for a success.
  function answer(id, code, text) {
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

  // The list was a forecast; this is what the document really has.
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
      answer(id, code, text);
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

  // ---- the way to the native side

  // Collects what is sent, of this document (and, in the top one, of its frames).
  let collect;
  // Sends what is collected, now or once the running script has ended.
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
    const random = new Uint32Array(2);
    crypto.getRandomValues(random);
    const documentKey = random[0].toString(36) + random[1].toString(36);
    const ports = new MapType();       // by frame number
    const frameNumbers = new WeakMap();  // by window
    let lastFrame = 0;
    // One text of a head and the texts it gives the lengths of: Qt's web channel takes its time
    // with arrays, and with characters that JSON escapes.
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

    // The transport is there as a rule. After the end of a render process, and in a window's empty
    // first document, it comes a little later: what is sent waits for it.
    const waiting = [];
    let sendText = (text) => { waiting[waiting.length] = text; };
    kept.connect = () => {
      sendText = kept.transport.send.bind(kept.transport);
      for (let i = 0; i < waiting.length; ++i) sendText(waiting[i]);
      waiting.length = 0;
    };
    // Qt puts the transport into window.qt, and looks its receiver up there for every message.
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

    function adoptFrame(source, port, { version, name, url }) {
      const old = frameNumbers.get(source);
      if (old) dropFrame(old);
      const frame = ++lastFrame;
      frameNumbers.set(source, frame);
      mapSet(ports, frame, port);
      port.onmessage = (event) => {
        const entries = event.data;
        for (let i = 0; i < entries.length; i += 4) {
          if (entries[i] === BYE) {
            dropFrame(frame);
          } else {
            sendFor(frame, entries[i], entries[i + 1], entries[i + 2], entries[i + 3]);
          }
        }
      };
      sendFor(frame, HELLO, version, name, url);
    }

    function dropFrame(frame) {
      const port = mapGet(ports, frame);
      if (!port) return;
      port.close();
      mapDelete(ports, frame);
      sendFor(frame, BYE, 0, '', '');
    }

    // First listener of the document: the page never sees the frames' greetings.
    listen(window, 'message', (event) => {
      const data = event.data;
      if (!data || data.cefQtBridge !== setup.greeting || !event.ports.length) return;
      event.stopImmediatePropagation();
      adoptFrame(event.source, event.ports[0], data);
    }, true);

    startDialogs(documentKey);
    sendText('{"type":7,"object":"' + setup.object + '","signal":' + setup.signal + '}');
    send(HELLO, setup.version, window.name, window.location.href);
    if (kept.transport) kept.connect();
  }

  // Dialogs of the top document are requests that the script waits for, so that nothing but this
  // page stands still meanwhile. Where that is not possible (while the page is left, say), and in
  // frames, which have rules of their own, the browser's functions serve.
  function startDialogs(documentKey) {
    const Request = XMLHttpRequest;
    const open = bind(Request.prototype.open);
    const sendRequest = bind(Request.prototype.send);
    const responseText = bind(getOwnPropertyDescriptor(Request.prototype, 'responseText').get);
    const encode = encodeURIComponent;
    const replace = bind(String.prototype.replace);
    const LONGEST = 100000;
    // Lone surrogates cannot be encoded.
    const encoded = (text) =>
      encode(replace(slice(text, 0, LONGEST), /[\ud800-\udfff]/gu, '\ufffd'));

    function ask(type, text, proposal) {
      flush();
      const request = new Request();
      open(request, 'GET', setup.dialogScheme + ':' + documentKey + '/' + type + '?text=' +
                           encoded(text) + '&proposal=' + encoded(proposal), false);
      sendRequest(request);
      return parse(responseText(request));
    }

    function replaceFunction(name, make) {
      const native = bind(kept[name]);
      const textOf = (value) => (value === undefined ? '' : `${value}`);
      defineProperty(window, name, {
        writable: true, enumerable: true, configurable: true,
        value: function (message, proposal) {
          const text = arguments.length ? `${message}` : '';
          try {
            return make(text, textOf(proposal));
          } catch (error) {
            return native(window, text, textOf(proposal));
          }
        } });
    }
    replaceFunction('alert', (text) => { ask(0, text, ''); });
    replaceFunction('confirm', (text) => ask(1, text, '').success);
    replaceFunction('prompt', (text, proposal) => {
      const answer = ask(2, text, proposal);
      return answer.success ? answer.input : null;
    });
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
      send(BYE, 0, '', '');
      flush();
    });
    window.top.postMessage(
      { cefQtBridge: setup.greeting, version: setup.version,
        name: window.name, url: window.location.href }, '*',
      [channel.port2]);
  }
})
