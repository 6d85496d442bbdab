/// A texture: an Image uploaded into a GL texture object, with its filters,
/// wrap modes and fixed-function texture environment. The slot a State
/// passes to activate is the texture unit.
///
/// The GL texture lives per window: the chunk registers one GL object with
/// Window (its id is the GLId field, not a texture name). Activation
/// validates it, which creates the texture at the first use in a window and
/// afterwards re-uploads texels ("refresh") or recreates the texture
/// ("reinit") as the chunk's changes asked for:
///  - only min/mag filter changed: refresh if the new min filter is
///    GL_NEAREST or GL_LINEAR, else reinit;
///  - only priority or frame changed: refresh of the whole image;
///  - only the dirty box (dirtyMinX ... dirtyMaxZ) changed: refresh of that
///    box, as imageContentChanged() does;
///  - anything else, "all fields" in particular: reinit.
/// Changing the image's pixels alone refreshes, any other image change
/// reinitialises every texture that uses the image.
///
/// Activation also resets the texture matrix of its unit (identity, or the
/// correction of NPOTMatrixScale for images in a bigger power-of-two
/// texture).
#ifndef _OSGTEXTURECHUNK_H_
#define _OSGTEXTURECHUNK_H_

#include <OpenSG/OSGTextureChunkBase.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGGL.h>

/// Texture image units a State reserves slots for.
#define osgMaxTexImages 16
/// Texture coordinate sets.
#define osgMaxTexCoords 8

OSG_BEGIN_NAMESPACE

class Window;

class TextureChunk : public TextureChunkBase
{
  private:
    typedef TextureChunkBase Inherited;

  public:
    /// Flags of NPOTMatrixScale (may be or-ed).
    enum NPOTMatrixScaleE
    {
        None_TT         = 0,
        NPotTexScale_TT = 1,
        XFlip_TT        = 2,
        YFlip_TT        = 4,
        ZFlip_TT        = 8
    };

    virtual const StateChunkClass *getClass(void) const;
    static const StateChunkClass *getStaticClass(void) { return &_class; }
    static UInt32 getStaticClassId(void) { return _class.getId(); }

    /// Takes a reference to the new image and drops the old one's, and
    /// registers the chunk as a parent of the image. Opens no edit: end an
    /// edit of ImageFieldMask afterwards.
    void setImage(ImagePtr &pImage);
    /// The same for a const pointer (the late 1.8 line's signature).
    void setImage(const ImagePtr &pImage);

    /// Asks for a re-upload of the inclusive texel box at the next
    /// activation (-1: the whole extent on that axis), through one edit of
    /// the six dirty fields.
    void imageContentChanged(Int32 minX = -1, Int32 maxX = -1, Int32 minY = -1,
                             Int32 maxY = -1, Int32 minZ = -1, Int32 maxZ = -1);

    /// Fills shaderOffsetMatrix (NVIDIA texture shaders; kept for the field).
    void setShaderOffsetMatrix(Real32 m11, Real32 m12, Real32 m21, Real32 m22);

