#!/usr/bin/env python3
"""Compiles every public header on its own: each must stand alone.

The public headers are those of the <OpenSG/...> include tree (the host
core's and the library's, linked into INCLUDE/OpenSG) and the generated
<Class>Base.h and <Class>Fields.h of the .fcd files below the source folders.

Compiling each header in a translation unit of its own costs a few hundred
compiler runs; two exact shortcuts keep it to about a minute of CPU:

* Chains. If header A is included (directly or not) by header B, and B not
  by A, then "#include A, #include B" tests B exactly as B alone does: B
  includes A anyway, so B's text sees the same declarations. A translation
  unit can therefore test a whole chain A1 < A2 < ... of such headers, and a
  minimum set of chains covers all headers (Dilworth; found by matching).
* Precompiled heads. By the same argument a chain whose first header
  includes X may be preceded by X, so X is compiled once as a precompiled
  header for all those chains. X itself is tested in a chain without it.

A failing translation unit is compiled again header by header, without a
precompiled header, to name the header that does not stand alone.

    compile_headers.py --include INCLUDE --gen GEN --src DIR... --cxx COMPILER
                       [--jobs N] [--work DIR] [--flag F]...
"""

import argparse
import os
import re
import resource
import shutil
import subprocess
import sys
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor

INCLUDE_RE = re.compile(r'^\s*#\s*include\s*<OpenSG/([^>]+)>', re.M)

# Heads shared by most chains, smallest first; each includes the one before.
PCH_LEVELS = ['OSGBaseTypes.h', 'OSGFieldContainerPtr.h', 'OSGAttachmentContainerFields.h']


def public_headers(include_dir, gen_dir, src_dirs):
    """Header name -> path."""
    headers = {}
    inc = os.path.join(include_dir, 'OpenSG')
    for f in os.listdir(inc):
        if f.endswith('.h'):
            headers[f] = os.path.join(inc, f)
    gen = os.path.join(gen_dir, 'OpenSG')
    for d in src_dirs:
        for root, _, files in os.walk(d):
            for f in files:
                if f.endswith('.fcd'):
                    stem = f[:-4]
                    for suffix in ('Base.h', 'Fields.h'):
                        path = os.path.join(gen, stem + suffix)
                        if os.path.exists(path):
                            headers[stem + suffix] = path
    return headers


def closures(headers):
    """Header -> the set of public headers it includes, itself included."""
    direct = {}
    for name, path in headers.items():
        with open(path, encoding='utf-8', errors='replace') as fh:
            direct[name] = [h for h in INCLUDE_RE.findall(fh.read()) if h in headers]
    result = {}
    for name in headers:
        seen, todo = {name}, [name]
        while todo:
            for h in direct[todo.pop()]:
                if h not in seen:
                    seen.add(h)
                    todo.append(h)
        result[name] = seen
    return result


def chain_cover(names, clos):
    """A minimum set of chains A1 < A2 < ... covering names, where A < B means
    that B includes A and A doesn't include B."""
    names = sorted(names)
    succ = {a: [b for b in names if a in clos[b] and b not in clos[a]] for a in names}
    match = {}  # b -> the a before it

    def augment(a, seen):
        for b in succ[a]:
            if b not in seen:
                seen.add(b)
                if b not in match or augment(match[b], seen):
                    match[b] = a
                    return True
        return False

    sys.setrecursionlimit(max(10000, 4 * len(names)))
    for a in names:
        augment(a, set())
    after = {a: b for b, a in match.items()}
    chains = []
    for a in names:
        if a in match:
            continue
        chain = [a]
        while chain[-1] in after:
            chain.append(after[chain[-1]])
        chains.append(chain)
    return chains


def plan(headers, clos):
    """[(pch or None, chains)]: each header in exactly one chain; a chain with
    a pch has it in the closure of its first header (and is not it)."""
    levels = [x for x in PCH_LEVELS if x in headers]
    rest, groups = set(headers), []
    for x in reversed(levels):
        group = {h for h in rest if x in clos[h] and h not in clos[x]}
        rest -= group
        groups.append((x, chain_cover(group, clos)))
    groups.append((None, chain_cover(rest, clos)))
    return groups


def run(cmd):
    p = subprocess.run(cmd, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    return p.returncode, p.stdout


def main():
    ap = argparse.ArgumentParser(description=__doc__.split('\n')[0])
    ap.add_argument('--include', required=True)
    ap.add_argument('--gen', required=True)
    ap.add_argument('--src', nargs='+', required=True)
    ap.add_argument('--cxx', required=True)
    ap.add_argument('--jobs', type=int, default=2)
    ap.add_argument('--work')
    ap.add_argument('--flag', action='append', default=[])
    args = ap.parse_args()

    start = time.time()
    headers = public_headers(args.include, args.gen, args.src)
    clos = closures(headers)
    groups = plan(headers, clos)

    work = args.work or tempfile.mkdtemp(prefix='headers-')
    os.makedirs(work, exist_ok=True)
    clang = 'clang' in os.path.basename(args.cxx)
    base = [args.cxx, '-std=c++17', '-I', args.include, '-I', args.gen] + args.flag

    # precompiled heads
    pch_flags, failed = {}, []
    for gi, (x, _) in enumerate(groups):
        if x is None:
            continue
        head = os.path.join(work, 'head%d.h' % gi)
        with open(head, 'w') as fh:
            fh.write('#include <OpenSG/%s>\n' % x)
        out = head + ('.pch' if clang else '.gch')
        rc, text = run(base + ['-x', 'c++-header', head, '-o', out])
        if rc != 0:
            print(text)
            failed.append(x)
            continue
        pch_flags[gi] = ['-include-pch', out] if clang else ['-include', head]

    units = []
    for gi, (x, chains) in enumerate(groups):
        for ci, chain in enumerate(chains):
            path = os.path.join(work, 'unit%d_%03d.cpp' % (gi, ci))
            with open(path, 'w') as fh:
                fh.writelines('#include <OpenSG/%s>\n' % h for h in chain)
            units.append((path, chain, pch_flags.get(gi, [])))

    def compile_unit(unit):
        path, chain, pch = unit
        rc, text = run(base + pch + ['-fsyntax-only', path])
        if rc == 0:
            return []
        # name the header that fails alone
        bad = []
        for h in chain:
            one = path[:-4] + '_' + h.replace('.', '_') + '.cpp'
            with open(one, 'w') as fh:
                fh.write('#include <OpenSG/%s>\n' % h)
            rc1, text1 = run(base + ['-fsyntax-only', one])
            if rc1 != 0:
                bad.append((h, text1))
        return bad or [(' + '.join(chain), text)]

    with ThreadPoolExecutor(max_workers=max(1, args.jobs)) as pool:
        for bad in pool.map(compile_unit, units):
            for h, text in bad:
                print('%s does not compile on its own:\n%s' % (h, text))
                failed.append(h)

    if not args.work:
        shutil.rmtree(work, ignore_errors=True)
    cpu = resource.getrusage(resource.RUSAGE_CHILDREN)
    print('%d public headers in %d translation units (%d precompiled heads, %s): '
          '%.0f s CPU, %.0f s wall'
          % (len(headers), len(units), len(pch_flags), os.path.basename(args.cxx),
             cpu.ru_utime + cpu.ru_stime, time.time() - start))
    if failed:
        print('%d header(s) do not stand alone' % len(failed))
        return 1
    print('every public header compiles on its own')
    return 0


if __name__ == '__main__':
    sys.exit(main())
