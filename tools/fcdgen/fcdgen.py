#!/usr/bin/env python3
"""Writes the mechanical layer of a field container from its .fcd description.

For OSG<Class>.fcd it writes OSG<Class>Base.h, OSG<Class>Base.cpp and
OSG<Class>Fields.h: field ids continuing from the parent's NextFieldId, masks,
the get/edit accessor families, creation, binary I/O, aspect sync, the
container type and the pointer field types. The hand-written OSG<Class>.h
beside the description holds the behaviour.

Description format (one statement a line, '#' starts a comment):

    class      VolumeNode
    parent     Group
    access     get | edit           (accessor family, default get)
    abstract                        (no prototype, no create)
    ptrparent  GroupPtr             (parent name of the "<Class>Ptr" data type)
    pointer    handwritten OSGNodePtr.h   (pointer type written by hand)
    ptrtext    to                   (pointer prints its address as text)
    include    OSGSomething.h       (extra header for the Base)
    doc        One line that says what the class is for.
    field <FieldType> <name> [internal] [member=<name>] [= <C++ default>] [# doc]
"""

import argparse
import os
import re
import sys

VALUE_TYPES = {
    'Bool': 'bool',
    'String': 'std::string',
}


class Field:
    def __init__(self, ftype, name, internal, member, default, doc):
        self.ftype = ftype            # SFReal32
        self.name = name              # stepSize
        self.internal = internal
        self.default = default
        self.doc = doc
        self.card = ftype[:2]         # SF / MF
        if self.card not in ('SF', 'MF'):
            raise ValueError('field type %s must start with SF or MF' % ftype)
        base = ftype[2:]
        self.vtype = VALUE_TYPES.get(base, base)
        self.cap = name[0].upper() + name[1:]
        self.member = member or ('_%s%s' % (self.card.lower(), self.cap))


class Desc:
    def __init__(self):
        self.cls = None
        self.parent = None
        self.access = 'get'
        self.abstract = False
        self.ptrparent = None
        self.pointer_header = None
        self.ptrtext = False
        self.includes = []
        self.doc = ''
        self.fields = []


def split_doc(text):
    """Splits 'stuff # doc' at the first '#' outside quotes and brackets."""
    depth = 0
    quote = None
    for i, c in enumerate(text):
        if quote:
            if c == quote and text[i - 1] != '\\':
                quote = None
        elif c in '"\'':
            quote = c
        elif c in '({[':
            depth += 1
        elif c in ')}]':
            depth -= 1
        elif c == '#' and depth == 0:
            return text[:i].strip(), text[i + 1:].strip()
    return text.strip(), ''


def parse(path):
    d = Desc()
    with open(path) as fh:
        for lineno, raw in enumerate(fh, 1):
            line = raw.rstrip('\n')
            if not line.strip() or line.lstrip().startswith('#'):
                continue
            body, comment = split_doc(line)
            key, _, rest = body.partition(' ')
            rest = rest.strip()
            try:
                if key == 'class':
                    d.cls = rest
                elif key == 'parent':
                    d.parent = rest
                elif key == 'access':
                    if rest not in ('get', 'edit'):
                        raise ValueError('access must be get or edit')
                    d.access = rest
                elif key == 'abstract':
                    d.abstract = True
                elif key == 'ptrparent':
                    d.ptrparent = rest
                elif key == 'pointer':
                    kind, _, header = rest.partition(' ')
                    if kind != 'handwritten' or not header:
                        raise ValueError('pointer handwritten <header>')
                    d.pointer_header = header.strip()
                elif key == 'ptrtext':
                    d.ptrtext = (rest == 'to')
                elif key == 'include':
                    d.includes.append(rest)
                elif key == 'doc':
                    d.doc = (rest + (' # ' + comment if comment else '')).strip()
                elif key == 'field':
                    # the default follows a free-standing '='
                    m = re.search(r'\s=\s*', rest)
                    decl, default = (rest[:m.start()], rest[m.end():]) if m else (rest, '')
                    parts = decl.split()
                    if len(parts) < 2:
                        raise ValueError('field <type> <name> ...')
                    internal = 'internal' in parts[2:]
                    member = None
                    for p in parts[2:]:
                        if p.startswith('member='):
                            member = p[len('member='):]
                        elif p != 'internal':
                            raise ValueError('unknown field flag %s' % p)
                    d.fields.append(Field(parts[0], parts[1], internal, member,
                                          default.strip() or None, comment))
                else:
                    raise ValueError('unknown statement %r' % key)
            except ValueError as e:
                sys.exit('%s:%d: %s' % (path, lineno, e))
    if not d.cls or not d.parent:
        sys.exit('%s: class and parent are required' % path)
    names = [f.name for f in d.fields]
    if len(set(names)) != len(names):
        sys.exit('%s: duplicate field name' % path)
    if d.ptrparent is None:
        d.ptrparent = d.parent + 'Ptr'
    return d


