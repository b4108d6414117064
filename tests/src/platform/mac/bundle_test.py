#!/usr/bin/env python3
"""Lays the bundle for macOS out of stand-ins for what is built there, and looks at every part."""
import os
import plistlib
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[4]
VARIANTS = {"": "", " (Alerts)": ".alerts", " (GPU)": ".gpu", " (Plugin)": ".plugin",
            " (Renderer)": ".renderer"}


def make_framework(path, name):
    """With its parts in a version's folder, to which links lead, as frameworks have them."""
    version = path / "Versions" / "A"
    (version / "Resources").mkdir(parents=True)
    (version / "Resources" / "Info.plist").write_text("framework")
    (version / name).write_text("library")
    (path / "Versions" / "Current").symlink_to("A")
    (path / name).symlink_to(f"Versions/Current/{name}")
    (path / "Resources").symlink_to("Versions/Current/Resources")


def make_executable(path, content):
    path.write_text(content)
    path.chmod(0o755)


class Bundle(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.bundle = self.folder / "out put" / "Zantrio.app"
        self.contents = self.bundle / "Contents"
        self.frameworks = self.contents / "Frameworks"
        inputs = self.folder / "in"
        inputs.mkdir()
        make_executable(inputs / "application", "application")
        make_executable(inputs / "helper", "helper")
        (inputs / "libzt-transfers.1.dylib").write_text("transfers")
        make_framework(inputs / "Chromium Embedded Framework.framework",
                       "Chromium Embedded Framework")
        make_framework(inputs / "HockeySDK.framework", "HockeySDK")
        icon = inputs / "drawn.icns"
        subprocess.run([sys.executable, PROJECT / "packaging/mac/make_icon.py", icon, "16", "32"],
                       check=True)
        self.inputs = {
            "BUNDLE": self.bundle,
            "VERSION": "1.2.3",
            "MINIMUM_SYSTEM_VERSION": "10.15",
            "EXECUTABLE": inputs / "application",
            "HELPER": inputs / "helper",
            "TRANSFERS_LIBRARY": inputs / "libzt-transfers.1.dylib",
            "ICON": icon,
            "FRAMEWORK": inputs / "Chromium Embedded Framework.framework",
            "CRASH_SDK": inputs / "HockeySDK.framework",
        }
        self.laid_out()

    def lay_out(self):
        return subprocess.run(
            ["cmake", *(f"-D{name}={value}" for name, value in self.inputs.items()), "-P",
             PROJECT / "cmake/lay_out_mac_bundle.cmake"], capture_output=True, text=True)

    def laid_out(self):
        result = self.lay_out()
        self.assertEqual(result.returncode, 0, result.stderr)

    def information(self, contents):
        with open(contents / "Info.plist", "rb") as file:
            return plistlib.load(file)

    def assert_runnable(self, path, content):
        self.assertEqual(path.read_text(), content)
        self.assertTrue(os.access(path, os.X_OK), path)

    def test_holds_every_part_with_its_links_and_nothing_else(self):
        self.assertEqual({entry.name for entry in self.contents.iterdir()},
                         {"Info.plist", "PkgInfo", "MacOS", "Resources", "Frameworks"})
        self.assert_runnable(self.contents / "MacOS" / "Zantrio", "application")
        resources = {entry.name for entry in (PROJECT / "packaging/Resources").iterdir()}
        self.assertIn("loading.html", resources)
        self.assertEqual({entry.name for entry in (self.contents / "Resources").iterdir()},
                         resources | {"Zantrio.icns"})
        self.assertEqual((self.frameworks / "libzt-transfers.dylib").read_text(), "transfers")
        self.assertEqual({entry.name for entry in self.frameworks.iterdir()},
                         {"Chromium Embedded Framework.framework", "HockeySDK.framework",
                          "libzt-transfers.dylib"} |
                         {f"Zantrio Helper{variant}.app" for variant in VARIANTS})

        for name in "Chromium Embedded Framework", "HockeySDK":
            framework = self.frameworks / f"{name}.framework"
            self.assertEqual(os.readlink(framework / "Versions" / "Current"), "A")
            self.assertEqual(os.readlink(framework / name), f"Versions/Current/{name}")
            self.assertEqual((framework / "Resources" / "Info.plist").read_text(), "framework")

    def test_describes_the_application(self):
        information = self.information(self.contents)
        for key, value in {"CFBundleShortVersionString": "1.2.3", "CFBundleVersion": "1.2.3",
                           "CFBundleIconFile": "Zantrio.icns",
                           "LSMinimumSystemVersion": "10.15"}.items():
            self.assertEqual(information[key], value, key)
        for name in "app", "helper":
            with open(PROJECT / f"packaging/mac/{name}.entitlements", "rb") as file:
                self.assertTrue(plistlib.load(file))

    def test_has_a_helper_for_every_kind_of_process(self):
        for variant, end in VARIANTS.items():
            name = f"Zantrio Helper{variant}"
            contents = self.frameworks / f"{name}.app" / "Contents"
            self.assert_runnable(contents / "MacOS" / name, "helper")
            information = self.information(contents)
            self.assertEqual(information["CFBundleExecutable"], name)
            self.assertEqual(information["CFBundleIdentifier"], "com.zantrio.client.helper" + end)
            self.assertEqual(information["CFBundleShortVersionString"], "1.2.3")
            self.assertEqual(information["LSUIElement"], "1")

    def test_replaces_an_older_bundle_only_when_complete(self):
        stale = self.contents / "Resources" / "stale"
        stale.write_text("old")
        for part in "EXECUTABLE", "FRAMEWORK", "CRASH_SDK", "VERSION":
            given = self.inputs.pop(part)
            result = self.lay_out()
            self.assertNotEqual(result.returncode, 0)
            self.assertIn(f"The bundle cannot be laid out: {part}", result.stderr)
            self.assertTrue(stale.exists())
            self.inputs[part] = given
        self.inputs["VERSION"] = "2.0.0"
        self.laid_out()
        self.assertFalse(stale.exists())
        self.assertEqual(self.information(self.contents)["CFBundleVersion"], "2.0.0")


if __name__ == "__main__":
    unittest.main()
