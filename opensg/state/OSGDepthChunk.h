/// Depth test on or off, depth function, depth range and depth writes.
///
/// deactivate restores the default state: test on, GL_LEQUAL, range 0..1,
/// writes on.
#ifndef _OSGDEPTHCHUNK_H_
#define _OSGDEPTHCHUNK_H_

#include <OpenSG/OSGDepthChunkBase.h>

OSG_BEGIN_NAMESPACE

class DepthChunk : public DepthChunkBase
{
  private:
    typedef DepthChunkBase Inherited;

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
    DepthChunk(void);
    DepthChunk(const DepthChunk &source);
    virtual ~DepthChunk(void);

  private:
    friend class FieldContainer;
    friend class DepthChunkBase;

    static void initMethod(void);

    /// "Depth", 1 slot.
    static StateChunkClass _class;

    void operator=(const DepthChunk &source);
};

typedef DepthChunk *DepthChunkP;

OSG_END_NAMESPACE

#endif