def field_header(ftype):
    """The header that declares a pointer field type, by naming convention."""
    m = re.match(r'^[SM]F(\w+)Ptr$', ftype)
    if m:
        return 'OSG%sFields.h' % m.group(1)
    return None


def split_list(text):
    """Splits '{a, f(b, c), d}' into its top-level items."""
    text = text.strip()
    if not (text.startswith('{') and text.endswith('}')):
        raise ValueError('MF default must be a {list}')
    items, depth, cur = [], 0, ''
    for c in text[1:-1]:
        if c == ',' and depth == 0:
            items.append(cur.strip())
            cur = ''
            continue
        depth += c in '({['
        depth -= c in ')}]'
        cur += c
    if cur.strip():
        items.append(cur.strip())
    return items


HEADER = '// Generated from %s by tools/fcdgen/fcdgen.py. Do not edit.\n'


def gen_fields_h(d, src):
    c, guard = d.cls, '_OSG%sFIELDS_H_' % d.cls.upper()
    out = [HEADER % src, '#ifndef %s\n#define %s\n\n' % (guard, guard)]
    out.append('#include <OpenSG/OSGConfig.h>\n')
    if d.pointer_header:
        out.append('#include <OpenSG/%s>\n' % d.pointer_header)
    else:
        out.append('#include <OpenSG/OSGFieldContainerPtr.h>\n')
        out.append('#include <OpenSG/OSG%sFields.h>\n' % d.parent)
    out.append('\nOSG_BEGIN_NAMESPACE\n\n')
    if not d.pointer_header:
        conv = ('FieldTraits::ToStringConvertable' if d.ptrtext else '0x00')
        out.append('''class {c};

typedef FCPtr<{p}Ptr, {c}> {c}Ptr;

template <>
struct FieldDataTraits<{c}Ptr> : public FieldTraitsRecurseMapper<{c}Ptr, true>
{{
    static DataType _type;

    enum {{ StringConvertable = {conv} }};
    enum {{ bHasParent        = 0x01 }};

    static DataType   &getType (void) {{ return _type;          }}
    static const char *getSName(void) {{ return "SF{c}Ptr";     }}
    static const char *getMName(void) {{ return "MF{c}Ptr";     }}
}};

typedef SField<{c}Ptr> SF{c}Ptr;
typedef MField<{c}Ptr> MF{c}Ptr;

template <> const FieldType SField<{c}Ptr, 0>::_fieldType;
template <> const FieldType MField<{c}Ptr, 0>::_fieldType;

'''.format(c=c, p=d.parent, conv=conv))
    out.append('OSG_END_NAMESPACE\n\n#endif\n')
    return ''.join(out)


def element_types(f):
    """Return types of the element accessors of a multi field: references to
    the element, except for MFBool, whose std::vector<bool> hands out its
    own proxy type (a bool& can't bind to an element)."""
    if f.vtype == 'bool':
        return '%s::reference' % f.ftype, '%s::const_reference' % f.ftype
    return '%s &' % f.vtype, 'const %s &' % f.vtype


