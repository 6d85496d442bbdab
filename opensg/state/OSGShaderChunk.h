/// A shader program given as GLSL source texts (vertex, fragment,
/// geometry) together with its parameters.
#ifndef _OSGSHADERCHUNK_H_
#define _OSGSHADERCHUNK_H_

#include <OpenSG/OSGShaderChunkBase.h>

#include <istream>

OSG_BEGIN_NAMESPACE

class ShaderChunk : public ShaderChunkBase
{
  private:
    typedef ShaderChunkBase Inherited;

  public:
    /// Replace the program text with the whole content of the file or
    /// stream; they open no edit.
    bool readVertexProgram(const char *file);
    bool readVertexProgram(std::istream &stream);
    bool readFragmentProgram(const char *file);
    bool readFragmentProgram(std::istream &stream);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderChunk(void);
    ShaderChunk(const ShaderChunk &source);
    virtual ~ShaderChunk(void);

  private:
    friend class FieldContainer;
    friend class ShaderChunkBase;

    static void initMethod(void);

    void operator=(const ShaderChunk &source);
};

typedef ShaderChunk *ShaderChunkP;

OSG_END_NAMESPACE

#endif
