"""A D-Bus session of a test, with desktop services that the test starts."""

import os
import subprocess
import tempfile

import dbus.bus

from . import process
from .wait import wait_until


# Everything is allowed; only the requested services of the system start on demand.
CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  {services}
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


class SessionBus:
    """A bus without services; programs with its `environment()` use it.

    Services described in the folder `services` start on demand, with `variables`.
    """

    def __init__(self, services=None, variables=None):
        element = f"<servicedir>{services}</servicedir>" if services else ""
        with tempfile.NamedTemporaryFile("w", suffix=".conf") as configuration:
            configuration.write(CONFIGURATION.format(services=element))
            configuration.flush()
            self._daemon = process.start(
                ["dbus-daemon", f"--config-file={configuration.name}", "--nofork", "--print-address=1"],
                env={**os.environ, **(variables or {})}, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
            self.address = self._daemon.stdout.readline().strip()
        if not self.address:
            raise process.Failure("the session bus (dbus-daemon) did not start")
        self._services = []
        self.connection = dbus.bus.BusConnection(self.address)

    def environment(self):
        return {"DBUS_SESSION_BUS_ADDRESS": self.address}

    def start_service(self, arguments, name, environment):
        """Starts a program and waits until it has its name on the bus."""
        service = process.start(arguments, env={**environment, **self.environment()},
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self._services.append(service)
        wait_until(lambda: self.connection.name_has_owner(name), 30, f"the service {name}")

    def stop(self):
        self.connection.close()
        for service in self._services:
            process.stop(service)
        process.stop(self._daemon)
        self._daemon.stdout.close()


class RecordedFileManager:
    """A file manager that records the folders to show."""

    NAME = "org.freedesktop.FileManager1"
    PATH = "/org/freedesktop/FileManager1"
    MOCK = "org.freedesktop.DBus.Mock"

    def __init__(self, bus, environment):
        bus.start_service(["/usr/bin/python3", "-m", "dbusmock", self.NAME, self.PATH, self.NAME],
                          self.NAME, environment)
        self._object = bus.connection.get_object(self.NAME, self.PATH)
        self._object.AddMethod(self.NAME, "ShowFolders", "ass", "", "", dbus_interface=self.MOCK)

    def shown(self):
        """The URLs of the folders, in the order of the calls."""
        calls = self._object.GetMethodCalls("ShowFolders", dbus_interface=self.MOCK)
        return [str(url) for _, arguments in calls for url in arguments[0]]
