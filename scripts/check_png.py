#!/usr/bin/env python3
"""Checks the example's picture: check_png.py FILE WIDTH HEIGHT

The file must be a PNG of WIDTH x HEIGHT pixels that shows the example's
scene over its background (0.1, 0.12, 0.2): the orange ring (the mesh) and
the grey ball of the volume each cover a fair share of the picture, and the
centre, which only the volume covers, is not background. Reads the PNG with
nothing but zlib, so it runs on a bare Python."""
import struct
import sys
import zlib

BACKGROUND = (26, 31, 51)


def read_png(path):
    with open(path, "rb") as f:
        data = f.read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError("not a PNG file")
    pos, header, idat = 8, None, b""
    while pos + 8 <= len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            idat += body
        elif kind == b"IEND":
            break
        pos += 12 + length
    if header is None:
        raise ValueError("no IHDR chunk")
    width, height, depth, colour, _, _, interlace = header
    channels = {2: 3, 6: 4}.get(colour)
    if depth != 8 or channels is None or interlace != 0:
        raise ValueError("not 8-bit RGB(A) without interlace (depth %d, colour type %d)"
                         % (depth, colour))
    raw = zlib.decompress(idat)
    stride = width * channels
    rows, prev = [], bytearray(stride)
    for y in range(height):
        line = raw[y * (stride + 1):(y + 1) * (stride + 1)]
        kind, cur = line[0], bytearray(line[1:])
        for x in range(stride):
            a = cur[x - channels] if x >= channels else 0
            b = prev[x]
            c = prev[x - channels] if x >= channels else 0
            if kind == 1:
                cur[x] = (cur[x] + a) & 255
            elif kind == 2:
                cur[x] = (cur[x] + b) & 255
            elif kind == 3:
                cur[x] = (cur[x] + (a + b) // 2) & 255
            elif kind == 4:
                p = a + b - c
                pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
                pred = a if pa <= pb and pa <= pc else (b if pb <= pc else c)
                cur[x] = (cur[x] + pred) & 255
            elif kind != 0:
                raise ValueError("bad filter type %d" % kind)
        rows.append([tuple(cur[i:i + 3]) for i in range(0, stride, channels)])
        prev = cur
    return width, height, rows


def classify(p):
    if all(abs(p[i] - BACKGROUND[i]) <= 6 for i in range(3)):
        return "background"
    r, g, b = p
    if r > 90 and r > 1.3 * g and g > b:
        return "mesh"
    return "volume"


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    path, want_w, want_h = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
    try:
        width, height, rows = read_png(path)
    except (OSError, ValueError, zlib.error) as e:
        sys.exit("%s: %s" % (path, e))
    if (width, height) != (want_w, want_h):
        sys.exit("%s: %d x %d pixels, expected %d x %d" % (path, width, height, want_w, want_h))
    count = {"background": 0, "mesh": 0, "volume": 0}
    for row in rows:
        for p in row:
            count[classify(p)] += 1
    total = width * height
    share = {k: v / total for k, v in count.items()}
    print("%s: %d x %d, background %.1f%%, mesh %.1f%%, volume %.1f%%"
          % (path, width, height, 100 * share["background"], 100 * share["mesh"],
             100 * share["volume"]))
    centre = rows[height // 2][width // 2]
    failures = []
    if share["mesh"] < 0.02:
        failures.append("the ring (orange) covers less than 2% of the picture")
    if share["volume"] < 0.05:
        failures.append("the volume covers less than 5% of the picture")
    if share["background"] < 0.2:
        failures.append("less than 20% background: the scene does not sit in the frame")
    if classify(centre) != "volume":
        failures.append("the centre pixel %s is not the volume's" % (centre,))
    if failures:
        sys.exit("%s: %s" % (path, "; ".join(failures)))


if __name__ == "__main__":
    main()
