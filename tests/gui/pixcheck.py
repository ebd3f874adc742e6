#!/usr/bin/python3
"""Pixel checks on screenshots (XWD, PNG or PPM, read through ImageMagick).

  pixcheck.py IMAGE CHECK...     exit status 0 when every check passes

  size WxH                         the image is W x H pixels
  at X,Y=R,G,B[~T]                 pixel (X, Y) is R,G,B within T per channel
  count X0,Y0,X1,Y1=R,G,B[~T]>=N   at least N such pixels in the box (X1, Y1 exclusive)
  count X0,Y0,X1,Y1=R,G,B[~T]<=N   at most N
  same OTHER X0,Y0,X1,Y1           the box is identical in IMAGE and OTHER
  differ OTHER X0,Y0,X1,Y1         the box differs somewhere between them
Coordinates have the origin at the top left, as on the screen.
"""
import re
import subprocess
import sys


def load(path):
    ppm = subprocess.run(["/usr/bin/convert", path, "-strip", "-depth", "8", "ppm:-"],
                         check=True, capture_output=True).stdout
    # P6, width, height, maxval: blank-separated, '#' comments to line end.
    header = re.match(rb"P6(?:\s+|#[^\n]*\n)+(\d+)(?:\s+|#[^\n]*\n)+(\d+)(?:\s+|#[^\n]*\n)+\d+\s", ppm)
    w, h = int(header.group(1)), int(header.group(2))
    data = ppm[header.end():]
    return w, h, lambda x, y: tuple(data[3 * (y * w + x):3 * (y * w + x) + 3])


def colour(text):
    rgb, _, tol = text.partition("~")
    return tuple(int(v) for v in rgb.split(",")), int(tol or 0)


def box(text, img):
    x0, y0, x1, y1 = (int(v) for v in text.split(","))
    return [(x, y) for y in range(max(y0, 0), min(y1, img[1])) for x in range(max(x0, 0), min(x1, img[0]))]


def near(p, c, tol):
    return all(abs(a - b) <= tol for a, b in zip(p, c))


def main(args):
    img, ok, others = load(args[0]), True, {}
    i = 1
    while i < len(args):
        kind, arg = args[i], args[i + 1]
        if kind == "size":
            got = "%dx%d" % img[:2]
            good, note, i = got == arg, "size %s (want %s)" % (got, arg), i + 2
        elif kind == "at":
            where, want = arg.split("=")
            (x, y), (c, tol) = (int(v) for v in where.split(",")), colour(want)
            good, note, i = near(img[2](x, y), c, tol), "at %s is %s (want %s)" % (where, img[2](x, y), want), i + 2
        elif kind == "count":
            op = ">=" if ">=" in arg else "<="
            left, n = arg.split(op)
            where, want = left.split("=")
            c, tol = colour(want)
            count = sum(1 for x, y in box(where, img) if near(img[2](x, y), c, tol))
            good = count >= int(n) if op == ">=" else count <= int(n)
            note, i = "count %s is %d (want %s%s)" % (left, count, op, n), i + 2
        elif kind in ("same", "differ"):
            if arg not in others:
                others[arg] = load(arg)
            other = others[arg]
            diffs = sum(1 for x, y in box(args[i + 2], img) if img[2](x, y) != other[2](x, y))
            good = diffs == 0 if kind == "same" else diffs > 0
            note, i = "%s %s: %d pixels differ" % (kind, args[i + 2], diffs), i + 3
        else:
            print("pixcheck: unknown check %s" % kind)
            return 2
        print("%s %s" % ("PASS" if good else "FAIL", note))
        ok = ok and good
    return 0 if ok else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
