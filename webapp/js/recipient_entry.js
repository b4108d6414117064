// Finds the recipient being typed and replaces it by a suggestion. Pure.

const SEPARATORS = /[,;\n]/;

/** {begin, end, text} of the entry at the caret. */
export function entryAt(text, caret) {
  let begin = caret;
  while (begin > 0 && !SEPARATORS.test(text[begin - 1])) begin -= 1;
  let end = caret;
  while (end < text.length && !SEPARATORS.test(text[end])) end += 1;
  return { begin, end, text: text.slice(begin, caret).trim() };
}

/** "Ann Lee <ann@example.org>"; characters that would break the entry are removed from the name. */
export function recipientText({ name, email }) {
  const plain = (name ?? '').replace(/[,;<>"\s]+/g, ' ').trim();
  return plain && plain !== email ? `${plain} <${email}>` : email;
}

/** Replaces the entry at the caret; returns the new {text, caret}, ready for the next entry. */
export function replaceEntry(text, caret, person) {
  const { begin, end } = entryAt(text, caret);
  const before = text.slice(0, begin).trimEnd();
  const rest = text.slice(end).replace(/^[,;\s]+/, '');
  const head = `${before}${before ? ' ' : ''}${recipientText(person)}, `;
  return { text: head + rest, caret: head.length };
}

/** The search results to suggest: with an address, each once, without recipients already entered. */
export function usableSuggestions(found, taken, max) {
  const known = new Set(taken.map((address) => address.toLowerCase()));
  const people = [];
  for (const person of Array.isArray(found) ? found : []) {
    const email = person?.email;
    if (typeof email !== 'string' || known.has(email.toLowerCase())) continue;
    known.add(email.toLowerCase());
    people.push({ name: person.name ?? '', email });
    if (people.length === max) break;
  }
  return people;
}
