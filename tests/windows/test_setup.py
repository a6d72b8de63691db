"""Set-up and removal under Wine: what they put where, and what they leave to the user."""

import os
import subprocess
import unittest

from wine import SETUP, WineCase, desktop

RUN = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Run"
UNINSTALL = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Voxmate"


class Setup(WineCase):
    def installed(self):
        return os.path.join(self.home, "AppData", "Local", "Programs", "Voxmate")

    def install(self, *options):
        status, _ = self.wine(SETUP, "/S", *options, seconds=300)
        self.assertEqual(status, 0)

    def remove(self):
        self.wine(os.path.join(self.installed(), "uninstall.exe"), "/S")
        desktop.wait_for(lambda: not os.path.exists(os.path.join(self.installed(), "voxmate.exe")), what="the removal")

    def has(self, key, name=None):
        return self.wine("reg", "query", key, *(["/v", name] if name else []))[0] == 0

    def test_it_is_installed_starts_and_goes_without_the_users_data(self):
        self.install()
        for name in ("voxmate.exe", "libespeak-ng.dll", "espeak-ng-data", "uninstall.exe", "LICENSE.txt",
                     os.path.join("share", "voxmate", "msagent", "chars", "Nalu.acs")):
            self.assertTrue(os.path.exists(os.path.join(self.installed(), name)), name)
        self.assertTrue(self.has(UNINSTALL, "UninstallString"))
        self.assertTrue(self.has(r"HKCU\Software\Classes\.acs"))
        self.assertFalse(self.has(RUN, "Voxmate"))
        self.set(GreetingEnabled=0, SpeakTimeInterval=0, ShowTipAtStartUp=0)
        program = self.start(path=os.path.join(self.installed(), "voxmate.exe"))
        self.window("^Voxmate$")
        self.window("Voxmate character")
        # A program that runs is neither replaced nor removed.
        self.assertNotEqual(self.wine(SETUP, "/S", seconds=300)[0], 0)
        program.terminate()
        program.wait(desktop.PATIENCE)
        subprocess.run(["wineserver", "--kill"], env=self.env, check=False)
        kept = os.path.join(self.folder, "VoxmateTips.txt")
        self.assertTrue(os.path.exists(kept))
        self.remove()
        self.assertFalse(os.path.exists(os.path.join(self.installed(), "share")))
        self.assertTrue(os.path.exists(kept))
        self.assertEqual(self.value("GreetingEnabled"), 0)
        self.assertFalse(self.has(UNINSTALL, "UninstallString"))
        self.assertFalse(self.has(r"HKCU\Software\Classes\.acs"))

    def test_starting_at_log_in_is_a_choice(self):
        self.install("/LOGIN")
        self.assertTrue(self.has(RUN, "Voxmate"))
        self.remove()
        self.assertFalse(self.has(RUN, "Voxmate"))


if __name__ == "__main__":
    unittest.main()
