#include <OpenSG/OSGGeoPump.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGWindow.h>

#include <algorithm>

OSG_BEGIN_NAMESPACE

namespace
{

const UInt32 NumSlots = PrimitiveIterator::NumAttributes;

/// One vertex attribute as the pump sees it.
struct Source
{
    GeoPropertyArrayInterface *prop;
    const UInt8               *data;
    UInt32                     format;
    UInt32                     dim;
    UInt32                     elemSize;
    UInt32                     size;
    Int32                      mapIndex; // entry in the index tuple (multi-index)
};

UInt32 formatSize(UInt32 format)
{
    switch(format)
    {
        case GL_BYTE:
        case GL_UNSIGNED_BYTE:  return 1;
        case GL_SHORT:
        case GL_UNSIGNED_SHORT: return 2;
        case GL_INT:
        case GL_UNSIGNED_INT:
        case GL_FLOAT:          return 4;
        case GL_DOUBLE:         return 8;
    }
    return 0;
}

bool fillSource(Geometry *geo, UInt32 slot, Source &src)
{
    src.prop = geo->getProperty(1 << slot);
    if(src.prop == NULL || src.prop->getSize() == 0 || src.prop->getData() == NULL)
    {
        src.prop = NULL;
        return false;
    }
    src.data     = src.prop->getData();
    src.format   = src.prop->getFormat();
    src.dim      = src.prop->getDimension();
    src.elemSize = formatSize(src.format) * src.dim;
    src.size     = src.prop->getSize();
    src.mapIndex = geo->getMFIndexMapping()->size() >= 2
                       ? geo->calcMappingIndex(UInt16(1 << slot))
                       : 0;
    if(src.elemSize == 0)
        src.prop = NULL;
    return src.prop != NULL;
}

/// Whether glXxxPointer can take the attribute as it is stored.
bool arrayCompatible(UInt32 slot, const Source &s)
{
    bool typeOk;
    switch(slot)
    {
        case PrimitiveIterator::Positions:
            typeOk = s.format == GL_FLOAT || s.format == GL_DOUBLE || s.format == GL_SHORT ||
                     s.format == GL_INT;
            return typeOk && s.dim >= 2 && s.dim <= 4;
        case PrimitiveIterator::Normals:
            typeOk = s.format == GL_FLOAT || s.format == GL_DOUBLE || s.format == GL_SHORT ||
                     s.format == GL_BYTE || s.format == GL_INT;
            return typeOk && s.dim == 3;
        case PrimitiveIterator::Colors:
            return s.dim == 3 || s.dim == 4;
        case PrimitiveIterator::SecondaryColors:
            return s.dim == 3;
        default:
            typeOk = s.format == GL_FLOAT || s.format == GL_DOUBLE || s.format == GL_SHORT ||
                     s.format == GL_INT;
            return typeOk && s.dim >= 1 && s.dim <= 4;
    }
}

/// Sets the array pointer of one attribute; ptr is an address or, with a
/// buffer bound, an offset.
void setArray(UInt32 slot, UInt32 dim, UInt32 format, const void *ptr)
{
    switch(slot)
    {
        case PrimitiveIterator::Positions:
            glVertexPointer(dim, format, 0, ptr);
            glEnableClientState(GL_VERTEX_ARRAY);
            break;
        case PrimitiveIterator::Normals:
            glNormalPointer(format, 0, ptr);
            glEnableClientState(GL_NORMAL_ARRAY);
            break;
        case PrimitiveIterator::Colors:
            glColorPointer(dim, format, 0, ptr);
            glEnableClientState(GL_COLOR_ARRAY);
            break;
        case PrimitiveIterator::SecondaryColors:
            glSecondaryColorPointer(dim, format, 0, ptr);
            glEnableClientState(GL_SECONDARY_COLOR_ARRAY);
            break;
        default:
            glClientActiveTexture(GL_TEXTURE0 + slot - PrimitiveIterator::TexCoords);
            glTexCoordPointer(dim, format, 0, ptr);
            glEnableClientState(GL_TEXTURE_COORD_ARRAY);
            glClientActiveTexture(GL_TEXTURE0);
            break;
    }
}

// --- immediate mode ------------------------------------------------------------

void emitPosition(const Source &s, const UInt8 *p)
{
    if(s.format == GL_FLOAT)
    {
        const GLfloat *v = reinterpret_cast<const GLfloat *>(p);
        if(s.dim == 2)      glVertex2fv(v);
        else if(s.dim == 3) glVertex3fv(v);
        else if(s.dim == 4) glVertex4fv(v);
    }
    else if(s.format == GL_DOUBLE)
    {
        const GLdouble *v = reinterpret_cast<const GLdouble *>(p);
        if(s.dim == 2)      glVertex2dv(v);
        else if(s.dim == 3) glVertex3dv(v);
        else if(s.dim == 4) glVertex4dv(v);
    }
    else if(s.format == GL_SHORT)
    {
        const GLshort *v = reinterpret_cast<const GLshort *>(p);
        if(s.dim == 2)      glVertex2sv(v);
        else if(s.dim == 3) glVertex3sv(v);
        else if(s.dim == 4) glVertex4sv(v);
    }
}

void emitNormal(const Source &s, const UInt8 *p)
{
    if(s.dim != 3)
        return;
    if(s.format == GL_FLOAT)       glNormal3fv(reinterpret_cast<const GLfloat *>(p));
    else if(s.format == GL_DOUBLE) glNormal3dv(reinterpret_cast<const GLdouble *>(p));
    else if(s.format == GL_SHORT)  glNormal3sv(reinterpret_cast<const GLshort *>(p));
    else if(s.format == GL_BYTE)   glNormal3bv(reinterpret_cast<const GLbyte *>(p));
}

void emitColor(const Source &s, const UInt8 *p)
{
    if(s.format == GL_FLOAT)
    {
        if(s.dim == 3)      glColor3fv(reinterpret_cast<const GLfloat *>(p));
        else if(s.dim == 4) glColor4fv(reinterpret_cast<const GLfloat *>(p));
    }
    else if(s.format == GL_UNSIGNED_BYTE)
    {
        if(s.dim == 3)      glColor3ubv(p);
        else if(s.dim == 4) glColor4ubv(p);
    }
    else if(s.format == GL_DOUBLE)
    {
        if(s.dim == 3)      glColor3dv(reinterpret_cast<const GLdouble *>(p));
        else if(s.dim == 4) glColor4dv(reinterpret_cast<const GLdouble *>(p));
    }
}

void emitSecondaryColor(const Source &s, const UInt8 *p)
{
    if(s.dim < 3)
        return;
    if(s.format == GL_FLOAT)              glSecondaryColor3fv(reinterpret_cast<const GLfloat *>(p));
    else if(s.format == GL_UNSIGNED_BYTE) glSecondaryColor3ubv(p);
    else if(s.format == GL_DOUBLE)        glSecondaryColor3dv(reinterpret_cast<const GLdouble *>(p));
}

void emitTexCoord(UInt32 unit, const Source &s, const UInt8 *p)
{
    GLenum tex = GL_TEXTURE0 + unit;
    if(s.format == GL_FLOAT)
    {
        const GLfloat *v = reinterpret_cast<const GLfloat *>(p);
        switch(s.dim)
        {
            case 1: glMultiTexCoord1fv(tex, v); break;
            case 2: glMultiTexCoord2fv(tex, v); break;
            case 3: glMultiTexCoord3fv(tex, v); break;
            case 4: glMultiTexCoord4fv(tex, v); break;
        }
    }
    else if(s.format == GL_DOUBLE)
    {
        const GLdouble *v = reinterpret_cast<const GLdouble *>(p);
        switch(s.dim)
        {
            case 1: glMultiTexCoord1dv(tex, v); break;
            case 2: glMultiTexCoord2dv(tex, v); break;
            case 3: glMultiTexCoord3dv(tex, v); break;
            case 4: glMultiTexCoord4dv(tex, v); break;
        }
    }
}

void emitAttribute(UInt32 slot, const Source &s, UInt32 index)
{
    if(index >= s.size)
        return;
    const UInt8 *p = s.data + size_t(index) * s.elemSize;
    switch(slot)
    {
        case PrimitiveIterator::Positions:       emitPosition(s, p); break;
        case PrimitiveIterator::Normals:         emitNormal(s, p); break;
        case PrimitiveIterator::Colors:          emitColor(s, p); break;
        case PrimitiveIterator::SecondaryColors: emitSecondaryColor(s, p); break;
        default: emitTexCoord(slot - PrimitiveIterator::TexCoords, s, p); break;
    }
}

/// The general path: every index mapping, every format, per-vertex bounds
/// checks (a vertex whose position is out of range is left out).
void drawImmediate(Geometry *geo, const Source *src)
{
    GeoIndicesPtr ind     = geo->getIndices();
    UInt32        nInd    = ind != NullFC ? ind->getSize() : 0;
    UInt32        nmap    = std::max<UInt32>(1, geo->getMFIndexMapping()->size());
    bool          indexed = ind != NullFC;

    PrimitiveIterator it(geo->getPtr());
    for(; !it.isAtEnd(); ++it)
    {
        glBegin(it.getType());
        for(UInt32 v = 0; v < it.getLength(); ++v)
        {
            UInt32 k = UInt32(it.getVertexIndex(v));
            // attributes first, the position last: it emits the vertex
            for(UInt32 pass = 0; pass < 2; ++pass)
            {
                for(UInt32 slot = 0; slot < NumSlots; ++slot)
                {
                    if(src[slot].prop == NULL)
                        continue;
                    if((slot == PrimitiveIterator::Positions) != (pass == 1))
                        continue;
                    UInt32 index = k;
                    if(indexed)
                    {
                        if(src[slot].mapIndex < 0)
                            continue;
                        UInt32 at = k * nmap + UInt32(src[slot].mapIndex);
                        if(at >= nInd)
                            continue;
                        index = ind->getValue(at);
                    }
                    emitAttribute(slot, src[slot], index);
                }
            }
        }
        glEnd();
    }
}

/// Whether the geometry can be drawn from arrays: single-indexed or not
/// indexed, with indices GL can take, and every attribute stored in a
/// format the array calls accept and long enough for every index.
bool arraysUsable(Geometry *geo, const Source *src)
{
    GeoIndicesPtr ind = geo->getIndices();
    if(geo->getMFIndexMapping()->size() >= 2)
        return false;

    UInt32 needed = 0;
    if(ind != NullFC)
    {
        if(ind->getFormat() != GL_UNSIGNED_INT && ind->getFormat() != GL_UNSIGNED_SHORT)
            return false;
        UInt32 n = ind->getSize();
        for(UInt32 i = 0; i < n; ++i)
            needed = std::max(needed, ind->getValue(i) + 1);
    }
    else
    {
        PrimitiveIterator it(geo->getPtr());
        for(; !it.isAtEnd(); ++it)
            needed = std::max(needed, UInt32(it.getVertexIndex(0)) + it.getLength());
    }

    for(UInt32 slot = 0; slot < NumSlots; ++slot)
    {
        if(src[slot].prop == NULL)
            continue;
        if(src[slot].size < needed || !arrayCompatible(slot, src[slot]))
            return false;
    }
    return true;
}

/// Draws single-indexed or non-indexed geometry from client arrays.
bool drawArrays(Geometry *geo, const Source *src)
{
    if(!arraysUsable(geo, src))
        return false;

    GeoIndicesPtr ind = geo->getIndices();

    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    for(UInt32 slot = 0; slot < NumSlots; ++slot)
    {
        if(src[slot].prop != NULL)
            setArray(slot, src[slot].dim, src[slot].format, src[slot].data);
    }

    const UInt8 *indData  = ind != NullFC ? ind->getData() : NULL;
    UInt32       indSize  = ind != NullFC ? ind->getFormatSize() : 0;
    GLenum       indType  = ind != NullFC ? ind->getFormat() : 0;

    PrimitiveIterator it(geo->getPtr());
    for(; !it.isAtEnd(); ++it)
    {
        UInt32 first = UInt32(it.getVertexIndex(0));
        if(it.getLength() == 0)
            continue;
        if(indData != NULL)
            glDrawElements(it.getType(), it.getLength(), indType,
                           indData + size_t(first) * indSize);
        else
            glDrawArrays(it.getType(), first, it.getLength());
    }
    glPopClientAttrib();
    glClientActiveTexture(GL_TEXTURE0);
    return true;
}

} // namespace

