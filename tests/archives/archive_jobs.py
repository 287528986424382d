"""Print jobs for the tests of archives, and what has to come out of them."""
import json
import os

from PIL import Image

KINDS_OF_BROKEN = [
    (b"", 2, 0),  # empty
    (b"\x89PNG\r\n\x1a\n" + bytes(64), 2, 0),  # no print job
    (b"\x1b*t75R\x1b*r1A\x1b*b1W\xff\x1b*rB\f\x1b*t75R\x1b*r1A\x1b*b999W\xff", 4, 1),  # cut off in its second page
]
# What names can hold: the same stem in several folders and with several extensions, what a second page's name would
# be, bytes that are no UTF-8, a line's end, spaces, an option.
NAMES = [b"job%d.pcl", b"job%d.prn", b"job%d", b"job%d_p0002", b"-q %d", b"two\nlines %d", b"caf\xe9 %d", b"'$%d\"`;"]


def page(number):
    return b"\x1b&a%dC\x1b(s0p10hPage %d\f" % (number % 40, number)


def make_jobs(root, count):
    """Writes `count` jobs, 3 in 100 of them broken. Returns, for every relative path, exit code and pages."""
    expected = {}
    for number in range(count):
        name = os.fsdecode(NAMES[number % len(NAMES)] % (number // len(NAMES)))
        path = os.path.join("folder %d" % (number % 5), name)
        if number % 100 in (10, 45, 56):
            data, code, pages = KINDS_OF_BROKEN[number % len(KINDS_OF_BROKEN)]
        else:
            pages, code = 1 + number % 5, 0
            data = b"\x1bE" + b"".join(page(n) for n in range(pages))
        os.makedirs(os.path.join(root, os.path.dirname(path)), exist_ok=True)
        with open(os.path.join(root, path), "wb") as f:
            f.write(data)
        expected[path] = code, pages
    return expected


def problems_of(work, source, output, extension, expected):
    """What is not as it should be: every job told once, with the right exit code; its pages there, and no other file
    anywhere."""
    problems, told, files = [], {}, set()
    with open(os.path.join(work, "report.jsonl"), encoding="utf-8", errors="surrogateescape") as f:
        for text in f:
            line = json.loads(text)
            name = os.fsdecode(bytes.fromhex(line["inputHex"])) if "inputHex" in line else line["input"]
            job = os.path.relpath(name, source)
            if job in told:
                problems.append("%r is told twice" % job)
            told[job] = line
    for job, (code, pages) in expected.items():
        line = told.pop(job, None)
        if line is None:
            problems.append("%r is not told" % job)
        elif (line["exitCode"], line["pages"]) != (code, pages):
            problems.append("%r: %s" % (job, line))
        elif pages:
            images = [os.path.join(output, job + ".tif")] if extension == "tif" else [
                os.path.join(output, job, "page%s.%s" % ("" if n == 1 else "_p%04d" % n, extension))
                for n in range(1, pages + 1)]
            frames = 0
            for path in images:
                with Image.open(path) as image:
                    frames += getattr(image, "n_frames", 1)
                    image.load()
                files.add(path)
            if frames != pages:
                problems.append("%r has %d pages" % (job, frames))
    problems.extend("%r is told of and was no job" % job for job in told)
    for folder, _, names in os.walk(output):
        problems.extend("%r is left over" % name for name in names if os.path.join(folder, name) not in files)
    return problems
