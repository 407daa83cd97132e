#!/usr/bin/python3
"""Checks the cross-built Tavelle.app and the declarations that it was built against. The last line counts.

    tools/macos-sdk && cmake --preset macos-cross && cmake --build --preset macos-cross && tests/platform/macos/run.py
"""

import sys
import unittest
from pathlib import Path

FOLDER = Path(__file__).resolve().parent


def main():
    sys.path[:0] = [str(FOLDER), str(FOLDER / "declarations")]
    suite = unittest.defaultTestLoader.loadTestsFromNames(["bundle_test", "declarations_test"])
    result = unittest.TextTestRunner(stream=sys.stdout, verbosity=1).run(suite)
    failed = len(result.failures) + len(result.errors)
    print(f"macOS tests: {result.testsRun - failed} passed, {failed} failed")
    sys.exit(failed > 0)


if __name__ == "__main__":
    main()