bool geoPumpDraw(Geometry *geo)
{
    if(geo->getPositions() == NullFC || geo->getTypes() == NullFC)
    {
        SWARNING << "draw: no Pump found for geometry " << static_cast<void *>(geo)
                 << " (no positions or no types)" << std::endl;
        return false;
    }

    Source src[NumSlots];
    for(UInt32 slot = 0; slot < NumSlots; ++slot)
        fillSource(geo, slot, src[slot]);

    if(src[PrimitiveIterator::Positions].prop == NULL)
        return true; // nothing to emit

    if(!drawArrays(geo, src))
        drawImmediate(geo, src);
    return true;
}

// --- GeoVBO ----------------------------------------------------------------------

UInt32 GeoVBO::_extVBO            = Window::invalidExtensionID;
UInt32 GeoVBO::_funcGenBuffers    = Window::invalidFunctionID;
UInt32 GeoVBO::_funcBindBuffer    = Window::invalidFunctionID;
UInt32 GeoVBO::_funcBufferData    = Window::invalidFunctionID;
UInt32 GeoVBO::_funcDeleteBuffers = Window::invalidFunctionID;

typedef void(APIENTRY *GenBuffersF)(GLsizei, GLuint *);
typedef void(APIENTRY *BindBufferF)(GLenum, GLuint);
typedef void(APIENTRY *BufferDataF)(GLenum, GLsizeiptr, const void *, GLenum);
typedef void(APIENTRY *DeleteBuffersF)(GLsizei, const GLuint *);