def accessor_decls(d, f):
    c = d.cls
    lines = []
    if d.access == 'edit':
        lines.append('    %s *edit%s%s(void);' % (f.ftype, f.card, f.cap))
        lines.append('    const %s *get%s%s(void) const;' % (f.ftype, f.card, f.cap))
    lines.append('    %s *get%s%s(void);' % (f.ftype, f.card, f.cap))
    return lines


def accessor_defs(d, f):
    cb = d.cls + 'Base'
    t, F, m = f.vtype, f.ftype, f.member
    o = []
    if d.access == 'edit':
        o.append('inline %s *%s::edit%s%s(void) { return &%s; }' % (F, cb, f.card, f.cap, m))
        o.append('inline const %s *%s::get%s%s(void) const { return &%s; }' % (F, cb, f.card, f.cap, m))
    o.append('inline %s *%s::get%s%s(void) { return &%s; }' % (F, cb, f.card, f.cap, m))
    if f.card == 'SF':
        if d.access == 'edit':
            o.append('inline %s &%s::edit%s(void) { return %s.getValue(); }' % (t, cb, f.cap, m))
        o.append('inline const %s &%s::get%s(void) const { return %s.getValue(); }' % (t, cb, f.cap, m))
        o.append('inline %s &%s::get%s(void) { return %s.getValue(); }' % (t, cb, f.cap, m))
        o.append('inline void %s::set%s(const %s &value) { %s.setValue(value); }' % (cb, f.cap, t, m))
    else:
        ref, cref = element_types(f)
        if d.access == 'edit':
            o.append('inline %s %s::edit%s(const UInt32 index) { return %s[index]; }' % (ref, cb, f.cap, m))
        o.append('inline %s %s::get%s(const UInt32 index) const { return %s[index]; }' % (cref, cb, f.cap, m))
        o.append('inline %s %s::get%s(const UInt32 index) { return %s[index]; }' % (ref, cb, f.cap, m))
        o.append('inline %s &%s::get%s(void) { return %s; }' % (F, cb, f.cap, m))
        o.append('inline const %s &%s::get%s(void) const { return %s; }' % (F, cb, f.cap, m))
    return o


def value_decls(d, f):
    t, F = f.vtype, f.ftype
    o = []
    if f.card == 'SF':
        if d.access == 'edit':
            o.append('    %s &edit%s(void);' % (t, f.cap))
        o.append('    const %s &get%s(void) const;' % (t, f.cap))
        o.append('    %s &get%s(void);' % (t, f.cap))
        o.append('    void set%s(const %s &value);' % (f.cap, t))
    else:
        ref, cref = element_types(f)
        if d.access == 'edit':
            o.append('    %s edit%s(const UInt32 index);' % (ref, f.cap))
        o.append('    %s get%s(const UInt32 index) const;' % (cref, f.cap))
        o.append('    %s get%s(const UInt32 index);' % (ref, f.cap))
        o.append('    %s &get%s(void);' % (F, f.cap))
        o.append('    const %s &get%s(void) const;' % (F, f.cap))
    return o


