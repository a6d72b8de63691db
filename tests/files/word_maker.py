"""Makes Word documents for the tests: an OpenDocument text with all kinds of content, which LibreOffice saves in Word's
formats, and XML documents written part by part."""

import os
import quopri
import re
import shutil
import subprocess
import zipfile

_NAMES = " ".join('xmlns:%s="%s"' % pair for pair in {
    **{name: "urn:oasis:names:tc:opendocument:xmlns:%s:1.0" % (space or name) for name, space in {
        "office": "", "style": "", "text": "", "table": "", "draw": "drawing", "fo": "xsl-fo-compatible",
        "svg": "svg-compatible"}.items()},
    "xlink": "http://www.w3.org/1999/xlink", "dc": "http://purl.org/dc/elements/1.1/"}.items())

_CHANGE = "<office:change-info><dc:creator>x</dc:creator><dc:date>2020-01-01T00:00:00</dc:date></office:change-info>"

_STYLES = """
<style:style style:name="H" style:family="text"><style:text-properties text:display="none"/></style:style>
<style:style style:name="HP" style:family="paragraph"><style:text-properties text:display="none"/></style:style>
<style:style style:name="B" style:family="text"><style:text-properties fo:font-weight="bold"/></style:style>
<text:list-style style:name="L1"><text:list-level-style-number text:level="1" style:num-format="1"
 style:num-suffix="."/></text:list-style>
<text:list-style style:name="L2"><text:list-level-style-bullet text:level="1" text:bullet-char="•"/></text:list-style>
<style:page-layout style:name="pm1"><style:page-layout-properties fo:page-width="21cm" fo:page-height="29.7cm"/>
<style:header-style/><style:footer-style/></style:page-layout>"""

_BODY = """
<text:tracked-changes>
<text:changed-region xml:id="c1" text:id="c1"><text:deletion>{change}<text:p>DELETED</text:p></text:deletion></text:changed-region>
<text:changed-region xml:id="c2" text:id="c2"><text:insertion>{change}</text:insertion></text:changed-region>
</text:tracked-changes>
<text:h text:outline-level="1">Überschrift</text:h>
<text:p>Some words<text:note text:id="f1" text:note-class="footnote"><text:note-citation>1</text:note-citation><text:note-body>
<text:p>FOOTNOTE</text:p></text:note-body></text:note> go on<text:note text:id="e1" text:note-class="endnote">
<text:note-citation>i</text:note-citation><text:note-body><text:p>ENDNOTE</text:p></text:note-body></text:note> here.</text:p>
<text:p>Seen <text:span text:style-name="H">HIDDEN </text:span>and <text:span text:style-name="B">bold</text:span>.</text:p>
<text:p text:style-name="HP">HIDDEN PARAGRAPH</text:p>
<text:p>Commented<office:annotation><dc:creator>A</dc:creator><dc:date>2020-01-01T00:00:00</dc:date><text:p>COMMENT</text:p>
</office:annotation> word.</text:p>
<text:p>Written by <text:author-name text:fixed="true">Ann Author</text:author-name>.</text:p>
<text:p>A link <text:a xlink:href="http://127.0.0.1:9/">to a page</text:a>.</text:p>
<table:table table:name="T"><table:table-column table:number-columns-repeated="2"/>
<table:table-row><table:table-cell><text:p>A1</text:p></table:table-cell>
<table:table-cell><text:p>B1</text:p><text:p>more of B1</text:p></table:table-cell></table:table-row>
<table:table-row><table:table-cell><text:p>A2</text:p></table:table-cell>
<table:table-cell><text:p>B2</text:p></table:table-cell></table:table-row></table:table>
<text:list text:style-name="L1"><text:list-item><text:p>one</text:p></text:list-item>
<text:list-item><text:p>two</text:p></text:list-item></text:list>
<text:list text:style-name="L2"><text:list-item><text:p>dot</text:p></text:list-item></text:list>
<text:p>A line<text:line-break/>break, a<text:tab/>tab and <text:s text:c="2"/>spaces.</text:p>
<text:p>Before <text:change text:change-id="c1"/>after, <text:change-start text:change-id="c2"/>inserted<text:change-end
 text:change-id="c2"/>.</text:p>
<text:p>Marked <text:bookmark-start text:name="bm"/>here<text:bookmark-end text:name="bm"/>, seen <text:bookmark-ref
 text:reference-format="text" text:ref-name="bm">here</text:bookmark-ref>.</text:p>
<text:p><draw:frame text:anchor-type="char" svg:width="4cm" svg:height="2cm"><draw:text-box><text:p>BOX</text:p></draw:text-box>
</draw:frame>Around a box.</text:p>
<text:p>Äöüß 😀 𝄞 Ж 漢字</text:p>
<text:p/>
<text:p>Last.</text:p>""".replace("{change}", _CHANGE)

