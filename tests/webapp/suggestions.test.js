import assert from 'node:assert/strict';
import { mock, test } from 'node:test';
import { entryAt, recipientText, replaceEntry, usableSuggestions } from '../../webapp/js/recipient_entry.js';
import { parseRecipients } from '../../webapp/js/recipients.js';
import { SuggestionSearch } from '../../webapp/js/suggestion_search.js';

test('replaces the entry at the caret by a suggestion', () => {
  assert.equal(entryAt('ann@example.org, ', 17).text, '');
  assert.equal(entryAt('ann@example.org, bo', 19).text, 'bo');
  const ann = { name: 'Ann Lee', email: 'ann@example.org' };
  assert.deepEqual(replaceEntry('bo@b, an', 8, ann), { text: 'bo@b, Ann Lee <ann@example.org>, ', caret: 33 });
  assert.deepEqual(replaceEntry('an, bo@b', 2, ann), { text: 'Ann Lee <ann@example.org>, bo@b', caret: 27 });
});

test('keeps the address intact, whatever the name', () => {
  for (const name of ['Lee, Ann', 'A <x>', '"Q"', 'a;b', '', undefined, 'ann@example.org']) {
    const text = recipientText({ name, email: 'ann@example.org' });
    assert.deepEqual(parseRecipients(`${text}, `), { addresses: ['ann@example.org'], invalid: [] }, text);
  }
});

test('suggests people with an address, each once, and no entered recipient', () => {
  const answer = [null, {}, { name: 'No address' }, { email: 'a@x' }, { email: 'A@x', name: 'Again' }, { email: 'b@x' }, { email: 'c@x' }];
  assert.deepEqual(usableSuggestions(answer, ['B@x'], 8).map((person) => person.email), ['a@x', 'c@x']);
  assert.equal(usableSuggestions(answer, [], 2).length, 2);
  assert.deepEqual(usableSuggestions(null, [], 8), []);
});

/** An address book and a clock that the test controls. */
function searching() {
  mock.timers.enable({ apis: ['setTimeout'] });
  const asked = [];
  const found = [];
  const addressBook = {
    isThere: () => true,
    search: (text) => new Promise((resolve, reject) => { asked.push({ text, resolve, reject }); }),
  };
  return { asked, found, search: new SuggestionSearch({ addressBook, found: (people) => found.push(people.map((p) => p.email)) }) };
}
const answered = () => new Promise((resolve) => { setImmediate(resolve); });

test('searches when typing pauses, and drops outdated results', async (t) => {
  t.after(() => mock.timers.reset());
  const { asked, found, search } = searching();
  for (const text of ['a', 'an', 'ann']) search.ask(text, text);
  mock.timers.tick(1000);
  assert.deepEqual(asked.map(({ text }) => text), ['ann']);
  search.ask('anna', 'anna');
  mock.timers.tick(1000);
  asked[1].resolve([{ email: 'anna@x' }]);
  await answered();
  asked[0].resolve([{ email: 'ann@x' }]);
  await answered();
  assert.deepEqual(found, [['anna@x']]);
});
