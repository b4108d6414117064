import { el } from '../dom.js';
import { addressBook } from '../native.js';
import { entryAt, replaceEntry } from '../recipient_entry.js';
import { SuggestionSearch } from '../suggestion_search.js';

/** The recipients' input, with suggestions of the address book while the user types. */
export class RecipientsField {
  #people = [];
  #active = -1;

  constructor() {
    this.list = el('ul', {
      id: 'recipient-suggestions', class: 'suggestions', role: 'listbox', 'aria-label': 'People', hidden: true,
      // A press must not take the focus from the input before its click arrives.
      onmousedown: (event) => event.preventDefault(),
      onclick: (event) => this.#clicked(event),
    });
    this.input = el('input', {
      id: 'recipients', type: 'text', autocomplete: 'off', spellcheck: 'false', role: 'combobox',
      placeholder: 'ann@example.org, bo@example.org', 'aria-describedby': 'recipients-error',
      'aria-autocomplete': 'list', 'aria-expanded': 'false', 'aria-controls': this.list.id,
      oninput: () => this.#typed(), onkeydown: (event) => this.#pressed(event), onblur: () => this.#leave(),
    });
    this.el = el('div', { class: 'combobox' }, this.input, this.list);
    this.search = new SuggestionSearch({ addressBook, found: (people) => this.#show(people) });
  }

  #typed() {
    const { value, selectionStart } = this.input;
    this.search.ask(entryAt(value, selectionStart).text, value);
  }

  #show(people) {
    this.#people = document.activeElement === this.input ? people : [];
    this.list.replaceChildren(...this.#people.map((person, index) => el('li', {
      id: `suggestion-${index}`, class: 'suggestion', role: 'option', 'aria-selected': 'false',
      'data-test': 'suggestion', 'data-index': index,
    }, el('span', { class: 'suggestion-name' }, person.name || person.email),
    el('span', { class: 'suggestion-address' }, person.name ? person.email : ''))));
    this.list.hidden = this.#people.length === 0;
    this.input.setAttribute('aria-expanded', String(!this.list.hidden));
    this.#activate(-1);
  }

  #activate(index) {
    this.list.children[this.#active]?.setAttribute('aria-selected', 'false');
    this.#active = index;
    const option = this.list.children[index];
    if (option) {
      option.setAttribute('aria-selected', 'true');
      option.scrollIntoView({ block: 'nearest' });
      this.input.setAttribute('aria-activedescendant', option.id);
    } else {
      this.input.removeAttribute('aria-activedescendant');
    }
  }

  #pressed(event) {
    if (this.list.hidden || event.isComposing) return;
    const count = this.#people.length;
    const actions = {
      ArrowDown: () => this.#activate((this.#active + 1) % count),
      ArrowUp: () => this.#activate(this.#active <= 0 ? count - 1 : this.#active - 1),
      Escape: () => this.#leave(),
      Enter: () => this.#take(this.#active),
    };
    const action = actions[event.key];
    // Without a selected suggestion Enter sends the message, as in any field.
    if (!action || (event.key === 'Enter' && this.#active < 0)) return;
    event.preventDefault();
    event.stopPropagation();
    action();
  }

  #clicked(event) {
    const option = event.target.closest('[role=option]');
    if (option) this.#take(Number(option.dataset.index));
  }

  #take(index) {
    const { text, caret } = replaceEntry(this.input.value, this.input.selectionStart, this.#people[index]);
    this.input.value = text;
    this.input.setSelectionRange(caret, caret);
    this.input.scrollLeft = this.input.scrollWidth;
    this.#leave();
    // The form handles it like typed text; the empty entry that follows starts no search.
    this.input.dispatchEvent(new Event('input', { bubbles: true }));
  }

  #leave() {
    this.search.stop();
    this.#show([]);
  }
}
