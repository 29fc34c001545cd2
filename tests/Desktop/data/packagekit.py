# SPDX-License-Identifier: Apache-2.0
"""PackageKit, as python3-dbusmock plays it: each transaction does what it is told to.

What it does is a list of steps for each method, in JSON. A step tells a signal or answers with an
error, or the whole of it ends: {"signal": "Finished", "values": [1, 0]}, {"error": "a.b.C"},
{"exit": true}. With {"after": 50} it is done so many milliseconds later. A method without steps is
answered, and that is all.
"""
import functools
import json
import os

import dbus
from gi.repository import GLib

BUS_NAME = "org.freedesktop.PackageKit"
MAIN_OBJ = "/org/freedesktop/PackageKit"
MAIN_IFACE = "org.freedesktop.PackageKit"
SYSTEM_BUS = True

MOCK = "org.freedesktop.DBus.Mock"
TRANSACTION = "org.freedesktop.PackageKit.Transaction"
METHODS = {"SetHints": "as", "SearchFiles": "tas", "RefreshCache": "b", "GetUpdates": "t",
           "Cancel": ""}
SIGNALS = {"Package": "uss", "ErrorCode": "us", "Finished": "uu"}


def load(mock, _parameters):
    mock.steps = {}
    mock.transactions = 0
    mock.told = []


def take(transaction, step):
    if "exit" in step:
        os._exit(0)
    if "error" in step:
        raise dbus.exceptions.DBusException(step.get("words", ""), name=step["error"])
    signature = step.get("signature", SIGNALS[step["signal"]])
    transaction.EmitSignal(TRANSACTION, step["signal"], signature, step["values"])


def play(transaction, steps):
    for step in steps:
        if "after" in step:
            work = functools.partial(take, transaction, step)
            GLib.timeout_add(step["after"], lambda do=work: bool(do()))
        else:
            take(transaction, step)


def plain(value):
    return bool(value) if isinstance(value, dbus.Boolean) else value


def method(mock, name):
    def called(transaction, *values):
        mock.told.append(name + json.dumps([plain(value) for value in values]))
        play(transaction, mock.steps.get(name, []))

    return called


@dbus.service.method(MAIN_IFACE, out_signature="o", sender_keyword="sender")
def CreateTransaction(self, sender=None):
    self.told.append("CreateTransaction " + sender)
    play(self, self.steps.get("CreateTransaction", []))
    self.transactions += 1
    path = f"/{self.transactions}_heron"
    self.AddObject(path, TRANSACTION, {},
                   [(name, types, "", method(self, name)) for name, types in METHODS.items()])
    return dbus.ObjectPath(path)


@dbus.service.method(MOCK, in_signature="s")
def Behave(self, steps):
    self.steps.update(json.loads(steps))


@dbus.service.method(MOCK, out_signature="as")
def Told(self):
    return dbus.Array(self.told, signature="s")
