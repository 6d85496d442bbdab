#include <OpenSG/OSGFBOViewport.h>

#include <OpenSG/OSGBackground.h>
#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGCameraDecorator.h>
#include <OpenSG/OSGForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGWindow.h>

#include <vector>

OSG_BEGIN_NAMESPACE

FBOViewport::renderparamscbfp FBOViewport::_renderParamsFP = NULL;

UInt32 FBOViewport::_extTex3D             = Window::invalidExtensionID;
UInt32 FBOViewport::_extFramebufferObject = Window::invalidExtensionID;
UInt32 FBOViewport::_extDrawBuffers       = Window::invalidExtensionID;

UInt32 FBOViewport::_funcDrawBuffers                         = Window::invalidFunctionID;
UInt32 FBOViewport::_funcBindFramebuffer                     = Window::invalidFunctionID;
UInt32 FBOViewport::_funcBindRenderbuffer                    = Window::invalidFunctionID;
UInt32 FBOViewport::_funcCheckFramebufferStatus              = Window::invalidFunctionID;
UInt32 FBOViewport::_funcDeleteFramebuffers                  = Window::invalidFunctionID;
UInt32 FBOViewport::_funcDeleteRenderbuffers                 = Window::invalidFunctionID;
UInt32 FBOViewport::_funcFramebufferRenderbuffer             = Window::invalidFunctionID;
UInt32 FBOViewport::_funcFramebufferTexture1D                = Window::invalidFunctionID;
UInt32 FBOViewport::_funcFramebufferTexture2D                = Window::invalidFunctionID;
UInt32 FBOViewport::_funcFramebufferTexture3D                = Window::invalidFunctionID;
UInt32 FBOViewport::_funcGenFramebuffers                     = Window::invalidFunctionID;
UInt32 FBOViewport::_funcGenRenderbuffers                    = Window::invalidFunctionID;
UInt32 FBOViewport::_funcGenerateMipmap                      = Window::invalidFunctionID;
UInt32 FBOViewport::_funcGetFramebufferAttachmentParameteriv = Window::invalidFunctionID;
UInt32 FBOViewport::_funcGetRenderbufferParameteriv          = Window::invalidFunctionID;
UInt32 FBOViewport::_funcIsFramebuffer                       = Window::invalidFunctionID;
UInt32 FBOViewport::_funcIsRenderbuffer                      = Window::invalidFunctionID;
UInt32 FBOViewport::_funcRenderbufferStorage                 = Window::invalidFunctionID;
UInt32 FBOViewport::_funcCopyTexSubImage3D                   = Window::invalidFunctionID;

namespace
{

template <class FuncT>
FuncT glFunc(Window *win, UInt32 id)
{
    return reinterpret_cast<FuncT>(win->getFunction(id));
}

bool isDepthFormat(GLenum format)
{
    return format == GL_DEPTH_COMPONENT || format == GL_DEPTH_COMPONENT16 ||
           format == GL_DEPTH_COMPONENT24 || format == GL_DEPTH_COMPONENT32;
}

bool minFilterUsesMipmaps(GLenum filter)
{
    return filter == GL_NEAREST_MIPMAP_NEAREST ||
           filter == GL_LINEAR_MIPMAP_NEAREST ||
           filter == GL_NEAREST_MIPMAP_LINEAR || filter == GL_LINEAR_MIPMAP_LINEAR;
}

/// The GL target a texture chunk binds its texture to.
GLenum textureTarget(TextureChunk *tex)
{
    if(tex->getTarget() != GL_NONE)
        return tex->getTarget();

    ImagePtr img = tex->getImage();

    if(img != NullFC && img->getDepth() > 1)
        return GL_TEXTURE_3D;

    return GL_TEXTURE_2D;
}

/// Keeps the GL viewport, the scissor and the framebuffer binding of
/// whoever called render, and gives them back at the end of the pass.
class WindowStateGuard
{
  public:
    WindowStateGuard(void)
    {
        glGetIntegerv(GL_VIEWPORT, _viewport);
        glGetIntegerv(GL_SCISSOR_BOX, _scissor);
        _scissorOn = glIsEnabled(GL_SCISSOR_TEST);
    }

