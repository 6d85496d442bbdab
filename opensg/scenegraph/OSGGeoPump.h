/// Sending a geometry to OpenGL: the direct path (vertex arrays where the
/// data allows it, immediate mode otherwise; used both to draw and to
/// compile display lists) and the per-window VBO record.
#ifndef _OSGGEOPUMP_H_
#define _OSGGEOPUMP_H_

#include <OpenSG/OSGGeometry.h>

#include <vector>

OSG_BEGIN_NAMESPACE

class Window;

/// Emits every primitive of geo with the current GL state. False (and a
/// warning) when there is nothing that can be drawn: no positions or no
/// primitive types.
bool geoPumpDraw(Geometry *geo);

/// Buffer objects of one geometry in one window: one buffer per attribute
/// and one for the indices, filled from the properties by update() and
/// drawn with the primitive list taken at that time.
class GeoVBO
{
  public:
    explicit GeoVBO(Window *win);
    ~GeoVBO(void);

    /// (Re)uploads every property of geo; false if geo cannot use buffers.
    bool update(Geometry *geo);
    void draw(void);
    /// Deletes the buffers (the window's context must be current).
    void release(void);

    Window *getWindow(void) const { return _win; }

    /// Extension and function ids, registered with Window once.
    static void   registerExtensions(void);
    static UInt32 getExtensionId(void) { return _extVBO; }

    /// The process-wide table behind the GL-object slot of a geometry:
    /// the slot holds index + 1.
    static UInt32  add(GeoVBO *vbo);
    static GeoVBO *get(UInt32 slotValue);
    static void    remove(UInt32 slotValue);

  private:
    struct Array
    {
        UInt32 buffer;
        UInt32 format;
        UInt32 dim;
    };

    struct Prim
    {
        UInt32 type;
        UInt32 first;
        UInt32 count;
    };

    void bindBuffer(UInt32 target, UInt32 buffer);

    Window            *_win;
    Array              _arrays[12];
    UInt32             _indexBuffer;
    UInt32             _indexFormat;
    UInt32             _indexSize;
    std::vector<Prim>  _prims;

    static UInt32 _extVBO;
    static UInt32 _funcGenBuffers;
    static UInt32 _funcBindBuffer;
    static UInt32 _funcBufferData;
    static UInt32 _funcDeleteBuffers;

    GeoVBO(const GeoVBO &);
    void operator=(const GeoVBO &);
};

OSG_END_NAMESPACE

#endif