def gen_base_h(d, src):
    c, cb = d.cls, d.cls + 'Base'
    guard = '_OSG%sBASE_H_' % c.upper()
    o = [HEADER % src, '#ifndef %s\n#define %s\n\n' % (guard, guard)]
    incs = ['OSGConfig.h', 'OSGBaseFields.h', 'OSGCoredNodePtr.h', 'OSGRefPtr.h',
            'OSG%s.h' % d.parent, 'OSG%sFields.h' % c]
    for f in d.fields:
        h = field_header(f.ftype)
        if h and h not in incs:
            incs.append(h)
    incs += [i for i in d.includes if i not in incs]
    o += ['#include <OpenSG/%s>\n' % i for i in incs]
    o.append('\nOSG_BEGIN_NAMESPACE\n\nclass %s;\nclass BinaryDataHandler;\n\n' % c)
    if d.doc:
        o.append('/// %s\n' % d.doc)
    o.append('class %s : public %s\n{\n  private:\n\n    typedef %s Inherited;\n\n'
             '  public:\n\n    typedef %sPtr Ptr;\n\n' % (cb, d.parent, d.parent, c))
    if d.fields:
        o.append('    enum\n    {\n')
        prev = 'Inherited::NextFieldId'
        for f in d.fields:
            o.append('        %sFieldId = %s,\n' % (f.cap, prev))
            prev = '%sFieldId + 1' % f.cap
        o.append('        NextFieldId = %s\n    };\n\n' % prev)
        for f in d.fields:
            o.append('    static const OSG::BitVector %sFieldMask;\n' % f.cap)
        o.append('\n')
    o.append('    static const char *getClassname(void) { return "%s"; }\n\n' % c)
    o.append('''    static const OSG::BitVector MTInfluenceMask;

    static FieldContainerType &getClassType  (void);
    static UInt32              getClassTypeId(void);

    virtual       FieldContainerType &getType(void);
    virtual const FieldContainerType &getType(void) const;

    virtual UInt32 getContainerSize(void) const;

''')
    for f in d.fields:
        o.append('\n'.join(accessor_decls(d, f)) + '\n')
    if d.fields:
        o.append('\n')
    for f in d.fields:
        o.append('\n'.join(value_decls(d, f)) + '\n')
    o.append('''
    virtual UInt32 getBinSize (const BitVector &whichField);
    virtual void   copyToBin  (BinaryDataHandler &pMem, const BitVector &whichField);
    virtual void   copyFromBin(BinaryDataHandler &pMem, const BitVector &whichField);

''')
    if not d.abstract:
        o.append('    static %sPtr create     (void);\n'
                 '    static %sPtr createEmpty(void);\n\n'
                 '    virtual FieldContainerPtr shallowCopy(void) const;\n\n' % (c, c))
    o.append('  protected:\n\n')
    for f in d.fields:
        o.append('    %-20s %s;\n' % (f.ftype, f.member))
    o.append('''
    {cb}(void);
    {cb}(const {cb} &source);
    virtual ~{cb}(void);

    void executeSyncImpl({cb} *pOther, const BitVector &whichField);
    virtual void executeSync(FieldContainer &other, const BitVector &whichField);

  private:

    friend class FieldContainer;

'''.format(cb=cb))
    if d.fields:
        o.append('    static FieldDescription   *_desc[];\n')
    o.append('    static FieldContainerType  _type;\n\n'
             '    void operator =(const %s &source);\n};\n\n' % cb)
    o.append('typedef %s *%sP;\n\n' % (cb, cb))
    # a node with a core of this type; naming it for a type that is no node
    # core names an undefined type, so only its use fails
    o.append('typedef osgIF<%s::isNodeCore, CoredNodePtr<%s>,\n'
             '              FieldContainer::attempt_to_create_CoredNodePtr_on_non_NodeCore_FC>::_IRet\n'
             '    %sNodePtr;\n\n' % (cb, c, c))
    o.append('typedef RefPtr<%sPtr> %sRefPtr;\n\n' % (c, c))
    o.append('inline FieldContainerType &%s::getClassType(void) { return _type; }\n' % cb)
    o.append('inline UInt32 %s::getClassTypeId(void) { return _type.getId(); }\n' % cb)
    for f in d.fields:
        o.append('\n'.join(accessor_defs(d, f)) + '\n')
    o.append('\nOSG_END_NAMESPACE\n\n#endif\n')
    return ''.join(o)