    virtual void activate(DrawActionBase *action, UInt32 unit = 0);
    virtual void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 unit = 0);
    virtual void deactivate(DrawActionBase *action, UInt32 unit = 0);

    /// Always false: alpha in a texture does not make a material
    /// transparent.
    virtual bool isTransparent(void) const;
    virtual Real32 switchCost(StateChunk *chunk);

    virtual bool operator<(const StateChunk &other) const;
    virtual bool operator==(const StateChunk &other) const;
    virtual bool operator!=(const StateChunk &other) const;

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    // --- helpers shared with other texture classes ---------------------------

    static bool hasMultiTexture(Window *win);
    /// Makes unit the active texture unit.
    static void activeTexture(Window *win, UInt16 unit);
    /// activeTexture if the window has multitexturing; true ("failed") only
    /// when it has none and unit is not 0.
    static bool activateTexture(Window *win, UInt16 unit);
    /// The texture matrix a TextureTransformChunk recorded for unit, if any.
    static bool activeMatrix(Matrix &texMat, UInt16 unit = 0);

    /// How many textures were created or recreated, and the seconds spent.
    static UInt32 getNumTexCreate(void);
    static Time getSummedTexCreateTime(void);

  protected:
    TextureChunk(void);
    TextureChunk(const TextureChunk &source);
    virtual ~TextureChunk(void);

    /// Registers the GL object (not for the start-up prototype).
    void onCreate(const TextureChunk *source = NULL);
    /// Drops the image and destroys the GL object.
    virtual void onDestroy(void);

    /// The GL-object callback: status in the low bits of idstatus.
    void handleGL(Window *win, UInt32 idstatus);
    /// The destroy and finaldestroy part of handleGL; needs no chunk.
    static void destroyGL(Window *win, UInt32 idstatus);

    /// Creates (mode initialize / reinitialize) or refreshes (needrefresh)
    /// one texture image of the bound texture.
    void handleTexture(Window *win, UInt32 id, GLenum bindtarget, GLenum paramtarget,
                       GLenum imgtarget, UInt32 mode, ImagePtr img, Int32 side = 0);

  private:
    friend class FieldContainer;
    friend class TextureChunkBase;

    static void initMethod(void);

    bool ignoreGL(void) const;
    void registerGL(void);
    /// The target the image asks for (GL_NONE without a usable image).
    GLenum imageTarget(bool cubeForSides) const;
    /// The unit limits of the window: image units, coordinate sets,
    /// fixed-function units.
    static void getUnitLimits(Window *win, UInt32 &nImages, UInt32 &nCoords, UInt32 &nUnits);
    /// The texture-coordinate sets of the window.
    static UInt32 coordinateUnits(Window *win);
    void applyEnvironment(Window *win, TextureChunk *old, UInt32 unit, UInt32 nImages,
                          UInt32 nUnits, UInt32 nCoords);
    void applyTextureMatrix(GLenum target, Window *win, UInt32 unit);

    // the chunks of texture coordinates share the unit limits, and the
    // texture transform the matrix bookkeeping
    friend class TexGenChunk;
    friend class TextureTransformChunk;

    /// Per coordinate unit: the correction matrix the texture chunk loaded
    /// itself (non-power-of-two scale, flips), and the matrix a
    /// TextureTransformChunk loaded on top of it.
    static bool   _needTexMat[osgMaxTexCoords];
    static Matrix _lastTexMat[osgMaxTexCoords];
    static bool   _needTransformMat[osgMaxTexCoords];
    static Matrix _transformMat[osgMaxTexCoords];

    /// "Texture", osgMaxTexImages slots.
    static StateChunkClass _class;

    static UInt32 _extTex3D;
    static UInt32 _extMultitexture;
    static UInt32 _extCubeMap;
    static UInt32 _extPointSprite;
    static UInt32 _extSGISGenerateMipmap;
    static UInt32 _extLodBias;
    static UInt32 _extTextureCompression;
    static UInt32 _extRectangle;
    static UInt32 _extNPOT;
    static UInt32 _extAnisotropic;

    static UInt32 _funcTexImage3D;
    static UInt32 _funcTexSubImage3D;
    static UInt32 _funcActiveTexture;
    static UInt32 _funcCompressedTexImage1D;
    static UInt32 _funcCompressedTexImage2D;
    static UInt32 _funcCompressedTexImage3D;
    static UInt32 _funcCompressedTexSubImage1D;
    static UInt32 _funcCompressedTexSubImage2D;
    static UInt32 _funcCompressedTexSubImage3D;

    static UInt32 _numTexCreate;
    static Time   _summedTexCreateTime;

    void operator=(const TextureChunk &source);
};

typedef TextureChunk *TextureChunkP;

OSG_END_NAMESPACE

#endif
