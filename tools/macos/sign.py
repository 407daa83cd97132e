#!/usr/bin/env python3
"""Signs a bundle ad hoc, as `codesign --force --sign -` does on a Mac: every slice of the program gets the bundle's
identifier, is bound to its Info.plist, and the resources are sealed. The linker has left room for a signature.

    sign.py BUNDLE           signs it
    sign.py --check BUNDLE   says of each slice what its signature holds, and fails where it does not fit the bundle

The layout is that of the code-signing tools' sources: a superblob of big-endian blobs at the end of __LINKEDIT.
"""

import hashlib
import plistlib
import re
import struct
import sys
from pathlib import Path
from typing import NamedTuple

PAGE = 4096

FAT_MAGIC = 0xCAFEBABE
LC_SEGMENT_64 = 0x19
LC_CODE_SIGNATURE = 0x1D
PROCESSORS = {0x0100000C: "arm64", 0x01000007: "x86_64"}

# Blobs, and the slots in which they are found or hashed.
EMBEDDED_SIGNATURE = 0xFADE0CC0
CODE_DIRECTORY = 0xFADE0C02
REQUIREMENTS = 0xFADE0C01
CMS_WRAPPER = 0xFADE0B01
SLOT_CODE_DIRECTORY, SLOT_INFO, SLOT_REQUIREMENTS, SLOT_RESOURCES, SLOT_CMS = 0, 1, 2, 3, 0x10000

CODE_DIRECTORY_VERSION = 0x20400  # with the segment that holds the code
CODE_DIRECTORY_SIZE = 88
AD_HOC = 0x2
SHA256 = 2
MAIN_BINARY = 1

# Which files are sealed and how: what codesign writes for a bundle without rules of its own.
RULES = {
    "^Resources/": True,
    r"^Resources/.*\.lproj/": {"optional": True, "weight": 1000.0},
    r"^Resources/.*\.lproj/locversion.plist$": {"omit": True, "weight": 1100.0},
    r"^Resources/Base\.lproj/": {"weight": 1010.0},
    "^version.plist$": True,
}
RULES2 = {
    r".*\.dSYM($|/)": {"weight": 11.0},
    r"^(.*/)?\.DS_Store$": {"omit": True, "weight": 2000.0},
    "^(Frameworks|SharedFrameworks|PlugIns|Plug-ins|XPCServices|Helpers|MacOS|Library/(Automator|Spotlight|LoginItems))/":
        {"nested": True, "weight": 10.0},
    "^.*": True,
    r"^Info\.plist$": {"omit": True, "weight": 20.0},
    "^PkgInfo$": {"omit": True, "weight": 20.0},
    "^Resources/": {"weight": 20.0},
    r"^Resources/.*\.lproj/": {"optional": True, "weight": 1000.0},
    r"^Resources/.*\.lproj/locversion.plist$": {"omit": True, "weight": 1100.0},
    r"^Resources/Base\.lproj/": {"weight": 1010.0},
    "^[^/]+$": {"nested": True, "weight": 10.0},
    r"^embedded\.provisionprofile$": {"weight": 20.0},
    r"^version\.plist$": {"weight": 20.0},
}


def sha256(data):
    return hashlib.sha256(data).digest()


class Slice(NamedTuple):
    """One processor's program in a universal file."""
    cpu_type: int
    cpu_subtype: int
    code: bytes
    alignment: int


def slices(data):
    magic, count = struct.unpack(">2I", data[:8])
    if magic != FAT_MAGIC:
        raise SystemExit("sign: the program is not universal")
    found = []
    for at in range(8, 8 + 20 * count, 20):
        cpu_type, cpu_subtype, offset, size, alignment = struct.unpack(">5I", data[at:at + 20])
        found.append(Slice(cpu_type, cpu_subtype, data[offset:offset + size], alignment))
    return found


