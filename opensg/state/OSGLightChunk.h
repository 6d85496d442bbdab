/// One OpenGL light source. The slot is the light number: activation at
/// index i sets up and enables GL_LIGHT0 + i with the current model-view
/// matrix, so the caller loads the light's matrix first.
#ifndef _OSGLIGHTCHUNK_H_
#define _OSGLIGHTCHUNK_H_

#include <OpenSG/OSGLightChunkBase.h>

OSG_BEGIN_NAMESPACE

class LightChunk : public LightChunkBase
{
  private:
    typedef LightChunkBase Inherited;

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
    LightChunk(void);
    LightChunk(const LightChunk &source);
    virtual ~LightChunk(void);

  private:
    friend class FieldContainer;
    friend class LightChunkBase;

    static void initMethod(void);

    /// "Light", 8 slots.
    static StateChunkClass _class;

    void operator=(const LightChunk &source);
};

typedef LightChunk *LightChunkP;

OSG_END_NAMESPACE

#endif
