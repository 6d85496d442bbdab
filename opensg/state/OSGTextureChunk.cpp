#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGWindow.h>
#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGGLU.h>
#include <OpenSG/OSGBaseFunctions.h>

#include <cmath>
#include <cstring>
#include <vector>

OSG_BEGIN_NAMESPACE

StateChunkClass TextureChunk::_class("Texture", osgMaxTexImages);

UInt32 TextureChunk::_extTex3D              = Window::invalidExtensionID;
UInt32 TextureChunk::_extMultitexture       = Window::invalidExtensionID;
UInt32 TextureChunk::_extCubeMap            = Window::invalidExtensionID;
UInt32 TextureChunk::_extPointSprite        = Window::invalidExtensionID;
UInt32 TextureChunk::_extSGISGenerateMipmap = Window::invalidExtensionID;
UInt32 TextureChunk::_extLodBias            = Window::invalidExtensionID;
UInt32 TextureChunk::_extTextureCompression = Window::invalidExtensionID;
UInt32 TextureChunk::_extRectangle          = Window::invalidExtensionID;
UInt32 TextureChunk::_extNPOT               = Window::invalidExtensionID;
UInt32 TextureChunk::_extAnisotropic        = Window::invalidExtensionID;

UInt32 TextureChunk::_funcTexImage3D              = Window::invalidFunctionID;
UInt32 TextureChunk::_funcTexSubImage3D           = Window::invalidFunctionID;
UInt32 TextureChunk::_funcActiveTexture           = Window::invalidFunctionID;
UInt32 TextureChunk::_funcCompressedTexImage1D    = Window::invalidFunctionID;
UInt32 TextureChunk::_funcCompressedTexImage2D    = Window::invalidFunctionID;
UInt32 TextureChunk::_funcCompressedTexImage3D    = Window::invalidFunctionID;
UInt32 TextureChunk::_funcCompressedTexSubImage1D = Window::invalidFunctionID;
UInt32 TextureChunk::_funcCompressedTexSubImage2D = Window::invalidFunctionID;
UInt32 TextureChunk::_funcCompressedTexSubImage3D = Window::invalidFunctionID;

UInt32 TextureChunk::_numTexCreate        = 0;
Time   TextureChunk::_summedTexCreateTime = 0;
bool   TextureChunk::_needTexMat[osgMaxTexCoords]       = {};
Matrix TextureChunk::_lastTexMat[osgMaxTexCoords];
bool   TextureChunk::_needTransformMat[osgMaxTexCoords] = {};
Matrix TextureChunk::_transformMat[osgMaxTexCoords];

namespace
{
/// The six fields of the dirty box (not dirtyLeft).
inline BitVector dirtyMask(void)
{
    return TextureChunk::DirtyMinXFieldMask | TextureChunk::DirtyMaxXFieldMask |
           TextureChunk::DirtyMinYFieldMask | TextureChunk::DirtyMaxYFieldMask |
           TextureChunk::DirtyMinZFieldMask | TextureChunk::DirtyMaxZFieldMask;
}

inline bool isPow2(UInt32 v)
{
    return osgIsPower2(v);
}

inline UInt32 nextPow2(UInt32 v)
{
    return osgnextpower2(v);
}

bool isMipmapFilter(GLenum filter)
{
    return filter == GL_NEAREST_MIPMAP_NEAREST || filter == GL_LINEAR_MIPMAP_NEAREST ||
           filter == GL_NEAREST_MIPMAP_LINEAR || filter == GL_LINEAR_MIPMAP_LINEAR;
}

bool isCubeFace(GLenum target)
{
    return target >= GL_TEXTURE_CUBE_MAP_POSITIVE_X_ARB &&
           target <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z_ARB;
}

/// Row-byte alignment of the image rows is 1: rows are tightly packed.
class UnpackAlignment
{
  public:
    UnpackAlignment(void)
    {
        glGetIntegerv(GL_UNPACK_ALIGNMENT, &_old);
        if(_old != 1)
            glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    }
    ~UnpackAlignment(void)
    {
        if(_old != 1)
            glPixelStorei(GL_UNPACK_ALIGNMENT, _old);
    }

  private:
    GLint _old;
};
} // namespace

TextureChunk::TextureChunk(void) : Inherited()
{
}

TextureChunk::TextureChunk(const TextureChunk &source) : Inherited(source)
{
}

TextureChunk::~TextureChunk(void)
{
}

void TextureChunk::initMethod(void)
{
    _extTex3D        = Window::registerExtension("GL_EXT_texture3D");
    _extMultitexture = Window::registerExtension("GL_ARB_multitexture");
    _extCubeMap      = Window::registerExtension("GL_ARB_texture_cube_map");
    _extPointSprite  = Window::registerExtension("GL_NV_point_sprite");
    Window::registerExtension("GL_NV_texture_shader");
    Window::registerExtension("GL_NV_texture_shader2");
    Window::registerExtension("GL_NV_texture_shader3");
    _extSGISGenerateMipmap = Window::registerExtension("GL_SGIS_generate_mipmap");
    _extLodBias            = Window::registerExtension("GL_EXT_texture_lod_bias");
    _extTextureCompression = Window::registerExtension("GL_ARB_texture_compression");
    _extRectangle          = Window::registerExtension("GL_ARB_texture_rectangle");
    _extNPOT               = Window::registerExtension("GL_ARB_texture_non_power_of_two");
    _extAnisotropic        = Window::registerExtension("GL_EXT_texture_filter_anisotropic");

    // the core names: the extension functions have the same signatures, and
    // the version lets a window load them without the extension string
    _funcTexImage3D    = Window::registerFunction("glTexImage3D", _extTex3D, 0x0102);
    _funcTexSubImage3D = Window::registerFunction("glTexSubImage3D", _extTex3D, 0x0102);
    _funcActiveTexture = Window::registerFunction("glActiveTexture", _extMultitexture, 0x0103);
    _funcCompressedTexImage1D =
        Window::registerFunction("glCompressedTexImage1D", _extTextureCompression, 0x0103);
    _funcCompressedTexImage2D =
        Window::registerFunction("glCompressedTexImage2D", _extTextureCompression, 0x0103);
    _funcCompressedTexImage3D =
        Window::registerFunction("glCompressedTexImage3D", _extTextureCompression, 0x0103);
    _funcCompressedTexSubImage1D =
        Window::registerFunction("glCompressedTexSubImage1D", _extTextureCompression, 0x0103);
    _funcCompressedTexSubImage2D =
        Window::registerFunction("glCompressedTexSubImage2D", _extTextureCompression, 0x0103);
    _funcCompressedTexSubImage3D =
        Window::registerFunction("glCompressedTexSubImage3D", _extTextureCompression, 0x0103);

    Window::registerConstant(GL_MAX_TEXTURE_UNITS_ARB);
    Window::registerConstant(GL_MAX_TEXTURE_IMAGE_UNITS_ARB);
    Window::registerConstant(GL_MAX_TEXTURE_COORDS_ARB);
}

