"""Lets other programs write the reference text in their formats."""

import os
import shutil
import subprocess

import reference


def _run(command, **options):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=600, **options)


class Maker:
    """Makes files of one reference text in a folder."""

    def __init__(self, folder, blocks):
        self.folder = folder
        self.blocks = blocks

    def path(self, name):
        return os.path.join(self.folder, name)

    def _write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)
        return self.path(name)

    def markdown(self):
        return self._write("reference.md", reference.markdown(self.blocks))

    def flat(self, columns=1):
        return self._write("office%s.fodt" % (columns if columns > 1 else ""),
                           reference.open_document(self.blocks, columns))

    def office(self, ending, columns=1):
        """What LibreOffice saves under an ending."""
        source = self.flat(columns)
        filters = {"html": "html:XHTML Writer File", "doc": "doc:MS Word 97", "docx": "docx:MS Word 2007 XML"}
        _run(["soffice", "-env:UserInstallation=file://" + self.path("profile"), "--headless", "--convert-to",
              filters.get(ending, ending), "--outdir", self.folder, source])
        return os.path.splitext(source)[0] + "." + ending

    def office_page(self):
        """LibreOffice's other kind of page, which is no XHTML."""
        source = self.flat()
        target = self.path("plain")
        os.makedirs(target, exist_ok=True)
        _run(["soffice", "-env:UserInstallation=file://" + self.path("profile"), "--headless", "--convert-to",
              "html:HTML (StarWriter)", "--outdir", target, source])
        return os.path.join(target, "office.html")

    def pandoc(self, ending):
        target = self.path("pandoc." + ending)
        _run(["pandoc", "--standalone", "--metadata", "title=", "-f", "markdown-smart", "-o", target, self.markdown()])
        return target

    def groff(self, columns=1):
        source = self._write("groff%d.ms" % columns, reference.troff(reference.western(self.blocks), columns))
        target = self.path("groff%d.pdf" % columns)
        with open(target, "wb") as out:
            subprocess.run(["groff", "-k", "-ms", "-Tpdf", source], check=True, stdout=out, stderr=subprocess.DEVNULL)
        return target

    def latex(self, columns=1):
        source = self._write("latex%d.tex" % columns, reference.latex(reference.western(self.blocks), columns))
        _run(["pdflatex", "-interaction=batchmode", "-output-directory", self.folder, source])
        return self.path("latex%d.pdf" % columns)

    def browser(self, columns=1, heads=True):
        """What Chromium prints, with its own line above and below (title, date, address, page) or without."""
        style = "body{text-align:justify;column-count:%d} h1,h2{text-align:left}" % columns
        style += "table{font-size:60%}" if columns > 1 else ""
        source = self._write("browser%d.html" % columns, reference.page(self.blocks, style))
        target = self.path("browser%d%s.pdf" % (columns, "" if heads else "-plain"))
        _run(["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
              "--disable-background-networking", "--disable-component-update", "--disable-sync",
              "--user-data-dir=" + self.path("browser"), *([] if heads else ["--no-pdf-header-footer"]),
              "--print-to-pdf=" + target, "file://" + source])
        return target

    def weasyprint(self, columns=1):
        style = """@page{size:A4;margin:2cm;@top-center{content:"RUNNINGHEAD of the reference text"}
            @bottom-center{content:"Page " counter(page)}}
            body{text-align:justify;hyphens:auto;column-count:%d} h1,h2{text-align:left;hyphens:none}
            """ % columns
        style += "table{font-size:60%}" if columns > 1 else ""
        source = self._write("weasyprint%d.html" % columns, reference.page(self.blocks, style))
        target = self.path("weasyprint%d.pdf" % columns)
        _run(["weasyprint", source, target])
        return target

    def calibre(self, ending, *options, blocks=None):
        """What Calibre makes of a web page of the text."""
        source = self._write("calibre.html", reference.page(blocks or self.blocks))
        target = self.path("calibre." + ending)
        _run(["ebook-convert", source, target, *options],
             env={**os.environ, "CALIBRE_CONFIG_DIRECTORY": self.path("calibre"), "QT_QPA_PLATFORM": "offscreen",
                  "QTWEBENGINE_CHROMIUM_FLAGS": "--no-sandbox --disable-gpu"})
        return target


def has(program):
    return shutil.which(program) is not None
