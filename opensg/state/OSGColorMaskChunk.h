/// Which colour channels are written; deactivate writes all four again.
#ifndef _OSGCOLORMASKCHUNK_H_
#define _OSGCOLORMASKCHUNK_H_

#include <OpenSG/OSGColorMaskChunkBase.h>

OSG_BEGIN_NAMESPACE

class ColorMaskChunk : public ColorMaskChunkBase
{
  private:
    typedef ColorMaskChunkBase Inherited;

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
    ColorMaskChunk(void);
    ColorMaskChunk(const ColorMaskChunk &source);
    virtual ~ColorMaskChunk(void);

  private:
    friend class FieldContainer;
    friend class ColorMaskChunkBase;

    static void initMethod(void);

    /// "Color", 1 slot.
    static StateChunkClass _class;

    void operator=(const ColorMaskChunk &source);
};

typedef ColorMaskChunk *ColorMaskChunkP;

OSG_END_NAMESPACE

#endif