const StateChunkClass *TextureChunk::getClass(void) const
{
    return &_class;
}

// --- GL object ---------------------------------------------------------------------

bool TextureChunk::ignoreGL(void) const
{
    return Int32(Thread::getAspect()) == getIgnoreGLForAspect();
}

void TextureChunk::registerGL(void)
{
    TextureChunkPtr thisPtr(this);
    Window::GLObjectFunctor functor =
        osgGLObjectFunctor(thisPtr, &TextureChunk::handleGL, &TextureChunk::destroyGL);

    UInt32 id = Window::registerGLObject(functor, 1);
    beginEditCP(thisPtr, GLIdFieldMask);
    setGLId(id);
    endEditCP(thisPtr, GLIdFieldMask);
}

void TextureChunk::onCreate(const TextureChunk *source)
{
    Inherited::onCreate(source);

    // the prototype made at start-up needs no GL object
    if(GlobalSystemState == Startup)
        return;

    // a copy uses the source's image: with its own reference and parent link
    ImagePtr img = getImage();
    if(source != NULL && img != NullFC)
    {
        addRefCP(img);
        img->addParent(TextureChunkPtr(this));
    }

    // a copy must not share the source's GL object
    if(!ignoreGL())
        registerGL();
    else
        _sfGLId.setValue(0);
}

void TextureChunk::onDestroy(void)
{
    Inherited::onDestroy();

    ImagePtr img = getImage();
    if(img != NullFC)
    {
        _sfImage.setValue(NullFC);
        img->subParent(TextureChunkPtr(this));
        subRefCP(img);
    }

    if(getGLId() > 0)
        Window::destroyGLObject(getGLId(), 1);
}

void TextureChunk::setImage(ImagePtr &pImage)
{
    setImage(static_cast<const ImagePtr &>(pImage));
}

void TextureChunk::setImage(const ImagePtr &pImage)
{
    TextureChunkPtr thisPtr(this);
    ImagePtr        old = _sfImage.getValue();

    if(old != NullFC)
        old->subParent(thisPtr);

    if(pImage != NullFC)
        addRefCP(pImage);

    _sfImage.setValue(pImage);

    if(pImage != NullFC)
        pImage->addParent(thisPtr);

    if(old != NullFC)
        subRefCP(old);
}

void TextureChunk::imageContentChanged(Int32 minX, Int32 maxX, Int32 minY, Int32 maxY,
                                       Int32 minZ, Int32 maxZ)
{
    TextureChunkPtr thisPtr(this);
    beginEditCP(thisPtr, dirtyMask());
    setDirtyMinX(minX);
    setDirtyMaxX(maxX);
    setDirtyMinY(minY);
    setDirtyMaxY(maxY);
    setDirtyMinZ(minZ);
    setDirtyMaxZ(maxZ);
    endEditCP(thisPtr, dirtyMask());
}

void TextureChunk::setShaderOffsetMatrix(Real32 m11, Real32 m12, Real32 m21, Real32 m22)
{
    MFReal32 &m = *editMFShaderOffsetMatrix();
    m.resize(4);
    m[0] = m11;
    m[1] = m12;
    m[2] = m21;
    m[3] = m22;
}

void TextureChunk::changed(BitVector whichField, UInt32 origin)
{
    if(!ignoreGL())
    {
        if(getGLId() == 0)
            registerGL();

        // the bookkeeping fields themselves need no GL work
        BitVector glFields = whichField & ~(GLIdFieldMask | IgnoreGLForAspectFieldMask);

        if(glFields != 0)
        {
            if((whichField & ~(MinFilterFieldMask | MagFilterFieldMask)) == 0)
            {
                if(getMinFilter() != GL_NEAREST && getMinFilter() != GL_LINEAR)
                    Window::reinitializeGLObject(getGLId());
                else
                    imageContentChanged();
            }
            else if((whichField & ~(PriorityFieldMask | FrameFieldMask)) == 0)
            {
                imageContentChanged();
            }
            else if((whichField & ~dirtyMask()) == 0)
            {
                Window::refreshGLObject(getGLId());
            }
            else
            {
                Window::reinitializeGLObject(getGLId());
            }
        }
    }

    // a loader or a generic field setter filled the image without counting
    if((whichField & ImageFieldMask) && (origin & ChangedOrigin::Abstract))
    {
        if(origin & ChangedOrigin::AbstrIncRefCount)
        {
            if(getImage() != NullFC)
                addRefCP(getImage());
        }
        else
        {
            ImagePtr img = getImage();
            _sfImage.setValue(NullFC);
            setImage(img);
        }
    }

    Inherited::changed(whichField, origin);
}

GLenum TextureChunk::imageTarget(bool cubeForSides) const
{
    ImagePtr img = getImage();
    if(img == NullFC || img->getDimension() == 0)
        return GL_NONE;
    if(cubeForSides && img->getSideCount() > 1)
        return GL_TEXTURE_CUBE_MAP_ARB;
    if(getTarget() != GL_NONE)
        return getTarget();
    if(img->getDepth() > 1)
        return GL_TEXTURE_3D;
    if(img->getHeight() > 1)
        return GL_TEXTURE_2D;
    return GL_TEXTURE_1D;
}

