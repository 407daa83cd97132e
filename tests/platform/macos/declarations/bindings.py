"""What the independent bindings say, from bindings.json, in the same terms as declared.py."""

import json
import re
from pathlib import Path

from declared import Type, shape

FILE = Path(__file__).with_name("bindings.json")

KINDS = {
    "()": "void", "c_void": "void", "bool": "bool", "Bool": "bool", "Boolean": "u8", "u8": "u8", "u16": "u16",
    "i32": "i32", "c_int": "i32", "OSStatus": "i32", "u32": "u32", "c_uint": "u32", "UInt32": "u32", "OSType": "u32",
    "FourCharCode": "u32", "OptionBits": "u32", "isize": "i64", "NSInteger": "i64", "CFIndex": "i64",
    "c_long": "i64", "c_longlong": "i64", "i64": "i64", "usize": "u64", "NSUInteger": "u64", "u64": "u64",
    "CFTypeID": "u64", "ItemCount": "u64", "ByteCount": "u64", "f64": "f64", "CGFloat": "f64", "NSTimeInterval": "f64",
    "c_double": "f64", "c_float": "f32", "c_ushort": "u16", "c_ulonglong": "u64", "NSRect": "CGRect",
    "EventHandlerProcPtr": "function",
}


class Bindings:
    """As they are on one processor: some values differ."""

    def __init__(self, processor="arm64", file=FILE):
        self.processor = processor
        data = json.loads(file.read_text())
        self.origin = data["origin"]
        self.classes = data["classes"]
        self.functions = data["functions"]
        self.variables = data["variables"]
        self.constants = data["constants"]
        self.types = data["types"]

    def method(self, owner, selector):
        """The arguments and the result, wherever up the line of classes they stand; none where they are not known."""
        while owner in self.classes:
            entry = self.classes[owner]
            if selector in entry["methods"]:
                arguments, result = entry["methods"][selector]
                return [self.type(argument) for argument in arguments], self.type(result)
            owner = entry["super"]
        return None

    def function(self, name):
        if name not in self.functions:
            return None
        arguments, result = self.functions[name]
        return [self.type(argument) for argument in arguments], self.type(result)

    def superclass(self, name):
        return self.classes.get(name, {}).get("super")

    def value(self, name):
        """The value of a constant, which may be written in terms of others."""
        if name not in self.constants:
            return None
        text = self.constants[name]
        if isinstance(text, dict):
            text = text[self.processor]
        text = re.sub(r"^Self\((.*)\)$", r"\1", text)
        text = re.sub(r"(\w+)::(\w+)\.0", r"\1\2", text)  # of another enumeration
        text = re.sub(r"\b[A-Za-z_]\w*\b", lambda word: self.substitute(word[0]), text)
        if not re.fullmatch(r"[\d.x<>|+() a-fA-F-]+", text):
            raise ValueError(f"{name} = {self.constants[name]}")
        return float(eval(text, {"__builtins__": {}}))

    def substitute(self, word):
        value = self.value(word)
        return word if value is None else str(int(value))

    def type(self, text):
        text = text.strip()
        optional = re.match(r"Option<(.*)>$", text)
        if optional:
            return self.type(optional[1])._replace(null="?")
        block = re.match(r"(&|\*).*Block<.*fn\((.*?)\)(?: -> ([^>]+))?", text)
        if block:
            types = [self.type(argument) for argument in block[2].split(",")]
            return Type("block", shape(types, self.type(block[3] or "()")), "!" if block[1] == "&" else "")
        if text == "Sel":
            return Type("selector", "", "!")
        if text == "Self":
            return Type("object", "", "!")
        reference = re.match(r"(?:Retained|CFRetained|NonNull)<(.*)>$", text) or re.match(r"&(?:'static |mut )*(.*)$", text)
        if reference:
            return self.referred(reference[1])._replace(null="!")
        if text.startswith("*"):
            return self.referred(re.sub(r"^\*(const|mut) ", "", text))
        if text in KINDS:
            return Type(KINDS[text])
        if text in self.types:
            return self.type(self.types[text])
        return Type(text)

    def referred(self, text):
        """What a pointer or a reference points to, where it is an object."""
        name = (re.match(r"ProtocolObject<dyn (\w+)", text) or re.search(r"(\w+)", text))[1]
        name = self.types.get(name, name) if name not in self.classes else name
        if text in ("Self", "AnyObject"):
            return Type("object")
        if name.startswith(("NS", "UN")):
            return Type("object", name)
        return Type("pointer")
