/// A named value for a shader: a uniform of a GLSL program, or a
/// compile-time parameter. Each concrete class holds one value field.
#ifndef _OSGSHADERPARAMETER_H_
#define _OSGSHADERPARAMETER_H_

#include <OpenSG/OSGShaderParameterBase.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

class ShaderParameter : public ShaderParameterBase
{
  private:
    typedef ShaderParameterBase Inherited;

  public:
    /// The kinds of value, consecutive from 0. The kinds without a class
    /// (the short vectors, MBool, MString) are kept for their numbers.
    enum SHPType
    {
        SHPTypeUnknown = 0,
        SHPTypeBool,
        SHPTypeInt,
        SHPTypeReal,
        SHPTypeVec2s,
        SHPTypeVec3s,
        SHPTypeVec4s,
        SHPTypeVec2f,
        SHPTypeVec3f,
        SHPTypeVec4f,
        SHPTypeMatrix,
        SHPTypeString,
        SHPTypeMBool,
        SHPTypeMInt,
        SHPTypeMReal,
        SHPTypeMVec2s,
        SHPTypeMVec3s,
        SHPTypeMVec4s,
        SHPTypeMVec2f,
        SHPTypeMVec3f,
        SHPTypeMVec4f,
        SHPTypeMMatrix,
        SHPTypeMString
    };

    enum SHPFlags
    {
        SHPFlagNone   = 0,
        SHPFlagUpdate = 1
    };

    /// The kind of value (hides the container's type id on purpose).
    SHPType getTypeId(void) const { return _typeid; }

    /// Whether the value was edited since the last resetChanged.
    bool hasChanged(void) const { return _changed; }
    void resetChanged(void) { _changed = false; }

    /// The uniform location of the program that looked it up last; -2
    /// until it was looked up.
    GLint getLocation(void) const { return _location; }
    void setLocation(GLint location) { _location = location; }

    UInt32 getFlags(void) const { return _flags; }
    void setFlags(UInt32 flags) { _flags = flags; }

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    ShaderParameter(void);
    ShaderParameter(const ShaderParameter &source);
    virtual ~ShaderParameter(void);

    void setTypeId(SHPType type) { _typeid = type; }
    void setChanged(void) { _changed = true; }

  private:
    friend class FieldContainer;
    friend class ShaderParameterBase;

    static void initMethod(void);

    bool    _changed;
    SHPType _typeid;
    GLint   _location;
    UInt32  _flags;

    void operator=(const ShaderParameter &source);
};

typedef ShaderParameter *ShaderParameterP;

OSG_END_NAMESPACE

#endif