void TextureChunk::destroyGL(Window *win, UInt32 idstatus)
{
    UInt32                  osgid;
    Window::GLObjectStatusE mode;
    Window::unpackIdStatus(idstatus, osgid, mode);

    if(mode != Window::destroy)
        return;

    GLuint id = win->getGLObjectId(osgid);
    if(id != 0)
        glDeleteTextures(1, &id);
    win->setGLObjectId(osgid, 0);
}

void TextureChunk::handleGL(Window *win, UInt32 idstatus)
{
    UInt32                  osgid;
    Window::GLObjectStatusE mode;
    Window::unpackIdStatus(idstatus, osgid, mode);

    GLuint id = win->getGLObjectId(osgid);

    if(mode == Window::destroy || mode == Window::finaldestroy)
    {
        destroyGL(win, idstatus);
    }
    else if(mode == Window::initialize || mode == Window::reinitialize ||
            mode == Window::needrefresh)
    {
        if(mode == Window::initialize)
        {
            glGenTextures(1, &id);
            win->setGLObjectId(osgid, id);
        }

        ImagePtr img = getImage();
        if(img == NullFC)
            return;

        if(img->getSideCount() == 1)
        {
            GLenum target = imageTarget(false);
            if(target == GL_TEXTURE_3D && !win->hasExtension(_extTex3D) &&
               win->getGLVersion() < 0x0102)
            {
                FWARNING(("TextureChunk::initialize: 3D textures not supported for this "
                          "window!\n"));
                return;
            }
            handleTexture(win, osgid, target, target, target, mode, img);
        }
        else
        {
            handleTexture(win, osgid, GL_TEXTURE_CUBE_MAP_ARB, GL_TEXTURE_CUBE_MAP_ARB,
                          GL_TEXTURE_CUBE_MAP_NEGATIVE_Z_ARB, mode, img, 5);
            handleTexture(win, osgid, GL_TEXTURE_CUBE_MAP_ARB, GL_NONE,
                          GL_TEXTURE_CUBE_MAP_POSITIVE_Z_ARB, Window::initialize, img, 4);
            handleTexture(win, osgid, GL_TEXTURE_CUBE_MAP_ARB, GL_NONE,
                          GL_TEXTURE_CUBE_MAP_NEGATIVE_Y_ARB, Window::initialize, img, 3);
            handleTexture(win, osgid, GL_TEXTURE_CUBE_MAP_ARB, GL_NONE,
                          GL_TEXTURE_CUBE_MAP_POSITIVE_Y_ARB, Window::initialize, img, 2);
            handleTexture(win, osgid, GL_TEXTURE_CUBE_MAP_ARB, GL_NONE,
                          GL_TEXTURE_CUBE_MAP_NEGATIVE_X_ARB, Window::initialize, img, 1);
            handleTexture(win, osgid, GL_TEXTURE_CUBE_MAP_ARB, GL_NONE,
                          GL_TEXTURE_CUBE_MAP_POSITIVE_X_ARB, Window::initialize, img, 0);
        }
    }
    else
    {
        SWARNING << "TextureChunk(" << this << "::handleGL: Illegal mode: " << mode
                 << " for id " << id << std::endl;
    }
}