    ~WindowStateGuard(void)
    {
        glViewport(_viewport[0], _viewport[1], _viewport[2], _viewport[3]);
        glScissor(_scissor[0], _scissor[1], _scissor[2], _scissor[3]);

        if(_scissorOn)
            glEnable(GL_SCISSOR_TEST);
        else
            glDisable(GL_SCISSOR_TEST);
    }

  private:
    GLint     _viewport[4];
    GLint     _scissor[4];
    GLboolean _scissorOn;
};

} // namespace

FBOViewport::FBOViewport(void) : Inherited()
{
}

FBOViewport::FBOViewport(const FBOViewport &source) : Inherited(source)
{
    registerExtensions();
}

FBOViewport::~FBOViewport(void)
{
}

void FBOViewport::initMethod(void)
{
    // Registered at start-up as well, so that a window's first frameInit
    // already knows the entry points.
    registerExtensions();
}

void FBOViewport::registerExtensions(void)
{
    _extTex3D             = Window::registerExtension("GL_EXT_texture3D");
    _extFramebufferObject = Window::registerExtension("GL_EXT_framebuffer_object");
    _extDrawBuffers       = Window::registerExtension("GL_ARB_draw_buffers");

    const Int32 fbo = Int32(_extFramebufferObject);

    _funcDrawBuffers = Window::registerFunction("glDrawBuffers", Int32(_extDrawBuffers));

    _funcBindFramebuffer        = Window::registerFunction("glBindFramebufferEXT", fbo);
    _funcBindRenderbuffer       = Window::registerFunction("glBindRenderbufferEXT", fbo);
    _funcCheckFramebufferStatus = Window::registerFunction("glCheckFramebufferStatusEXT", fbo);
    _funcDeleteFramebuffers     = Window::registerFunction("glDeleteFramebuffersEXT", fbo);
    _funcDeleteRenderbuffers    = Window::registerFunction("glDeleteRenderbuffersEXT", fbo);
    _funcFramebufferRenderbuffer =
        Window::registerFunction("glFramebufferRenderbufferEXT", fbo);
    _funcFramebufferTexture1D = Window::registerFunction("glFramebufferTexture1DEXT", fbo);
    _funcFramebufferTexture2D = Window::registerFunction("glFramebufferTexture2DEXT", fbo);
    _funcFramebufferTexture3D = Window::registerFunction("glFramebufferTexture3DEXT", fbo);
    _funcGenFramebuffers      = Window::registerFunction("glGenFramebuffersEXT", fbo);
    _funcGenRenderbuffers     = Window::registerFunction("glGenRenderbuffersEXT", fbo);
    _funcGenerateMipmap       = Window::registerFunction("glGenerateMipmapEXT", fbo);
    _funcGetFramebufferAttachmentParameteriv =
        Window::registerFunction("glGetFramebufferAttachmentParameterivEXT", fbo);
    _funcGetRenderbufferParameteriv =
        Window::registerFunction("glGetRenderbufferParameterivEXT", fbo);
    _funcIsFramebuffer       = Window::registerFunction("glIsFramebufferEXT", fbo);
    _funcIsRenderbuffer      = Window::registerFunction("glIsRenderbufferEXT", fbo);
    _funcRenderbufferStorage = Window::registerFunction("glRenderbufferStorageEXT", fbo);

    _funcCopyTexSubImage3D = Window::registerFunction("glCopyTexSubImage3D", Int32(_extTex3D));
}

void FBOViewport::setRenderParamsCB(renderparamscbfp fp)
{
    _renderParamsFP = fp;
}

void FBOViewport::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void FBOViewport::dump(UInt32, const BitVector) const
{
    SLOG << "Dump FBOViewport NI" << std::endl;
}

// --- framebuffer objects ------------------------------------------------------------

