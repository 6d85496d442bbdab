#include <OpenSG/OSGFBOForeground.h>

#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGGLU.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGWindow.h>

#include <cmath>
#include <vector>

#ifndef GL_DEPTH_STENCIL_NV
#define GL_DEPTH_STENCIL_NV 0x84F9
#endif

OSG_BEGIN_NAMESPACE

UInt32 FBOForeground::_tex3D_extension              = Window::invalidExtensionID;
UInt32 FBOForeground::_framebuffer_object_extension = Window::invalidExtensionID;
UInt32 FBOForeground::_draw_buffers_extension       = Window::invalidExtensionID;

UInt32 FBOForeground::_funcDrawBuffers                         = Window::invalidFunctionID;
UInt32 FBOForeground::_funcBindFramebuffer                     = Window::invalidFunctionID;
UInt32 FBOForeground::_funcBindRenderbuffer                    = Window::invalidFunctionID;
UInt32 FBOForeground::_funcCheckFramebufferStatus              = Window::invalidFunctionID;
UInt32 FBOForeground::_funcDeleteFramebuffers                  = Window::invalidFunctionID;
UInt32 FBOForeground::_funcDeleteRenderbuffers                 = Window::invalidFunctionID;
UInt32 FBOForeground::_funcFramebufferRenderbuffer             = Window::invalidFunctionID;
UInt32 FBOForeground::_funcFramebufferTexture1D                = Window::invalidFunctionID;
UInt32 FBOForeground::_funcFramebufferTexture2D                = Window::invalidFunctionID;
UInt32 FBOForeground::_funcFramebufferTexture3D                = Window::invalidFunctionID;
UInt32 FBOForeground::_funcGenFramebuffers                     = Window::invalidFunctionID;
UInt32 FBOForeground::_funcGenRenderbuffers                    = Window::invalidFunctionID;
UInt32 FBOForeground::_funcGenerateMipmap                      = Window::invalidFunctionID;
UInt32 FBOForeground::_funcGetFramebufferAttachmentParameteriv = Window::invalidFunctionID;
UInt32 FBOForeground::_funcGetRenderbufferParameteriv          = Window::invalidFunctionID;
UInt32 FBOForeground::_funcIsFramebuffer                       = Window::invalidFunctionID;
UInt32 FBOForeground::_funcIsRenderbuffer                      = Window::invalidFunctionID;
UInt32 FBOForeground::_funcRenderbufferStorage                 = Window::invalidFunctionID;
UInt32 FBOForeground::_funcCopyTexSubImage3D                   = Window::invalidFunctionID;

namespace
{

template <class FuncT>
FuncT glFunc(Window *win, UInt32 id)
{
    return reinterpret_cast<FuncT>(win->getFunction(id));
}

bool isDepthFormat(GLenum format)
{
    return format == GL_DEPTH_COMPONENT16 || format == GL_DEPTH_COMPONENT24 ||
           format == GL_DEPTH_COMPONENT32 || format == GL_DEPTH_COMPONENT;
}

bool isMipmapFilter(GLenum filter)
{
    return filter == GL_NEAREST_MIPMAP_NEAREST || filter == GL_LINEAR_MIPMAP_NEAREST ||
           filter == GL_NEAREST_MIPMAP_LINEAR || filter == GL_LINEAR_MIPMAP_LINEAR;
}

bool equals(const Vec4f &v, Real32 x, Real32 y, Real32 z, Real32 w)
{
    const Real32 eps = 1e-6f;
    return std::fabs(v[0] - x) < eps && std::fabs(v[1] - y) < eps &&
           std::fabs(v[2] - z) < eps && std::fabs(v[3] - w) < eps;
}

} // namespace

FBOForeground::FBOForeground(void)
    : Inherited(), _frameBufferIndex(0), _restoreFrameBufferIndex(0), _reinitialize(false)
{
}

FBOForeground::FBOForeground(const FBOForeground &source)
    : Inherited(source), _frameBufferIndex(0), _restoreFrameBufferIndex(0),
      _reinitialize(false)
{
}

FBOForeground::~FBOForeground(void)
{
}

void FBOForeground::onDestroy(void)
{
    // The framebuffer object belongs to whichever context made it; nothing
    // here knows whether that context is current, so it is left alone.
}

