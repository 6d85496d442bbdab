/// A material made of a list of state chunks.
///
/// Each chunk is added with the slot it asks for: State::AutoSlotReplace
/// (-2, the default) takes the lowest free slot of the chunk's class when the
/// state is built, so texture chunks added that way get texture units 0, 1,
/// 2, ... in the order they were added; AutoSlot (-1) does the same but
/// drops the chunk when the class is full; k >= 0 takes slot k, replacing
/// what was there.
///
/// addChunk, subChunk and clearChunks open no edit: bracket them with
/// beginEditCP(mat, ChunksFieldMask) / endEditCP, whose changed() rebuilds
/// the material's state.
#ifndef _OSGCHUNKMATERIAL_H_
#define _OSGCHUNKMATERIAL_H_

#include <OpenSG/OSGChunkMaterialBase.h>

OSG_BEGIN_NAMESPACE

class ChunkMaterial : public ChunkMaterialBase
{
  private:
    typedef ChunkMaterialBase Inherited;

  public:
    /// Appends chunk with its slot (one reference added); always true.
    bool addChunk(StateChunkPtr chunk, Int32 slot = State::AutoSlotReplace);
    /// Removes the first occurrence of chunk (with that slot, unless slot is
    /// AutoSlotReplace); false on success.
    bool subChunk(StateChunkPtr chunk, Int32 slot = State::AutoSlotReplace);
    /// Index of the first occurrence of chunk, -1 if none.
    Int32 find(StateChunkPtr chunk);
    /// The first chunk of exactly that type (in the given slot, counting
    /// chunks without an explicit slot by their order among that type).
    StateChunkPtr find(const FieldContainerType &type, Int32 slot = State::AutoSlotReplace);
    /// Drops every chunk and its slot.
    void clearChunks(void);

    virtual void draw(DrawFunctor &func, DrawActionBase *action);
    virtual void draw(Geometry *geo, DrawActionBase *action);

    virtual StatePtr makeState(void);
    virtual void rebuildState(void);

    /// transparencyMode 1/2 forces the answer; otherwise transparent if
    /// any chunk is.
    virtual bool isTransparent(void) const;

    virtual bool operator==(const Material &other) const;

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ChunkMaterial(void);
    ChunkMaterial(const ChunkMaterial &source);
    virtual ~ChunkMaterial(void);

    /// A copy takes references of its own to the source's chunks.
    void onCreate(const ChunkMaterial *source = NULL);
    /// Drops the references of the chunks.
    virtual void onDestroy(void);

    /// Adds the chunks to state in list order, each with its slot.
    void addChunks(StatePtr state);

  private:
    friend class FieldContainer;
    friend class ChunkMaterialBase;

    static void initMethod(void);

    void operator=(const ChunkMaterial &source);
};

typedef ChunkMaterial *ChunkMaterialP;

OSG_END_NAMESPACE

#endif