bool FBOViewport::extensionCheck(void)
{
    if(getParent() == NullFC)
    {
        SWARNING << "FBOViewport::extensionCheck: no parent window!" << std::endl;
        return false;
    }

    if(!getParent()->hasExtension(_extFramebufferObject))
    {
        FWARNING(("I need GL_EXT_framebuffer_object-Extension!\n"));
        return false;
    }

    return true;
}

Int32 FBOViewport::getMaxBuffers(void)
{
    GLint n = 0;
    glGetIntegerv(GL_MAX_COLOR_ATTACHMENTS_EXT, &n);
    FINFO(("GL_MAX_COLOR_ATTACHMENTS_EXT: %d\n", n));
    return n;
}

bool FBOViewport::initialize(Window *win, Int32 format)
{
    if(getStorageWidth() <= 0 || getStorageHeight() <= 0)
        return false;

    if(getFrameBufferIndex() != 0 && !getDirty())
        return true;

    PFNGLGENFRAMEBUFFERSEXTPROC genFramebuffers =
        glFunc<PFNGLGENFRAMEBUFFERSEXTPROC>(win, _funcGenFramebuffers);
    PFNGLBINDFRAMEBUFFEREXTPROC bindFramebuffer =
        glFunc<PFNGLBINDFRAMEBUFFEREXTPROC>(win, _funcBindFramebuffer);
    PFNGLGENRENDERBUFFERSEXTPROC genRenderbuffers =
        glFunc<PFNGLGENRENDERBUFFERSEXTPROC>(win, _funcGenRenderbuffers);
    PFNGLBINDRENDERBUFFEREXTPROC bindRenderbuffer =
        glFunc<PFNGLBINDRENDERBUFFEREXTPROC>(win, _funcBindRenderbuffer);
    PFNGLRENDERBUFFERSTORAGEEXTPROC renderbufferStorage =
        glFunc<PFNGLRENDERBUFFERSTORAGEEXTPROC>(win, _funcRenderbufferStorage);
    PFNGLFRAMEBUFFERRENDERBUFFEREXTPROC framebufferRenderbuffer =
        glFunc<PFNGLFRAMEBUFFERRENDERBUFFEREXTPROC>(win, _funcFramebufferRenderbuffer);

    if(genFramebuffers == NULL || bindFramebuffer == NULL || genRenderbuffers == NULL ||
       bindRenderbuffer == NULL || renderbufferStorage == NULL ||
       framebufferRenderbuffer == NULL)
    {
        FWARNING(("FBOViewport::initialize: framebuffer object functions missing; "
                  "was frameInit called after the viewport was created?\n"));
        return false;
    }

    // A re-creation (new size) gives the old objects back first, as far as
    // they belong to this context.
    PFNGLISFRAMEBUFFEREXTPROC isFramebuffer =
        glFunc<PFNGLISFRAMEBUFFEREXTPROC>(win, _funcIsFramebuffer);
    PFNGLISRENDERBUFFEREXTPROC isRenderbuffer =
        glFunc<PFNGLISRENDERBUFFEREXTPROC>(win, _funcIsRenderbuffer);
    PFNGLDELETEFRAMEBUFFERSEXTPROC deleteFramebuffers =
        glFunc<PFNGLDELETEFRAMEBUFFERSEXTPROC>(win, _funcDeleteFramebuffers);
    PFNGLDELETERENDERBUFFERSEXTPROC deleteRenderbuffers =
        glFunc<PFNGLDELETERENDERBUFFERSEXTPROC>(win, _funcDeleteRenderbuffers);

    if(isFramebuffer != NULL && deleteFramebuffers != NULL && getFrameBufferIndex() != 0 &&
       isFramebuffer(getFrameBufferIndex()))
    {
        GLuint old = getFrameBufferIndex();
        deleteFramebuffers(1, &old);
    }

    if(isRenderbuffer != NULL && deleteRenderbuffers != NULL)
    {
        GLuint old[2] = {getDepthBufferIndex(), getStencilBufferIndex()};

        for(UInt32 i = 0; i < 2; ++i)
        {
            if(old[i] != 0 && isRenderbuffer(old[i]))
                deleteRenderbuffers(1, &old[i]);
        }
    }

    FBOViewportPtr self(this);

    beginEditCP(self);

    setDirty(false);

    GLuint fb = 0;
    genFramebuffers(1, &fb);
    bindFramebuffer(GL_FRAMEBUFFER_EXT, fb);
    setFrameBufferIndex(fb);

    glDrawBuffer(GL_NONE);
    glReadBuffer(GL_NONE);

    // a renderbuffer of the storage size for one attachment; 0 for none
    auto renderbuffer = [&](GLenum bufferFormat, GLenum attachment) -> GLuint {
        if(bufferFormat == GL_NONE)
            return 0;
        GLuint rb = 0;
        genRenderbuffers(1, &rb);
        bindRenderbuffer(GL_RENDERBUFFER_EXT, rb);
        renderbufferStorage(GL_RENDERBUFFER_EXT, bufferFormat, getStorageWidth(),
                            getStorageHeight());
        framebufferRenderbuffer(GL_FRAMEBUFFER_EXT, attachment, GL_RENDERBUFFER_EXT, rb);
        return rb;
    };

    GLenum depthFormat = GL_NONE;

    if(format & FBO_DEPTH_16)
        depthFormat = GL_DEPTH_COMPONENT16;
    else if(format & FBO_DEPTH_24)
        depthFormat = GL_DEPTH_COMPONENT24;
    else if(format & FBO_DEPTH_32)
        depthFormat = GL_DEPTH_COMPONENT32;

    setDepthBufferIndex(renderbuffer(depthFormat, GL_DEPTH_ATTACHMENT_EXT));

    GLenum stencilFormat = GL_NONE;

    if(format & FBO_STENCIL_1)
        stencilFormat = GL_STENCIL_INDEX1_EXT;
    else if(format & FBO_STENCIL_4)
        stencilFormat = GL_STENCIL_INDEX4_EXT;
    else if(format & FBO_STENCIL_8)
        stencilFormat = GL_STENCIL_INDEX8_EXT;
    else if(format & FBO_STENCIL_16)
        stencilFormat = GL_STENCIL_INDEX16_EXT;

    setStencilBufferIndex(renderbuffer(stencilFormat, GL_STENCIL_ATTACHMENT_EXT));

    endEditCP(self);

    bindFramebuffer(GL_FRAMEBUFFER_EXT, 0);
    bindRenderbuffer(GL_RENDERBUFFER_EXT, 0);

    return true;
}