void FBOForeground::initMethod(void)
{
    _tex3D_extension              = Window::registerExtension("GL_EXT_texture3D");
    _framebuffer_object_extension = Window::registerExtension("GL_EXT_framebuffer_object");
    _draw_buffers_extension       = Window::registerExtension("GL_ARB_draw_buffers");

    // 65535 as version: a function is only loaded where its extension is.
    const Int32 fbo = Int32(_framebuffer_object_extension);

    _funcDrawBuffers =
        Window::registerFunction("glDrawBuffers", Int32(_draw_buffers_extension), 65535);

    _funcBindFramebuffer = Window::registerFunction("glBindFramebufferEXT", fbo, 65535);
    _funcBindRenderbuffer = Window::registerFunction("glBindRenderbufferEXT", fbo, 65535);
    _funcCheckFramebufferStatus =
        Window::registerFunction("glCheckFramebufferStatusEXT", fbo, 65535);
    _funcDeleteFramebuffers = Window::registerFunction("glDeleteFramebuffersEXT", fbo, 65535);
    _funcDeleteRenderbuffers =
        Window::registerFunction("glDeleteRenderbuffersEXT", fbo, 65535);
    _funcFramebufferRenderbuffer =
        Window::registerFunction("glFramebufferRenderbufferEXT", fbo, 65535);
    _funcFramebufferTexture1D =
        Window::registerFunction("glFramebufferTexture1DEXT", fbo, 65535);
    _funcFramebufferTexture2D =
        Window::registerFunction("glFramebufferTexture2DEXT", fbo, 65535);
    _funcFramebufferTexture3D =
        Window::registerFunction("glFramebufferTexture3DEXT", fbo, 65535);
    _funcGenFramebuffers  = Window::registerFunction("glGenFramebuffersEXT", fbo, 65535);
    _funcGenRenderbuffers = Window::registerFunction("glGenRenderbuffersEXT", fbo, 65535);
    _funcGenerateMipmap   = Window::registerFunction("glGenerateMipmapEXT", fbo, 65535);
    _funcGetFramebufferAttachmentParameteriv =
        Window::registerFunction("glGetFramebufferAttachmentParameterivEXT", fbo, 65535);
    _funcGetRenderbufferParameteriv =
        Window::registerFunction("glGetRenderbufferParameterivEXT", fbo, 65535);
    _funcIsFramebuffer  = Window::registerFunction("glIsFramebufferEXT", fbo, 65535);
    _funcIsRenderbuffer = Window::registerFunction("glIsRenderbufferEXT", fbo, 65535);
    _funcRenderbufferStorage =
        Window::registerFunction("glRenderbufferStorageEXT", fbo, 65535);

    _funcCopyTexSubImage3D =
        Window::registerFunction("glCopyTexSubImage3D", Int32(_tex3D_extension), 65535);
}

void FBOForeground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void FBOForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump FBOForeground NI" << std::endl;
}

// --- framebuffer object ------------------------------------------------------------

bool FBOForeground::initialize(Window *win, UInt32)
{
    if(_frameBufferIndex != 0 && !_reinitialize)
        return true;

    _reinitialize = false;

    PFNGLGENFRAMEBUFFERSEXTPROC genFramebuffers =
        glFunc<PFNGLGENFRAMEBUFFERSEXTPROC>(win, _funcGenFramebuffers);
    PFNGLBINDFRAMEBUFFEREXTPROC bindFramebuffer =
        glFunc<PFNGLBINDFRAMEBUFFEREXTPROC>(win, _funcBindFramebuffer);
    PFNGLBINDRENDERBUFFEREXTPROC bindRenderbuffer =
        glFunc<PFNGLBINDRENDERBUFFEREXTPROC>(win, _funcBindRenderbuffer);

    GLuint name = 0;
    genFramebuffers(1, &name);
    bindFramebuffer(GL_FRAMEBUFFER_EXT, name);
    _frameBufferIndex = name;

    // Draw and read buffer are state of the new object, not of the window.
    glDrawBuffer(GL_NONE);
    glReadBuffer(GL_NONE);

    FBOForegroundPtr self(this);
    beginEditCP(self, FieldBits::AllFields);
    endEditCP(self, FieldBits::AllFields);

    bindFramebuffer(GL_FRAMEBUFFER_EXT, 0);
    bindRenderbuffer(GL_RENDERBUFFER_EXT, 0);

    return true;
}

void FBOForeground::bind(Window *win)
{
    glFunc<PFNGLBINDFRAMEBUFFEREXTPROC>(win, _funcBindFramebuffer)(GL_FRAMEBUFFER_EXT,
                                                                  _frameBufferIndex);
}

void FBOForeground::unbind(Window *win)
{
    glFunc<PFNGLBINDFRAMEBUFFEREXTPROC>(win, _funcBindFramebuffer)(GL_FRAMEBUFFER_EXT,
                                                                  _restoreFrameBufferIndex);
}

