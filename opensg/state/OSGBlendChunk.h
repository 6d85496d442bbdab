/// Blending (factors, separate alpha factors, equation, constant colour)
/// and the alpha test.
///
/// A chunk whose destination factor is not GL_ZERO makes its material
/// transparent. deactivate restores the default state: blending off,
/// GL_FUNC_ADD, alpha test off.
#ifndef _OSGBLENDCHUNK_H_
#define _OSGBLENDCHUNK_H_

#include <OpenSG/OSGBlendChunkBase.h>

OSG_BEGIN_NAMESPACE

class BlendChunk : public BlendChunkBase
{
  private:
    typedef BlendChunkBase Inherited;

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
    BlendChunk(void);
    BlendChunk(const BlendChunk &source);
    virtual ~BlendChunk(void);

  private:
    friend class FieldContainer;
    friend class BlendChunkBase;

    static void initMethod(void);

    bool isBlending(void) const;

    /// "Blend", 1 slot.
    static StateChunkClass _class;

    void operator=(const BlendChunk &source);
};

typedef BlendChunk *BlendChunkP;

OSG_END_NAMESPACE

#endif
