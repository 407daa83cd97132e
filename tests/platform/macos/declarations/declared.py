"""What the declared headers say, read from the compiler's own syntax tree."""

import json
import re
import subprocess
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parents[4]
SYSROOT = ROOT / "build/macos-sdk/sysroot"
DECLARATIONS = ROOT / "platform/macos/declarations"
COMPILER = "clang++-19"


class Type(NamedTuple):
    """A type as far as a call cares: what kind of value it is, of which class, and whether it may be null."""
    kind: str
    name: str = ""
    null: str = ""  # "?" may be null, "!" may not, "" nothing is said


class Method(NamedTuple):
    owner: str
    selector: str  # with "+" or "-" in front
    arguments: list
    result: Type


class Function(NamedTuple):
    name: str
    arguments: list
    result: Type


class Constant(NamedTuple):
    name: str
    value: float


class Declared(NamedTuple):
    methods: list
    functions: list
    variables: list
    constants: list
    superclasses: dict


def syntax_tree(declarations, processor):
    names = sorted(folder.name for folder in declarations.iterdir())
    source = "".join(f"#import <{name}/{name}.h>\n" for name in names)
    command = [COMPILER, f"--target={processor}-apple-macos13.0", "-isysroot", str(SYSROOT), "-std=c++20", "-fobjc-arc",
               "-fblocks", "-w", "-isystem", str(declarations), "-x", "objective-c++", "-fsyntax-only", "-Xclang",
               "-ast-dump=json", "-"]
    return json.loads(subprocess.run(command, input=source, check=True, capture_output=True, text=True).stdout)


KINDS = {
    "void": "void", "bool": "bool", "signed char": "bool", "unsigned char": "u8", "unsigned short": "u16",
    "int": "i32", "unsigned int": "u32", "long": "i64", "long long": "i64", "unsigned long": "u64",
    "unsigned long long": "u64", "double": "f64", "float": "f32", "_NSRange": "NSRange",
}


class Reader:
    """Walks the tree once. The compiler names a node's file only where it differs from the node's before it."""

    def __init__(self, declarations):
        self.ours = str(declarations)
        self.file = ""
        self.typedefs = {}
        self.enumerations = {}
        self.declared = Declared([], [], [], [], {})

    def read(self, node, owner=None):
        self.follow(node)
        is_ours = self.file.startswith(self.ours)
        kind = node.get("kind")
        if kind == "TypedefDecl":
            self.typedefs[node["name"]] = desugared(node["type"])
        elif kind == "EnumDecl" and "fixedUnderlyingType" in node and node.get("name"):
            self.enumerations[node["name"]] = desugared(node["fixedUnderlyingType"])
        elif kind in ("ObjCInterfaceDecl", "ObjCProtocolDecl"):
            owner = node.get("name")
            if is_ours and "name" in node.get("super", {}):
                self.declared.superclasses[owner] = node["super"]["name"]
        elif is_ours and kind == "EnumConstantDecl":
            self.declared.constants.append(Constant(node["name"], value_of(node)))
        elif is_ours and kind == "VarDecl" and owner is None:
            self.read_variable(node)
        elif is_ours and kind == "FunctionDecl":
            result = {"qualType": node["type"]["qualType"].split("(")[0].strip()}
            self.declared.functions.append(Function(node["name"], self.parameters(node), self.type(result)))
        elif is_ours and kind == "ObjCMethodDecl":
            selector = ("-" if node["instance"] else "+") + node["name"]
            self.declared.methods.append(Method(owner, selector, self.parameters(node), self.type(node["returnType"])))
        for child in node.get("inner", []):
            self.read(child, owner)

    def follow(self, node):
        location = node.get("loc") or {}
        for place in (location, location.get("expansionLoc") or {}, location.get("spellingLoc") or {}):
            if "file" in place:
                self.file = place["file"]
                return

    def read_variable(self, node):
        if node.get("storageClass") == "static":
            self.declared.constants.append(Constant(node["name"], value_of(node)))
        else:
            self.declared.variables.append((node["name"], self.type(node["type"])))

    def parameters(self, node):
        return [self.type(child["type"]) for child in node.get("inner", []) if child["kind"] == "ParmVarDecl"]

    def type(self, described):
        spelled, text = described["qualType"], desugared(described)
        outermost = re.search(r"_(Nullable|Nonnull)(?: (?:__\w+|const))*$", spelled)
        null = {"Nullable": "?", "Nonnull": "!"}[outermost[1]] if outermost else ""
        if "^" in text:
            return self.block(text, spelled)
        text = plain(text)
        if re.match(r"(id|instancetype)$", text):
            return Type("object", "", null)
        if text in ("SEL", "SEL *"):
            return Type("selector", "", null)
        text = plain(self.typedefs.get(text, text))
        object_type = re.match(r"id<(\w+)", text) or re.match(r"((?:NS|UN)\w*)(?:<.*>)? \*$", text)
        if object_type and "State" not in object_type[1]:
            return Type("object", object_type[1], null)
        if "(*)" in text:
            return Type("function")
        if text.endswith("*"):
            return Type("pointer", "", null)
        text = re.sub(r"^(struct|enum) ", "", text)
        text = self.enumerations.get(text, text)
        text = plain(self.typedefs.get(text, text))
        return Type(KINDS.get(text, text))


    def block(self, text, spelled):
        """A block's name says what it takes and gives."""
        outermost = re.search(r"\(\^\s*(_Nullable|_Nonnull)", spelled)
        null = {"_Nullable": "?", "_Nonnull": "!"}[outermost[1]] if outermost else ""
        result, arguments = re.match(r"(.*?)\(\^[^)]*\)\((.*)\)$", text).groups()
        taken = [self.type({"qualType": argument.strip()}) for argument in arguments.split(",")]
        return Type("block", shape(taken, self.type({"qualType": result.strip()})), null)


def shape(arguments, result):
    """Of a block, without what may be null: the bindings do not say it there."""
    words = [" ".join(filter(None, (argument.kind, argument.name))) for argument in arguments]
    return f"({', '.join(words)}) {result.kind}"


def desugared(described):
    return described.get("desugaredQualType", described["qualType"])


def plain(text):
    text = re.sub(r"\b(_Nonnull|_Nullable|_Null_unspecified|__autoreleasing|__strong|__kindof|__unsafe_unretained|const)\b",
                  "", text)
    return re.sub(r"\s+", " ", text).strip()


def value_of(node):
    """The value of a constant that is written out where it is declared."""
    if "value" in node:
        return float(node["value"])
    for child in node.get("inner", []):
        value = value_of(child)
        if value is not None:
            return -value if node.get("opcode") == "-" else value
    return None


def read(declarations=DECLARATIONS, processor="arm64"):
    reader = Reader(declarations)
    reader.read(syntax_tree(declarations, processor))
    return reader.declared