void TextureChunk::handleTexture(Window *win, UInt32 osgid, GLenum bindtarget,
                                 GLenum paramtarget, GLenum imgtarget, UInt32 mode,
                                 ImagePtr img, Int32 side)
{
    if(img == NullFC || img->getDimension() == 0)
        return;

    const bool has3D    = win->hasExtension(_extTex3D) || win->getGLVersion() >= 0x0102;
    const bool hasNPOT  = win->hasExtension(_extNPOT);
    const bool isRect   = imgtarget == GL_TEXTURE_RECTANGLE_ARB;
    const bool is3D     = imgtarget == GL_TEXTURE_3D;
    const bool is2D     = imgtarget == GL_TEXTURE_2D || isRect || isCubeFace(imgtarget);
    const bool compress = img->hasCompressedData();

    const UInt32 width  = UInt32(img->getWidth());
    const UInt32 height = UInt32(img->getHeight());
    const UInt32 depth  = UInt32(img->getDepth());
    const bool   allPow2 = isPow2(width) && isPow2(height) && isPow2(depth);

    const UInt32 frame = osgMin(getFrame(), UInt32(osgMax(img->getFrameCount(), 1) - 1));

    // formats: the image's, unless the chunk says otherwise
    GLenum format         = img->getPixelFormat();
    GLenum type           = img->getDataType();
    GLint  internalFormat = getInternalFormat();
    if(internalFormat == GL_NONE)
    {
        switch(format)
        {
            case GL_BGR:       internalFormat = GL_RGB; break;
            case GL_BGRA:      internalFormat = GL_RGBA; break;
            case GL_INTENSITY: internalFormat = GL_INTENSITY; format = GL_LUMINANCE; break;
            default:           internalFormat = format; break;
        }
    }
    else if(format == GL_INTENSITY)
    {
        format = GL_LUMINANCE;
    }
    if(getExternalFormat() != GL_NONE)
        format = getExternalFormat();

    const GLint border = GLint(getBorderWidth());

    GLuint glid = win->getGLObjectId(osgid);

    UnpackAlignment alignment;

    if(mode == Window::needrefresh)
    {
        if(is3D && !has3D)
        {
            FINFO(("TextureChunk::refresh: 3D textures not supported on Window %p!\n",
                   static_cast<void *>(win)));
            return;
        }

        if(getScale() && !isRect && !hasNPOT && !allPow2)
        {
            SWARNING << "TextureChunk::refresh: not implemented yet for scaling!!!"
                     << std::endl;
            return;
        }

        glBindTexture(bindtarget, glid);

        const UInt8 *data = img->getData(0, frame, side);
        if(data != NULL)
        {
            Int32 x0 = getDirtyMinX() >= 0 ? getDirtyMinX() : 0;
            Int32 x1 = getDirtyMaxX() >= 0 ? getDirtyMaxX() : Int32(width) - 1;
            Int32 y0 = getDirtyMinY() >= 0 ? getDirtyMinY() : 0;
            Int32 y1 = getDirtyMaxY() >= 0 ? getDirtyMaxY() : Int32(height) - 1;
            Int32 z0 = getDirtyMinZ() >= 0 ? getDirtyMinZ() : 0;
            Int32 z1 = getDirtyMaxZ() >= 0 ? getDirtyMaxZ() : Int32(depth) - 1;

            x1 = osgMin(x1, Int32(width) - 1);
            y1 = osgMin(y1, Int32(height) - 1);
            z1 = osgMin(z1, Int32(depth) - 1);

            // compressed blocks can't be cut up by the unpack state: the
            // whole level goes up again
            if(compress)
            {
                x0 = y0 = z0 = 0;
                x1 = Int32(width) - 1;
                y1 = Int32(height) - 1;
                z1 = Int32(depth) - 1;
            }

            GLsizei rw = x1 - x0 + 1;
            GLsizei rh = y1 - y0 + 1;
            GLsizei rd = z1 - z0 + 1;

            if(rw > 0 && rh > 0 && rd > 0)
            {
                if(!compress)
                {
                    if(rw < GLsizei(width))
                        glPixelStorei(GL_UNPACK_ROW_LENGTH, width);
                    if(is3D && rh < GLsizei(height))
                        glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, height);
                    if(x0 > 0)
                        glPixelStorei(GL_UNPACK_SKIP_PIXELS, x0);
                    if(y0 > 0)
                        glPixelStorei(GL_UNPACK_SKIP_ROWS, y0);
                    if(z0 > 0)
                        glPixelStorei(GL_UNPACK_SKIP_IMAGES, z0);
                }

                GLsizei levelSize = GLsizei(img->calcMipmapLevelSize(0));

                if(is3D)
                {
                    if(compress)
                    {
                        PFNGLCOMPRESSEDTEXSUBIMAGE3DPROC f =
                            reinterpret_cast<PFNGLCOMPRESSEDTEXSUBIMAGE3DPROC>(
                                win->getFunction(_funcCompressedTexSubImage3D));
                        if(f != NULL)
                            f(imgtarget, 0, x0, y0, z0, rw, rh, rd, internalFormat, levelSize,
                              data);
                    }
                    else
                    {
                        PFNGLTEXSUBIMAGE3DPROC f = reinterpret_cast<PFNGLTEXSUBIMAGE3DPROC>(
                            win->getFunction(_funcTexSubImage3D));
                        if(f != NULL)
                            f(imgtarget, 0, x0, y0, z0, rw, rh, rd, format, type, data);
                    }
                }
                else if(is2D)
                {
                    if(compress)
                    {
                        PFNGLCOMPRESSEDTEXSUBIMAGE2DPROC f =
                            reinterpret_cast<PFNGLCOMPRESSEDTEXSUBIMAGE2DPROC>(
                                win->getFunction(_funcCompressedTexSubImage2D));
                        if(f != NULL)
                            f(imgtarget, 0, x0, y0, rw, rh, internalFormat, levelSize, data);
                    }
                    else
                    {
                        glTexSubImage2D(imgtarget, 0, x0, y0, rw, rh, format, type, data);
                    }
                }
                else
                {
                    if(compress)
                    {
                        PFNGLCOMPRESSEDTEXSUBIMAGE1DPROC f =
                            reinterpret_cast<PFNGLCOMPRESSEDTEXSUBIMAGE1DPROC>(
                                win->getFunction(_funcCompressedTexSubImage1D));
                        if(f != NULL)
                            f(imgtarget, 0, x0, rw, internalFormat, levelSize, data);
                    }
                    else
                    {
                        glTexSubImage1D(imgtarget, 0, x0, rw, format, type, data);
                    }
                }

                if(!compress)
                {
                    if(rw < GLsizei(width))
                        glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
                    if(is3D && rh < GLsizei(height))
                        glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, 0);
                    if(x0 > 0)
                        glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
                    if(y0 > 0)
                        glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
                    if(z0 > 0)
                        glPixelStorei(GL_UNPACK_SKIP_IMAGES, 0);
                }
            }
        }

        // this is what makes a NEAREST <-> LINEAR switch a mere refresh
        if(paramtarget != GL_NONE)
        {
            glTexParameterf(paramtarget, GL_TEXTURE_PRIORITY, getPriority());
            glTexParameteri(paramtarget, GL_TEXTURE_MIN_FILTER,
                            isRect && isMipmapFilter(getMinFilter()) ? GL_LINEAR
                                                                      : getMinFilter());
            glTexParameteri(paramtarget, GL_TEXTURE_MAG_FILTER, getMagFilter());
        }

        glErr("TextureChunk::refresh image");
        return;
    }

    // --- initialize / reinitialize ---------------------------------------------

    if(is3D && !has3D)
    {
        FNOTICE(("3D textures not supported on Window %p!\n", static_cast<void *>(win)));
        return;
    }
    if(isRect && !win->hasExtension(_extRectangle))
    {
        FNOTICE(("Rectangular textures not supported on Window %p!\n",
                 static_cast<void *>(win)));
        return;
    }
    if(bindtarget == GL_TEXTURE_CUBE_MAP_ARB && !win->hasExtension(_extCubeMap))
    {
        FNOTICE(("Cube textures not supported on Window %p!\n", static_cast<void *>(win)));
        return;
    }
    if(compress && !win->hasExtension(_extTextureCompression))
    {
        FNOTICE(("Compressed textures not supported on Window %p!\n",
                 static_cast<void *>(win)));
        return;
    }

    Time start = getSystemTime();

    if(mode == Window::reinitialize)
        glDeleteTextures(1, &glid);  // the bind below makes the name anew

    glBindTexture(bindtarget, glid);

    GLenum minFilter = getMinFilter();
    bool   needMipmaps = isMipmapFilter(minFilter);
    if(isRect && needMipmaps)
    {
        SWARNING << "TextureChunk::initialize: rectangular textures can't have mipmaps, "
                 << "using GL_LINEAR!" << std::endl;
        needMipmaps = false;
        minFilter   = GL_LINEAR;
    }

    if(paramtarget != GL_NONE)
    {
        glTexParameterf(paramtarget, GL_TEXTURE_PRIORITY, getPriority());
        glTexParameteri(paramtarget, GL_TEXTURE_MIN_FILTER, minFilter);
        glTexParameteri(paramtarget, GL_TEXTURE_MAG_FILTER, getMagFilter());
        glTexParameteri(paramtarget, GL_TEXTURE_WRAP_S, getWrapS());
        if(paramtarget == GL_TEXTURE_2D || paramtarget == GL_TEXTURE_3D ||
           paramtarget == GL_TEXTURE_CUBE_MAP_ARB || paramtarget == GL_TEXTURE_RECTANGLE_ARB)
            glTexParameteri(paramtarget, GL_TEXTURE_WRAP_T, getWrapT());
        if(paramtarget == GL_TEXTURE_3D || paramtarget == GL_TEXTURE_CUBE_MAP_ARB)
            glTexParameteri(paramtarget, GL_TEXTURE_WRAP_R, getWrapR());
        if(getAnisotropy() > 1.f && win->hasExtension(_extAnisotropic))
            glTexParameterf(paramtarget, GL_TEXTURE_MAX_ANISOTROPY_EXT, getAnisotropy());
        glTexParameterfv(paramtarget, GL_TEXTURE_BORDER_COLOR, getBorderColor().getValuesRGBA());
    }

    PFNGLTEXIMAGE3DPROC texImage3D =
        is3D ? reinterpret_cast<PFNGLTEXIMAGE3DPROC>(win->getFunction(_funcTexImage3D)) : NULL;
    PFNGLTEXSUBIMAGE3DPROC texSubImage3D =
        is3D ? reinterpret_cast<PFNGLTEXSUBIMAGE3DPROC>(win->getFunction(_funcTexSubImage3D))
             : NULL;

    // one level at its own size, from data (which may be NULL: a texture
    // without texels, e.g. a render target)
    auto uploadLevel = [&](GLint level, UInt32 w, UInt32 h, UInt32 d, const UInt8 *data,
                           GLsizei size) {
        if(is3D)
        {
            if(compress)
            {
                PFNGLCOMPRESSEDTEXIMAGE3DPROC f = reinterpret_cast<PFNGLCOMPRESSEDTEXIMAGE3DPROC>(
                    win->getFunction(_funcCompressedTexImage3D));
                if(f != NULL)
                    f(imgtarget, level, internalFormat, w, h, d, border, size, data);
            }
            else if(texImage3D != NULL)
            {
                texImage3D(imgtarget, level, internalFormat, w, h, d, border, format, type, data);
            }
        }
        else if(is2D)
        {
            if(compress)
            {
                PFNGLCOMPRESSEDTEXIMAGE2DPROC f = reinterpret_cast<PFNGLCOMPRESSEDTEXIMAGE2DPROC>(
                    win->getFunction(_funcCompressedTexImage2D));
                if(f != NULL)
                    f(imgtarget, level, internalFormat, w, h, border, size, data);
            }
            else
            {
                glTexImage2D(imgtarget, level, internalFormat, w, h, border, format, type, data);
            }
        }
        else
        {
            if(compress)
            {
                PFNGLCOMPRESSEDTEXIMAGE1DPROC f = reinterpret_cast<PFNGLCOMPRESSEDTEXIMAGE1DPROC>(
                    win->getFunction(_funcCompressedTexImage1D));
                if(f != NULL)
                    f(imgtarget, level, internalFormat, w, border, size, data);
            }
            else
            {
                glTexImage1D(imgtarget, level, internalFormat, w, border, format, type, data);
            }
        }
    };

    bool singleLevel = true;

    if(needMipmaps)
    {
        bool defined = false;

        if(img->getMipMapCount() == Int32(img->calcMipmapLevelCount()) && allPow2)
        {
            // the image brings its own chain; skipMipMapLevels drops its top
            UInt32 count = UInt32(img->getMipMapCount());
            Real32 skip  = osgMin(osgMax(getSkipMipMapLevels(), 0.f), 1.f);
            UInt32 base  = UInt32(std::floor(skip * Real32(count - 1)));

            for(UInt32 level = base; level < count; ++level)
            {
                UInt32 w, h, d;
                img->calcMipmapGeometry(level, w, h, d);
                uploadLevel(GLint(level - base), w, h, d, img->getData(level, frame, side),
                            GLsizei(img->calcMipmapLevelSize(level)));
            }
            defined     = true;
            singleLevel = false;
        }
        else if(win->hasExtension(_extSGISGenerateMipmap))
        {
            // the driver builds the chain from every upload of level 0
            if(paramtarget != GL_NONE)
                glTexParameteri(paramtarget, GL_GENERATE_MIPMAP_SGIS, GL_TRUE);
            defined = true;
        }
        else
        {
            const UInt8 *data = img->getData(0, frame, side);
            if(data != NULL && !compress)
            {
                if(is3D)
                {
                    if(allPow2)
                    {
                        gluBuild3DMipmaps(imgtarget, internalFormat, width, height, depth,
                                          format, type, data);
                        defined = true;
                    }
                    else
                    {
                        SWARNING << "TextureChunk::initialize: can't mipmap non-2D textures "
                                 << "that are not 2^x !!!" << std::endl;
                    }
                }
                else if(is2D)
                {
                    if(allPow2 || getScale())
                    {
                        // GLU resamples to powers of two itself
                        gluBuild2DMipmaps(imgtarget, internalFormat, width, height, format,
                                          type, data);
                    }
                    else
                    {
                        UInt32 pw = nextPow2(width), ph = nextPow2(height);
                        UInt32 bpp = UInt32(img->getBpp());
                        std::vector<UInt8> buffer(size_t(pw) * ph * bpp, 0);
                        for(UInt32 y = 0; y < height; ++y)
                            std::memcpy(&buffer[size_t(y) * pw * bpp],
                                        data + size_t(y) * width * bpp, size_t(width) * bpp);
                        gluBuild2DMipmaps(imgtarget, internalFormat, pw, ph, format, type,
                                          &buffer[0]);
                    }
                    defined = true;
                }
                else
                {
                    if(isPow2(width))
                    {
                        gluBuild1DMipmaps(imgtarget, internalFormat, width, format, type, data);
                        defined = true;
                    }
                    else
                    {
                        SWARNING << "TextureChunk::initialize: can't mipmap non-2D textures "
                                 << "that are not 2^x !!!" << std::endl;
                    }
                }
                singleLevel = !defined;
            }
        }

        if(!defined && paramtarget != GL_NONE)
            glTexParameteri(paramtarget, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    }

    if(singleLevel)
    {
        const UInt8 *data = img->getData(0, frame, side);
        GLsizei      size = GLsizei(img->calcMipmapLevelSize(0));

        if(!isRect && !hasNPOT && !allPow2)
        {
            UInt32 pw = nextPow2(width), ph = nextPow2(height), pd = nextPow2(depth);
            if(getScale())
            {
                if(is2D && !compress)
                {
                    std::vector<UInt8> buffer(size_t(pw) * ph * UInt32(img->getBpp()));
                    if(data != NULL)
                        gluScaleImage(format, width, height, type, data, pw, ph, type,
                                      &buffer[0]);
                    uploadLevel(0, pw, ph, 1, data != NULL ? &buffer[0] : NULL, 0);
                }
                else
                {
                    SWARNING << "TextureChunk::initialize: can't scale non-2D textures that "
                             << "are not 2^x !!!" << std::endl;
                }
            }
            else if(!compress)
            {
                // a power-of-two texture with the image in its lower-left
                // corner; NPOTMatrixScale can correct the coordinates
                if(is3D)
                {
                    if(texImage3D != NULL)
                        texImage3D(imgtarget, 0, internalFormat, pw, ph, pd, border, format,
                                   type, NULL);
                    if(data != NULL && texSubImage3D != NULL)
                        texSubImage3D(imgtarget, 0, 0, 0, 0, width, height, depth, format,
                                      type, data);
                }
                else if(is2D)
                {
                    glTexImage2D(imgtarget, 0, internalFormat, pw, ph, border, format, type,
                                 NULL);
                    if(data != NULL)
                        glTexSubImage2D(imgtarget, 0, 0, 0, width, height, format, type, data);
                }
                else
                {
                    glTexImage1D(imgtarget, 0, internalFormat, pw, border, format, type, NULL);
                    if(data != NULL)
                        glTexSubImage1D(imgtarget, 0, 0, width, format, type, data);
                }
            }
            else
            {
                SWARNING << "TextureChunk::initialize: can't place compressed textures that "
                         << "are not 2^x !!!" << std::endl;
            }
        }
        else
        {
            uploadLevel(0, width, height, depth, data, size);
        }
    }

    ++_numTexCreate;
    _summedTexCreateTime += getSystemTime() - start;

    glErr("TextureChunk::initialize image");
}

