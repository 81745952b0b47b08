#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Asks the font manager about fonts, as docs/wire-format.md describes it.

missing-fonts.py request NAME...        who holds these faces? One that is held once is activated
missing-fonts.py activate NUMBER NAME   activate a face from a container
missing-fonts.py show NAME...           what is known of them? Nothing is activated
missing-fonts.py buy NAME...            the same, by the request to buy them
missing-fonts.py listen NAME...         request, and again at each news of a change

NAME is a PostScript name. What the manager activates for a program leaves when that has ended: after
"request" and "activate" soon, after "listen" when you end it. Needs python3-gi.
"""

import os
import sys
import xml.etree.ElementTree

from gi.repository import Gio, GLib

MANAGER = "org.glyphora.AppleEvents1.QGLY"
PATH = "/org/glyphora/AppleEvents1"
INTERFACE = "org.glyphora.AppleEvent1"
CHANGES = "org.glyphora.Glyphora.FontLibraryChanged"
PATIENCE = 10_000  # milliseconds; the manager may have to be started
HANDLER = """<node><interface name="org.glyphora.AppleEvent1"><method name="Handle">
<arg type="u" direction="in"/><arg type="u" direction="in"/><arg type="n" direction="in"/>
<arg type="i" direction="in"/><arg type="a(uuay)" direction="in"/>
<arg type="a(uuay)" direction="in"/><arg type="a(uuay)" direction="out"/>
</method></interface></node>"""


def code(four):
    """The number that stands for four bytes."""
    return int.from_bytes(four.encode("ascii"), "big")


def element(name, value):
    """A line of a command. Nothing is escaped, and a line feed would end the line."""
    value = str(value).replace("\n", " ")
    return f"<{name}>{value}</{name}>\n"


def command(word, fonts, before=()):
    """A command text: its word, elements before the fonts, a list of elements for each font."""
    lines = [element("cmd", word)] + [element(*pair) for pair in before]
    for font in fonts:
        lines += ["<font>\n"] + [element(*pair) for pair in font] + ["</font>\n"]
    return "".join(lines) + "</cmd>\n"


def fold(reply):
    """The reply's lines joined to one XML document."""
    lines = [line[:-6] if len(line) > 6 and line.endswith("</cmd>") else line
             for line in reply.split("\n")]
    return xml.etree.ElementTree.fromstring("".join(lines).replace("&", "&amp;"))


def send(bus, text):
    """Sends a command text to the manager, which is started if need be; the reply's document."""
    event = GLib.Variant("(uunia(uuay)a(uuay))", (
        code("QGLY"), code("****"), -1, 0,
        [(code("----"), code("TEXT"), text.encode())], []))
    answer = bus.call_sync(MANAGER, PATH, INTERFACE, "Handle", event,
                           GLib.VariantType("(a(uuay))"), Gio.DBusCallFlags.NONE, PATIENCE, None)
    for keyword, kind, data in answer.unpack()[0]:
        if (keyword, kind) == (code("----"), code("TEXT")):
            return fold(bytes(data).decode())
        if keyword == code("errn"):
            status = int.from_bytes(data, sys.byteorder, signed=True)
            sys.exit(f"the manager failed with status {status}")
    sys.exit("the manager gave no text")


def tell(document):
    """Prints the fonts and errors of a reply. Whether there was no error."""
    if int(document.findtext("protocolVersion").split(".")[0]) < 2:
        sys.exit("the manager is too old")
    for font in document.iter("font"):
        state = "active" if font.findtext("isActive") == "1" else "not active"
        print(f"{font.findtext('psName')}: {state}, containers: {font.findtext('count', '?')}",
              flush=True)
        for info in font.iter("fontInfo"):
            print(f"  {info.findtext('name')}  {info.findtext('value')}", flush=True)
    for error in document.iter("error"):
        print(error.text, file=sys.stderr)
    return document.find("error") is None


def request(names):
    """Names this process, so that the manager sends it news."""
    return command("fontRequest",
                   [[("syncID", number), ("psName", name)] for number, name in enumerate(names)],
                   [("targetApp", "PYEX"), ("targetClass", "FILC"), ("targetPid", os.getpid()),
                    ("protocolVersion", "1.00")])


def listen(bus, names):
    """Asks again at each change, until it is ended."""
    def ask():
        tell(send(bus, request(names)))

    def on_posted(_bus, _sender, _path, interface, _member, _arguments):
        print(f"posted: {interface}", flush=True)
        ask()

    def on_event(_bus, _sender, _path, _interface, _method, arguments, invocation):
        kind, event = arguments.unpack()[:2]
        if (kind, event) in ((code("FILC"), code("FSBC")), (code("FILC"), code("FFSC"))):
            print("told: FILC", flush=True)
        invocation.return_value(GLib.Variant("(a(uuay))", ([],)))

    bus.signal_subscribe(None, CHANGES, "Posted", "/org/glyphora/Notify1", None,
                         Gio.DBusSignalFlags.NONE, on_posted)
    handler = Gio.DBusNodeInfo.new_for_xml(HANDLER).interfaces[0]
    bus.register_object(PATH, handler, on_event, None, None)
    Gio.bus_own_name_on_connection(
        bus, f"org.glyphora.AppleEvents1.PYEX.instance{os.getpid()}",
        Gio.BusNameOwnerFlags.DO_NOT_QUEUE, lambda *_: ask(), lambda *_: sys.exit("no name"))
    GLib.MainLoop().run()


def main(arguments):
    words = {"show": "showRequest", "buy": "buyRequest"}
    if len(arguments) < 2 or (arguments[0] == "activate" and len(arguments) != 3):
        sys.exit(__doc__)
    deed, *names = arguments
    bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
    if deed == "listen":
        listen(bus, names)
    if deed == "request":
        text = request(names)
    elif deed == "activate":
        text = command("activationRequest", [[("containerID", names[0]), ("psName", names[1])]])
    elif deed in words:
        text = command(words[deed], [[("psName", name)] for name in names])
    else:
        sys.exit(__doc__)
    return 0 if tell(send(bus, text)) else 1


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except GLib.Error as error:
        sys.exit(error.message)
