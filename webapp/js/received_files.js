// The files of a received message, and which are shown and chosen. Pure model; choosing one takes
// the same time for any number of files.

import { splitPath } from './paths.js';

export class ReceivedFiles {
  #files = [];
  #shown = null;  // indices; null: all
  #chosen = new Set();
  #chosenBytes = 0;
  #bytes = 0;

  constructor(files = []) {
    this.#files = files.map((file) => ({ ...file, ...splitPath(file.path) }));
    this.#bytes = files.reduce((sum, file) => sum + file.size, 0);
  }

  get total() {
    return this.#files.length;
  }

  get bytes() {
    return this.#bytes;
  }

  /** The number of shown files. */
  get count() {
    return this.#shown ? this.#shown.length : this.#files.length;
  }

  get chosenCount() {
    return this.#chosen.size;
  }

  get chosenBytes() {
    return this.#chosenBytes;
  }

  /** The file at a position of the shown list. */
  at(position) {
    return this.#files[this.#indexAt(position)];
  }

  /** Shows only files whose path contains all words of the text; an empty text shows all. */
  filter(text) {
    const words = text.toLocaleLowerCase().split(/\s+/).filter(Boolean);
    if (words.length === 0) {
      this.#shown = null;
      return;
    }
    this.#shown = [];
    this.#files.forEach((file, index) => {
      const path = file.path.toLocaleLowerCase();
      if (words.every((word) => path.includes(word))) this.#shown.push(index);
    });
  }

  isChosen(position) {
    return this.#chosen.has(this.#indexAt(position));
  }

  choose(position, chosen) {
    this.#set(this.#indexAt(position), chosen);
  }

  /** Chooses a range of positions, both ends included. */
  chooseRange(from, to, chosen) {
    for (let at = Math.min(from, to); at <= Math.max(from, to); at += 1) this.choose(at, chosen);
  }

  /** Chooses all shown files. */
  chooseShown(chosen) {
    if (this.count > 0) this.chooseRange(0, this.count - 1, chosen);
  }

  /** Whether "all", "some" or "none" of the shown files are chosen. */
  chosenOfShown() {
    if (this.#chosen.size === 0) return 'none';
    const count = this.#shown
      ? this.#shown.reduce((sum, index) => sum + (this.#chosen.has(index) ? 1 : 0), 0)
      : this.#chosen.size;
    if (count === 0) return 'none';
    return count === this.count ? 'all' : 'some';
  }

  /** The files to download, in the message's order: the chosen ones, or all if none is chosen. */
  wanted() {
    if (this.#chosen.size === 0) return this.#files;
    return [...this.#chosen].sort((a, b) => a - b).map((index) => this.#files[index]);
  }

  #indexAt(position) {
    return this.#shown ? this.#shown[position] : position;
  }

  #set(index, chosen) {
    if (index === undefined || this.#chosen.has(index) === chosen) return;
    if (chosen) this.#chosen.add(index);
    else this.#chosen.delete(index);
    this.#chosenBytes += this.#files[index].size * (chosen ? 1 : -1);
  }
}