// --- activation -------------------------------------------------------------------------

bool TextureChunk::hasMultiTexture(Window *win)
{
    return win->hasExtension(_extMultitexture);
}

void TextureChunk::activeTexture(Window *win, UInt16 unit)
{
    PFNGLACTIVETEXTUREPROC f =
        reinterpret_cast<PFNGLACTIVETEXTUREPROC>(win->getFunction(_funcActiveTexture));
    if(f != NULL)
        f(GL_TEXTURE0 + unit);
}

bool TextureChunk::activateTexture(Window *win, UInt16 unit)
{
    if(hasMultiTexture(win) || win->getGLVersion() >= 0x0103)
    {
        activeTexture(win, unit);
        return false;
    }
    return unit != 0;
}

bool TextureChunk::activeMatrix(Matrix &texMat, UInt16 unit)
{
    if(unit >= osgMaxTexCoords || !_needTransformMat[unit])
        return false;
    texMat = _transformMat[unit];
    return true;
}

UInt32 TextureChunk::getNumTexCreate(void)
{
    return _numTexCreate;
}

Time TextureChunk::getSummedTexCreateTime(void)
{
    return _summedTexCreateTime;
}

void TextureChunk::getUnitLimits(Window *win, UInt32 &nImages, UInt32 &nCoords, UInt32 &nUnits)
{
    Real32 units = win->getConstantValue(GL_MAX_TEXTURE_UNITS_ARB);
    if(!(units > 0))
        units = 1;

    Real32 images = win->getConstantValue(GL_MAX_TEXTURE_IMAGE_UNITS_ARB);
    if(!(images > 0))
        images = units;

    Real32 coords = win->getConstantValue(GL_MAX_TEXTURE_COORDS_ARB);
    if(!(coords > 0))
        coords = units;

    nUnits  = UInt32(units);
    nImages = UInt32(images);
    nCoords = UInt32(coords);
}