void FBOViewport::setTarget(Window *win, UInt32 glId, GLenum attachment, GLenum target,
                            GLint zoffset)
{
    if(getFrameBufferIndex() == 0)
    {
        FWARNING(("Invalid FrameBufferObject index!\n"));
        return;
    }

    if(target == GL_TEXTURE_3D)
    {
        PFNGLFRAMEBUFFERTEXTURE3DEXTPROC attach3D =
            glFunc<PFNGLFRAMEBUFFERTEXTURE3DEXTPROC>(win, _funcFramebufferTexture3D);
        if(attach3D != NULL)
            attach3D(GL_FRAMEBUFFER_EXT, attachment, target, glId, 0, zoffset);
    }
    else
    {
        PFNGLFRAMEBUFFERTEXTURE2DEXTPROC attach2D =
            glFunc<PFNGLFRAMEBUFFERTEXTURE2DEXTPROC>(win, _funcFramebufferTexture2D);
        if(attach2D != NULL)
            attach2D(GL_FRAMEBUFFER_EXT, attachment, target, glId, 0);
    }

    if(!glErr("setTarget post"))
    {
        SWARNING << "Error with attachment: " << attachment << ", id: " << glId
                 << ", target: " << target << std::endl;
    }
}

void FBOViewport::bind(Window *win)
{
    if(getFrameBufferIndex() == 0)
    {
        FWARNING(("Invalid FrameBufferObject index!\n"));
        return;
    }

    PFNGLBINDFRAMEBUFFEREXTPROC bindFramebuffer =
        glFunc<PFNGLBINDFRAMEBUFFEREXTPROC>(win, _funcBindFramebuffer);

    if(bindFramebuffer != NULL)
        bindFramebuffer(GL_FRAMEBUFFER_EXT, getFrameBufferIndex());
}

