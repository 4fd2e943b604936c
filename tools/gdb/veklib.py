"""Pretty printers of gdb for VekLib: source /path/to/veklib.py

Strings, variants, pointer arrays and lists, elements and attributes, packets, matrices, vectors and colours. The
DLL's own classes have no type in a host's debug information unless it was compiled with -femit-class-debug-always, and
gdb prints no object without one: pointers to them show what they lead to even so ("print &variant").
"""

import re
import struct

import gdb
import gdb.printing

LONGEST = 200  # characters of a text inside a line


# --- memory ---------------------------------------------------------------------------------------------------------

def pointer_size():
    return gdb.lookup_type("char").pointer().sizeof


class Record:
    """The fields of an object, read by their place: its class may have no debug information.

    A field is a name and P for a pointer, i and I for int and unsigned, B for a byte, V for 16 bytes that are aligned
    to 8, A for a pointer array."""

    def __init__(self, address, *fields):
        self.address = int(address)
        self.at = 0
        self.pointer = pointer_size()
        for name, kind in fields:
            setattr(self, name, self.take(kind))

    def take(self, kind):
        if kind == "A":
            self.align(self.pointer)
            array = [self.take(part) for part in "iiPi"]
            self.align(self.pointer)
            return array[2], array[0]
        if kind == "V":
            self.align(8)
            self.at += 16
            return self.address + self.at - 16
        size = {"P": self.pointer, "B": 1}.get(kind, 4)
        self.align(size)
        code = {"P": "<I" if size == 4 else "<Q"}.get(kind, "<" + kind)
        self.at += size
        return struct.unpack(code, read(self.address + self.at - size, size))[0]

    def align(self, size):
        self.at = (self.at + size - 1) // size * size


def read(address, size):
    return gdb.selected_inferior().read_memory(int(address), size).tobytes()


def values(kind, address):
    """A gdb value of a built-in type or an array of one, such as "float[4]"."""
    name, *sizes = kind.rstrip("]").replace("]", "").split("[")
    kind = gdb.lookup_type(name)
    for size in reversed(sizes):
        kind = kind.array(int(size) - 1)
    return gdb.Value(address).cast(kind.pointer()).dereference()


def length_of(characters):
    """The length of a string's text, which stands in front of it."""
    length, capacity = struct.unpack("<ii", read(int(characters) - 12, 8))
    return length if 0 <= length <= capacity else None


def wide(characters):
    """A wide string as a text of Python's."""
    length = length_of(characters) if characters else 0
    if length is None:
        return "?"
    text = read(characters, 2 * min(length, LONGEST)).decode("utf-16-le", "replace") if length else ""
    return text + ("..." if length > LONGEST else "")


def pointers(storage, count):
    size = pointer_size()
    for i in range(count):
        yield struct.unpack("<I" if size == 4 else "<Q", read(storage + i * size, size))[0]


def typed(address, name):
    """The address as a pointer to that class; where gdb doesn't know it, what the pointer would show."""
    try:
        return gdb.Value(address).cast(gdb.lookup_type(name).pointer())
    except gdb.error:
        return "0x%x" % address + (" " + OBJECTS[name](address).text() if address and name in OBJECTS else "")


def entries(addresses, name):
    for i, address in enumerate(addresses):
        yield "[%d]" % i, typed(address, name)


# --- objects, by their address --------------------------------------------------------------------------------------

COUNTED = ("table", "P"), ("count", "I")


def is_own(address, name):
    """Whether the object's virtual table is the library's for that class."""
    table = Record(address, ("table", "P")).table
    symbol = gdb.execute("info symbol 0x%x" % table, to_string=True)
    return re.search(r"(_ZTV\d+|vtable for )%s\b" % name, symbol) is not None


