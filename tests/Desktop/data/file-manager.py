# SPDX-License-Identifier: Apache-2.0
"""A file manager that runs only once the bus has started it. It writes the addresses of the files
that it is to show into a file that is named when it is started."""
import os
import sys

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

SERVICE = "org.freedesktop.FileManager1"


class FileManager(dbus.service.Object):
    @dbus.service.method(SERVICE, in_signature="ass")
    def ShowItems(self, addresses, _startup_id):
        part = sys.argv[1] + ".part"
        with open(part, "w") as told:
            told.write("\n".join(addresses))
        os.rename(part, sys.argv[1])


DBusGMainLoop(set_as_default=True)
# Ends when the bus does.
name = dbus.service.BusName(SERVICE, dbus.SessionBus())
manager = FileManager(name, "/org/freedesktop/FileManager1")
GLib.MainLoop().run()
