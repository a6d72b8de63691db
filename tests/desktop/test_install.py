"""What `cmake --install` puts below a prefix: a new user who starts it is greeted, and the desktop finds what it looks
for."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from xml.etree import ElementTree

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.abspath(os.path.join(HERE, "..", ".."))
BUILD = os.environ.get("VOXMATE_BUILD", os.path.join(ROOT, "build", "release"))
SIZES = (16, 22, 24, 32, 48, 64, 128, 256)
ID = "org.voxmate.Voxmate"


class Install(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp()
        # Blanks and quotes are what the settings file could stumble over.
        cls.prefix = os.path.join(cls.folder, 'my "own" programs')
        subprocess.run(["cmake", "--install", BUILD, "--prefix", cls.prefix], check=True, stdout=subprocess.DEVNULL)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder)

    def path(self, *names):
        return os.path.join(self.prefix, *names)

    def test_a_new_user_is_greeted_and_after_a_second_start_finds_all_as_it_was(self):
        home = os.path.join(self.folder, "home")
        os.mkdir(home)
        for what in ("First", "Again"):
            result = subprocess.run([sys.executable, "-W", "ignore", "-m", "unittest", "user." + what],
                                    cwd=os.path.join(ROOT, "tests", "package"), check=False, capture_output=True,
                                    text=True,
                                    env=dict(os.environ, HOME=home, VOXMATE=self.path("bin", "voxmate")))
            self.assertEqual(result.returncode, 0, result.stderr)

    def test_the_desktop_finds_entry_icons_types_and_pages(self):
        share = self.path("share")
        for name in (f"applications/{ID}.desktop", f"metainfo/{ID}.metainfo.xml", f"mime/packages/{ID}.xml",
                     "doc/voxmate/LICENSE", "doc/voxmate/copyright", "voxmate/web/voices.html"):
            self.assertTrue(os.path.isfile(os.path.join(share, name)), name)
        for context, name in (("apps", "voxmate"), ("mimetypes", "application-x-acs-character")):
            theme = os.path.join(share, "icons", "hicolor")
            self.assertTrue(os.path.isfile(os.path.join(theme, "scalable", context, name + ".svg")))
            for size in SIZES:
                with open(os.path.join(theme, f"{size}x{size}", context, name + ".png"), "rb") as file:
                    head = file.read(24)
                self.assertEqual(head[:8], b"\x89PNG\r\n\x1a\n")
                self.assertEqual([int.from_bytes(head[at:at + 4], "big") for at in (16, 20)], [size, size])
        for name in ("voxmate-reader", "voxmate-decoder", "voxmate-recorder"):
            self.assertTrue(os.access(self.path("libexec", "voxmate", name), os.X_OK), name)
        for program in ("voxmate", "voxmate-voices", "acsbuild", "acsinfo"):
            self.assertTrue(os.access(self.path("bin", program), os.X_OK))
            with open(self.path("share", "man", "man1", program + ".1"), encoding="utf-8") as page:
                self.assertNotRegex(page.read(), r"@[A-Z]+@")

    def test_the_reader_of_documents_is_where_the_program_looks_for_it_and_reads(self):
        page = os.path.join(self.folder, "page.html")
        with open(page, "w", encoding="utf-8") as file:
            file.write("<!DOCTYPE html><p>Read by the installed program</p>")
        with open(page, "rb") as file:
            result = subprocess.run([self.path("libexec", "voxmate", "voxmate-reader")], stdin=file, capture_output=True, check=True)
        self.assertIn(b"Read by the installed program", result.stdout)

    def test_the_bus_knows_what_to_start(self):
        command = '"' + self.path("bin", "voxmate").replace('"', '\\"') + '"'
        with open(self.path("share", "dbus-1", "services", ID + ".service"), encoding="utf-8") as file:
            self.assertEqual(file.read(), f"[D-BUS Service]\nName={ID}\nExec={command}\n")

    def test_the_desktop_entry_is_valid(self):
        self.assertEqual(self.said("desktop-file-validate", self.path("share", "applications", ID + ".desktop")), "")

    def test_the_metainfo_is_valid(self):
        path = self.path("share", "metainfo", ID + ".metainfo.xml")
        # Without an address of its own the program has no home page to name; versions that know this warning are told so.
        waived = "--override=url-homepage-missing=info"
        trial = subprocess.run(["appstreamcli", "validate", waived, path], check=False, capture_output=True, text=True)
        known = "not recognized" not in trial.stdout + trial.stderr
        self.said("appstreamcli", "validate", "--pedantic", "--no-net", *([waived] if known else []), path)

    def test_with_web_addresses_the_metainfo_names_a_page_and_shows_pictures_that_exist(self):
        build = os.path.join(self.folder, "build")
        web = "https://voxmate.example/pictures"
        self.said("cmake", "-G", "Ninja", "-S", ROOT, "-B", build, "-DVOXMATE_TESTS=OFF", "-DVOXMATE_BENCH=OFF",
                  f"-DVOXMATE_PICTURES_URL={web}", "-DVOXMATE_HOMEPAGE_URL=https://voxmate.example/")
        path = os.path.join(build, "packaging", ID + ".metainfo.xml")
        self.said("appstreamcli", "validate", "--pedantic", "--no-net", path)
        shown = [image.text for image in ElementTree.parse(path).iter("image")]
        self.assertEqual(len(shown), 5)
        for image in shown:
            self.assertTrue(image.startswith(web + "/"), image)
            self.assertTrue(os.path.isfile(os.path.join(ROOT, "docs", "pictures", os.path.basename(image))), image)

    def test_a_character_file_is_known_by_its_name_and_by_its_first_bytes(self):
        data = os.path.join(self.folder, "mime")
        shutil.copytree(self.path("share", "mime"), os.path.join(data, "mime"))
        shutil.copytree("/usr/share/mime/packages", os.path.join(data, "mime", "packages"), dirs_exist_ok=True)
        self.said("update-mime-database", os.path.join(data, "mime"))
        by_bytes = os.path.join(self.folder, "character")
        shutil.copy(self.path("share", "voxmate", "msagent", "chars", "Gamp.acs"), by_bytes)
        by_name = os.path.join(self.folder, "character.acs")
        with open(by_name, "wb") as file:
            file.write(bytes(range(100)))
        env = dict(os.environ, XDG_DATA_DIRS=data, XDG_DATA_HOME=self.folder)
        for name in (by_bytes, by_name):
            result = subprocess.run(["gio", "info", "-a", "standard::content-type,standard::icon", name], env=env,
                                    check=True, capture_output=True, text=True)
            self.assertIn("standard::content-type: application/x-acs-character\n", result.stdout)
            self.assertIn("application-x-acs-character", result.stdout.split("standard::icon:")[1])

    def said(self, *command):
        result = subprocess.run(command, check=False, capture_output=True, text=True)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        return result.stdout + result.stderr


if __name__ == "__main__":
    unittest.main()