namespace
{
/// The buffer records of all windows. A window that goes away before its
/// destroy list ran leaves records behind; they hold no GL state of their
/// own (their buffers died with the context), so they are freed at exit.
struct VBOTable
{
    std::vector<GeoVBO *> records;
    ~VBOTable(void)
    {
        for(size_t i = 0; i < records.size(); ++i)
            delete records[i];
    }
};

std::vector<GeoVBO *> &vboTable(void)
{
    static VBOTable table;
    return table.records;
}
} // namespace

void GeoVBO::registerExtensions(void)
{
    if(_extVBO != Window::invalidExtensionID)
        return;
    _extVBO            = Window::registerExtension("GL_ARB_vertex_buffer_object");
    _funcGenBuffers    = Window::registerFunction("glGenBuffersARB", _extVBO);
    _funcBindBuffer    = Window::registerFunction("glBindBufferARB", _extVBO);
    _funcBufferData    = Window::registerFunction("glBufferDataARB", _extVBO);
    _funcDeleteBuffers = Window::registerFunction("glDeleteBuffersARB", _extVBO);
}

UInt32 GeoVBO::add(GeoVBO *vbo)
{
    std::vector<GeoVBO *> &table = vboTable();
    for(UInt32 i = 0; i < table.size(); ++i)
    {
        if(table[i] == NULL)
        {
            table[i] = vbo;
            return i + 1;
        }
    }
    table.push_back(vbo);
    return UInt32(table.size());
}

