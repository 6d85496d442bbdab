/// A shader chunk that compiles and activates one permutation of its sources per render state.
#ifndef _OSGPERMUTATIONSHLCHUNK_H_
#define _OSGPERMUTATIONSHLCHUNK_H_

#include <OpenSG/OSGPermutationSHLChunkBase.h>

OSG_BEGIN_NAMESPACE

class PermutationSHLChunk : public PermutationSHLChunkBase
{
  private:
    typedef PermutationSHLChunkBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    PermutationSHLChunk(void);
    PermutationSHLChunk(const PermutationSHLChunk &source);
    virtual ~PermutationSHLChunk(void);

  private:
    friend class FieldContainer;
    friend class PermutationSHLChunkBase;

    static void initMethod(void);

    void operator=(const PermutationSHLChunk &source);
};

typedef PermutationSHLChunk *PermutationSHLChunkP;

OSG_END_NAMESPACE

#endif