def gen_base_cpp(d, src):
    c, cb = d.cls, d.cls + 'Base'
    o = [HEADER % src]
    o.append('#define OSG_COMPILE%sINST\n\n' % c.upper())
    incs = ['OSG%s.h' % c, 'OSGBinaryDataHandler.h', 'OSGFieldDescription.h']
    # pointer fields read ids back with a checked cast: the pointee's full class
    for f in d.fields:
        m = re.match(r'^[SM]F(\w+)Ptr$', f.ftype)
        if m and 'OSG%s.h' % m.group(1) not in incs:
            incs.append('OSG%s.h' % m.group(1))
    o += ['#include <OpenSG/%s>\n' % i for i in incs]
    o.append('\nOSG_BEGIN_NAMESPACE\n\n')
    for f in d.fields:
        o.append('const OSG::BitVector %s::%sFieldMask =\n    (TypeTraits<BitVector>::One << %s::%sFieldId);\n'
                 % (cb, f.cap, cb, f.cap))
    o.append('\nconst OSG::BitVector %s::MTInfluenceMask =\n'
             '    (Inherited::MTInfluenceMask) |\n'
             '    (static_cast<BitVector>(0x0) << Inherited::NextFieldId);\n\n' % cb)
    acc = 'edit' if d.access == 'edit' else 'get'
    if d.fields:
        o.append('FieldDescription *%s::_desc[] =\n{\n' % cb)
        descs = []
        for f in d.fields:
            descs.append(
                '    new FieldDescription(%s::getClassType(),\n'
                '                         "%s",\n'
                '                         %sFieldId, %sFieldMask,\n'
                '                         %s,\n'
                '                         reinterpret_cast<FieldAccessMethod>(&%s::%s%s%s),\n'
                '                         NULL, NULL)'
                % (f.ftype, f.name, f.cap, f.cap, 'true' if f.internal else 'false',
                   cb, acc, f.card, f.cap))
        o.append(',\n'.join(descs) + '\n};\n\n')
    create = ('NULL' if d.abstract else
              '[]() -> FieldContainerPtr { return %s::createEmpty(); }' % cb)
    o.append('FieldContainerType %s::_type(\n    "%s",\n    "%s",\n    NULL,\n    %s,\n'
             '    %s::initMethod,\n    %s,\n    %s,\n    false);\n\n'
             % (cb, c, d.parent, create, c,
                '_desc' if d.fields else 'NULL', 'sizeof(_desc)' if d.fields else '0'))
    o.append('''FieldContainerType &{cb}::getType(void) {{ return _type; }}

const FieldContainerType &{cb}::getType(void) const {{ return _type; }}

UInt32 {cb}::getContainerSize(void) const {{ return sizeof({c}); }}

'''.format(cb=cb, c=c))
    if not d.abstract:
        o.append('''{c}Ptr {cb}::create(void)
{{
    {c}Ptr fc;

    if(getClassType().getPrototype() != OSG::NullFC)
    {{
        fc = {c}Ptr::dcast(getClassType().getPrototype()->shallowCopy());
    }}

    return fc;
}}

{c}Ptr {cb}::createEmpty(void)
{{
    {c}Ptr returnValue;

    newPtr(returnValue);

    return returnValue;
}}

FieldContainerPtr {cb}::shallowCopy(void) const
{{
    {c}Ptr returnValue;

    newPtr(returnValue, dynamic_cast<const {c} *>(this));

    return returnValue;
}}

'''.format(c=c, cb=cb))
    # constructors
    inits = ['    Inherited()']
    body = []
    for f in d.fields:
        if f.default is None or f.card == 'MF':
            inits.append('    %s()' % f.member)
            if f.default is not None:
                for item in split_list(f.default):
                    body.append('    %s.push_back(%s(%s));' % (f.member, f.vtype, item))
        else:
            inits.append('    %s(%s(%s))' % (f.member, f.vtype, f.default))
    o.append('%s::%s(void) :\n%s\n{\n%s}\n\n' % (cb, cb, ',\n'.join(inits),
                                                 ''.join(b + '\n' for b in body)))
    inits = ['    Inherited(source)'] + ['    %s(source.%s)' % (f.member, f.member) for f in d.fields]
    o.append('%s::%s(const %s &source) :\n%s\n{\n}\n\n' % (cb, cb, cb, ',\n'.join(inits)))
    o.append('%s::~%s(void)\n{\n}\n\n' % (cb, cb))

    def per_field(stmt):
        return ''.join('    if(FieldBits::NoField != (%sFieldMask & whichField))\n    {\n'
                       '        %s\n    }\n\n' % (f.cap, stmt % {'m': f.member})
                       for f in d.fields)
    o.append('UInt32 %s::getBinSize(const BitVector &whichField)\n{\n'
             '    UInt32 returnValue = Inherited::getBinSize(whichField);\n\n%s'
             '    return returnValue;\n}\n\n' % (cb, per_field('returnValue += %(m)s.getBinSize();')))
    o.append('void %s::copyToBin(BinaryDataHandler &pMem, const BitVector &whichField)\n{\n'
             '    Inherited::copyToBin(pMem, whichField);\n\n%s}\n\n' % (cb, per_field('%(m)s.copyToBin(pMem);')))
    o.append('void %s::copyFromBin(BinaryDataHandler &pMem, const BitVector &whichField)\n{\n'
             '    Inherited::copyFromBin(pMem, whichField);\n\n%s}\n\n' % (cb, per_field('%(m)s.copyFromBin(pMem);')))
    o.append('void %s::executeSyncImpl(%s *pOther, const BitVector &whichField)\n{\n'
             '    Inherited::executeSyncImpl(pOther, whichField);\n\n%s}\n\n'
             % (cb, cb, per_field('%(m)s.syncWith(pOther->%(m)s);')))
    o.append('void %s::executeSync(FieldContainer &other, const BitVector &whichField)\n{\n'
             '    this->executeSyncImpl(static_cast<%s *>(&other), whichField);\n}\n\n' % (cb, cb))
    if not d.pointer_header:
        o.append('''DataType FieldDataTraits<{c}Ptr>::_type("{c}Ptr", "{pp}");

OSG_DLLEXPORT_SFIELD_DEF1({c}Ptr, OSG_SYSTEMLIB_DLLTMPLMAPPING);
OSG_DLLEXPORT_MFIELD_DEF1({c}Ptr, OSG_SYSTEMLIB_DLLTMPLMAPPING);

'''.format(c=c, pp=d.ptrparent))
    o.append('OSG_END_NAMESPACE\n')
    return ''.join(o)


