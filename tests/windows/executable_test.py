"""What a shipped Windows executable is made of, read from the file itself: executable_test.py EXECUTABLE"""

import os
import struct
import sys
import unittest
import xml.etree.ElementTree as xml

IMPORTS, RESOURCES = 1, 2  # data directories
VERSION, MANIFEST = 16, 24  # resource types
HIGH_ENTROPY_VA, DYNAMIC_BASE, NX_COMPAT = 0x20, 0x40, 0x100
RELOCATIONS_STRIPPED = 0x1
CONSOLE, AMD64 = 3, 0x8664


class Executable:
    """The headers, import table and resources of a 64-bit executable."""

    def __init__(self, path):
        with open(path, "rb") as file:
            self.data = file.read()
        (self.head,) = self.read("<I", 0x3C)
        if self.data[self.head : self.head + 4] != b"PE\0\0":
            raise ValueError("not an executable")
        self.machine, sections, self.time = self.read("<HHI", self.head + 4)
        optional_size, self.characteristics = self.read("<HH", self.head + 20)
        self.optional = self.head + 24
        (self.subsystem, self.dll_characteristics) = self.read("<HH", self.optional + 68)
        self.sections = [
            self.read("<8sIIII", self.optional + optional_size + 40 * i) for i in range(sections)
        ]

    def read(self, form, offset):
        return struct.unpack_from(form, self.data, offset)

    def directory(self, number):
        """Where a data directory's table stands in the file."""
        return self.offset(self.read("<I", self.optional + 112 + 8 * number)[0])

    def offset(self, address):
        for _, _, start, size, at in self.sections:
            if start <= address < start + size:
                return at + address - start
        raise ValueError(f"no section holds {address:#x}")

    def text(self, offset):
        return self.data[offset : self.data.index(b"\0", offset)].decode("ascii")

    def imported(self):
        """The imported names by DLL."""
        found = {}
        at = self.directory(IMPORTS)
        while True:
            names, _, _, dll, _ = self.read("<5I", at)
            if dll == 0:
                return found
            entry = self.offset(names)
            functions = []
            while (name := self.read("<Q", entry)[0]) != 0:
                functions.append(self.text(self.offset(name) + 2))
                entry += 8
            found[self.text(self.offset(dll))] = functions
            at += 20

    def resource(self, kind):
        """The bytes of the only resource of that type."""
        root = self.directory(RESOURCES)

        def entries(at):
            named, numbered = self.read("<HH", at + 12)
            return [self.read("<II", at + 16 + 8 * i) for i in range(named + numbered)]

        node = dict(entries(root))[kind]
        while node & 0x80000000:
            ((_, node),) = entries(root + (node & 0x7FFFFFFF))
        address, size = self.read("<II", root + node)
        return self.data[self.offset(address) :][:size]


class ShippedExecutable(unittest.TestCase):
    path = name = ""

    def setUp(self):
        self.executable = Executable(self.path)

    def test_imports_only_what_every_windows_has(self):
        dlls = {name.lower() for name in self.executable.imported()}
        self.assertEqual(dlls, {"advapi32.dll", "kernel32.dll", "msvcrt.dll"})

    def test_calls_the_system_for_what_it_does(self):
        """A disk is opened, asked, moved, read and closed; nothing but an output file is written."""
        calls = set(self.executable.imported()["KERNEL32.dll"])
        self.assertLessEqual(
            {"CreateFileW", "DeviceIoControl", "SetFilePointerEx", "ReadFile", "CloseHandle"}, calls
        )
        output_file = {"WriteFile", "DeleteFileW", "MoveFileExW"}
        self.assertFalse(calls & {"CreateProcessW", "LoadLibraryExW"})
        self.assertEqual(calls & output_file, output_file if self.name == "trovisk-map.exe" else set())

    def test_is_a_console_program_for_64_bits(self):
        self.assertEqual(self.executable.machine, AMD64)
        self.assertEqual(self.executable.subsystem, CONSOLE)

    def test_lets_the_system_protect_it(self):
        wanted = HIGH_ENTROPY_VA | DYNAMIC_BASE | NX_COMPAT
        self.assertEqual(self.executable.dll_characteristics & wanted, wanted)
        self.assertFalse(self.executable.characteristics & RELOCATIONS_STRIPPED)

    def test_carries_no_time_of_build_in_its_header(self):
        self.assertEqual(self.executable.time, 0)

    def test_carries_its_version(self):
        version = self.executable.resource(VERSION)
        signature, _, high, low = struct.unpack_from("<IIII", version, version.index(b"\xbd\x04\xef\xfe"))
        self.assertEqual((signature, high, low), (0xFEEF04BD, 0x00010004, 0))
        for name, value in (
            ("FileVersion", "1.4.0"),
            ("ProductVersion", "1.4.0"),
            ("ProductName", "Trovisk"),
            ("OriginalFilename", self.name),
        ):
            at = version.index(f"{name}\0".encode("utf-16-le")) + 2 * len(name) + 2
            self.assertTrue(version[at:].lstrip(b"\0").startswith(f"{value}\0".encode("utf-16-le")), name)

    def test_carries_its_manifest(self):
        manifest = xml.fromstring(self.executable.resource(MANIFEST))
        asm = "{urn:schemas-microsoft-com:asm.v3}"
        compatibility = "{urn:schemas-microsoft-com:compatibility.v1}"
        settings = "{http://schemas.microsoft.com/SMI/2016/WindowsSettings}"
        level = manifest.find(f".//{asm}requestedExecutionLevel")
        self.assertEqual(level.attrib, {"level": "asInvoker", "uiAccess": "false"})
        self.assertEqual(manifest.find(f".//{settings}longPathAware").text, "true")
        systems = [system.get("Id") for system in manifest.iter(f"{compatibility}supportedOS")]
        self.assertEqual(systems, ["{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}"])  # Windows 10 and 11


if __name__ == "__main__":
    ShippedExecutable.path = sys.argv.pop(1)
    ShippedExecutable.name = os.path.basename(ShippedExecutable.path)
    unittest.main()