def universal(parts):
    header = struct.pack(">2I", FAT_MAGIC, len(parts))
    body = b""
    start = 8 + 20 * len(parts)
    for part in parts:
        unit = 1 << part.alignment
        offset = -(-(start + len(body)) // unit) * unit
        body = body.ljust(offset - start, b"\0") + part.code
        header += struct.pack(">5I", part.cpu_type, part.cpu_subtype, offset, len(part.code), part.alignment)
    return header + body


class Places(NamedTuple):
    """Where a program keeps what a signature needs: offsets of load commands."""
    signature: int
    text: int
    linkedit: int


def places(code):
    signature, segments = None, {}
    count, at = struct.unpack("<I", code[16:20])[0], 32
    for _ in range(count):
        command, size = struct.unpack("<2I", code[at:at + 8])
        if command == LC_CODE_SIGNATURE:
            signature = at
        elif command == LC_SEGMENT_64:
            segments[code[at + 8:at + 24].rstrip(b"\0")] = at
        at += size
    if signature is None:
        raise SystemExit("sign: the linker has left no room for a signature")
    return Places(signature, segments[b"__TEXT"], segments[b"__LINKEDIT"])


def blob(magic, payload):
    return struct.pack(">2I", magic, 8 + len(payload)) + payload


def code_directory(code, identifier, special, text_size):
    """`special` maps a slot to the hash of what belongs there."""
    name = identifier.encode() + b"\0"
    last = max(special)
    pages = [sha256(code[at:at + PAGE]) for at in range(0, len(code), PAGE)]
    hashes = CODE_DIRECTORY_SIZE + len(name) + 32 * last
    head = struct.pack(">9I4BI", CODE_DIRECTORY, hashes + 32 * len(pages), CODE_DIRECTORY_VERSION, AD_HOC, hashes,
                       CODE_DIRECTORY_SIZE, last, len(pages), len(code), 32, SHA256, 0, PAGE.bit_length() - 1, 0)
    head += struct.pack(">3IQ3Q", 0, 0, 0, 0, 0, text_size, MAIN_BINARY)
    return head + name + b"".join(special.get(slot, bytes(32)) for slot in range(last, 0, -1)) + b"".join(pages)


def signature(code, identifier, text_size, info, resources):
    requirements = blob(REQUIREMENTS, struct.pack(">I", 0))
    special = {SLOT_INFO: sha256(info), SLOT_REQUIREMENTS: sha256(requirements), SLOT_RESOURCES: sha256(resources)}
    parts = [(SLOT_CODE_DIRECTORY, code_directory(code, identifier, special, text_size)),
             (SLOT_REQUIREMENTS, requirements), (SLOT_CMS, blob(CMS_WRAPPER, b""))]
    index, body = b"", b""
    for slot, part in parts:
        index += struct.pack(">2I", slot, 12 + 8 * len(parts) + len(body))
        body += part
    return struct.pack(">3I", EMBEDDED_SIGNATURE, 12 + len(index) + len(body), len(parts)) + index + body


def signed(part, identifier, info, resources):
    code, place = bytearray(part.code), places(part.code)
    end = struct.unpack("<I", code[place.signature + 8:place.signature + 12])[0]
    text_size = struct.unpack("<Q", code[place.text + 48:place.text + 56])[0]

    # The load commands tell the signature's size, and are signed themselves: it is known beforehand.
    size = (len(signature(bytes(code[:end]), identifier, text_size, info, resources)) + 15) & ~15
    struct.pack_into("<I", code, place.signature + 12, size)
    start = struct.unpack("<Q", code[place.linkedit + 40:place.linkedit + 48])[0]
    struct.pack_into("<Q", code, place.linkedit + 32, (end + size - start + 0x3FFF) & ~0x3FFF)
    struct.pack_into("<Q", code, place.linkedit + 48, end + size - start)

    content = bytes(code[:end])
    return part._replace(code=content + signature(content, identifier, text_size, info, resources).ljust(size, b"\0"))


class Bundle:
    def __init__(self, path):
        self.contents = Path(path) / "Contents"
        self.info = (self.contents / "Info.plist").read_bytes()
        names = plistlib.loads(self.info)
        self.identifier = names["CFBundleIdentifier"]
        self.program = self.contents / "MacOS" / names["CFBundleExecutable"]
        self.seal = self.contents / "_CodeSignature" / "CodeResources"

    def sealed_files(self):
        for path in sorted(self.contents.rglob("*")):
            name = path.relative_to(self.contents).as_posix()
            if path.is_dir() or name in ("Info.plist", "PkgInfo") or name.startswith("_CodeSignature/"):
                continue
            if path == self.program:
                continue
            if re.match("(MacOS|Frameworks|PlugIns|Helpers)/", name):
                raise SystemExit(f"sign: {name} is code of its own, which this does not sign")
            yield name, path.read_bytes()

    def resources(self):
        files, files2 = {}, {}
        for name, data in self.sealed_files():
            files2[name] = {"hash2": sha256(data)}
            if name.startswith("Resources/"):
                files[name] = hashlib.sha1(data).digest()
        return plistlib.dumps({"files": files, "files2": files2, "rules": RULES, "rules2": RULES2})

    def sign(self):
        resources = self.resources()
        self.seal.parent.mkdir(exist_ok=True)
        self.seal.write_bytes(resources)
        parts = [signed(part, self.identifier, self.info, resources) for part in slices(self.program.read_bytes())]
        # A new file: a Mac's kernel remembers the signature of the one that it has run.
        fresh = self.program.with_suffix(".signed")
        fresh.write_bytes(universal(parts))
        fresh.chmod(0o755)
        fresh.replace(self.program)


def embedded_blobs(code):
    at = places(code).signature
    offset = struct.unpack("<I", code[at + 8:at + 12])[0]
    magic, _, count = struct.unpack(">3I", code[offset:offset + 12])
    if magic != EMBEDDED_SIGNATURE:
        raise SystemExit("sign: there is no signature where the load command says")
    found = {}
    for index in range(count):
        slot, start = struct.unpack(">2I", code[offset + 12 + 8 * index:offset + 20 + 8 * index])
        start += offset
        found[slot] = code[start:start + struct.unpack(">I", code[start + 4:start + 8])[0]]
    return offset, found


def faults(bundle, part):
    """What does not fit in the signature of one slice."""
    end, blobs = embedded_blobs(part.code)
    directory = blobs[SLOT_CODE_DIRECTORY]
    flags, hashes, name, last, count, limit = struct.unpack(">6I", directory[12:36])
    identifier = directory[name:directory.index(0, name)].decode()
    if identifier != bundle.identifier:
        yield f"its identifier is {identifier}, not {bundle.identifier}"
    if flags != AD_HOC:
        yield f"its flags are {flags:#x}"
    pages = [directory[hashes + 32 * page:hashes + 32 * (page + 1)] for page in range(count)]
    if limit != end or pages != [sha256(part.code[at:min(at + PAGE, end)]) for at in range(0, end, PAGE)]:
        yield "the code is not what was signed"
    special = {SLOT_INFO: bundle.info, SLOT_REQUIREMENTS: blobs[SLOT_REQUIREMENTS],
               SLOT_RESOURCES: bundle.seal.read_bytes()}
    for slot, content in special.items():
        if slot > last or directory[hashes - 32 * slot:hashes - 32 * (slot - 1)] != sha256(content):
            yield f"slot {slot} is not bound"


def check(bundle):
    wrong = []
    if bundle.seal.read_bytes() != bundle.resources():
        wrong.append("the sealed resources are not those of the bundle")
    for part in slices(bundle.program.read_bytes()):
        wrong += [f"{PROCESSORS[part.cpu_type]}: {fault}" for fault in faults(bundle, part)]
    return wrong


def main():
    if sys.argv[1] != "--check":
        return Bundle(sys.argv[1]).sign()
    bundle = Bundle(sys.argv[2])
    wrong = check(bundle)
    for fault in wrong:
        print(f"sign: {fault}", file=sys.stderr)
    if not wrong:
        print(f"sign: {bundle.identifier}, ad hoc, both slices")
    sys.exit(bool(wrong))


if __name__ == "__main__":
    main()