void FBOViewport::stop(Window *win)
{
    if(getFrameBufferIndex() == 0)
        return;

    PFNGLBINDFRAMEBUFFEREXTPROC bindFramebuffer =
        glFunc<PFNGLBINDFRAMEBUFFEREXTPROC>(win, _funcBindFramebuffer);

    if(bindFramebuffer != NULL)
        bindFramebuffer(GL_FRAMEBUFFER_EXT, 0);
}

bool FBOViewport::checkFrameBufferStatus(Window *win)
{
    PFNGLCHECKFRAMEBUFFERSTATUSEXTPROC checkStatus =
        glFunc<PFNGLCHECKFRAMEBUFFERSTATUSEXTPROC>(win, _funcCheckFramebufferStatus);

    if(checkStatus == NULL)
        return false;

    const GLenum status = checkStatus(GL_FRAMEBUFFER_EXT);
    bool         ok     = false;

    switch(status)
    {
        case GL_FRAMEBUFFER_COMPLETE_EXT:
            FINFO(("%x: framebuffer complete!\n", status));
            ok = true;
            break;
        case GL_FRAMEBUFFER_UNSUPPORTED_EXT:
            FWARNING(("%x: framebuffer GL_FRAMEBUFFER_UNSUPPORTED_EXT\n", status));
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
        default:
            FWARNING(("%x: framebuffer unknown status\n", status));
            break;
    }

    glErr("checkFrameBufferStatus");

    return ok;
}

// --- the pass ------------------------------------------------------------------------

void FBOViewport::render(RenderActionBase *action)
{
    if(!getEnabled())
        return;

    Window *win = action != NULL ? action->getWindow() : NULL;

    if(win == NULL)
    {
        SWARNING << "FBOViewport::render: no window!" << std::endl;
        return;
    }
    if(getCamera() == NullFC)
    {
        SWARNING << "FBOViewport::render: no camera!" << std::endl;
        return;
    }
    if(getBackground() == NullFC)
    {
        SWARNING << "FBOViewport::render: no background!" << std::endl;
        return;
    }
    if(getRoot() == NullFC && getRenderNodes().empty())
    {
        SWARNING << "FBOViewport::render: no root(s)!" << std::endl;
        return;
    }

    // A pending window resize would otherwise hit the GL viewport in the
    // middle of this pass.
    win->resizeGL();

    GLint maxTexSize = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxTexSize);

    if(maxTexSize > 0 &&
       (getStorageWidth() > maxTexSize || getStorageHeight() > maxTexSize))
    {
        FBOViewportPtr self(this);

        beginEditCP(self, StorageWidthFieldMask | StorageHeightFieldMask);
        setStorageWidth(osgMin(getStorageWidth(), Int32(maxTexSize)));
        setStorageHeight(osgMin(getStorageHeight(), Int32(maxTexSize)));
        endEditCP(self, StorageWidthFieldMask | StorageHeightFieldMask);
    }

    if(_renderParamsFP != NULL)
        _renderParamsFP(FBO_RP_EFFECTS);

    RenderAction *ra             = dynamic_cast<RenderAction *>(action);
    bool          zWriteSet      = false;
    bool          oldZWriteTrans = false;

    if(getGenDepthmaps() && ra != NULL)
    {
        oldZWriteTrans = ra->getZWriteTrans();
        ra->setZWriteTrans(true);
        zWriteSet = true;
    }

    {
        WindowStateGuard guard;

        if(!getFboOn() || !extensionCheck())
            renderCopy(action, win);
        else
            renderFBO(action, win);
    }

    if(zWriteSet)
        ra->setZWriteTrans(oldZWriteTrans);

    if(_renderParamsFP != NULL)
        _renderParamsFP(FBO_RP_NONE);
}

