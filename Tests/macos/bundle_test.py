"""What a Mac makes of the program's folder of resources, as far as it can be seen elsewhere."""

import os
import pathlib
import plistlib
import subprocess
import sys
import tempfile
import unittest

RESOURCES, ICONSET = pathlib.Path(sys.argv[1]), sys.argv[2]


class Bundle(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def test_icon(self):
        subprocess.run([ICONSET, RESOURCES / "velbrix.svg", self.folder], check=True)
        told = subprocess.run(
            ["identify", "-format", r"%f %w %h %[pixel:p{0,0}] %[fx:p{w/2,h/2}.a]\n", *sorted(self.folder.iterdir())],
            capture_output=True, text=True, check=True).stdout.splitlines()
        # The names and sizes that iconutil takes.
        wanted = {f"icon_{points}x{points}{suffix}.png": points * scale
                  for points in (16, 32, 128, 256, 512) for scale, suffix in ((1, ""), (2, "@2x"))}
        self.assertEqual(sorted(told), sorted(f"{name} {size} {size} srgba(0,0,0,0) 1" for name, size in wanted.items()))

    def test_property_lists(self):
        for name in ("Info.plist.in", "Velbrix.entitlements"):
            self.assertTrue(plistlib.loads((RESOURCES / name).read_bytes()), name)

    def signed(self, **environment):
        """What codesign would be told for a bundle that Qt was deployed into."""
        bundle = self.folder / "My Velbrix.app"
        for inside in ("Frameworks/QtCore.framework/Versions/A/libinner.dylib", "Frameworks/libdbus.dylib",
                       "PlugIns/platforms/libqcocoa.dylib", "Resources/Velbrix.icns"):
            (bundle / "Contents" / inside).parent.mkdir(parents=True, exist_ok=True)
            (bundle / "Contents" / inside).touch()
        tool, log = self.folder / "codesign", self.folder / "log"
        tool.write_text(f"#!/bin/sh\necho \"$@\" >>'{log}'\n")
        tool.chmod(0o755)
        path = {"PATH": f"{self.folder}:{os.environ['PATH']}"}
        subprocess.run([RESOURCES / "sign-bundle", bundle], env=os.environ | path | environment, check=True)
        return log.read_text().replace(str(bundle), "BUNDLE").splitlines()

    def test_signature(self):
        *inner, outer = self.signed(VELBRIX_IDENTITY="Developer ID")
        self.assertEqual(sorted(inner), [f"--force --sign Developer ID BUNDLE/Contents/{inside}" for inside in (
            "Frameworks/QtCore.framework", "Frameworks/libdbus.dylib", "PlugIns/platforms/libqcocoa.dylib")])
        self.assertEqual(outer, "--force --sign Developer ID --identifier com.tamsel.Velbrix "
                                f"--entitlements {RESOURCES}/Velbrix.entitlements BUNDLE")

    def test_signature_without_an_identity(self):
        self.assertTrue(all(line.startswith("--force --sign - ") for line in self.signed(VELBRIX_IDENTITY="")))


unittest.main(argv=sys.argv[:1], verbosity=2)
