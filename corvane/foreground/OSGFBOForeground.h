/// A foreground that lets another foreground draw into textures through a framebuffer object.
#ifndef _OSGFBOFOREGROUND_H_
#define _OSGFBOFOREGROUND_H_

#include <OpenSG/OSGFBOForegroundBase.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

class TextureChunk;
class Window;

/// Each draw attaches the first textures of `textures` (colour, or else one
/// depth or stencil texture), points the GL viewport at them as
/// `overrideViewport` says, lets `foreground` draw and binds the window's
/// framebuffer again. The framebuffer object is made once and kept for the
/// object's life, whatever window draws it.
class FBOForeground : public FBOForegroundBase
{
  private:
    typedef FBOForegroundBase Inherited;

  public:
    /// Passes the edit on to the base class; no field needs more.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// One draw as the class comment describes it.
    virtual void draw(DrawActionBase *action, Viewport *port);

    /// Creates the framebuffer object once; always true.
    bool initialize(Window *win, UInt32 unused);
    /// Attaches level 0 (slice zoffset of a 3-D texture) of texture glId.
    void setTarget(Window *win, UInt32 glId, GLenum attachment, GLenum target, GLint zoffset);
    /// Binds the framebuffer object, or the window's own framebuffer again.
    /// @{
    void bind(Window *win);
    void unbind(Window *win);
    /// @}

    /// GL_MAX_COLOR_ATTACHMENTS_EXT of the current context.
    Int32 getMaxBuffers(void);

    /// For callers, logging what is missing or incomplete; draw uses
    /// neither.
    /// @{
    bool extensionCheck(Window &win);
    bool checkFrameBufferStatus(Window *win);
    /// @}

  protected:
    FBOForeground(void);
    /// Copies the fields; the factory clones the prototype through it.
    FBOForeground(const FBOForeground &source);
    virtual ~FBOForeground(void);

    /// Leaves the framebuffer object alone: its context may not be current.
    virtual void onDestroy(void);

  private:
    friend class FieldContainer;
    friend class FBOForegroundBase;

    static void initMethod(void);

    /// Validates the texture in win and returns its target and GL name,
    /// generating its mipmaps first when genMipmap is given and the
    /// texture's filter uses them.
    GLenum prepareTarget(Window *win, TextureChunk *tex, void (*genMipmap)(GLenum),
                         GLuint &glId);

    void operator=(const FBOForeground &source);

    UInt32 _frameBufferIndex;
    UInt32 _restoreFrameBufferIndex;
    bool   _reinitialize;

    static UInt32 _tex3D_extension;
    static UInt32 _framebuffer_object_extension;
    static UInt32 _draw_buffers_extension;

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
};

typedef FBOForeground *FBOForegroundP;

OSG_END_NAMESPACE

#endif
