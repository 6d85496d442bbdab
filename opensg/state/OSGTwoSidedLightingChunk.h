/// Two-sided lighting: back faces are lit with their normals reversed while
/// the chunk is active.
#ifndef _OSGTWOSIDEDLIGHTINGCHUNK_H_
#define _OSGTWOSIDEDLIGHTINGCHUNK_H_

#include <OpenSG/OSGTwoSidedLightingChunkBase.h>

OSG_BEGIN_NAMESPACE

class TwoSidedLightingChunk : public TwoSidedLightingChunkBase
{
  private:
    typedef TwoSidedLightingChunkBase Inherited;

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
    TwoSidedLightingChunk(void);
    TwoSidedLightingChunk(const TwoSidedLightingChunk &source);
    virtual ~TwoSidedLightingChunk(void);

  private:
    friend class FieldContainer;
    friend class TwoSidedLightingChunkBase;

    static void initMethod(void);

    /// "TwoSidedLighting", 1 slot.
    static StateChunkClass _class;

    void operator=(const TwoSidedLightingChunk &source);
};

typedef TwoSidedLightingChunk *TwoSidedLightingChunkP;

OSG_END_NAMESPACE

#endif
