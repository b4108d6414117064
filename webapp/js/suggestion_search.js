import { parseRecipients } from './recipients.js';
import { usableSuggestions } from './recipient_entry.js';

const PAUSE_MS = 150;
const MAX_SUGGESTIONS = 8;

/**
 * Searches the address book while the user types: not for every letter, and a result counts only if no
 * newer search has begun. Without an address book nothing is found.
 */
export class SuggestionSearch {
  #latest = 0;
  #timer = null;

  /** `found(people)` gets the people for the latest text; for an empty text an empty array, at once. */
  constructor({ addressBook, found }) {
    Object.assign(this, { addressBook, found });
  }

  /** `recipients`: the whole field's text; recipients in it are not suggested. */
  ask(text, recipients) {
    this.stop();
    if (!text || !this.addressBook.isThere()) {
      this.found([]);
      return;
    }
    const number = this.#latest;
    this.#timer = setTimeout(() => this.#search(number, text, recipients), PAUSE_MS);
  }

  /** Discards a running search. */
  stop() {
    clearTimeout(this.#timer);
    this.#latest += 1;
  }

  async #search(number, text, recipients) {
    let people = [];
    try {
      people = await this.addressBook.search(text);
    } catch {
      // No address book exists.
    }
    if (number !== this.#latest) return;
    this.found(usableSuggestions(people, parseRecipients(recipients).addresses, MAX_SUGGESTIONS));
  }
}
