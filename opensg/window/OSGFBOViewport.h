/// A viewport that renders into textures instead of the window.
///
/// The textures in `textures` are the render targets: a chunk whose internal
/// format is a depth format becomes the depth attachment, GL_STENCIL_INDEX
/// the stencil attachment, everything else a colour attachment (in list
/// order, one draw buffer each). A 24-bit depth renderbuffer of the storage
/// size is made whenever `dirty` is set, so colour-only targets still get a
/// depth test.
///
///     fbo->setLeft(0); fbo->setBottom(0);            // pixel edges
///     fbo->setRight(w - 1); fbo->setTop(h - 1);
///     fbo->setStorageWidth(w); fbo->setStorageHeight(h);
///     fbo->getTextures().push_back(colourTex);       // w x h images
///     fbo->setCamera(cam); fbo->setBackground(bg); fbo->setRoot(scene);
///     fbo->setParent(window);                        // needed: extension test
///     window->frameInit();                           // FBO entry points known
///     fbo->render(action);                           // action's window set
///
/// render() works inside the parent window's context: it binds its own
/// framebuffer, renders, and rebinds the framebuffer and GL viewport that
/// were current before, so it can be called in the middle of another
/// viewport's frame.
#ifndef _OSGFBOVIEWPORT_H_
#define _OSGFBOVIEWPORT_H_

#include <OpenSG/OSGFBOViewportBase.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

class Window;
class TextureChunk;

class FBOViewport : public FBOViewportBase
{
  private:
    typedef FBOViewportBase Inherited;

  public:
    /// Renderbuffers that initialize() can make (bit flags).
    enum RenderBufferAttachmentType
    {
        NONE           = 0,
        FBO_DEPTH_16   = 1,
        FBO_DEPTH_24   = 2,
        FBO_DEPTH_32   = 4,
        FBO_STENCIL_1  = 8,
        FBO_STENCIL_4  = 16,
        FBO_STENCIL_8  = 32,
        FBO_STENCIL_16 = 64
    };

    /// Argument of the render-parameter callback.
    enum
    {
        FBO_RP_NONE    = 0,
        FBO_RP_EFFECTS = 1
    };

    typedef void (*renderparamscbfp)(UInt32);

    /// Called with FBO_RP_EFFECTS before and FBO_RP_NONE after every pass
    /// of every FBOViewport (NULL: none).
    static void setRenderParamsCB(renderparamscbfp fp);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// One pass into the textures (see the class comment). Needs the
    /// action's window, camera, background and root (or renderNodes).
    virtual void render(RenderActionBase *action);

    /// Makes a new framebuffer (and the renderbuffers asked for by format)
    /// if there is none yet or dirty is set; false for a storage size of 0.
    /// The window's context must be current.
    bool initialize(Window *win, Int32 format = NONE);

    /// Attaches texture glId (GL name) at attachment of the bound
    /// framebuffer; a 3-D texture with its slice zoffset.
    void setTarget(Window *win, UInt32 glId, GLenum attachment, GLenum target,
                   GLint zoffset = 0);

    /// Binds this viewport's framebuffer.
    void bind(Window *win);
    /// Binds framebuffer 0 (if this viewport has a framebuffer).
    void stop(Window *win);

    /// Logs the completeness of the bound framebuffer; false if it cannot
    /// be rendered into.
    bool checkFrameBufferStatus(Window *win);

    /// GL_MAX_COLOR_ATTACHMENTS of the current context.
    Int32 getMaxBuffers(void);

  protected:
    FBOViewport(void);
    /// Registers the FBO extensions and functions (again), as each new
    /// viewport may be the first one a late-loaded module makes.
    FBOViewport(const FBOViewport &source);
    virtual ~FBOViewport(void);

    /// The parent window has GL_EXT_framebuffer_object (warns if not).
    bool extensionCheck(void);

  private:
    friend class FieldContainer;
    friend class FBOViewportBase;

    static void initMethod(void);
    static void registerExtensions(void);

    void renderFBO(RenderActionBase *action, Window *win);
    void renderCopy(RenderActionBase *action, Window *win);
    void renderScene(RenderActionBase *action);
    void validateTarget(Window *win, TextureChunk *tex, GLenum &target,
                        GLuint &glId, void (*genMipmap)(GLenum));

    static renderparamscbfp _renderParamsFP;

    static UInt32 _extTex3D;
    static UInt32 _extFramebufferObject;
    static UInt32 _extDrawBuffers;

    static UInt32 _funcDrawBuffers;
    static UInt32 _funcBindFramebuffer;
    static UInt32 _funcBindRenderbuffer;
    static UInt32 _funcCheckFramebufferStatus;
    static UInt32 _funcDeleteFramebuffers;
    static UInt32 _funcDeleteRenderbuffers;
    static UInt32 _funcFramebufferRenderbuffer;
    static UInt32 _funcFramebufferTexture1D;
    static UInt32 _funcFramebufferTexture2D;
    static UInt32 _funcFramebufferTexture3D;
    static UInt32 _funcGenFramebuffers;
    static UInt32 _funcGenRenderbuffers;
    static UInt32 _funcGenerateMipmap;
    static UInt32 _funcGetFramebufferAttachmentParameteriv;
    static UInt32 _funcGetRenderbufferParameteriv;
    static UInt32 _funcIsFramebuffer;
    static UInt32 _funcIsRenderbuffer;
    static UInt32 _funcRenderbufferStorage;
    static UInt32 _funcCopyTexSubImage3D;

    void operator=(const FBOViewport &source);
};

typedef FBOViewport *FBOViewportP;

OSG_END_NAMESPACE

#endif
