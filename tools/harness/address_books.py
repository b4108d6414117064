"""Address books of a test: an Evolution Data Server in the test's own home and session."""

import os
import pathlib
import shutil
import subprocess

INSTALLED = pathlib.Path("/usr/share/dbus-1/services")
BOOK = """[Data Source]
DisplayName={name}
Enabled={enabled}
Parent=local-stub

[Address Book]
BackendName=local
"""


class AddressBooks:
    """The folder of the address books. A SessionBus needs its `variables` and `services`."""

    def __init__(self, folder, tool):
        self._tool = tool
        self._config = folder / "config"
        self.services = folder / "services"
        self.services.mkdir(parents=True)
        for service in INSTALLED.glob("org.gnome.evolution.dataserver.*.service"):
            shutil.copy(service, self.services)
        runtime = folder / "runtime"
        runtime.mkdir(mode=0o700)
        self.variables = {
            "HOME": str(folder), "XDG_CONFIG_HOME": str(self._config),
            "XDG_DATA_HOME": str(folder / "data"), "XDG_CACHE_HOME": str(folder / "cache"),
            "XDG_RUNTIME_DIR": str(runtime), "GSETTINGS_BACKEND": "memory"}

    def create(self, name, enabled=True):
        """Creates an empty address book; to be called before the server starts."""
        sources = self._config / "evolution" / "sources"
        sources.mkdir(parents=True, exist_ok=True)
        text = BOOK.format(name=name, enabled="true" if enabled else "false")
        (sources / f"{name}.source").write_text(text)

    def add(self, bus, name, *people):
        """Adds people, given as (vCard id, first name, last name, addresses), to the book."""
        cards = "".join(self._card(*person) for person in people)
        subprocess.run([self._tool, "add", name], input=cards, text=True, check=True, timeout=60,
                       env={**os.environ, **self.variables, **bus.environment()})

    @staticmethod
    def _card(identifier, first, last, addresses):
        lines = "".join(f"EMAIL:{address}\n" for address in addresses)
        return (f"BEGIN:VCARD\nVERSION:3.0\nUID:{identifier}\nN:{last};{first};;;\n{lines}"
                "END:VCARD\n")