class Element:
    def __init__(self, address):
        self.it = Record(address, *COUNTED, ("name", "P"), ("parent", "P"), ("children", "A"), ("attributes", "A"),
                         ("cdata", "P"), ("hasCDATA", "B"), ("flag1", "B"), ("flag2", "B"), ("flag3", "B"),
                         ("cdataSize", "i"))

    def text(self):
        attributes = ""
        for address in pointers(self.it.attributes[0], min(self.it.attributes[1], 8)):
            attributes += " " + Attribute(address).text()
        if self.it.attributes[1] > 8:
            attributes += " ..."
        section = ", CDATA of %d bytes" % self.it.cdataSize if self.it.hasCDATA else ""
        return "<%s%s>, %d children%s" % (wide(self.it.name), attributes, self.it.children[1], section)

    def children(self):
        yield "references", self.it.count
        if self.it.hasCDATA:
            kind = gdb.lookup_type("wchar_t").pointer()
            yield "CDATA", gdb.Value(self.it.cdata).cast(kind).lazy_string(length=self.it.cdataSize // 2)
        yield from entries(pointers(*self.it.children), "CVekXMLElement")


class Attribute:
    def __init__(self, address):
        self.it = Record(address, *COUNTED, ("name", "P"), ("value", "P"))

    def text(self):
        return '%s="%s"' % (wide(self.it.name), wide(self.it.value))

    def children(self):
        yield "references", self.it.count


class Packet:
    def __init__(self, address):
        self.it = Record(address, *COUNTED, ("parent", "P"), ("entries", "A"), ("manager", "P"))

    def text(self):
        return "packet, %d children" % self.it.entries[1]

    def children(self):
        yield "references", self.it.count
        yield "parent", typed(self.it.parent, "CVekResourceFilePacket")
        yield "manager", typed(self.it.manager, "IVekResourceFileManager")
        yield from entries(pointers(*self.it.entries), "CVekResourceFilePacket")


class Variant:
    INLINE = {1: "bool", 2: "unsigned char", 3: "char", 4: "wchar_t", 5: "short", 6: "unsigned short", 7: "int",
              8: "unsigned int", 9: "float", 10: "double", 20: "unsigned char[16]"}
    OBJECTS = {13: "unsigned char[4]", 14: "float[4]", 15: "int[4]", 16: "float[4]", 17: "double[4]"}
    NAMES = ("UNKNOWN BOOL UCHAR CHAR WCHAR SHORT USHORT INT UINT FLOAT DOUBLE STRINGA STRINGW RGBA_UCHAR RGBA_FLOAT "
             "VECTOR4D_INT VECTOR4D_FLOAT VECTOR4D_DOUBLE MATRIX4X4_FLOAT MATRIX4X4_DOUBLE GUID BUFFER").split()

    def __init__(self, address):
        self.it = Record(address, ("table", "P"), ("type", "i"), ("inline", "V"), ("narrow", "P"), ("wide", "P"),
                         ("size", "i"), ("heap", "P"))

    def text(self):
        kind = self.it.type
        return "VEK_DT_" + self.NAMES[kind] if 0 <= kind < len(self.NAMES) else "type %d" % kind

    def children(self):
        kind = self.it.type
        if kind in self.INLINE:
            yield "value", values(self.INLINE[kind], self.it.inline)
        elif kind in (11, 12):
            yield "value", string("char" if kind == 11 else "wchar_t", self.it.narrow if kind == 11 else self.it.wide)
        elif 13 <= kind <= 19 and not self.it.heap:
            yield "value", "none"
        elif kind in self.OBJECTS:
            yield "value", values(self.OBJECTS[kind], self.it.heap)
        elif kind in (18, 19):
            element = "float" if kind == 18 else "double"
            matrix = Record(self.it.heap, ("table", "P"), ("rows", "I"), ("columns", "I"), ("elements", "P"))
            yield "value", values(element + "[4][4]", matrix.elements)
        elif kind == 21:
            yield "size", self.it.size
            if self.it.heap and self.it.size > 0:
                yield "value", values("unsigned char[%d]" % self.it.size, self.it.heap)


# --- printers -------------------------------------------------------------------------------------------------------

def string(unit, characters):
    """What gdb shows as a text of that character type."""
    length = length_of(characters) if characters else 0
    if length is None:
        return "no text"
    if not length:
        return 'L""' if unit == "wchar_t" else '""'
    return gdb.Value(int(characters)).cast(gdb.lookup_type(unit).pointer()).lazy_string(length=length)


class StringPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        text = self.value["m_text"]
        return string(text.type.target().strip_typedefs().unqualified().name, int(text))


class ObjectPrinter:
    def __init__(self, value, kind):
        self.object = kind(value.address)

    def to_string(self):
        return self.object.text()

    def children(self):
        return self.object.children()


class PointerPrinter:
    """One line, so that a list of pointers stays one, too."""

    def __init__(self, address, kind):
        self.address = address
        self.object = kind(address)

    def to_string(self):
        return "0x%x %s" % (self.address, self.object.text())


class WholePointerPrinter(PointerPrinter):
    """Where the object itself can't be printed: all of it."""

    def children(self):
        for name, value in self.object.children():
            is_pointer = isinstance(value, gdb.Value) and value.type.code == gdb.TYPE_CODE_PTR
            yield name, line(value) if is_pointer else value


def line(pointer):
    printer = pointer_printer(pointer)
    return printer.to_string() if printer else "0x%x" % int(pointer)


class ArrayPrinter:
    def __init__(self, value):
        self.value = value
        self.kind = value.type.template_argument(0).pointer()

    def to_string(self):
        return "%d pointers, room for %d" % (self.value["m_count"], self.value["m_capacity"])

    def children(self):
        storage = self.value["m_storage"].cast(self.kind.pointer())
        for i in range(int(self.value["m_count"])):
            yield "[%d]" % i, storage[i]

    def display_hint(self):
        return "array"


class LinkedListPrinter:
    """CVekDirectLinkedList<T *>, whose elements carry their links, under a name that is theirs."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return "%d linked elements" % self.value["m_count"]

    def children(self):
        element = self.value["m_head"]
        for i in range(int(self.value["m_count"])):
            if not int(element):
                return
            yield "[%d]" % i, element
            links = self.links(element)
            if links is None:
                return
            element = links["next"]

    @staticmethod
    def links(element):
        if element.type.target().strip_typedefs().name == "CVekThreadCommand":
            links = Record(int(element), *COUNTED, ("previous", "P"), ("next", "P"))
            return {"next": gdb.Value(links.next).cast(element.type)}
        todo = [element.dereference()]
        while todo:
            part = todo.pop()
            for field in part.type.strip_typedefs().fields():
                if field.is_base_class:
                    todo.append(part[field])
                elif field.type.strip_typedefs().name.startswith("VekDirectLinkedListPtr<"):
                    return part[field]
        return None


class NodeListPrinter:
    """The library's own list in nodes, for whoever debugs the library."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return "%d pointers in nodes" % self.value["m_count"]

    def children(self):
        node = self.value["m_first"]
        for i in range(int(self.value["m_count"])):
            if not int(node):
                return
            yield "[%d]" % i, node["m_pointer"]
            node = node["m_next"]

    def display_hint(self):
        return "array"


class MatrixPrinter:
    def __init__(self, value):
        self.value = value
        self.rows, self.columns = int(value["m_rows"]), int(value["m_columns"])

    def to_string(self):
        none = "" if int(self.value["m_elements"]) else ", without elements"
        return "%d x %d%s" % (self.rows, self.columns, none)

    def children(self):
        elements = self.value["m_elements"]
        if not int(elements) or not self.columns:
            return
        row = elements.type.target().array(self.columns - 1).pointer()
        for i in range(self.rows):
            yield "[%d]" % i, (elements + i * self.columns).cast(row).dereference()


class NumbersPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        parts = (self.value[field] for field in self.value.type.strip_typedefs().fields() if not field.is_base_class)
        return "(%s)" % ", ".join(str(int(n)) if n.type.sizeof == 1 else n.format_string() for n in parts)


# --- which is for what ----------------------------------------------------------------------------------------------

OBJECTS = {"VEK_VARIANT": Variant, "CVekXMLElement": Element, "CVekXMLAttribute": Attribute,
           "CVekResourceFilePacket": Packet, "CVekResourceFileFolderPacket": Packet}
# Interfaces whose objects are the library's, or a host's of which nothing is known.
INTERFACES = {"IVekXMLElement": "CVekXMLElement"}
TEMPLATES = [
    (r"CVekString<(char|wchar_t)>", StringPrinter),
    (r"CVekPointerArray<.*>", ArrayPrinter),
    (r"CVekDirectLinkedList<.*>", LinkedListPrinter),
    (r"vek::PointerList<.*>", NodeListPrinter),
    (r"CVekMatrix(MxN|4x4)?<.*>", MatrixPrinter),
    (r"CVek(Vector[234]D|RGBA|Plane)<.*>", NumbersPrinter),
]


def class_name(kind):
    kind = kind.strip_typedefs().unqualified()
    return kind.name if kind.code == gdb.TYPE_CODE_STRUCT and kind.name else ""


def pointer_printer(value):
    target = value.type.strip_typedefs().target()
    name = class_name(target)
    known = INTERFACES.get(name, name)
    if known not in OBJECTS or not int(value):
        return None
    if known != name and not is_own(int(value), known):
        return None
    try:
        is_whole = bool(gdb.lookup_type(known).fields())
    except gdb.error:
        is_whole = False
    return (PointerPrinter if is_whole else WholePointerPrinter)(int(value), OBJECTS[known])


def lookup(value):
    kind = value.type.strip_typedefs()
    try:
        if kind.code == gdb.TYPE_CODE_PTR:
            return pointer_printer(value)
        name = class_name(kind)
        if value.address is not None and name in OBJECTS:
            return ObjectPrinter(value, OBJECTS[name])
        if value.address is not None and name in INTERFACES and is_own(value.address, INTERFACES[name]):
            return ObjectPrinter(value, OBJECTS[INTERFACES[name]])
        for pattern, printer in TEMPLATES:
            if re.fullmatch(pattern, name):
                return printer(value)
    except (gdb.MemoryError, gdb.error):
        pass  # not an object at all, yet or any more
    return None


lookup.__name__ = "VekLib"
gdb.printing.register_pretty_printer(None, lookup, replace=True)
