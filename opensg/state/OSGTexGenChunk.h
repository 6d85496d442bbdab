/// A state chunk that makes OpenGL generate the texture coordinates S, T, R
/// and Q of the texture unit given by its slot. Each coordinate has a
/// function (GL_NONE leaves it alone, GL_OBJECT_LINEAR, GL_EYE_LINEAR,
/// GL_SPHERE_MAP, GL_REFLECTION_MAP, GL_NORMAL_MAP) and a plane for the
/// linear functions. With a beacon node the coordinate is eye-linear with
/// its plane given in the beacon's coordinate system; an eye-linear plane
/// without a beacon is in eye coordinates.
#ifndef _OSGTEXGENCHUNK_H_
#define _OSGTEXGENCHUNK_H_

#include <OpenSG/OSGTexGenChunkBase.h>

OSG_BEGIN_NAMESPACE

class TexGenChunk : public TexGenChunkBase
{
  private:
    typedef TexGenChunkBase Inherited;

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
    TexGenChunk(void);
    TexGenChunk(const TexGenChunk &source);
    virtual ~TexGenChunk(void);

  private:
    friend class FieldContainer;
    friend class TexGenChunkBase;

    static void initMethod(void);

    /// "TexGen", 8 slots (texture coordinate units).
    static StateChunkClass _class;

    void operator=(const TexGenChunk &source);
};

typedef TexGenChunk *TexGenChunkP;

OSG_END_NAMESPACE

#endif