void FBOViewport::validateTarget(Window *win, TextureChunk *tex, GLenum &target, GLuint &glId,
                                 void (*genMipmap)(GLenum))
{
    target = textureTarget(tex);

    win->validateGLObject(tex->getGLId());
    glId = win->getGLObjectId(tex->getGLId());

    // The mipmaps show what the texture held before this pass.
    if(minFilterUsesMipmaps(tex->getMinFilter()) && genMipmap != NULL)
    {
        glBindTexture(target, glId);
        genMipmap(target);
        glBindTexture(target, 0);
    }
}

void FBOViewport::renderScene(RenderActionBase *action)
{
    // The excluded nodes sit out this pass only.
    for(UInt32 i = 0; i < getExcludeNodes().size(); ++i)
    {
        if(getExcludeNodes(i) != NullFC)
            getExcludeNodes(i)->setActive(false);
    }

    Camera *cam = getCamera().getCPtr();

    if(getIgnoreCameraDecorators())
    {
        CameraDecorator *deco = dynamic_cast<CameraDecorator *>(cam);

        while(deco != NULL && deco->getDecoratee() != NullFC)
        {
            cam  = deco->getDecoratee().getCPtr();
            deco = dynamic_cast<CameraDecorator *>(cam);
        }
    }

    action->setCamera(cam);
    action->setBackground(getBackground().getCPtr());
    action->setViewport(this);
    action->setTravMask(getTravMask());

    activate();

    if(getRenderNodes().empty())
    {
        action->apply(getRoot());
    }
    else
    {
        for(UInt32 i = 0; i < getRenderNodes().size(); ++i)
        {
            if(getRenderNodes(i) != NullFC)
                action->apply(getRenderNodes(i));
        }
    }

    for(UInt32 i = 0; i < getForegrounds().size(); ++i)
    {
        if(getForegrounds(i) != NullFC)
            getForegrounds(i)->draw(action, this);
    }
}