void FBOForeground::setTarget(Window *win, UInt32 glId, GLenum attachment, GLenum target,
                              GLint zoffset)
{
    if(_frameBufferIndex == 0)
    {
        FWARNING(("Invalid FrameBufferObject index!\n"));
        return;
    }

    if(target == GL_TEXTURE_3D)
    {
        glFunc<PFNGLFRAMEBUFFERTEXTURE3DEXTPROC>(win, _funcFramebufferTexture3D)(
            GL_FRAMEBUFFER_EXT, attachment, GL_TEXTURE_3D, glId, 0, zoffset);
    }
    else
    {
        glFunc<PFNGLFRAMEBUFFERTEXTURE2DEXTPROC>(win, _funcFramebufferTexture2D)(
            GL_FRAMEBUFFER_EXT, attachment, target, glId, 0);
    }

    if(!osgGlCheckError(__FILE__, __LINE__, "setTarget post"))
    {
        SWARNING << "Error with attachment: " << attachment << ", id: " << glId
                 << ", target: " << target << std::endl;
    }
}

Int32 FBOForeground::getMaxBuffers(void)
{
    GLint n = 0;
    glGetIntegerv(GL_MAX_COLOR_ATTACHMENTS_EXT, &n);
    FINFO(("GL_MAX_COLOR_ATTACHMENTS_EXT: %d\n", n));
    return n;
}

bool FBOForeground::extensionCheck(Window &win)
{
    if(win.hasExtension(_framebuffer_object_extension))
        return true;

    FWARNING(("I need GL_EXT_framebuffer_object-Extension!\n"));
    return false;
}

bool FBOForeground::checkFrameBufferStatus(Window *win)
{
    const GLenum status = glFunc<PFNGLCHECKFRAMEBUFFERSTATUSEXTPROC>(
        win, _funcCheckFramebufferStatus)(GL_FRAMEBUFFER_EXT);

    switch(status)
    {
        case GL_FRAMEBUFFER_COMPLETE_EXT:
            FINFO(("%x: framebuffer complete!\n", status));
            break;
        case GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT_EXT:
            FWARNING(("%x: framebuffer INCOMPLETE_ATTACHMENT\n", status));
            break;
        case GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT_EXT:
            FWARNING(("%x: framebuffer FRAMEBUFFER_MISSING_ATTACHMENT\n", status));
            break;
        case GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS_EXT:
            FWARNING(("%x: framebuffer FRAMEBUFFER_DIMENSIONS\n", status));
            break;
        case GL_FRAMEBUFFER_INCOMPLETE_FORMATS_EXT:
            FWARNING(("%x: framebuffer INCOMPLETE_FORMATS\n", status));
            break;
        case GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER_EXT:
            FWARNING(("%x: framebuffer INCOMPLETE_DRAW_BUFFER\n", status));
            break;
        case GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER_EXT:
            FWARNING(("%x: framebuffer INCOMPLETE_READ_BUFFER\n", status));
            break;
        case GL_FRAMEBUFFER_BINDING_EXT:
            FWARNING(("%x: framebuffer BINDING_EXT\n", status));
            break;
        case GL_FRAMEBUFFER_UNSUPPORTED_EXT:
            FWARNING(("%x: framebuffer GL_FRAMEBUFFER_UNSUPPORTED_EXT\n", status));
            return false;
        default:
            return false;
    }

    // An incomplete framebuffer is only reported; the answer is GL's error.
    const GLenum err = glGetError();

    if(err == GL_NO_ERROR)
        return true;

    FWARNING(("OpenGL Error: %s!\n", reinterpret_cast<const char *>(gluErrorString(err))));
    return false;
}

// --- drawing -------------------------------------------------------------------------

GLenum FBOForeground::prepareTarget(Window *win, TextureChunk *tex,
                                    void (*genMipmap)(GLenum), GLuint &glId)
{
    // OpenSG creates or updates the texture before it is attached.
    win->validateGLObject(tex->getGLId());
    glId = win->getGLObjectId(tex->getGLId());

    GLenum   target = tex->getTarget();
    ImagePtr img    = tex->getImage();

    if(target == 0)
        target = (img != NullFC && img->getDepth() > 1) ? GL_TEXTURE_3D : GL_TEXTURE_2D;

    // Before the drawing: the mipmaps show the previous frame's image.
    if(genMipmap != NULL && isMipmapFilter(tex->getMinFilter()))
    {
        glBindTexture(target, glId);
        genMipmap(target);
        glBindTexture(target, 0);
    }

    return target;
}

