#ifndef _SHADINGFUNCTIONS_H_
#define _SHADINGFUNCTIONS_H_

#include <OpenSG/ShaderStrategy.h>
#include <OpenSG/OSGVector.h>

#include <string>

/// The shading strategy of the ray caster: what one sample does to the
/// colour of its ray (doShading).
class ShadingFunctions : public ShaderStrategy
{
};

/// Maximum intensity projection: white, with the largest value as opacity.
class MIPShading : public ShadingFunctions
{
  public:
    CORVANE_SHADER_STRATEGY
};

/// Sums the values along the ray, as an X-ray film would.
class XRayShading : public ShadingFunctions
{
  public:
    CORVANE_SHADER_STRATEGY
};

/// Direct volume rendering: classification through the transfer function,
/// front-to-back compositing, early termination at an opacity of 0.98.
/// With _gradientOpacity the opacity of a sample is scaled by
/// kgc + kgs * |gradient|^kge, which brings out boundaries; the choice is
/// made when the text is built.
class DVRShadingBase : public ShadingFunctions
{
  public:
    DVRShadingBase(void);

    /// Sets kgc, kgs and kge.
    void setMaterialParameter(osg::ChunkMaterialPtr &material,
                              osg::SHLChunkPtr      &shader,
                              int                   &textureUnit,
                              VolumeData            *volumeData) override;

    bool  _gradientOpacity; ///< scale opacity by the gradient (set before the text is built)
    float kgc; ///< constant term of the gradient opacity
    float kgs; ///< factor of the gradient term
    float kge; ///< exponent of the gradient's magnitude

  protected:
    /// The four lines that scale opacity by the gradient's magnitude, or
    /// nothing without _gradientOpacity.
    std::string gradientOpacityText(void) const;
};

/// Direct volume rendering without lighting: the classified colour of each
/// sample, composited front to back.
class DVRShading : public DVRShadingBase
{
  public:
    std::string getFragmentShaderString(void) override;
};

/// DVR with a Blinn-Phong term of the first OpenGL light per sample.
class DVRShadingAndLighting : public DVRShadingBase
{
  public:
    DVRShadingAndLighting(void);

    std::string getFragmentShaderString(void) override;
    /// The DVR uniforms and the colours; the exponent uniform is always 25.
    void setMaterialParameter(osg::ChunkMaterialPtr &material,
                              osg::SHLChunkPtr      &shader,
                              int                   &textureUnit,
                              VolumeData            *volumeData) override;

    /// The colours of the Blinn-Phong term, uniforms of the same names.
    /// @{
    osg::Vec3f emissiveColor;
    osg::Vec3f diffuseColor;
    osg::Vec3f specularColor;
    /// @}
    float      exponent; ///< kept, but the shader's exponent uniform is always 25
};

#endif
