// Replaces alert, confirm and prompt of a top document by synchronous requests to the dialog scheme:
// the page's script blocks and the rest of Chromium does not. While a request is impossible (during
// unload, say), and in frames, whose policies may forbid it, the browser's own functions serve. It
// runs before the page's scripts and saves the functions that it uses.
(function (setup, documentKey, originals, flush) {
  'use strict';
  const { parse } = JSON;
  const { defineProperty, getOwnPropertyDescriptor } = Object;
  const call = Function.prototype.call;
  const bind = (f) => call.bind(f);
  const Request = XMLHttpRequest;
  const open = bind(Request.prototype.open);
  const sendRequest = bind(Request.prototype.send);
  const responseText = bind(getOwnPropertyDescriptor(Request.prototype, 'responseText').get);
  const encode = encodeURIComponent;
  const replace = bind(String.prototype.replace);
  const slice = bind(String.prototype.slice);
  const MAX_TEXT = 100000;
  // Lone surrogates cannot be encoded.
  const encoded = (text) =>
    encode(replace(slice(text, 0, MAX_TEXT), /[\ud800-\udfff]/gu, '\ufffd'));

  function ask(type, text, proposal) {
    flush();
    const request = new Request();
    open(request, 'GET', setup.dialogScheme + ':' + documentKey + '/' + type + '?text=' +
                         encoded(text) + '&proposal=' + encoded(proposal), false);
    sendRequest(request);
    return parse(responseText(request));
  }

  function replaceFunction(name, make) {
    const native = bind(originals[name]);
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
    const result = ask(2, text, proposal);
    return result.success ? result.input : null;
  });
})