def write_if_changed(path, text):
    if os.path.exists(path):
        with open(path) as fh:
            if fh.read() == text:
                return
    with open(path, 'w') as fh:
        fh.write(text)


def main():
    ap = argparse.ArgumentParser(description=__doc__.split('\n')[0])
    ap.add_argument('--out', required=True, help='output folder')
    ap.add_argument('--prefix', default='OpenSG', help='include prefix (unused in names)')
    ap.add_argument('fcd', nargs='+')
    args = ap.parse_args()
    os.makedirs(args.out, exist_ok=True)
    for path in args.fcd:
        d = parse(path)
        src = os.path.basename(path)
        stem = 'OSG' + d.cls
        if os.path.splitext(src)[0] != stem:
            sys.exit('%s: file must be named %s.fcd' % (path, stem))
        try:
            base_cpp = gen_base_cpp(d, src)
        except ValueError as e:
            sys.exit('%s: %s' % (path, e))
        write_if_changed(os.path.join(args.out, stem + 'Fields.h'), gen_fields_h(d, src))
        write_if_changed(os.path.join(args.out, stem + 'Base.h'), gen_base_h(d, src))
        write_if_changed(os.path.join(args.out, stem + 'Base.cpp'), base_cpp)


if __name__ == '__main__':
    main()
