/// Fixed-function fog: activate sets the fog mode, colour, start, end and
/// density and enables GL_FOG; deactivate disables it again.
///
/// The "Fog" class comes before "SHL" in a state, so a shader chunk that
/// looks at GL_FOG during its activation sees the fog of its own state.
#ifndef _OSGFOGCHUNK_H_
#define _OSGFOGCHUNK_H_

#include <OpenSG/OSGFogChunkBase.h>

OSG_BEGIN_NAMESPACE

class FogChunk : public FogChunkBase
{
  private:
    typedef FogChunkBase Inherited;

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
    FogChunk(void);
    FogChunk(const FogChunk &source);
    virtual ~FogChunk(void);

  private:
    friend class FieldContainer;
    friend class FogChunkBase;

    static void initMethod(void);

    /// "Fog", 1 slot.
    static StateChunkClass _class;

    void operator=(const FogChunk &source);
};

typedef FogChunk *FogChunkP;

OSG_END_NAMESPACE

#endif