GeoVBO *GeoVBO::get(UInt32 slotValue)
{
    std::vector<GeoVBO *> &table = vboTable();
    if(slotValue == 0 || slotValue > table.size())
        return NULL;
    return table[slotValue - 1];
}

void GeoVBO::remove(UInt32 slotValue)
{
    std::vector<GeoVBO *> &table = vboTable();
    if(slotValue == 0 || slotValue > table.size())
        return;
    delete table[slotValue - 1];
    table[slotValue - 1] = NULL;
}

GeoVBO::GeoVBO(Window *win) : _win(win), _indexBuffer(0), _indexFormat(0), _indexSize(0)
{
    for(UInt32 i = 0; i < NumSlots; ++i)
        _arrays[i].buffer = _arrays[i].format = _arrays[i].dim = 0;
}

GeoVBO::~GeoVBO(void)
{
}

void GeoVBO::bindBuffer(UInt32 target, UInt32 buffer)
{
    BindBufferF bind = reinterpret_cast<BindBufferF>(_win->getFunction(_funcBindBuffer));
    if(bind != NULL)
        bind(target, buffer);
}

void GeoVBO::release(void)
{
    DeleteBuffersF del = reinterpret_cast<DeleteBuffersF>(_win->getFunction(_funcDeleteBuffers));
    for(UInt32 i = 0; i < NumSlots; ++i)
    {
        if(_arrays[i].buffer != 0 && del != NULL)
            del(1, &_arrays[i].buffer);
        _arrays[i].buffer = 0;
    }
    if(_indexBuffer != 0 && del != NULL)
        del(1, &_indexBuffer);
    _indexBuffer = 0;
    _prims.clear();
}

