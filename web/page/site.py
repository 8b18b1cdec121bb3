"""Puts the site together: the page, the program and the game's data, as static files that any web
server may hand out from any path. Every name but the page's own and its worker's holds the hash of
its content, so that a browser may keep the file for ever.

Usage: site.py SITE ROOT PROGRAM PICTURES
PROGRAM.js and PROGRAM.wasm are the program; PICTURES has the data's pictures as WebP files, and
these unpacked.
"""

import gzip
import hashlib
import json
import pathlib
import re
import shutil
import subprocess
import sys
import zlib

FIRST_VISIT = 11_000_000  # bytes that it may load
BMP_HEADER = 54  # bytes before the pixels

site, root, program, pictures = map(pathlib.Path, sys.argv[1:5])
page = root / "web/page"
loaded = []  # what the page loads, for its list
names = {}  # what a file of the page is called in the site


def write(name, content):
    """Writes the content as NAME with its hash before the extension, and returns that name."""
    path = pathlib.Path(name)
    hashed = path.with_stem(f"{path.stem}.{hashlib.sha256(content).hexdigest()[:12]}")
    (site / hashed).write_bytes(content)
    return {"path": str(hashed), "size": len(content)}


def write_packed(file):
    # No name ends with .gz: some servers would then have the browser unpack it, others not.
    return write(f"data/{file.name}", gzip.compress(file.read_bytes(), 9, mtime=0))


def write_picture(file):
    """The picture as WebP, whose pixels differ by little; their sum, by which a browser that
    falsifies them is found; and the very picture, for that one."""
    webp = pictures / f"{file.stem}.webp"
    pixels = (pictures / file.name).read_bytes()[BMP_HEADER:]
    return {**write(f"data/{webp.name}", webp.read_bytes()), "sum": zlib.adler32(pixels),
            "full": write_packed(file)}


def write_page_file(name, content):
    names[name] = write(name, content)["path"]


def filled(name):
    """The bytes of a file of the page, each @NAME@ in it replaced by what it stands for."""
    text = (page / name).read_text("utf-8")
    return re.sub("@([^@\\s]+)@", lambda match: names[match[1]], text).encode()


def converted(file, *options):
    """The bytes of a picture that ImageMagick makes from a file."""
    return subprocess.run(["convert", file, *options], check=True, stdout=subprocess.PIPE).stdout


shutil.rmtree(site, ignore_errors=True)
(site / "data").mkdir(parents=True)
for file in sorted((root / "data").iterdir()):
    if file.suffix == ".bmp":
        loaded.append({"name": file.name, **write_picture(file)})
    elif file.suffix in (".obj", ".txt"):
        loaded.append({"name": file.name, **write_packed(file)})
wasm = program.with_suffix(".wasm")
loaded.append({"name": wasm.name, **write_packed(wasm)})

icons = root / "packaging/icons"
for size in ("32", "192", "512"):
    write_page_file(f"icon-{size}.png", converted(icons / "512.png", "-resize", size, "png:-"))
# Whatever shape a system cuts out of this one, the picture itself is whole.
write_page_file("icon-maskable.png", converted(
    icons / "512.png", "-resize", "400", "-background", "#1b2347", "-gravity", "center",
    "-extent", "512x512", "png:-"))
# The heading is the upper part of the title's picture.
write_page_file("heading.jpg", converted(
    root / "data/intro.bmp", "-crop", "560x400+56+62", "+repage", "-strip", "-quality", "88", "jpg:-"))
write_page_file("talvery.js", program.with_suffix(".js").read_bytes())
for file in sorted(page.glob("*.css")) + sorted(page.glob("*.js")):
    if file.name != "service_worker.js":
        write_page_file(file.name, file.read_bytes())
write_page_file("talvery.webmanifest", filled("talvery.webmanifest"))

# What a visit needs, and the worker keeps. The town's picture is for pages that show a link to this.
kept = [*names.values(), *(file["path"] for file in loaded)]
first_visit = sum((site / path).stat().st_size for path in kept)
write_page_file("town.jpg", (root / "docs/town.jpg").read_bytes())
names.update(files=json.dumps(loaded, indent=0), megabytes=f"{first_visit / 1e6:.0f}")
index = filled("index.html")
(site / "index.html").write_bytes(index)
names.update(index=write("index.html", index)["path"], kept=" ".join(kept))
(site / "service_worker.js").write_bytes(filled("service_worker.js"))

print(f"{site}: a first visit loads {first_visit} bytes")
if first_visit > FIRST_VISIT:
    sys.exit(f"a first visit may load {FIRST_VISIT} bytes")
