"""Compares the declarations of platform/macos with independent bindings, and says what differs."""

import sys

import bindings
import declared

# The bindings have no call for it, as they release by dropping a reference.
NOT_BOUND = {"CFRelease"}


def differs(ours, theirs):
    """Why two types are not the same to a caller; empty where they are."""
    kinds = {ours.kind, theirs.kind}
    if ours.kind != theirs.kind and kinds not in ({"object", "pointer"}, {"bool", "u8"}):
        return f"is {ours.kind}, not {theirs.kind}"
    if ours.kind == theirs.kind and ours.name != theirs.name and ours.name and theirs.name:
        return f"is {ours.name}, not {theirs.name}"
    if ours.null and theirs.null and ours.null != theirs.null:
        return "may be null" if ours.null == "?" else "may not be null"
    return ""


def signature_faults(name, ours, theirs):
    if theirs is None:
        if name not in NOT_BOUND:
            yield f"{name}: not in the bindings"
        return
    arguments, result = theirs
    if len(ours.arguments) != len(arguments):
        yield f"{name}: takes {len(ours.arguments)} arguments, not {len(arguments)}"
        return
    for number, (mine, other) in enumerate(zip(ours.arguments, arguments), 1):
        if reason := differs(mine, other):
            yield f"{name}: argument {number} {reason}"
    if reason := differs(ours.result, result):
        yield f"{name}: the result {reason}"


def faults(ours, theirs):
    for method in ours.methods:
        yield from signature_faults(f"{method.owner} {method.selector}", method,
                                    theirs.method(method.owner, method.selector))
    for function in ours.functions:
        yield from signature_faults(function.name, function, theirs.function(function.name))
    for name, kind in ours.variables:
        if name not in theirs.variables:
            yield f"{name}: not in the bindings"
        elif reason := differs(kind, theirs.type(theirs.variables[name])):
            yield f"{name}: {reason}"
    for constant in ours.constants:
        value = theirs.value(constant.name)
        if value is None:
            yield f"{constant.name}: not in the bindings"
        elif value != constant.value:
            yield f"{constant.name}: is {constant.value:.10g}, not {value:.10g}"
    for name, superclass in ours.superclasses.items():
        if theirs.superclass(name) != superclass:
            yield f"{name}: is a {superclass}, not a {theirs.superclass(name)}"


def main():
    found = []
    for processor in ("arm64", "x86_64"):
        ours = declared.read(processor=processor)
        found += [f"{processor}: {fault}" for fault in faults(ours, bindings.Bindings(processor))]
    for fault in found:
        print(fault, file=sys.stderr)
    if not found:
        print(f"{len(ours.methods)} methods, {len(ours.functions)} functions, {len(ours.variables)} variables and "
              f"{len(ours.constants)} constants are as the bindings have them")
    sys.exit(bool(found))


if __name__ == "__main__":
    main()
