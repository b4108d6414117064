// Queries to the native side. Every bridge is one function of the window, defined by the application;
// in an ordinary browser they do not exist.

export const BRIDGES = {
  app: 'nativeAppBridge_IPC',
  upload: 'uploadManagerBridge_IPC',
  download: 'downloadManagerBridge_IPC',
  files: 'fileHandleChooserBridge_IPC',
  notification: 'eventNotificationBridge_IPC',
  addressBook: 'addressBookSearchManagerBridge_IPC',
};

export class BridgeError extends Error {
  constructor(message, code) {
    super(message);
    this.name = 'BridgeError';
    this.code = code;
  }
}

export function isAvailable(bridge, root = globalThis) {
  return typeof root[bridge] === 'function';
}

const ESCAPES = /\\(?:u[0-9a-f]{4}|.)/gi;
const LONE_SURROGATE = /^\\ud[89a-f]/i;

// Half a character, as in names of broken archives, is no text to the native side, which would refuse the whole
// query. Whole characters are never escaped.
function jsonText(value) {
  const text = JSON.stringify(value);
  if (!text.includes('\\ud')) return text;
  return text.replace(ESCAPES, (escape) => (LONE_SURROGATE.test(escape) ? '\ufffd' : escape));
}

/** Queries a bridge; returns the answer's value. Rejects with a BridgeError. */
export function query(bridge, method, parameters, root = globalThis) {
  return new Promise((resolve, reject) => {
    if (!isAvailable(bridge, root)) {
      reject(new BridgeError('This needs the Zantrio application.', 0));
      return;
    }
    root[bridge]({
      request: jsonText({ method, parameters }),
      persistent: false,
      onSuccess: (text) => {
        try {
          resolve(JSON.parse(text));
        } catch {
          reject(new BridgeError(`The application's answer to "${method}" cannot be read.`, 0));
        }
      },
      onFailure: (code, message) => {
        reject(new BridgeError(`The application could not do "${method}": ${message}`, code));
      },
    });
  });
}
