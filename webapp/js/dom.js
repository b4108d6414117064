// Building elements. Texts are always set as text, never parsed as HTML.

/** el('button', { class: 'quiet', onclick }, 'Cancel'): attributes, on… listeners, children. */
export function el(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value === false || value === null || value === undefined) continue;
    if (name.startsWith('on')) {
      element.addEventListener(name.slice(2), value);
    } else {
      element.setAttribute(name, value === true ? '' : value);
    }
  }
  element.append(...children.flat().filter((child) => child !== null && child !== undefined));
  return element;
}

/** Sets a text only if it differs, so that nothing is laid out or read out again needlessly. */
export function setText(element, text) {
  if (element.textContent !== text) element.textContent = text;
}

/** Announces a text to users of a screen reader. */
export function announce(text) {
  setText(document.getElementById('announcer'), text);
}