void FBOForeground::draw(DrawActionBase *action, Viewport *port)
{
    if(!getActive())
        return;

    Window *win = action != NULL ? action->getWindow() : NULL;

    if(win == NULL)
    {
        SWARNING << "FBOForeground::draw: no window!" << std::endl;
        return;
    }

    // frameInit is the Window virtual that makes the registered extensions
    // and functions known to this window (activate only makes the context
    // current, and it is current inside the window's render already).
    win->frameInit();

    PFNGLDRAWBUFFERSPROC drawBuffers = glFunc<PFNGLDRAWBUFFERSPROC>(win, _funcDrawBuffers);
    void (*genMipmap)(GLenum)        = glFunc<void (*)(GLenum)>(win, _funcGenerateMipmap);

    Int32 n = osgMin(getMaxBuffers(), Int32(getTextures().size()));

    if(n <= 0)
        return;

    std::vector<TextureChunk *> colour;
    TextureChunk               *depth   = NULL;
    TextureChunk               *stencil = NULL;

    for(Int32 i = 0; i < n; ++i)
    {
        TextureChunk *tex = getTextures(i).getCPtr();

        if(tex == NULL)
            continue;

        const GLenum format = tex->getInternalFormat();

        if(isDepthFormat(format))
        {
            depth = tex;
        }
        else if(format == GL_STENCIL_INDEX)
        {
            stencil = tex;
        }
        else if(format == GL_DEPTH_STENCIL_NV)
        {
            SWARNING << "DEPTH_STENCIL format not yet impl." << std::endl;
        }
        else
        {
            colour.push_back(tex);
        }
    }

    if(depth != NULL && stencil != NULL)
    {
        FWARNING(("Rendering to separate depth and stencil textures is not possible. "
                  "Disabling stencil texture.\n"));
        stencil = NULL;
    }

    if(!initialize(win, 0))
        FFATAL(("Cannot initialize FBO\n"));

    bind(win);

    std::vector<GLenum> buffers(n, GL_NONE);
    GLuint              glId = 0;

    if(!colour.empty())
    {
        // A depth texture beside colour textures stays unattached: the
        // framebuffer then renders without a depth buffer.
        n = osgMin(n, Int32(colour.size()));

        for(Int32 i = 0; i < n; ++i)
        {
            TextureChunk *tex = colour[i];

            buffers[i] = GL_COLOR_ATTACHMENT0_EXT + i;

            ImagePtr img = tex->getImage();

            if(img != NullFC && (getTextureResizeMode() == 1 || getTextureResizeMode() == 2))
            {
                const Int32 w = getTextureResizeMode() == 1 ? Int32(win->getWidth())
                                                            : port->getPixelWidth();
                const Int32 h = getTextureResizeMode() == 1 ? Int32(win->getHeight())
                                                            : port->getPixelHeight();

                if(img->getWidth() != w || img->getHeight() != h)
                {
                    img->set(img->getPixelFormat(), w, h, img->getDepth(),
                             img->getMipMapCount(), img->getFrameCount(),
                             img->getFrameDelay(), NULL, img->getDataType(), true,
                             img->getSideCount());
                }
            }

            const GLenum target = prepareTarget(win, tex, genMipmap, glId);
            setTarget(win, glId, buffers[i], target, 0);
        }

        if(drawBuffers != NULL)
        {
            drawBuffers(n, &buffers[0]);
        }
        else
        {
            if(n >= 2)
                FWARNING(("glDrawBuffersARB not supported, can't render to more than 1 "
                          "buffer.\n"));
            glDrawBuffer(buffers[0]);
        }
    }
    else if(depth != NULL)
    {
        buffers[0] = GL_DEPTH_ATTACHMENT_EXT;

        const GLenum target = prepareTarget(win, depth, genMipmap, glId);
        setTarget(win, glId, GL_DEPTH_ATTACHMENT_EXT, target, 0);

        glDrawBuffer(GL_NONE);
        glReadBuffer(GL_NONE);
    }
    else if(stencil != NULL)
    {
        buffers[0] = GL_STENCIL_ATTACHMENT_EXT;

        const GLenum target = prepareTarget(win, stencil, NULL, glId);
        setTarget(win, glId, GL_STENCIL_ATTACHMENT_EXT, target, 0);

        glDrawBuffer(GL_NONE);
        glReadBuffer(GL_NONE);
    }

    if(getDeactivateViewport())
        port->deactivate();

    const Vec4f &vp       = getOverrideViewport();
    const bool   override = !equals(vp, 0.f, 0.f, 0.f, 0.f);

    if(override)
    {
        if(equals(vp, -1.f, -1.f, -1.f, -1.f) && !colour.empty())
        {
            // -1 everywhere: the whole first colour texture. Without an
            // image its size is unknown and the viewport stays as it is.
            ImagePtr img = colour[0]->getImage();

            if(img != NullFC)
            {
                glViewport(0, 0, img->getWidth(), img->getHeight());
                glDisable(GL_SCISSOR_TEST);
            }
        }
        else
        {
            glViewport(GLint(vp[0]), GLint(vp[1]), GLsizei(vp[2]), GLsizei(vp[3]));
        }
    }

    if(getForeground() != NullFC)
        getForeground()->draw(action, port);

    unbind(win);

    if(override)
        port->activateSize();

    if(getDeactivateViewport())
        port->activate();
}

OSG_END_NAMESPACE