UInt32 TextureChunk::coordinateUnits(Window *win)
{
    UInt32 nImages, nCoords, nUnits;
    getUnitLimits(win, nImages, nCoords, nUnits);
    return nCoords;
}

void TextureChunk::applyTextureMatrix(GLenum target, Window *win, UInt32 unit)
{
    glPushAttrib(GL_TRANSFORM_BIT);
    glMatrixMode(GL_TEXTURE);

    bool     loaded = false;
    ImagePtr img    = getImage();

    if(!getScale() && getNPOTMatrixScale() != None_TT && img != NullFC)
    {
        const bool   isRect = target == GL_TEXTURE_RECTANGLE_ARB;
        const UInt32 flags  = getNPOTMatrixScale();
        const Real32 w = Real32(img->getWidth()), h = Real32(img->getHeight()),
                     d = Real32(img->getDepth());

        Real32 sw = 1, sh = 1, sd = 1, tw = 0, th = 0, td = 0;
        bool   any = false;

        if((flags & NPotTexScale_TT) && !isRect && !win->hasExtension(_extNPOT))
        {
            sw  = w / Real32(nextPow2(UInt32(w)));
            sh  = h / Real32(nextPow2(UInt32(h)));
            sd  = d / Real32(nextPow2(UInt32(d)));
            any = true;
        }
        if(flags & XFlip_TT)
        {
            tw  = sw * (isRect ? w : 1.f);
            sw  = -sw;
            any = true;
        }
        if(flags & YFlip_TT)
        {
            th  = sh * (isRect ? h : 1.f);
            sh  = -sh;
            any = true;
        }
        if(flags & ZFlip_TT)
        {
            td  = sd * (isRect ? d : 1.f);
            sd  = -sd;
            any = true;
        }

        if(any)
        {
            // texcoord' = s * texcoord + t
            Matrix m;
            m[0][0] = sw;
            m[1][1] = sh;
            m[2][2] = sd;
            m[3][0] = tw;
            m[3][1] = th;
            m[3][2] = td;
            if(unit < osgMaxTexCoords)
            {
                _needTexMat[unit] = true;
                _lastTexMat[unit] = m;
            }
            Matrix transform;
            if(activeMatrix(transform, UInt16(unit)))
                m.mult(transform);
            glLoadMatrixf(m.getValues());
            loaded = true;
        }
    }

    if(!loaded)
    {
        if(unit < osgMaxTexCoords)
            _needTexMat[unit] = false;
        Matrix transform;
        if(activeMatrix(transform, UInt16(unit)))
            glLoadMatrixf(transform.getValues());
        else
            glLoadIdentity();
    }

    glPopAttrib();
}

