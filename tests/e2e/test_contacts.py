"""Recipients from the user's contacts: from the page through the client to a real address book."""

import json
import unittest

from harness.address_books import AddressBooks
from harness.wait import wait_until
from sandbox import BUILD, Sandbox

BRIDGE = "addressBookSearchManagerBridge_IPC"


class Contacts(Sandbox):
    def start_page(self):
        _, self.client, page = self.start_all()
        page.wait_until_ready()
        return page

    def start_address_books(self):
        books = AddressBooks(self.folder / "contacts", BUILD / "bin/contacts_tool")
        books.create("friends")
        books.create("work")
        books.create("hidden", enabled=False)
        bus = self.start_session_bus(services=books.services, variables=books.variables)
        books.add(bus, "friends", ("1", "Ann", "Lee", ["ann@example.org", "ann.lee@example.net"]),
                  ("2", "", "", []))
        books.add(bus, "work", ("1", "Анна", "Каренина", ["anna@example.org"]),
                  ("2", "Bob", "Lee", []))
        books.add(bus, "hidden", ("1", "Anneli", "Hidden", ["anneli@example.org"]))
        return bus, books

    def search(self, page, query):
        kind, text = page.query(BRIDGE, "search", {"query": query})
        self.assertEqual(kind, "success")
        return json.loads(text)

    def test_finds_people_of_the_enabled_address_books(self):
        bus, books = self.start_address_books()
        page = self.start_page()
        ann = [{"email": "ann@example.org", "name": "Ann Lee"},
               {"email": "ann.lee@example.net", "name": "Ann Lee"}]
        wait_until(lambda: self.search(page, "lee") == [*ann, {"name": "Bob Lee"}], 60, "the contacts")
        self.assertEqual(self.search(page, "ANN LEE"), [])
        self.assertEqual(self.search(page, "ann."), ann)
        self.assertEqual(self.search(page, "аННА"), [{"email": "anna@example.org", "name": "Анна Каренина"}])
        self.assertEqual(self.search(page, "anneli"), [])
        self.assertIn(None, self.search(page, ""))
        self.assertEqual(page.query(BRIDGE, "search", {"query": {}})[:2], ["failure", -1])
        self.assertEqual(page.query(BRIDGE, "supportedMethods"),
                         ["success", '["search","supportedMethods"]\n'])

        page.evaluate("(field => { field.focus(); field.value = 'каре';"
                      " field.dispatchEvent(new Event('input', {bubbles: true})); })"
                      "(document.querySelector('#recipients'))")
        page.wait_for("document.querySelector('[data-test=suggestion]')?.textContent"
                      ".includes('anna@example.org')")

        books.add(bus, "work", ("3", "Carl", "New", ["carl@example.org"]))
        carl = [{"email": "carl@example.org", "name": "Carl New"}]
        wait_until(lambda: self.search(page, "carl") == carl, 60, "the new contact")
        self.assert_leaves_cleanly(self.client, page)

    def test_serves_the_other_bridges_without_address_books(self):
        page = self.start_page()
        self.assertIn(f"Query handler for name {BRIDGE} is not registered due to exception: "
                      "Failed to obtain system address book reference!", self.client.messages())
        self.assertEqual(page.query("nativeAppBridge_IPC", "supportedMethods")[0], "success")
        self.assert_leaves_cleanly(self.client, page)


if __name__ == "__main__":
    unittest.main()
