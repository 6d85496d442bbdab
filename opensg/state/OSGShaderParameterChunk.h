/// A chunk that carries named shader parameters (uniform values).
///
/// The set/get/sub/clear functions open no edit of the chunk: bracket them
/// with beginEditCP(chunk, ParametersFieldMask) / endEditCP, which is what
/// makes a shader chunk send the values at its next activation.
#ifndef _OSGSHADERPARAMETERCHUNK_H_
#define _OSGSHADERPARAMETERCHUNK_H_

#include <OpenSG/OSGShaderParameterChunkBase.h>
#include <OpenSG/OSGShaderParameterAccess.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGVector.h>

OSG_BEGIN_NAMESPACE

class ShaderParameterChunk : public ShaderParameterChunkBase
{
  private:
    typedef ShaderParameterChunkBase Inherited;

  public:
    // Adds the parameter or sets the value of the one of that name (which
    // must be of the matching class). A double argument is ambiguous
    // between bool, Int32 and Real32: pass a Real32.
    bool setUniformParameter(const char *name, bool value);
    bool setUniformParameter(const char *name, Int32 value);
    bool setUniformParameter(const char *name, Real32 value);
    bool setUniformParameter(const char *name, const Vec2f &value);
    bool setUniformParameter(const char *name, const Vec3f &value);
    bool setUniformParameter(const char *name, const Vec4f &value);
    bool setUniformParameter(const char *name, const Matrix &value);
    bool setUniformParameter(const char *name, const MFInt32 &value);
    bool setUniformParameter(const char *name, const MFReal32 &value);
    bool setUniformParameter(const char *name, const MFVec2f &value);
    bool setUniformParameter(const char *name, const MFVec3f &value);
    bool setUniformParameter(const char *name, const MFVec4f &value);
    bool setUniformParameter(const char *name, const MFMatrix &value);

    bool getUniformParameter(const char *name, bool &value);
    bool getUniformParameter(const char *name, Int32 &value);
    bool getUniformParameter(const char *name, Real32 &value);
    bool getUniformParameter(const char *name, Vec2f &value);
    bool getUniformParameter(const char *name, Vec3f &value);
    bool getUniformParameter(const char *name, Vec4f &value);
    bool getUniformParameter(const char *name, Matrix &value);
    bool getUniformParameter(const char *name, MFInt32 &value);
    bool getUniformParameter(const char *name, MFReal32 &value);
    bool getUniformParameter(const char *name, MFVec2f &value);
    bool getUniformParameter(const char *name, MFVec3f &value);
    bool getUniformParameter(const char *name, MFVec4f &value);
    bool getUniformParameter(const char *name, MFMatrix &value);

    bool subUniformParameter(const char *name);
    bool hasUniformParameter(const char *name);

    /// Drops every parameter and remembers that the list was cleared.
    void clearUniformParameters(void);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameterChunk(void);
    /// A copy gets its own access object over its own field.
    ShaderParameterChunk(const ShaderParameterChunk &source);
    virtual ~ShaderParameterChunk(void);

    /// Makes the access object; a copy takes references of its own to the
    /// source's parameters.
    void onCreate(const ShaderParameterChunk *source = NULL);
    /// Drops the parameters.
    virtual void onDestroy(void);

    /// The access object over this aspect copy's parameters field (made in
    /// onCreate, or on first use in the other aspect copies).
    ShaderParameterAccess *getParameterAccess(void);

    ShaderParameterAccess *_parameter_access;
    bool                   _cleared_parameters;

  private:
    friend class FieldContainer;
    friend class ShaderParameterChunkBase;

    static void initMethod(void);

    void operator=(const ShaderParameterChunk &source);
};

typedef ShaderParameterChunk *ShaderParameterChunkP;

OSG_END_NAMESPACE

#include <OpenSG/OSGShaderParameterBool.h>
#include <OpenSG/OSGShaderParameterInt.h>
#include <OpenSG/OSGShaderParameterReal.h>
#include <OpenSG/OSGShaderParameterVec2f.h>
#include <OpenSG/OSGShaderParameterVec3f.h>
#include <OpenSG/OSGShaderParameterVec4f.h>
#include <OpenSG/OSGShaderParameterMatrix.h>
#include <OpenSG/OSGShaderParameterString.h>
#include <OpenSG/OSGShaderParameterMInt.h>
#include <OpenSG/OSGShaderParameterMReal.h>
#include <OpenSG/OSGShaderParameterMVec2f.h>
#include <OpenSG/OSGShaderParameterMVec3f.h>
#include <OpenSG/OSGShaderParameterMVec4f.h>
#include <OpenSG/OSGShaderParameterMMatrix.h>

#endif
