/// Face culling, front face, polygon modes, polygon offset and stipple.
///
/// deactivate restores the default state: no culling, GL_CCW, GL_FILL,
/// no smoothing, offsets off, no stipple (the offset values stay).
#ifndef _OSGPOLYGONCHUNK_H_
#define _OSGPOLYGONCHUNK_H_

#include <OpenSG/OSGPolygonChunkBase.h>

OSG_BEGIN_NAMESPACE

class PolygonChunk : public PolygonChunkBase
{
  private:
    typedef PolygonChunkBase Inherited;

  public:
    virtual const StateChunkClass *getClass(void) const;
    static const StateChunkClass *getStaticClass(void) { return &_class; }
    static UInt32 getStaticClassId(void) { return _class.getId(); }

    virtual void activate(DrawActionBase *action, UInt32 index = 0);
    virtual void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0);
    virtual void deactivate(DrawActionBase *action, UInt32 index = 0);

    virtual bool isTransparent(void) const;
    virtual Real32 switchCost(StateChunk *chunk);

    virtual bool operator<(const StateChunk &other) const;
    virtual bool operator==(const StateChunk &other) const;
    virtual bool operator!=(const StateChunk &other) const;

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    PolygonChunk(void);
    PolygonChunk(const PolygonChunk &source);
    virtual ~PolygonChunk(void);

  private:
    friend class FieldContainer;
    friend class PolygonChunkBase;

    static void initMethod(void);

    /// "Polygon", 1 slot.
    static StateChunkClass _class;

    void operator=(const PolygonChunk &source);
};

typedef PolygonChunk *PolygonChunkP;

OSG_END_NAMESPACE

#endif
