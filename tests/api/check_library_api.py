#!/usr/bin/env python3
"""Fails when library code uses a host-core addition.

The additions, each with the pattern that finds its use and the reason it is
host-core only, are listed in opensg/host-core-only.txt. Sources are searched
with comments and string literals blanked out (line numbers stay).

    check_library_api.py LIST DIR...           every match is reported; exit 1 if any
    check_library_api.py --expect-all LIST DIR...
                                               exit 1 unless every entry matches
                                               somewhere (checks the patterns)
"""

import os
import re
import sys

SUFFIXES = ('.h', '.hpp', '.inl', '.cpp', '.cc', '.cxx')


def read_list(path):
    """Entries of the list: dicts with name, pattern (compiled) and reason."""
    entries, cur, key = [], {}, None
    with open(path) as fh:
        for raw in fh.read().split('\n') + ['']:
            line = raw.rstrip()
            if line.startswith('#'):
                continue
            if not line:
                if cur:
                    entries.append(cur)
                cur, key = {}, None
                continue
            m = re.match(r'^(name|pattern|reason):\s*(.*)$', line)
            if m:
                key = m.group(1)
                cur[key] = m.group(2)
            elif key and line[:1].isspace():
                cur[key] += ' ' + line.strip()
            else:
                sys.exit('%s: cannot read line %r' % (path, raw))
    for e in entries:
        missing = [k for k in ('name', 'pattern', 'reason') if k not in e]
        if missing:
            sys.exit('%s: entry %r lacks %s' % (path, e.get('name'), ', '.join(missing)))
        e['regex'] = re.compile(e['pattern'])
    return entries


def blank_code(text):
    """The text with comments and string and character literals (raw strings
    included) replaced by blanks, newlines kept."""
    out, i, n = [], 0, len(text)

    def blank(s):
        return re.sub(r'[^\n]', ' ', s)

    while i < n:
        c = text[i]
        if text.startswith('//', i):
            j = text.find('\n', i)
            j = n if j < 0 else j
        elif text.startswith('/*', i):
            j = text.find('*/', i + 2)
            j = n if j < 0 else j + 2
        else:
            m = re.compile(r'(?:u8|[uUL])?R"([^()\\\s]{0,16})\(').match(text, i)
            if m and (i == 0 or not (text[i - 1].isalnum() or text[i - 1] == '_')):
                end = text.find(')' + m.group(1) + '"', m.end())
                j = n if end < 0 else end + len(m.group(1)) + 2
            elif c in '"\'':
                j = i + 1
                while j < n and text[j] != c and text[j] != '\n':
                    j += 2 if text[j] == '\\' else 1
                j = min(j + 1, n)
            else:
                out.append(c)
                i += 1
                continue
        out.append(blank(text[i:j]))
        i = j
    return ''.join(out)


def sources(dirs):
    for d in dirs:
        for root, _, files in os.walk(d):
            for f in sorted(files):
                if f.endswith(SUFFIXES):
                    yield os.path.join(root, f)


def main(argv):
    expect_all = '--expect-all' in argv
    args = [a for a in argv if a != '--expect-all']
    if len(args) < 2:
        sys.exit(__doc__)
    entries = read_list(args[0])
    hits = {e['name']: 0 for e in entries}
    found = 0
    for path in sources(args[1:]):
        with open(path, encoding='utf-8', errors='replace') as fh:
            code = blank_code(fh.read())
        for e in entries:
            for m in e['regex'].finditer(code):
                line = code.count('\n', 0, m.start()) + 1
                hits[e['name']] += 1
                found += 1
                if not expect_all:
                    print('%s:%d: uses %s, which OpenSG 1.8 lacks: %s'
                          % (path, line, e['name'], e['reason']))
    if expect_all:
        missed = [name for name, count in hits.items() if count == 0]
        for name in missed:
            print('no sample matches the pattern of %s' % name)
        return 1 if missed else 0
    if found:
        print('%d use(s) of host-core additions in library code (list: %s)' % (found, args[0]))
        return 1
    print('library code uses none of the %d host-core additions' % len(entries))
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
