/// A ready permutation shader for CommonSurfaceShaderMaterial: per-pixel
/// lighting of the GL lights that are on, with the emissive, ambient,
/// diffuse, specular, shininess, alpha and normal-map families of the
/// material, each with its factor and, where its texture id is set, its
/// texture, coordinate set, channel mask and coordinate transform.
///
/// apply() puts a PermutationSHLChunk with these programs into the material
/// (or finds the one put there before) and copies the material's fields
/// into it; call it again after changing the material. Texture ids are
/// texture units 0 to 15, i.e. the slots of the material's TextureChunks;
/// coordinate sets are 0 to 7. The factors and transforms become uniforms;
/// everything that shapes the program (texture ids, coordinate sets,
/// channel masks, normal format and space, enabled transforms) becomes
/// define lines in the value of the one permutation parameter
/// CSS_CONFIGURATION (a family with a texture: CSS_<FAMILY>_TEXTURE,
/// _TEXCOORD, _CHANNELS and _TRANSFORM), so each configuration compiles
/// once per light set and fog mode.
///
/// The lighting, per active light i (directional, point or spot light as
/// OpenGL describes them, with attenuation), with N the (mapped) normal,
/// L the direction to the light, H the half vector of L and the direction
/// to the eye, in eye space:
///
///     colour = emissive + ambient * (global ambient + sum ambient_i * att_i)
///            + diffuse * sum diffuse_i * max(N.L, 0) * att_i
///            + specular * sum specular_i * max(N.H, 0)^(128 shininess) * att_i  (N.L > 0)
///     alpha  = alpha factor * alpha texture
///
/// then mixed with the fog colour when fog is on (GL_LINEAR, GL_EXP or
/// GL_EXP2 over the eye-space depth).
///
/// Channel masks: one to four of the letters r, g, b, a. A colour family
/// takes one channel (as grey) or three or four (the first three); a scalar
/// family takes the first channel of its mask. normalFormat 0: the mask's
/// three channels scaled by normalScale and biased by normalBias; 1: two
/// channels decoded so, z reconstructed. normalSpace 0: tangent space (the
/// frame follows the normal map's texture coordinates), 1: object space.
/// textureTransformEnabled: entry i, if non-zero, applies the coordinate
/// transform of family i, in the order emissive, ambient, diffuse,
/// specular, shininess, alpha, normal (reflection and transmission, 7 and
/// 8, are not used here). Values outside these are replaced by the
/// defaults, with a warning. The reflection, transmission and environment
/// families, relativeIndexOfRefraction and fresnelBlend are not used.
#ifndef _COMMONSURFACESHADER_H_
#define _COMMONSURFACESHADER_H_

#include <OpenSG/OSGCommonSurfaceShaderMaterial.h>
#include <OpenSG/OSGPermutationSHLChunk.h>

class CommonSurfaceShader
{
  public:
    /// "#version 120", the prefix of both programs.
    static const char *getProgramPrefix(void);
    /// The texts of the permutation shader, after the prefix; the fragment
    /// program reads the material's parameters as uniforms.
    /// @{
    static const char *getVertexProgram(void);
    static const char *getFragmentProgram(void);
    /// @}

    /// The material's shader chunk, made and added to its chunks on the
    /// first call, with the material's current fields. A see-through
    /// material (see update) that has no BlendChunk gets one that blends
    /// with the source alpha. NullFC for a null material.
    static osg::PermutationSHLChunkPtr apply(const osg::CommonSurfaceShaderMaterialPtr &material);

    /// Copies the material's fields into chunk: the permutation parameters,
    /// the uniforms and isTransparent (an alpha below 1 or an alpha
    /// texture).
    static void update(const osg::CommonSurfaceShaderMaterialPtr &material,
                       const osg::PermutationSHLChunkPtr        &chunk);
};

#endif
