/// A state chunk that sets the texture matrix of the texture unit given by
/// its slot: its own matrix, or with useCameraBeacon the camera's rotation
/// (eye directions to world directions, e.g. for reflection lookups). A
/// TextureChunk of the same unit that corrects its coordinates by a matrix
/// of its own gets this matrix multiplied onto that correction.
#ifndef _OSGTEXTURETRANSFORMCHUNK_H_
#define _OSGTEXTURETRANSFORMCHUNK_H_

#include <OpenSG/OSGTextureTransformChunkBase.h>

OSG_BEGIN_NAMESPACE

class TextureTransformChunk : public TextureTransformChunkBase
{
  private:
    typedef TextureTransformChunkBase Inherited;

  public:
    virtual const StateChunkClass *getClass(void) const;
    static const StateChunkClass *getStaticClass(void) { return &_class; }
    static UInt32 getStaticClassId(void) { return _class.getId(); }

    virtual void activate(DrawActionBase *action, UInt32 index = 0);
    virtual void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0);
    virtual void deactivate(DrawActionBase *action, UInt32 index = 0);

    virtual bool operator==(const StateChunk &other) const;

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    TextureTransformChunk(void);
    TextureTransformChunk(const TextureTransformChunk &source);
    virtual ~TextureTransformChunk(void);

  private:
    friend class FieldContainer;
    friend class TextureTransformChunkBase;

    static void initMethod(void);

    /// "TextureTransform", 8 slots (texture coordinate units).
    static StateChunkClass _class;

    void operator=(const TextureTransformChunk &source);
};

typedef TextureTransformChunk *TextureTransformChunkP;

OSG_END_NAMESPACE

#endif