void TextureChunk::applyEnvironment(Window *win, TextureChunk *old, UInt32 unit,
                                    UInt32 nImages, UInt32 nUnits, UInt32 nCoords)
{
    if(unit < nCoords && win->hasExtension(_extPointSprite) &&
       (old == NULL ? getPointSprite() : getPointSprite() != old->getPointSprite()))
        glTexEnvi(GL_POINT_SPRITE_NV, GL_COORD_REPLACE_NV, getPointSprite() ? GL_TRUE : GL_FALSE);

    if(unit < nImages && win->hasExtension(_extLodBias) &&
       (old == NULL ? getLodBias() != 0.f : getLodBias() != old->getLodBias()))
        glTexEnvf(GL_TEXTURE_FILTER_CONTROL_EXT, GL_TEXTURE_LOD_BIAS_EXT, getLodBias());

    if(unit >= nUnits)
        return;

    if(old == NULL || old->getEnvMode() != getEnvMode())
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, getEnvMode());

    glTexEnvfv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_COLOR, getEnvColor().getValuesRGBA());

    if(getEnvMode() == GL_COMBINE_EXT)
    {
        glTexEnvi(GL_TEXTURE_ENV, GL_COMBINE_RGB_EXT, getEnvCombineRGB());
        glTexEnvi(GL_TEXTURE_ENV, GL_COMBINE_ALPHA_EXT, getEnvCombineAlpha());
        glTexEnvf(GL_TEXTURE_ENV, GL_RGB_SCALE_EXT, getEnvScaleRGB());
        glTexEnvf(GL_TEXTURE_ENV, GL_ALPHA_SCALE, getEnvScaleAlpha());
        glTexEnvi(GL_TEXTURE_ENV, GL_SOURCE0_RGB_EXT, getEnvSource0RGB());
        glTexEnvi(GL_TEXTURE_ENV, GL_SOURCE1_RGB_EXT, getEnvSource1RGB());
        glTexEnvi(GL_TEXTURE_ENV, GL_SOURCE2_RGB_EXT, getEnvSource2RGB());
        glTexEnvi(GL_TEXTURE_ENV, GL_SOURCE0_ALPHA_EXT, getEnvSource0Alpha());
        glTexEnvi(GL_TEXTURE_ENV, GL_SOURCE1_ALPHA_EXT, getEnvSource1Alpha());
        glTexEnvi(GL_TEXTURE_ENV, GL_SOURCE2_ALPHA_EXT, getEnvSource2Alpha());
        glTexEnvi(GL_TEXTURE_ENV, GL_OPERAND0_RGB_EXT, getEnvOperand0RGB());
        glTexEnvi(GL_TEXTURE_ENV, GL_OPERAND1_RGB_EXT, getEnvOperand1RGB());
        glTexEnvi(GL_TEXTURE_ENV, GL_OPERAND2_RGB_EXT, getEnvOperand2RGB());
        glTexEnvi(GL_TEXTURE_ENV, GL_OPERAND0_ALPHA_EXT, getEnvOperand0Alpha());
        glTexEnvi(GL_TEXTURE_ENV, GL_OPERAND1_ALPHA_EXT, getEnvOperand1Alpha());
        glTexEnvi(GL_TEXTURE_ENV, GL_OPERAND2_ALPHA_EXT, getEnvOperand2Alpha());
    }
}

void TextureChunk::activate(DrawActionBase *action, UInt32 unit)
{
    // without a GL object (an aspect that ignores GL) there is no texture
    Window *win = action != NULL ? action->getWindow() : NULL;
    if(win == NULL || getGLId() == 0)
        return;

    UInt32 nImages, nCoords, nUnits;
    getUnitLimits(win, nImages, nCoords, nUnits);

    if(unit >= nImages)
        return;

    activateTexture(win, UInt16(unit));

    win->validateGLObject(getGLId());

    GLenum target = imageTarget(true);
    if(target == GL_NONE)
        return;

    glBindTexture(target, win->getGLObjectId(getGLId()));

    applyEnvironment(win, NULL, unit, nImages, nUnits, nCoords);

    if(unit < nUnits)
        glEnable(target);

    if(unit < nCoords)
        applyTextureMatrix(target, win, unit);

    glErr("TextureChunk::activate");
}

