/// A state chunk that multiplies its matrix onto the model-view matrix
/// while it is active; the base of TextureTransformChunk.
#ifndef _OSGTRANSFORMCHUNK_H_
#define _OSGTRANSFORMCHUNK_H_

#include <OpenSG/OSGTransformChunkBase.h>

OSG_BEGIN_NAMESPACE

class TransformChunk : public TransformChunkBase
{
  private:
    typedef TransformChunkBase Inherited;

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
    TransformChunk(void);
    TransformChunk(const TransformChunk &source);
    virtual ~TransformChunk(void);

  private:
    friend class FieldContainer;
    friend class TransformChunkBase;

    static void initMethod(void);

    /// "Transform", 1 slot.
    static StateChunkClass _class;

    void operator=(const TransformChunk &source);
};

typedef TransformChunk *TransformChunkP;

OSG_END_NAMESPACE

#endif