void FBOViewport::renderFBO(RenderActionBase *action, Window *win)
{
    PFNGLDRAWBUFFERSPROC drawBuffers =
        reinterpret_cast<PFNGLDRAWBUFFERSPROC>(win->getFunction(_funcDrawBuffers));
    void (*genMipmap)(GLenum) =
        reinterpret_cast<void (*)(GLenum)>(win->getFunction(_funcGenerateMipmap));
    PFNGLBINDFRAMEBUFFEREXTPROC bindFramebuffer =
        glFunc<PFNGLBINDFRAMEBUFFEREXTPROC>(win, _funcBindFramebuffer);
    PFNGLFRAMEBUFFERRENDERBUFFEREXTPROC framebufferRenderbuffer =
        glFunc<PFNGLFRAMEBUFFERRENDERBUFFEREXTPROC>(win, _funcFramebufferRenderbuffer);

    Int32 n = osgMin(getMaxBuffers(), Int32(getTextures().size()));

    if(n <= 0 || getStorageWidth() <= 0 || getStorageHeight() <= 0 || bindFramebuffer == NULL)
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
        else if(format == GL_DEPTH_STENCIL_EXT)
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

    // The framebuffer that was bound (the window's) gets its binding back.
    GLint previous = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &previous);

    if(!initialize(win, FBO_DEPTH_24))
    {
        FFATAL(("Cannot initialize FBO\n"));
        bindFramebuffer(GL_FRAMEBUFFER_EXT, GLuint(previous));
        return;
    }

    bind(win);

    const GLint zoffset = getZOffset().empty() ? 0 : getZOffset(0);

    GLenum target = GL_NONE;
    GLuint glId   = 0;

    std::vector<GLenum> buffers;

    if(!colour.empty())
    {
        n = osgMin(n, Int32(colour.size()));

        if(depth != NULL)
        {
            validateTarget(win, depth, target, glId, genMipmap);
            setTarget(win, glId, GL_DEPTH_ATTACHMENT_EXT, target, zoffset);
        }
        else
        {
            // A depth texture of an earlier pass may still sit there.
            if(getDepthBufferIndex() != 0 && framebufferRenderbuffer != NULL)
                framebufferRenderbuffer(GL_FRAMEBUFFER_EXT, GL_DEPTH_ATTACHMENT_EXT,
                                        GL_RENDERBUFFER_EXT, getDepthBufferIndex());

            if(stencil != NULL)
            {
                validateTarget(win, stencil, target, glId, genMipmap);
                setTarget(win, glId, GL_STENCIL_ATTACHMENT_EXT, target, zoffset);
            }
        }

        for(Int32 i = 0; i < n; ++i)
        {
            buffers.push_back(GL_COLOR_ATTACHMENT0_EXT + i);

            validateTarget(win, colour[i], target, glId, genMipmap);
            setTarget(win, glId, buffers[i], target, zoffset);
        }

        if(drawBuffers != NULL)
        {
            drawBuffers(n, &buffers[0]);
        }
        else
        {
            if(n > 1)
                FWARNING(("glDrawBuffersARB not supported, can't render to more than 1 "
                          "buffer.\n"));
            glDrawBuffer(buffers[0]);
        }

        // Foregrounds of the pass (a grab, say) read what was drawn.
        glReadBuffer(buffers[0]);
    }
    else if(depth != NULL)
    {
        validateTarget(win, depth, target, glId, genMipmap);
        setTarget(win, glId, GL_DEPTH_ATTACHMENT_EXT, target, zoffset);
        glDrawBuffer(GL_NONE);
        glReadBuffer(GL_NONE);
    }
    else if(stencil != NULL)
    {
        validateTarget(win, stencil, target, glId, genMipmap);
        setTarget(win, glId, GL_STENCIL_ATTACHMENT_EXT, target, zoffset);
        glDrawBuffer(GL_NONE);
        glReadBuffer(GL_NONE);
    }

    // An incomplete framebuffer would turn every clear and draw of the pass
    // into a GL error.
    if(!checkFrameBufferStatus(win))
    {
        SWARNING << "FBOViewport::render: framebuffer incomplete, pass skipped" << std::endl;
        stop(win);
        if(previous != 0)
            bindFramebuffer(GL_FRAMEBUFFER_EXT, GLuint(previous));
        return;
    }

    renderScene(action);

    if(getReadBuffer())
    {
        const Int32 sw = getStorageWidth();
        const Int32 sh = getStorageHeight();

        GLint packAlignment = 4;
        glGetIntegerv(GL_PACK_ALIGNMENT, &packAlignment);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);

        if(!buffers.empty())
        {
            for(UInt32 i = 0; i < buffers.size(); ++i)
            {
                ImagePtr img = colour[i]->getImage();

                if(img == NullFC)
                    continue;

                if(img->getWidth() != sw || img->getHeight() != sh ||
                   img->getData() == NULL)
                {
                    SINFO << "FBOViewport::render: (Re)Allocating image for color buffer "
                             "read-back."
                          << std::endl;
                    img->set(img->getPixelFormat(), sw, sh, 1, 1, 1, 0.0, NULL,
                             img->getDataType(), true);
                }

                glReadBuffer(buffers[i]);
                glReadPixels(0, 0, sw, sh, img->getPixelFormat(), img->getDataType(),
                             img->editData());
                glReadBuffer(GL_NONE);
            }
        }
        else if(depth != NULL && depth->getImage() != NullFC)
        {
            ImagePtr img = depth->getImage();

            if(img->getWidth() != sw || img->getHeight() != sh || img->getData() == NULL)
            {
                SINFO << "FBOViewport::render: (Re)Allocating image for depth buffer "
                         "read-back."
                      << std::endl;
                img->set(img->getPixelFormat(), sw, sh, 1, 1, 1, 0.0, NULL,
                         img->getDataType(), true);
            }

            glReadPixels(0, 0, sw, sh, GL_DEPTH_COMPONENT, img->getDataType(),
                         img->editData());
        }

        glPixelStorei(GL_PACK_ALIGNMENT, packAlignment);
    }

    deactivate();

    for(UInt32 i = 0; i < getExcludeNodes().size(); ++i)
    {
        if(getExcludeNodes(i) != NullFC)
            getExcludeNodes(i)->setActive(true);
    }

    stop(win);

    if(previous != 0)
        bindFramebuffer(GL_FRAMEBUFFER_EXT, GLuint(previous));
}

