import assert from 'node:assert/strict';
import { test } from 'node:test';

// A minimal document that shows the rows of a list.
class FakeElement {
  constructor() {
    this.children = [];
    this.style = { setProperty() {} };
    this.dataset = {};
    this.attributes = {};
    this.scrollTop = 0;
    this.clientHeight = 520;
  }

  setAttribute(name, value) { this.attributes[name] = value; }

  addEventListener(type, listener) { this[`on${type}`] = listener; }

  append(...children) { children.forEach((child) => this.insertBefore(child, null)); }

  insertBefore(child, next) {
    child.parent = this;
    this.children.splice(next ? this.children.indexOf(next) : this.children.length, 0, child);
  }

  remove() { this.parent.children.splice(this.parent.children.indexOf(this), 1); }
}
const frames = [];
globalThis.document = { createElement: () => new FakeElement() };
globalThis.ResizeObserver = class { observe() {} };
globalThis.requestAnimationFrame = (frame) => frames.push(frame);

const { VirtualList } = await import('../../webapp/js/views/virtual_list.js');

function listOf(count) {
  const made = [];
  const filled = [];
  const list = new VirtualList({
    label: 'Files',
    rowHeight: 52,
    makeRow: () => { made.push(1); return new FakeElement(); },
    fillRow: (row, index) => { row.index = index; filled.push(index); },
  });
  list.refresh(count);
  return { list, made, filled, shown: () => list.canvas.children.map((row) => row.index) };
}

function scroll(list, top) {
  list.element.scrollTop = top;
  list.element.onscroll();
  frames.splice(0).forEach((frame) => frame());
}

test('keeps only visible rows of 100,000 entries in the document, in reading order, and reuses them', () => {
  const { list, made, shown } = listOf(100_000);
  assert.equal(list.canvas.style.height, '5200000px');
  assert.deepEqual(shown(), Array.from({ length: 16 }, (_, i) => i));
  for (const top of [1_000_000, 1_000_300, 999_800, 5_199_480, 0]) {
    scroll(list, top);
    const rows = shown();
    assert.ok(rows.length <= 24, `${rows.length} rows at ${top}`);
    assert.deepEqual(rows, rows.slice().sort((a, b) => a - b));
    assert.ok(rows.includes(Math.floor(top / 52)));
  }
  for (let top = 0; top < 520_000; top += 700) scroll(list, top);
  assert.ok(made.length <= 24, `${made.length} rows were made, not reused`);
  scroll(list, -80);
  assert.equal(shown()[0], 0);
});