void TextureChunk::changeFrom(DrawActionBase *action, StateChunk *old_chunk, UInt32 unit)
{
    if(old_chunk == this)
        return;

    TextureChunk *old = dynamic_cast<TextureChunk *>(old_chunk);
    if(old == NULL || old->getTypeId() != getTypeId())
    {
        old_chunk->deactivate(action, unit);
        activate(action, unit);
        return;
    }

    GLenum target = imageTarget(true);
    if(target == GL_NONE)
    {
        old->deactivate(action, unit);
        return;
    }

    Window *win = action != NULL ? action->getWindow() : NULL;
    if(win == NULL || getGLId() == 0)
        return;

    UInt32 nImages, nCoords, nUnits;
    getUnitLimits(win, nImages, nCoords, nUnits);

    if(unit >= nImages)
        return;

    activateTexture(win, UInt16(unit));

    GLenum oldTarget = old->imageTarget(true);
    if(oldTarget != GL_NONE && oldTarget != target && unit < nUnits)
        glDisable(oldTarget);

    win->validateGLObject(getGLId());
    glBindTexture(target, win->getGLObjectId(getGLId()));

    applyEnvironment(win, old, unit, nImages, nUnits, nCoords);

    if(unit < nUnits && oldTarget != target)
        glEnable(target);

    if(unit < nCoords)
        applyTextureMatrix(target, win, unit);

    glErr("TextureChunk::changeFrom");
}

void TextureChunk::deactivate(DrawActionBase *action, UInt32 unit)
{
    Window *win = action != NULL ? action->getWindow() : NULL;
    if(win == NULL)
        return;

    UInt32 nImages, nCoords, nUnits;
    getUnitLimits(win, nImages, nCoords, nUnits);

    if(unit >= nImages)
        return;

    GLenum target = imageTarget(true);
    if(target == GL_NONE)
        return;

    if(getPointSprite() && unit < nCoords && win->hasExtension(_extPointSprite))
    {
        activateTexture(win, UInt16(unit));
        glTexEnvi(GL_POINT_SPRITE_NV, GL_COORD_REPLACE_NV, GL_FALSE);
    }

    if(getLodBias() != 0.f && win->hasExtension(_extLodBias))
    {
        activateTexture(win, UInt16(unit));
        glTexEnvf(GL_TEXTURE_FILTER_CONTROL_EXT, GL_TEXTURE_LOD_BIAS_EXT, 0.f);
    }

    // units without fixed-function state keep their texture enabled-less
    // and their matrix: nothing was set there
    if(unit >= nUnits)
        return;

    activateTexture(win, UInt16(unit));

    if(unit < nCoords)
    {
        glPushAttrib(GL_TRANSFORM_BIT);
        glMatrixMode(GL_TEXTURE);
        Matrix transform;
        if(activeMatrix(transform, UInt16(unit)))
            glLoadMatrixf(transform.getValues());
        else
            glLoadIdentity();
        glPopAttrib();
        if(unit < osgMaxTexCoords)
            _needTexMat[unit] = false;
    }

    glDisable(target);

    glErr("TextureChunk::deactivate");
}

bool TextureChunk::isTransparent(void) const
{
    return false;
}

Real32 TextureChunk::switchCost(StateChunk *)
{
    return 0;
}

bool TextureChunk::operator<(const StateChunk &other) const
{
    return this < &other;
}

bool TextureChunk::operator==(const StateChunk &other) const
{
    const TextureChunk *tother = dynamic_cast<const TextureChunk *>(&other);
    if(tother == NULL)
        return false;
    if(tother == this)
        return true;

    bool equal = getImage() == tother->getImage() && getMinFilter() == tother->getMinFilter() &&
                 getMagFilter() == tother->getMagFilter() && getWrapS() == tother->getWrapS() &&
                 getWrapT() == tother->getWrapT() && getWrapR() == tother->getWrapR() &&
                 getPriority() == tother->getPriority() && getEnvMode() == tother->getEnvMode() &&
                 getNPOTMatrixScale() == tother->getNPOTMatrixScale();

    if(equal && getEnvMode() == GL_COMBINE_EXT)
    {
        equal = getEnvCombineRGB() == tother->getEnvCombineRGB() &&
                getEnvCombineAlpha() == tother->getEnvCombineAlpha() &&
                getEnvSource0RGB() == tother->getEnvSource0RGB() &&
                getEnvSource1RGB() == tother->getEnvSource1RGB() &&
                getEnvSource2RGB() == tother->getEnvSource2RGB() &&
                getEnvSource0Alpha() == tother->getEnvSource0Alpha() &&
                getEnvSource1Alpha() == tother->getEnvSource1Alpha() &&
                getEnvSource2Alpha() == tother->getEnvSource2Alpha() &&
                getEnvOperand0RGB() == tother->getEnvOperand0RGB() &&
                getEnvOperand1RGB() == tother->getEnvOperand1RGB() &&
                getEnvOperand2RGB() == tother->getEnvOperand2RGB() &&
                getEnvOperand0Alpha() == tother->getEnvOperand0Alpha() &&
                getEnvOperand1Alpha() == tother->getEnvOperand1Alpha() &&
                getEnvOperand2Alpha() == tother->getEnvOperand2Alpha() &&
                std::fabs(getEnvScaleRGB() - tother->getEnvScaleRGB()) < 1e-6f &&
                std::fabs(getEnvScaleAlpha() - tother->getEnvScaleAlpha()) < 1e-6f;
    }
    return equal;
}

bool TextureChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

void TextureChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump TextureChunk NI" << std::endl;
}

OSG_END_NAMESPACE