void FBOViewport::renderCopy(RenderActionBase *action, Window *win)
{
    if(getTextures().empty() || getTextures(0) == NullFC)
    {
        SWARNING << "FBOViewport::render: no textures!" << std::endl;
        return;
    }

    if(getGenCubemaps())
        SWARNING << "FBOViewport::render: cube maps need a framebuffer object; "
                    "rendering one face"
                 << std::endl;

    Int32 w = getStorageWidth();
    Int32 h = getStorageHeight();

    if(getFboOffIgnoreStorageSize() || w <= 0 || h <= 0)
    {
        w = win->getWidth();
        h = win->getHeight();
    }

    if(!win->hasExtension("GL_ARB_texture_non_power_of_two"))
    {
        Int32 pw = 1, ph = 1;
        while(pw * 2 <= w)
            pw *= 2;
        while(ph * 2 <= h)
            ph *= 2;
        w = pw;
        h = ph;
    }

    // Without tiles the image must fit into the window's back buffer.
    w = osgMin(w, Int32(win->getWidth()));
    h = osgMin(h, Int32(win->getHeight()));

    if(w <= 0 || h <= 0)
        return;

    setSize(0.f, 0.f, Real32(w - 1), Real32(h - 1));

    renderScene(action);

    PFNGLCOPYTEXSUBIMAGE3DPROC copy3D =
        reinterpret_cast<PFNGLCOPYTEXSUBIMAGE3DPROC>(win->getFunction(_funcCopyTexSubImage3D));

    const GLint zoffset = getZOffset().empty() ? 0 : getZOffset(0);

    for(UInt32 i = 0; i < getTextures().size(); ++i)
    {
        TextureChunk *tex = getTextures(i).getCPtr();

        if(tex == NULL || tex->getImage() == NullFC)
            continue;

        GLenum target = GL_NONE;
        GLuint glId   = 0;

        validateTarget(win, tex, target, glId, NULL);

        const Int32 cw = osgMin(w, Int32(tex->getImage()->getWidth()));
        const Int32 ch = osgMin(h, Int32(tex->getImage()->getHeight()));

        glBindTexture(target, glId);

        if(target == GL_TEXTURE_3D)
        {
            if(copy3D != NULL)
                copy3D(target, 0, 0, 0, zoffset, 0, 0, cw, ch);
        }
        else
        {
            glCopyTexSubImage2D(target, 0, 0, 0, 0, 0, cw, ch);
        }

        glBindTexture(target, 0);

        if(getReadBuffer())
        {
            ImagePtr img = tex->getImage();

            GLint packAlignment = 4;
            glGetIntegerv(GL_PACK_ALIGNMENT, &packAlignment);
            glPixelStorei(GL_PACK_ALIGNMENT, 1);
            glPixelStorei(GL_PACK_ROW_LENGTH, img->getWidth());
            glReadPixels(0, 0, cw, ch, img->getPixelFormat(), img->getDataType(),
                         img->editData());
            glPixelStorei(GL_PACK_ROW_LENGTH, 0);
            glPixelStorei(GL_PACK_ALIGNMENT, packAlignment);
        }
    }

    deactivate();

    for(UInt32 i = 0; i < getExcludeNodes().size(); ++i)
    {
        if(getExcludeNodes(i) != NullFC)
            getExcludeNodes(i)->setActive(true);
    }
}

OSG_END_NAMESPACE