bool GeoVBO::update(Geometry *geo)
{
    GenBuffersF gen  = reinterpret_cast<GenBuffersF>(_win->getFunction(_funcGenBuffers));
    BufferDataF data = reinterpret_cast<BufferDataF>(_win->getFunction(_funcBufferData));
    if(gen == NULL || data == NULL)
        return false;

    release();

    Source src[NumSlots];
    for(UInt32 slot = 0; slot < NumSlots; ++slot)
        fillSource(geo, slot, src[slot]);
    if(src[PrimitiveIterator::Positions].prop == NULL || !arraysUsable(geo, src))
        return false;

    for(UInt32 slot = 0; slot < NumSlots; ++slot)
    {
        const Source &s = src[slot];
        if(s.prop == NULL)
            continue;
        gen(1, &_arrays[slot].buffer);
        bindBuffer(GL_ARRAY_BUFFER_ARB, _arrays[slot].buffer);
        data(GL_ARRAY_BUFFER_ARB, GLsizeiptr(s.size) * s.elemSize, s.data, GL_STATIC_DRAW_ARB);
        _arrays[slot].format = s.format;
        _arrays[slot].dim    = s.dim;
    }
    bindBuffer(GL_ARRAY_BUFFER_ARB, 0);

    GeoIndicesPtr ind = geo->getIndices();
    if(ind != NullFC && ind->getSize() > 0 &&
       (ind->getFormat() == GL_UNSIGNED_INT || ind->getFormat() == GL_UNSIGNED_SHORT))
    {
        gen(1, &_indexBuffer);
        bindBuffer(GL_ELEMENT_ARRAY_BUFFER_ARB, _indexBuffer);
        data(GL_ELEMENT_ARRAY_BUFFER_ARB, GLsizeiptr(ind->getSize()) * ind->getFormatSize(),
             ind->getData(), GL_STATIC_DRAW_ARB);
        bindBuffer(GL_ELEMENT_ARRAY_BUFFER_ARB, 0);
        _indexFormat = ind->getFormat();
        _indexSize   = ind->getFormatSize();
    }

    PrimitiveIterator it(geo->getPtr());
    for(; !it.isAtEnd(); ++it)
    {
        Prim p = {it.getType(), UInt32(it.getVertexIndex(0)), it.getLength()};
        if(p.count > 0)
            _prims.push_back(p);
    }
    return true;
}

void GeoVBO::draw(void)
{
    if(_arrays[PrimitiveIterator::Positions].buffer == 0)
        return;

    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    for(UInt32 slot = 0; slot < NumSlots; ++slot)
    {
        if(_arrays[slot].buffer == 0)
            continue;
        bindBuffer(GL_ARRAY_BUFFER_ARB, _arrays[slot].buffer);
        setArray(slot, _arrays[slot].dim, _arrays[slot].format, NULL);
    }
    bindBuffer(GL_ARRAY_BUFFER_ARB, 0);

    if(_indexBuffer != 0)
        bindBuffer(GL_ELEMENT_ARRAY_BUFFER_ARB, _indexBuffer);

    for(size_t i = 0; i < _prims.size(); ++i)
    {
        const Prim &p = _prims[i];
        if(_indexBuffer != 0)
            glDrawElements(p.type, p.count, _indexFormat,
                           reinterpret_cast<const void *>(size_t(p.first) * _indexSize));
        else
            glDrawArrays(p.type, p.first, p.count);
    }

    if(_indexBuffer != 0)
        bindBuffer(GL_ELEMENT_ARRAY_BUFFER_ARB, 0);
    glPopClientAttrib();
    glClientActiveTexture(GL_TEXTURE0);
}

OSG_END_NAMESPACE
