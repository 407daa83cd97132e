"""The declarations are right, and a wrong one would be noticed."""

import shutil
import tempfile
import unittest
from pathlib import Path

import bindings
import check
import declared


def faults(declarations=declared.DECLARATIONS, processor="arm64"):
    return list(check.faults(declared.read(declarations, processor), bindings.Bindings(processor)))


class DeclarationsTest(unittest.TestCase):
    def test_every_declaration_is_what_the_bindings_have_on_both_processors(self):
        for processor in ("arm64", "x86_64"):
            ours = declared.read(processor=processor)
            self.assertTrue(ours.methods and ours.functions and ours.variables and ours.constants)
            self.assertEqual(list(check.faults(ours, bindings.Bindings(processor))), [])

    def test_no_declaration_went_unread(self):
        """Every selector, function and constant of the headers, found by their spelling, was compared."""
        ours = declared.read()
        text = "".join(header.read_text() for header in declared.DECLARATIONS.glob("*/*.h"))
        self.assertEqual(len(ours.methods), text.count("\n- (") + text.count("\n+ (")
                         + sum(1 if "readonly" in line else 2 for line in text.splitlines()
                               if line.startswith("@property")))
        self.assertEqual(len(ours.functions) + len(ours.variables), text.count("\nCF_EXPORT ")
                         + text.count("\nFOUNDATION_EXPORT ") + text.count("\nAPPKIT_EXTERN ")
                         + text.count("\nstatic inline "))


class PlantedFaultTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.declarations = Path(self.folder.name) / "declarations"
        shutil.copytree(declared.DECLARATIONS, self.declarations)

    def planted(self, framework, right, wrong, processors=("arm64",)):
        """The faults that are found where `right` was written `wrong`."""
        header = self.declarations / framework / f"{framework}.h"
        text = header.read_text()
        self.assertEqual(text.count(right), 1, right)
        header.write_text(text.replace(right, wrong))
        return [fault for processor in processors for fault in faults(self.declarations, processor)]

    def test_a_value_that_differs_by_processor_is_refused_where_it_is_wrong(self):
        self.assertEqual(self.planted("AppKit", "NSTextAlignmentCenter = 1\n", "NSTextAlignmentCenter = 2\n",
                                      ("arm64", "x86_64")), ["NSTextAlignmentCenter: is 2, not 1"])

    def test_a_wrong_selector_is_refused(self):
        self.assertEqual(self.planted("Foundation", "andSelector:(SEL)", "withSelector:(SEL)"),
                         ["NSAppleEventManager -setEventHandler:withSelector:forEventClass:andEventID:: not in the bindings"])

    def test_a_wrong_value_is_refused(self):
        self.assertEqual(self.planted("CoreGraphics", "0x00100000", "0x00080000"),
                         ["kCGEventFlagMaskCommand: is 524288, not 1048576"])

    def test_a_wrong_code_of_four_characters_is_refused(self):
        self.assertEqual(self.planted("Carbon", "'hkid'", "'hkdi'"),
                         ["typeEventHotKeyID: is 1751868521, not 1751869796"])

    def test_a_result_that_is_declared_never_to_be_null_is_refused_where_it_may_be(self):
        self.assertEqual(self.planted("AppKit", "+ (nullable NSImage*)imageNamed:", "+ (NSImage*)imageNamed:"),
                         ["NSImage +imageNamed:: the result may not be null"])

    def test_an_argument_that_is_declared_to_take_null_is_refused_where_it_does_not(self):
        self.assertEqual(self.planted("AppKit", "- (BOOL)setString:(NSString*)string", "- (BOOL)setString:(nullable NSString*)string"),
                         ["NSPasteboard -setString:forType:: argument 1 may be null"])

    def test_a_wrong_type_of_an_argument_is_refused(self):
        self.assertEqual(self.planted("Carbon", "EventHotKeyID id,", "UInt32 id,"),
                         ["RegisterEventHotKey: argument 3 is u32, not EventHotKeyID"])

    def test_a_missing_argument_is_refused(self):
        self.assertEqual(self.planted("Carbon", "EventParamType* _Nullable actualType, ", ""),
                         ["GetEventParameter: takes 6 arguments, not 7"])

    def test_a_wrong_class_is_refused(self):
        self.assertEqual(self.planted("AppKit", "nullable, readonly, strong) NSStatusBarButton*", "nullable, readonly, strong) NSMenu*"),
                         ["NSStatusItem -button: the result is NSMenu, not NSStatusBarButton"])

    def test_a_wrong_argument_of_a_block_is_refused(self):
        self.assertEqual(self.planted("UserNotifications", "(BOOL granted, NSError* _Nullable error)", "(NSInteger granted, NSError* _Nullable error)"),
                         ["UNUserNotificationCenter -requestAuthorizationWithOptions:completionHandler:: "
                          "argument 2 is (i64, object NSError) void, not (bool, object NSError) void"])

    def test_a_block_that_is_declared_never_to_be_null_is_refused_where_it_may_be(self):
        self.assertEqual(self.planted("UserNotifications", "(nullable void (^)(NSError", "(void (^)(NSError"),
                         ["UNUserNotificationCenter -addNotificationRequest:withCompletionHandler:: argument 2 may not be null"])

    def test_a_wrong_superclass_is_refused(self):
        self.assertEqual(self.planted("AppKit", "@interface NSStatusBarButton : NSButton", "@interface NSStatusBarButton : NSControl"),
                         ["NSStatusBarButton: is a NSControl, not a NSButton"])

    def test_a_function_that_does_not_exist_is_refused(self):
        self.assertEqual(self.planted("Security", "SecItemDelete(", "SecItemErase("), ["SecItemErase: not in the bindings"])


if __name__ == "__main__":
    unittest.main()