# What Word's main text contains of it; every line is a paragraph.
SAMPLE = """Überschrift
Some words go on here.
Seen and bold.
Commented word.
Written by Ann Author.
A link to a page.
A1
B1
more of B1
A2
B2
one
two
dot
A line\vbreak, a\ttab and   spaces.
Before after, inserted.
Marked here, seen here.
Around a box.
Äöüß 😀 𝄞 Ж 漢字

Last.
""".replace("\n", "\r")

_MACRO = """<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE script:module PUBLIC "-//OpenOffice.org//DTD OfficeDocument 1.0//EN" "module.dtd">
<script:module xmlns:script="http://openoffice.org/2000/script" script:name="Module1" script:language="StarBasic">
Sub Save(source As String, target As String, filter As String, password As String)
  Dim load(0) As New com.sun.star.beans.PropertyValue
  load(0).Name = "Hidden" : load(0).Value = True
  Dim store(1) As New com.sun.star.beans.PropertyValue
  store(0).Name = "FilterName" : store(0).Value = filter
  store(1).Name = "Password" : store(1).Value = password
  document = StarDesktop.loadComponentFromURL(source, "_blank", 0, load())
  document.storeToURL(target, store())
  document.close(True)
End Sub
</script:module>
"""


def flat(body, styles=""):
    """A flat OpenDocument text with a header and a footer."""
    return ('<?xml version="1.0" encoding="UTF-8"?><office:document %s office:version="1.2" '
            'office:mimetype="application/vnd.oasis.opendocument.text"><office:automatic-styles>%s%s'
            '</office:automatic-styles><office:master-styles><style:master-page style:name="Standard" '
            'style:page-layout-name="pm1"><style:header><text:p>HEADER</text:p></style:header><style:footer><text:p>FOOTER'
            '</text:p></style:footer></style:master-page></office:master-styles><office:body><office:text>%s</office:text>'
            '</office:body></office:document>' % (_NAMES, _STYLES, styles, body))


def web_archive(page, charset):
    """A web page saved from a browser with everything that belongs to it."""
    return b"".join([
        b'MIME-Version: 1.0\r\nContent-Type: multipart/related; boundary="----=_Next"; type="text/html"\r\n\r\n'
        b'This is a message in several parts.\r\n\r\n------=_Next\r\nContent-Type: text/html; charset="',
        charset.encode(), b'"\r\nContent-Transfer-Encoding: quoted-printable\r\n\r\n', quopri.encodestring(page.encode(charset)),
        b'\r\n------=_Next\r\nContent-Type: image/png\r\nContent-Transfer-Encoding: base64\r\n\r\niVBORw0KGgo=\r\n'
        b'------=_Next--\r\n'])


def flat_picture(address):
    """An inline picture, for a flat document, that is linked and not stored in it."""
    return ('<draw:frame text:anchor-type="as-char" svg:width="2cm" svg:height="2cm"><draw:image xlink:href="%s" '
            'xlink:type="simple" xlink:show="embed" xlink:actuate="onLoad"/></draw:frame>' % address)


