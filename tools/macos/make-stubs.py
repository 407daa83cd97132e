#!/usr/bin/env python3
"""Writes what the linker needs to know of the system's libraries, as text stubs: the names that the declarations declare,
and where each will be found.

    make-stubs.py DECLARATIONS SYSROOT
"""

import re
import sys
from pathlib import Path

TARGETS = "[ x86_64-macos, arm64-macos ]"

# The version that an install name has where it is not A.
VERSIONS = {"AppKit": "C", "Foundation": "C"}

# What the compiler itself refers to.
LITERALS = {"CoreFoundation": ["___CFConstantStringClassReference"]}
RUNTIME = """
    ___objc_personality_v0 __objc_empty_cache _objc_alloc _objc_allocWithZone _objc_alloc_init _objc_autorelease
    _objc_autoreleasePoolPop _objc_autoreleasePoolPush _objc_autoreleaseReturnValue _objc_begin_catch
    _objc_claimAutoreleasedReturnValue _objc_copyWeak _objc_destroyWeak _objc_end_catch _objc_enumerationMutation
    _objc_exception_rethrow _objc_exception_throw _objc_getProperty _objc_initWeak _objc_loadWeakRetained _objc_moveWeak
    _objc_msgSend _objc_msgSendSuper2 _objc_opt_class _objc_opt_isKindOfClass _objc_opt_new _objc_opt_respondsToSelector
    _objc_opt_self _objc_release _objc_retain _objc_retainAutorelease _objc_retainAutoreleaseReturnValue
    _objc_retainAutoreleasedReturnValue _objc_retainBlock _objc_setProperty_nonatomic_copy _objc_storeStrong
    _objc_storeWeak _objc_terminate _objc_unsafeClaimAutoreleasedReturnValue""".split()


def stub(install_name, symbols, classes):
    def exports(kind, names):
        return f"    {kind}: [ {', '.join(sorted(names))} ]\n" if names else ""

    return (f"--- !tapi-tbd\ntbd-version: 4\ntargets: {TARGETS}\ninstall-name: '{install_name}'\ncurrent-version: 1\n"
            f"compatibility-version: 1\nexports:\n  - targets: {TARGETS}\n"
            + exports("symbols", symbols) + exports("objc-classes", classes) + "...\n")


def declared(header):
    """The functions and variables, and the classes, that a header declares."""
    text = re.sub(r"//[^\n]*|^#(?:[^\n]*\\\n)*[^\n]*", "", header, flags=re.M)
    classes = set(re.findall(r"@interface (\w+)(?:<[^>]*>)?\s*:", text))
    symbols = set()
    for declaration in re.findall(r"\b(?:CF_EXPORT|FOUNDATION_EXPORT|APPKIT_EXTERN)\b([^;]*);", text):
        name = re.search(r"(\w+)\s*\(", declaration) or re.search(r"(\w+)\s*$", declaration)
        symbols.add("_" + name[1])
    return symbols, classes


def main():
    declarations, sysroot = Path(sys.argv[1]), Path(sys.argv[2])
    for folder in sorted(declarations.iterdir()):
        name = folder.name
        symbols, classes = declared((folder / f"{name}.h").read_text())
        symbols.update(LITERALS.get(name, []))
        install_name = f"/System/Library/Frameworks/{name}.framework/Versions/{VERSIONS.get(name, 'A')}/{name}"
        file = sysroot / f"System/Library/Frameworks/{name}.framework/{name}.tbd"
        file.write_text(stub(install_name, symbols, classes))
    (sysroot / "usr/lib/libobjc.tbd").write_text(stub("/usr/lib/libobjc.A.dylib", RUNTIME, ["NSObject"]))


main()
