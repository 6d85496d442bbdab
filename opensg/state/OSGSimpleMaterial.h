/// A lit material described by a few colours, plus any chunks of its own.
///
/// Its state holds a private MaterialChunk made from the colours (alpha =
/// 1 - transparency), a private BlendChunk (source alpha, one minus source
/// alpha) when it is transparent, then the chunks of the ChunkMaterial.
#ifndef _OSGSIMPLEMATERIAL_H_
#define _OSGSIMPLEMATERIAL_H_

#include <OpenSG/OSGSimpleMaterialBase.h>
#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGBlendChunk.h>

OSG_BEGIN_NAMESPACE

class SimpleMaterial : public SimpleMaterialBase
{
  private:
    typedef SimpleMaterialBase Inherited;

  public:
    virtual StatePtr makeState(void);
    virtual void rebuildState(void);

    /// transparency > 1e-6, or one of the chunks is transparent.
    virtual bool isTransparent(void) const;

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    SimpleMaterial(void);
    SimpleMaterial(const SimpleMaterial &source);
    virtual ~SimpleMaterial(void);

    /// Drops the private chunks.
    virtual void onDestroy(void);

    MaterialChunkPtr _materialChunk;
    /// Made when the material first turns out transparent.
    BlendChunkPtr    _blendChunk;

  private:
    friend class FieldContainer;
    friend class SimpleMaterialBase;

    static void initMethod(void);

    /// Fills the private chunks from the fields and adds them to state.
    void prepareLocalChunks(void);
    void addLocalChunks(StatePtr state);

    void operator=(const SimpleMaterial &source);
};

typedef SimpleMaterial *SimpleMaterialP;

OSG_END_NAMESPACE

#endif
