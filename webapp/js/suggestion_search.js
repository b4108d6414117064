import { parseRecipients } from './recipients.js';
import { usableSuggestions } from './recipient_entry.js';

const PAUSE_MS = 150;
const MOST = 8;

/**
 * Asks the address book while somebody types: not for every letter, and an answer counts only while nothing
 * newer was asked. Where there is no address book nothing is found, without a word.
 */
export class SuggestionSearch {
  #latest = 0;
  #timer = null;

  /** `found(people)` gets the people for the latest text; an empty array for an empty one, at once. */
  constructor({ addressBook, found }) {
    Object.assign(this, { addressBook, found });
  }

  /** `recipients`: the whole field's text; who is in it already is not suggested. */
  ask(text, recipients) {
    this.stop();
    if (!text || !this.addressBook.isThere()) {
      this.found([]);
      return;
    }
    const number = this.#latest;
    this.#timer = setTimeout(() => this.#search(number, text, recipients), PAUSE_MS);
  }

  /** What was asked is not wanted any more. */
  stop() {
    clearTimeout(this.#timer);
    this.#latest += 1;
  }

  async #search(number, text, recipients) {
    let answer = [];
    try {
      answer = await this.addressBook.search(text);
    } catch {
      // There is no address book.
    }
    if (number !== this.#latest) return;
    this.found(usableSuggestions(answer, parseRecipients(recipients).addresses, MOST));
  }
}
