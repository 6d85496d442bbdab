#!/usr/bin/env python3
"""Writes the sample mesh of the mesh demo: a trefoil knot as a tube, in
Wavefront OBJ with normals, gzip-compressed (knot.obj.gz), and its material
library (knot.mtl) beside it.

    data/make-meshes.py [OUT-FOLDER]      (default: data/)

The knot's centre line is the (2, 3) torus knot
    c(t) = ((2 + cos 3t) cos 2t, (2 + cos 3t) sin 2t, -sin 3t),  t in [0, 2 pi),
sampled at 120 points; a ring of 10 vertices of radius 0.45 goes around
each point, in the plane normal to the tangent (a finite difference),
starting from the direction tangent x z. Rings are joined by two triangles a side, counter-clockwise
seen from outside. Numbers have 4 decimals; the gzip header carries no time,
so the output is the same on every run.
"""
import gzip
import math
import os
import sys

SEGMENTS, SIDES, RADIUS = 120, 10, 0.45


def centre(t):
    r = 2 + math.cos(3 * t)
    return (r * math.cos(2 * t), r * math.sin(2 * t), -math.sin(3 * t))


def sub(a, b):
    return tuple(x - y for x, y in zip(a, b))


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def unit(a):
    n = math.sqrt(sum(x * x for x in a))
    return tuple(x / n for x in a)


def main():
    out = sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.abspath(__file__))
    lines = ["# a trefoil knot tube, written by data/make-meshes.py", "mtllib knot.mtl"]
    normals = []
    e = 1e-3
    for i in range(SEGMENTS):
        t = 2 * math.pi * i / SEGMENTS
        p, a, b = centre(t), centre(t - e), centre(t + e)
        tangent = unit(sub(b, a))
        # the tangent is never vertical: the frame turns with it but does
        # not twist as the curve's own (Frenet) frame does
        binormal = unit(cross(tangent, (0.0, 0.0, 1.0)))
        normal = cross(binormal, tangent)
        for k in range(SIDES):
            ang = 2 * math.pi * k / SIDES
            n = tuple(math.cos(ang) * x + math.sin(ang) * y for x, y in zip(normal, binormal))
            v = tuple(c + RADIUS * d for c, d in zip(p, n))
            lines.append("v %.4f %.4f %.4f" % v)
            normals.append("vn %.4f %.4f %.4f" % n)
    lines += normals
    lines.append("usemtl copper")
    for i in range(SEGMENTS):
        j = (i + 1) % SEGMENTS
        for k in range(SIDES):
            l = (k + 1) % SIDES
            a, b, c, d = i * SIDES + k + 1, j * SIDES + k + 1, j * SIDES + l + 1, i * SIDES + l + 1
            lines.append("f %d//%d %d//%d %d//%d" % (a, a, c, c, b, b))
            lines.append("f %d//%d %d//%d %d//%d" % (a, a, d, d, c, c))
    text = ("\n".join(lines) + "\n").encode()
    with open(os.path.join(out, "knot.obj.gz"), "wb") as f:
        f.write(gzip.compress(text, 9, mtime=0))
    with open(os.path.join(out, "knot.mtl"), "w") as f:
        f.write("# the knot's material, written by data/make-meshes.py\n"
                "newmtl copper\nKa 0.25 0.12 0.05\nKd 0.85 0.45 0.18\n"
                "Ks 0.6 0.55 0.5\nNs 48\nd 1\n")


if __name__ == "__main__":
    main()
