/// Fixed-function material colours, lighting and colour material.
///
/// A chunk whose diffuse alpha is below one makes its material transparent.
#ifndef _OSGMATERIALCHUNK_H_
#define _OSGMATERIALCHUNK_H_

#include <OpenSG/OSGMaterialChunkBase.h>

OSG_BEGIN_NAMESPACE

class MaterialChunk : public MaterialChunkBase
{
  private:
    typedef MaterialChunkBase Inherited;

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
    MaterialChunk(void);
    MaterialChunk(const MaterialChunk &source);
    virtual ~MaterialChunk(void);

  private:
    friend class FieldContainer;
    friend class MaterialChunkBase;

    static void initMethod(void);

    /// "Material", 1 slot.
    static StateChunkClass _class;

    void operator=(const MaterialChunk &source);
};

typedef MaterialChunk *MaterialChunkP;

OSG_END_NAMESPACE

#endif
