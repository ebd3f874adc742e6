#!/usr/bin/python3
"""Pixel checks on screenshots (XWD, PNG or PPM, read through ImageMagick).

  pixcheck.py IMAGE CHECK...

Checks (all must pass; exit status 0 when they do, 1 otherwise):
  size WxH                         the image is W x H pixels
  at X,Y=R,G,B[~T]                 pixel (X, Y) is R,G,B within T per channel
  count X0,Y0,X1,Y1=R,G,B[~T]>=N   at least N such pixels in the box (X1, Y1 exclusive)
  count X0,Y0,X1,Y1=R,G,B[~T]<=N   at most N
  same OTHER X0,Y0,X1,Y1           the box is identical in IMAGE and OTHER
  differ OTHER X0,Y0,X1,Y1         the box differs somewhere between them
Coordinates have the origin at the top left, as on the screen.
"""
import subprocess
import sys


def load(path):
    ppm = subprocess.run(["/usr/bin/convert", path, "-strip", "-depth", "8", "ppm:-"],
                         check=True, capture_output=True).stdout
    # P6 header: magic, width, height, maxval, separated by blanks, with
    # comments from '#' to the end of a line.
    fields, pos = [], 0
    while len(fields) < 4:
        while ppm[pos:pos + 1].isspace():
            pos += 1
        if ppm[pos:pos + 1] == b"#":
            pos = ppm.index(b"\n", pos)
            continue
        start = pos
        while not ppm[pos:pos + 1].isspace():
            pos += 1
        fields.append(ppm[start:pos])
    pos += 1
    width, height = int(fields[1]), int(fields[2])
    return width, height, ppm[pos:pos + 3 * width * height]


def pixel(img, x, y):
    width, _, data = img
    i = 3 * (y * width + x)
    return data[i], data[i + 1], data[i + 2]


def colour(spec):
    tol = 0
    if "~" in spec:
        spec, t = spec.split("~")
        tol = int(t)
    return tuple(int(v) for v in spec.split(",")), tol


def near(p, c, tol):
    return all(abs(a - b) <= tol for a, b in zip(p, c))


def box(spec, img):
    x0, y0, x1, y1 = (int(v) for v in spec.split(","))
    return max(x0, 0), max(y0, 0), min(x1, img[0]), min(y1, img[1])


def main(argv):
    img = load(argv[1])
    args, ok, i = argv[2:], True, 0
    cache = {}
    while i < len(args):
        kind = args[i]
        if kind == "size":
            want = args[i + 1]
            got = "%dx%d" % (img[0], img[1])
            good, note = got == want, "size %s (want %s)" % (got, want)
            i += 2
        elif kind == "at":
            where, spec = args[i + 1].split("=")
            x, y = (int(v) for v in where.split(","))
            c, tol = colour(spec)
            p = pixel(img, x, y)
            good, note = near(p, c, tol), "at %d,%d is %s (want %s~%d)" % (x, y, p, c, tol)
            i += 2
        elif kind == "count":
            spec = args[i + 1]
            op = ">=" if ">=" in spec else "<="
            left, n = spec.split(op)
            where, cspec = left.split("=")
            x0, y0, x1, y1 = box(where, img)
            c, tol = colour(cspec)
            count = sum(1 for y in range(y0, y1) for x in range(x0, x1) if near(pixel(img, x, y), c, tol))
            good = count >= int(n) if op == ">=" else count <= int(n)
            note = "count %s=%s is %d (want %s%s)" % (where, cspec, count, op, n)
            i += 2
        elif kind in ("same", "differ"):
            if args[i + 1] not in cache:
                cache[args[i + 1]] = load(args[i + 1])
            other = cache[args[i + 1]]
            x0, y0, x1, y1 = box(args[i + 2], img)
            diffs = sum(1 for y in range(y0, y1) for x in range(x0, x1) if pixel(img, x, y) != pixel(other, x, y))
            good = (diffs == 0) if kind == "same" else (diffs > 0)
            note = "%s %s: %d pixels differ" % (kind, args[i + 2], diffs)
            i += 3
        else:
            print("pixcheck: unknown check %s" % kind)
            return 2
        print("%s %s" % ("PASS" if good else "FAIL", note))
        ok = ok and good
    return 0 if ok else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv))
