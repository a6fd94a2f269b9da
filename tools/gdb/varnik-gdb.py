"""Shows varnik's buffers and strings in gdb as what they hold.

    $1 = DataBuffer{size 5 of 20000, owned} 68 65 6c 6c 6f "hello"

The content of a buffer or string that is marked secure is never shown, nor what a holder of secrets has encrypted. gdb
loads this file by itself where it is installed with the shared library; anywhere else: `source varnik-gdb.py`.

gdb knows the fields only where debug information has them: that of the library, or that of a program compiled with
-femit-class-debug-always (GCC) or -fstandalone-debug (Clang), as compilers leave classes with virtual functions to their
library otherwise."""
import gdb
import gdb.printing

ALIVE = 219  # the validity byte of a buffer from construction until its destructor runs
SHOWN = 32  # the most bytes shown


def content(pointer, count):
    """The first bytes as hex, and as text with a dot for what is not printable ASCII."""
    try:
        data = gdb.selected_inferior().read_memory(pointer, min(count, SHOWN)).tobytes()
    except gdb.MemoryError:
        return " <the block is not readable>"
    more = " ..." if count > SHOWN else ""
    text = "".join(chr(b) if 0x20 <= b < 0x7F else "." for b in data)
    return f' {data.hex(" ")}{more} "{text}"{more}'


class Printer:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        try:
            return self.shown()
        except gdb.error:
            return f"{self.value.type} <no debug information of its fields>"


class DataBuffer(Printer):
    def shown(self):
        value = self.value
        validity, size, data = int(value["validity_"]), int(value["size_"]), int(value["data_"])
        if validity != ALIVE:
            return "DataBuffer{destroyed}" if validity == 0 else f"DataBuffer{{damaged: validity byte {validity}}}"
        state = "borrowed" if value["borrowed_"] else "owned" if data else "no storage"
        if value["secure"]:
            return f"DataBuffer{{secure: {size} bytes hidden}}"
        return f"DataBuffer{{size {size} of {int(value['capacity_'])}, {state}}}" + (content(data, size) if size else "")


class DataBufferView(Printer):
    def shown(self):
        buffer, dead = self.value["buffer_"], int(self.value["offset_"])
        if int(buffer["validity_"]) != ALIVE or buffer["secure"]:
            return f"DataBufferView{{{DataBuffer(buffer).shown()}}}"
        size = int(buffer["size_"]) - dead
        shown = content(int(buffer["data_"]) + dead, size) if size else ""
        return f"DataBufferView{{{size} bytes, {dead} dead before them}}{shown}"


class StringBuffer(Printer):
    def shown(self):
        size = int(self.value["size_"])
        if self.value["secure_"]:
            return f"StringBuffer{{secure: {size} characters hidden}}"
        if not size:
            return 'StringBuffer{size 0} ""'
        text = self.value["data_"].string("utf-8", "replace", length=min(size, 4 * SHOWN))
        return f"StringBuffer{{size {size}}} " + '"' + text + '"' + (" ..." if size > 4 * SHOWN else "")


class XString(Printer):
    def shown(self):
        if self.value["secure_"]:
            return "XString{secure: hidden}"
        return "XString: " + StringBuffer(self.value["utf8_"]).shown()


class Secret(Printer):
    """SecretData, and SecretString, which keeps one."""

    def shown(self):
        name = str(self.value.type.unqualified().strip_typedefs())
        inner = self.value["secret_"] if name == "SecretString" else self.value
        size = int(inner["encrypted_"]["size_"])
        return f"{name}{{{f'{size} bytes encrypted' if size else 'empty'}}}"


printers = gdb.printing.RegexpCollectionPrettyPrinter("varnik")
printers.add_printer("DataBuffer", "^DataBuffer$", DataBuffer)
printers.add_printer("DataBufferView", "^DataBufferView$", DataBufferView)
printers.add_printer("StringBuffer", "^StringBuffer$", StringBuffer)
printers.add_printer("XString", "^XString$", XString)
printers.add_printer("Secret", "^Secret(Data|String)$", Secret)
gdb.printing.register_pretty_printer(gdb.current_objfile(), printers, replace=True)
