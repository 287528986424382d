"""The jobs of the benchmarks: made once in a folder, the same every time.

Each is made by programs that only write the languages; groff and Ghostscript have to be there, and for the text and the
manual a manual page of bash, without which a page of chance words takes its place.
"""
import os
import random
import subprocess

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
WORDS = ("the printer draws a page of marks with paper and ink where each line follows from its own measure while "
         "fonts pens rules and rasters share one sheet and every job ends as whole pages in order").split()
GS = "gs -q -dBATCH -dNOPAUSE -dSAFER "


def shell(command, **more):
    subprocess.run(command, shell=True, check=True, stderr=subprocess.DEVNULL, **more)


class Jobs:
    """What a method returns lies in `work`; it is not made again."""

    def __init__(self, work):
        self.work = work

    def path(self, name):
        return os.path.join(self.work, name)

    def made(self, name, command):
        """The file that a shell command with {0} for its name makes."""
        path = self.path(name)
        if not os.path.exists(path):
            shell(command.format("'%s.part'" % path))
            os.rename(path + ".part", path)
        return path

    def troff_text(self, pages, with_drawings):
        """Source for groff -ms -p of about so many pages."""
        dice = random.Random(4711)
        lines = [".nr PS 11", ".nr VS 14", ".nr PO 1i", ".nr LL 6.3i"]
        for page in range(pages):
            lines += [".NH", " ".join(dice.choices(WORDS, k=4)).capitalize()]
            for _ in range(4 if with_drawings else 9):
                lines += [".PP", " ".join(dice.choices(WORDS, k=dice.randint(50, 80))).capitalize() + "."]
            if with_drawings:
                lines += [".PS"]
                for bar in range(8):
                    lines += ["box width 0.4 height %.2f with .sw at (%.2f, 0) fill %.2f"
                              % (dice.uniform(0.2, 1.4), bar * 0.6, dice.uniform(0.1, 0.9))]
                lines += ["line from (0,0) to (5,0)", "circle radius 0.3 at (5.6, 0.7)", ".PE", ".bp"]
        return "\n".join(lines) + "\n"

    def troff(self, name, pages, with_drawings):
        source = self.path(name + ".ms")
        if not os.path.exists(source):
            with open(source, "w") as f:
                f.write(self.troff_text(pages, with_drawings))
        return source

    def postscript(self, name, pages, with_drawings):
        source = self.troff(name, pages, with_drawings)
        return self.made(name + ".ps", "groff -ms -p -Tps -P-pa4 '%s' >{0}" % source)

    def first_pages(self, ps, pages):
        """As PDF: for tools that read only that, and to have exactly so many pages."""
        name = os.path.basename(ps)[:-3] + "-%d.pdf" % pages
        return self.made(name, GS + "-sDEVICE=pdfwrite -sPageList=1-%d -o {0} '%s'" % (pages, ps))

    # Jobs

    def raster(self):
        """20 pages A4 of 600 dpi raster in PCL 5."""
        pdf = self.first_pages(self.postscript("raster", 20, True), 20)
        return self.made("raster.pcl", GS + "-sDEVICE=ljet4 -r600 -sPAPERSIZE=a4 -o {0} '%s'" % pdf)

    def line(self):
        path = self.path("line.pcl")
        with open(path, "wb") as f:
            f.write(b"Hello\r\n\f")
        return path

    def text(self):
        """A long manual page in PCL 5, the same in PostScript and PDF, and the number of pages."""
        manual = subprocess.run(["man", "-w", "bash"], capture_output=True, text=True).stdout.strip()
        if manual:
            job = self.made("text.pcl", "gzip -cdf '%s' | groff -man -Tlj4 >{0}" % manual)
            ps = self.made("text.ps", "gzip -cdf '%s' | groff -man -Tps >{0}" % manual)
        else:
            ps = self.postscript("text", 80, False)
            job = self.made("text.pcl", "groff -ms -p -Tlj4 '%s' >{0}" % self.path("text.ms"))
        pdf = self.made("text.pdf", GS + "-sDEVICE=pdfwrite -o {0} '%s'" % ps)
        with open(job, "rb") as f:
            return job, ps, pdf, f.read().count(b"\f")

    def manual(self, pages=None):
        """The same text in PCL XL, with fonts as bitmaps of 600 dpi; all of it, or 20 dense pages."""
        pdf = self.text()[2]
        if pages is None:
            return self.made("manual.pxl", GS + "-sDEVICE=pxlcolor -r600 -o {0} '%s'" % pdf)
        return self.made("manual-%d.pxl" % pages,
                         GS + "-sDEVICE=pxlcolor -r600 -sPageList=3-%d -o {0} '%s'" % (pages + 2, pdf))

    def mixed(self):
        """20 pages of text, drawings and rasters in PCL 5, the same in PostScript and PDF, and the number of pages."""
        ps = self.postscript("mixed", 20, True)
        plain = self.made("mixed-plain.pcl", "groff -ms -p -Tlj4 -P-pa4 '%s' >{0}" % self.path("mixed.ms"))
        # A raster at the foot of every page: 600 x 300 dots of 150 dpi, in the drawing of a printer driver and in PostScript.
        dice = random.Random(4711)
        rows = [bytes(dice.randrange(256) & dice.randrange(256) for _ in range(75)) for _ in range(300)]
        raster = (b"\x1b*p600x2700Y\x1b*t150R\x1b*r0f600S\x1b*r1A\x1b*b0M" + b"".join(b"\x1b*b75W" + r for r in rows)
                  + b"\x1b*rB")
        with open(plain, "rb") as f:
            parts = f.read().split(b"\f")
        job = self.path("mixed.pcl")
        with open(job, "wb") as f:
            f.write((raster + b"\f").join(parts))
        picture = "".join(r.hex() for r in rows)
        with open(ps) as f:
            text = f.read()
        hook = ("%%!PS-Adobe-3.0\n/quill-row 75 string def /quill-data (%s) def\n<< /EndPage { exch pop 2 ne dup { gsave initmatrix "
                "162 50 translate 288 144 scale 0 setgray 600 300 true [600 0 0 -300 0 300] quill-data 0 () /SubFileDecode filter "
                "/ASCIIHexDecode filter imagemask grestore } if } >> setpagedevice\n") % picture
        whole = self.path("mixed-whole.ps")
        with open(whole, "w") as f:
            f.write(hook + text)
        pdf = self.made("mixed.pdf", GS + "-sDEVICE=pdfwrite -o {0} '%s'" % whole)
        return job, whole, pdf, len(parts) - 1

    def documents(self):
        """20 pages of mixed content in PCL XL, and the same in PostScript and PDF."""
        ps = self.postscript("documents", 20, True)
        pdf = self.first_pages(ps, 20)
        return self.made("documents.pxl", GS + "-sDEVICE=pxlcolor -r300 -o {0} '%s'" % pdf), ps, pdf

    def spool(self):
        """20 pages in an EMF spool file, the same in PDF, and the first page as a metafile."""
        job, pdf, single = self.path("spool.spl"), self.path("spool.pdf"), self.path("page.emf")
        if not os.path.exists(single):
            subprocess.run([os.path.join(ROOT, "bench/spool_and_pdf"), "20", job, pdf, single], check=True)
        return job, pdf, single