class Office:
    """LibreOffice with a profile in a folder of the tests."""

    FILTERS = {"doc": "MS Word 97", "docx": "MS Word 2007 XML", "rtf": "Rich Text Format",
               "odt": "writer8", "html": "HTML (StarWriter)", "xml": "MS Word 2003 XML"}

    def __init__(self, folder):
        self.folder = folder
        self.profile = os.path.join(folder, "profile")

    def run(self, *arguments):
        subprocess.run(["soffice", "-env:UserInstallation=file://" + self.profile, "--headless", "--norestore", *arguments],
                       check=True, timeout=120, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    @staticmethod
    def version():
        """Its version, as (25, 2)."""
        told = subprocess.run(["soffice", "--version"], check=True, timeout=120, capture_output=True).stdout.decode()
        return tuple(int(number) for number in re.search(r"(\d+)\.(\d+)", told).groups())

    def save(self, name, document, kind="doc"):
        """Saves a flat document in one of the formats, always as name.doc, and returns its path."""
        source, folder = os.path.join(self.folder, name + ".fodt"), os.path.join(self.folder, "out")
        with open(source, "w", encoding="utf-8") as file:
            file.write(document)
        self.run("--convert-to", "%s:%s" % (kind, self.FILTERS[kind]), "--outdir", folder, source)
        path = os.path.join(self.folder, name + ".doc")
        shutil.move(os.path.join(folder, name + "." + kind), path)
        return path

    def protect(self, path, target, password):
        """Saves a document again so that it opens only with a password."""
        # The profile has had its folder for macros since the first run.
        with open(os.path.join(self.profile, "user/basic/Standard/Module1.xba"), "w", encoding="utf-8") as file:
            file.write(_MACRO)
        self.run('macro:///Standard.Module1.Save("file://%s","file://%s","%s","%s")'
                 % (path, target, self.FILTERS["doc"], password))
        return target


def sample():
    return flat(_BODY)


def paragraphs(lines):
    return flat("".join("<text:p>%s</text:p>" % line for line in lines))


# Word's XML, part by part.

def paragraph(text, properties=""):
    return '<w:p><w:pPr>%s</w:pPr><w:r><w:t xml:space="preserve">%s</w:t></w:r></w:p>' % (properties, text)


def field(code, result):
    mark = '<w:r><w:fldChar w:fldCharType="%s"/></w:r>'
    return "%s<w:r><w:instrText>%s</w:instrText></w:r>%s<w:r><w:t>%s</w:t></w:r>%s" % (
        mark % "begin", code, mark % "separate", result, mark % "end")


def table(rows, properties=""):
    return "<w:tbl><w:tblPr>%s</w:tblPr>%s</w:tbl>" % (properties, "".join(
        "<w:tr>%s</w:tr>" % "".join('<w:tc><w:tcPr><w:tcW w:w="1500" w:type="dxa"/></w:tcPr>%s</w:tc>' % paragraph(cell)
                                    for cell in row) for row in rows))


def text_box(text):
    return ('<mc:AlternateContent><mc:Choice Requires="wps"><w:drawing><wp:anchor distT="0" distB="0" distL="0" distR="0" '
            'simplePos="0" relativeHeight="2" behindDoc="0" locked="0" layoutInCell="1" allowOverlap="1"><wp:simplePos x="0" '
            'y="0"/><wp:positionH relativeFrom="column"><wp:posOffset>1000</wp:posOffset></wp:positionH><wp:positionV '
            'relativeFrom="paragraph"><wp:posOffset>1000</wp:posOffset></wp:positionV><wp:extent cx="1440000" cy="720000"/>'
            '<wp:wrapSquare wrapText="bothSides"/><wp:docPr id="1" name="Box"/><a:graphic><a:graphicData '
            'uri="http://schemas.microsoft.com/office/word/2010/wordprocessingShape"><wps:wsp><wps:cNvSpPr txBox="1"/>'
            '<wps:spPr><a:xfrm><a:off x="0" y="0"/><a:ext cx="1440000" cy="720000"/></a:xfrm><a:prstGeom prst="rect"/>'
            '</wps:spPr><wps:txbx><w:txbxContent><w:p><w:r><w:t>%s</w:t></w:r></w:p></w:txbxContent></wps:txbx><wps:bodyPr/>'
            '</wps:wsp></a:graphicData></a:graphic></wp:anchor></w:drawing></mc:Choice></mc:AlternateContent>' % text)


def linked_picture(relation):
    return ('<w:drawing><wp:inline><wp:extent cx="720000" cy="720000"/><wp:docPr id="9" name="Picture"/><a:graphic>'
            '<a:graphicData uri="http://schemas.openxmlformats.org/drawingml/2006/picture"><pic:pic><pic:nvPicPr>'
            '<pic:cNvPr id="9" name="x.png" descr="PICTURE"/><pic:cNvPicPr/></pic:nvPicPr><pic:blipFill><a:blip r:link="%s"/>'
            '</pic:blipFill><pic:spPr><a:xfrm><a:off x="0" y="0"/><a:ext cx="720000" cy="720000"/></a:xfrm><a:prstGeom '
            'prst="rect"/></pic:spPr></pic:pic></a:graphicData></a:graphic></wp:inline></w:drawing>' % relation)


def write_xml(path, body, relations=(), settings_relations=()):
    """An XML document; relations are triples of name, type and address outside it."""
    office = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
    package = "http://schemas.openxmlformats.org/package/2006"
    wordml = "application/vnd.openxmlformats-officedocument.wordprocessingml.%s+xml"
    drawing = "http://schemas.openxmlformats.org/drawingml/2006/"
    names = {"w": "http://schemas.openxmlformats.org/wordprocessingml/2006/main", "r": office, "a": drawing + "main",
             "wp": drawing + "wordprocessingDrawing", "pic": drawing + "picture",
             "wps": "http://schemas.microsoft.com/office/word/2010/wordprocessingShape",
             "mc": "http://schemas.openxmlformats.org/markup-compatibility/2006"}
    spaces = " ".join('xmlns:%s="%s"' % pair for pair in names.items())

    def related(inside, outside):
        return '<Relationships xmlns="%s/relationships">%s%s</Relationships>' % (package, "".join(
            '<Relationship Id="%s" Type="%s/%s" Target="%s"/>' % (name, office, kind, target)
            for name, kind, target in inside), "".join(
                '<Relationship Id="%s" Type="%s/%s" Target="%s" TargetMode="External"/>' % (name, office, kind, target)
                for name, kind, target in outside))

    parts = {
        "[Content_Types].xml":
            '<Types xmlns="%s/content-types"><Default Extension="rels" '
            'ContentType="application/vnd.openxmlformats-package.relationships+xml"/><Override PartName="/word/document.xml" '
            'ContentType="%s"/><Override PartName="/word/settings.xml" ContentType="%s"/></Types>'
            % (package, wordml % "document.main", wordml % "settings"),
        "_rels/.rels": related([("rId1", "officeDocument", "word/document.xml")], []),
        "word/_rels/document.xml.rels": related([("rId1", "settings", "settings.xml")], relations),
        "word/_rels/settings.xml.rels": related([], settings_relations),
        "word/settings.xml": '<w:settings %s>%s</w:settings>' % (spaces, "".join(
            '<w:attachedTemplate r:id="%s"/>' % name for name, _, _ in settings_relations)),
        "word/document.xml": '<w:document %s><w:body>%s<w:sectPr/></w:body></w:document>' % (spaces, body)}
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, content in parts.items():
            archive.writestr(name, '<?xml version="1.0" encoding="UTF-8"?>' + content)
    return path
