"""What can be told about Tavelle.app without a Mac: what is in it, what it will ask the system for, and its signature.

    bundle_test.py     checks build/macos-cross/bin/Tavelle.app
"""

import plistlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
APP = ROOT / "build/macos-cross/bin/Tavelle.app"
PROGRAM = APP / "Contents/MacOS/Tavelle"
RESOURCES = APP / "Contents/Resources"
LLVM = Path("/usr/lib/llvm-14/bin")
PROCESSORS = ("arm64", "x86_64")

sys.path.insert(0, str(ROOT / "tools/macos"))
import sign  # noqa: E402


def framework(name, version="A"):
    return f"/System/Library/Frameworks/{name}.framework/Versions/{version}/{name}"


LIBRARIES = {
    framework("AppKit", "C"), framework("ApplicationServices"), framework("Carbon"), framework("CoreFoundation"),
    framework("CoreGraphics"), framework("Foundation", "C"), framework("Security"), framework("UserNotifications"),
    "/usr/lib/libobjc.A.dylib", "/usr/lib/libSystem.B.dylib",
}

# Where the system will look for what the program calls.
ORIGINS = {
    "_InstallEventHandler": "Carbon", "_RegisterEventHotKey": "Carbon", "_UnregisterEventHotKey": "Carbon",
    "_GetEventParameter": "Carbon", "_GetApplicationEventTarget": "Carbon",
    "_CGEventSourceCreate": "CoreGraphics", "_CGEventCreateKeyboardEvent": "CoreGraphics",
    "_CGEventSetFlags": "CoreGraphics", "_CGEventPost": "CoreGraphics",
    "_AXIsProcessTrusted": "ApplicationServices", "_AXIsProcessTrustedWithOptions": "ApplicationServices",
    "_SecItemAdd": "Security", "_SecItemCopyMatching": "Security", "_SecItemDelete": "Security",
    "_kSecAttrAccessibleWhenUnlocked": "Security",
    "_OBJC_CLASS_$_NSApplication": "AppKit", "_OBJC_CLASS_$_NSPasteboard": "AppKit",
    "_OBJC_CLASS_$_NSStatusBar": "AppKit", "_OBJC_CLASS_$_NSURLSession": "Foundation",
    "_OBJC_CLASS_$_NSUserDefaults": "Foundation", "_OBJC_CLASS_$_NSAppleEventManager": "Foundation",
    "_OBJC_CLASS_$_UNUserNotificationCenter": "UserNotifications",
    "_objc_msgSend": "libobjc", "_dispatch_async": "libSystem",
}


def tool(name, *arguments):
    command = [str(LLVM / name), *arguments, str(PROGRAM)]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def png_size(data):
    return struct.unpack(">2I", data[16:24]) if data.startswith(b"\x89PNG") else None


class ProgramTest(unittest.TestCase):
    def test_it_holds_one_program_for_each_processor(self):
        self.assertEqual(sorted(tool("llvm-lipo", "-archs").split()), sorted(PROCESSORS))

    def test_it_loads_the_systems_libraries_and_no_others(self):
        for processor in PROCESSORS:
            names = re.findall(r"^\t(\S+) \(", tool("llvm-otool", "-arch", processor, "-L"), re.M)
            self.assertEqual(set(names), LIBRARIES, processor)

    def test_each_name_will_be_looked_for_in_the_library_that_has_it(self):
        for processor in PROCESSORS:
            listing = tool("llvm-nm", "-arch", processor, "-m", "-u")
            origins = dict(re.findall(r"external (\S+) \(from (\w+)\)", listing))
            self.assertEqual({name: origins.get(name) for name in ORIGINS}, ORIGINS, processor)

    def test_the_language_runtime_comes_with_it(self):
        for processor in PROCESSORS:
            undefined = tool("llvm-nm", "-arch", processor, "-u")
            self.assertNotRegex(undefined, r"__ZNSt3__1|___cxa_throw$|___gxx_personality_v0")

    def test_it_was_built_for_macos_13_with_the_interfaces_of_15(self):
        for processor in PROCESSORS:
            commands = tool("llvm-otool", "-arch", processor, "-l")
            version = re.search(r"cmd LC_BUILD_VERSION.*?platform (\S+).*?sdk (\S+).*?minos (\S+)|"
                                r"cmd LC_BUILD_VERSION.*?platform (\S+).*?minos (\S+).*?sdk (\S+)", commands, re.S)
            found = dict(re.findall(r"(platform|minos|sdk) (\S+)", version[0]))
            self.assertEqual((found["minos"], found["sdk"]), ("13.0", "15.0"))
            self.assertIn(found["platform"], ("1", "macos", "MACOS"))

    def test_it_may_be_loaded_anywhere_and_exports_no_weak_names(self):
        for processor in PROCESSORS:
            header = tool("llvm-objdump", "--macho", f"--arch={processor}", "--private-header")
            self.assertRegex(header, r"EXECUTE.*TWOLEVEL.* PIE")
            self.assertNotRegex(header, r"WEAK_DEFINES|BINDS_TO_WEAK")

    def test_exceptions_find_their_handlers(self):
        for processor in PROCESSORS:
            unwinding = tool("llvm-objdump", "--macho", f"--arch={processor}", "--unwind-info")
            self.assertIn("LSDA offset", unwinding)


class InformationTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.info = plistlib.loads((APP / "Contents/Info.plist").read_bytes())

    def test_it_is_an_agent_without_an_icon_in_the_dock(self):
        self.assertIs(self.info["LSUIElement"], True)
        self.assertEqual(self.info["CFBundlePackageType"], "APPL")
        self.assertEqual(self.info["NSPrincipalClass"], "NSApplication")

    def test_its_identifier_is_the_service_of_its_keychain_items(self):
        source = (ROOT / "llm/KeychainHelper.cpp").read_text() + (ROOT / "llm/KeychainHelper.h").read_text()
        self.assertIn(f'"{self.info["CFBundleIdentifier"]}"', source)

    def test_the_links_of_the_scheme_are_its_own(self):
        self.assertEqual([kind["CFBundleURLSchemes"] for kind in self.info["CFBundleURLTypes"]], [["tavelle"]])

    def test_it_asks_for_macos_13(self):
        self.assertEqual(self.info["LSMinimumSystemVersion"], "13.0")

    def test_it_has_the_projects_version(self):
        version = re.search(r"project\(Tavelle VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text())[1]
        self.assertEqual((self.info["CFBundleShortVersionString"], self.info["CFBundleVersion"]), (version, version))

    def test_a_model_on_this_machine_may_be_reached_without_encryption_and_nothing_else(self):
        self.assertEqual(self.info["NSAppTransportSecurity"], {
            "NSAllowsLocalNetworking": True,
            "NSExceptionDomains": {"localhost": {"NSExceptionAllowsInsecureHTTPLoads": True}},
        })

    def test_the_program_that_it_names_is_there(self):
        self.assertEqual(APP / "Contents/MacOS" / self.info["CFBundleExecutable"], PROGRAM)
        self.assertTrue(PROGRAM.stat().st_mode & 0o111)


class IconTest(unittest.TestCase):
    def test_the_menu_bar_icon_is_there_for_both_kinds_of_screens(self):
        self.assertEqual(png_size((RESOURCES / "MenuBarIcon.png").read_bytes()), (18, 18))
        self.assertEqual(png_size((RESOURCES / "MenuBarIcon@2x.png").read_bytes()), (36, 36))

    def test_the_about_icon_is_there_for_both_kinds_of_screens(self):
        self.assertEqual(png_size((RESOURCES / "AboutIcon.png").read_bytes()), (96, 96))
        self.assertEqual(png_size((RESOURCES / "AboutIcon@2x.png").read_bytes()), (192, 192))

    def test_the_application_icon_has_every_size(self):
        data = (RESOURCES / "AppIcon.icns").read_bytes()
        self.assertEqual(struct.unpack(">4sI", data[:8]), (b"icns", len(data)))
        sizes, at = set(), 8
        while at < len(data):
            size = struct.unpack(">I", data[at + 4:at + 8])[0]
            width, height = png_size(data[at + 8:at + size])
            self.assertEqual(width, height)
            sizes.add(width)
            at += size
        self.assertEqual(sizes, {16, 32, 64, 128, 256, 512, 1024})


class SignatureTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.app = Path(self.folder.name) / "Tavelle.app"
        shutil.copytree(APP, self.app)

    def faults(self):
        return sign.check(sign.Bundle(self.app))

    def test_it_fits_the_bundle(self):
        self.assertEqual(self.faults(), [])

    def test_signing_again_changes_nothing(self):
        program = self.app / "Contents/MacOS/Tavelle"
        before = program.read_bytes()
        sign.Bundle(self.app).sign()
        self.assertEqual(self.faults(), [])
        self.assertEqual(program.read_bytes(), before)

    def test_a_changed_resource_breaks_it(self):
        with (self.app / "Contents/Resources/MenuBarIcon.png").open("ab") as icon:
            icon.write(b"more")
        self.assertEqual(self.faults(), ["the sealed resources are not those of the bundle"])

    def test_changed_information_breaks_it(self):
        information = self.app / "Contents/Info.plist"
        information.write_bytes(information.read_bytes().replace(b"<string>tavelle<", b"<string>another<"))
        self.assertEqual(self.faults(), [f"{processor}: slot 1 is not bound" for processor in ("x86_64", "arm64")])

    def test_changed_code_breaks_it(self):
        program = self.app / "Contents/MacOS/Tavelle"
        data = bytearray(program.read_bytes())
        offset = struct.unpack(">I", data[16:20])[0]  # of the first slice
        data[offset + 0x4000] ^= 1
        program.write_bytes(data)
        self.assertEqual(self.faults(), ["x86_64: the code is not what was signed"])


if __name__ == "__main__":
    unittest.main()
