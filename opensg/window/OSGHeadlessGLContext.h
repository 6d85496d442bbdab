/// A desktop OpenGL context without a window system, on EGL.
///
/// The windows of the host core render into this context when there is no
/// display (tests, servers, batch rendering). The context has no default
/// framebuffer of its own, so it owns an off-screen framebuffer object of
/// the window's size that stands in for the window's back buffer: whoever
/// activates the window binds it with bindFramebuffer(), and everything
/// that renders "to the window" lands in it. readPixels() reads it back
/// with row 0 at the bottom, as Image keeps its rows.
///
/// Only OpenGL 1.x entry points are linked directly (libOpenGL). Anything
/// newer is looked up at run time through getProcAddress(); the window's
/// function registry does that for the rest of the host core, since the
/// pointers belong to a context and may differ from one to the next.
///
/// Nothing here throws: failures log a line and return false.
#ifndef _OSGHEADLESSGLCONTEXT_H_
#define _OSGHEADLESSGLCONTEXT_H_

#include <OpenSG/OSGBaseTypes.h>

#include <string>

OSG_BEGIN_NAMESPACE

class HeadlessGLContext
{
  public:
    HeadlessGLContext(void);
    ~HeadlessGLContext(void);

    HeadlessGLContext(const HeadlessGLContext &)            = delete;
    HeadlessGLContext &operator=(const HeadlessGLContext &) = delete;

    /// Opens an EGL display, creates a compatibility-profile desktop GL
    /// context and a framebuffer of width x height (a 0 counts as 1).
    /// On success the context is current on the calling thread, the
    /// framebuffer is bound for drawing and reading and the viewport covers
    /// it. Platform order: an EGL device that is not a software renderer,
    /// then Mesa's surfaceless platform, then the default display (and the
    /// software device last). CORVANE_EGL_PLATFORM=device|surfaceless|default
    /// restricts the choice to one platform.
    bool init(UInt32 width, UInt32 height);

    bool isInitialized(void) const;

    /// Makes the context current on the calling thread. It does not touch
    /// GL state: the framebuffer binding is part of the context and stays
    /// as it was left.
    bool makeCurrent(void);

    /// Releases the context from the calling thread if it is current there.
    void release(void);

    bool isCurrent(void) const;

    /// There is nothing to present; finishes the frame (glFinish).
    void swap(void);

    /// Reallocates the framebuffer's storage (contents become undefined; a
    /// 0 counts as 1).
    /// The context must be current. The binding and the viewport are not
    /// changed.
    bool resize(UInt32 width, UInt32 height);

    /// Binds the framebuffer for drawing and reading. The context must be
    /// current.
    bool bindFramebuffer(void);

    /// The GL name of the framebuffer object (0 before init).
    UInt32 getFramebufferId(void) const;

    UInt32 getWidth(void) const;
    UInt32 getHeight(void) const;

    /// eglGetProcAddress; null for an unknown name.
    void *getProcAddress(const char *name) const;

    /// Reads a rectangle of the framebuffer, rows bottom to top, tightly
    /// packed (pack alignment 1). The context must be current; the read
    /// binding and the pack alignment are restored afterwards.
    bool readPixels(UInt32 x,
                    UInt32 y,
                    UInt32 width,
                    UInt32 height,
                    GLenum format,
                    GLenum type,
                    void  *dst);

    /// GL_RENDERER and GL_VERSION of the context ("" before init).
    const char *getRenderer(void) const;
    const char *getVersion(void) const;

    /// "device", "surfaceless" or "default" ("" before init).
    const char *getPlatformName(void) const;

    /// True when the context runs without any EGL surface (the normal
    /// case), false when it needed a pbuffer to become current.
    bool isSurfaceless(void) const;

    /// Whether EGL gives a desktop OpenGL context on this machine at all.
    /// Probes once per process; the calling thread's current context is left
    /// as it was.
    static bool isAvailable(void);

  private:
    struct FramebufferFuncs;

    bool open(UInt32 width, UInt32 height, bool framebuffer);
    bool createContext(void *display);
    bool createFramebuffer(void);
    void *createPbuffer(void *display, void *config, UInt32 width, UInt32 height);
    bool allocateStorage(UInt32 width, UInt32 height);
    void destroy(void);

    void *_display;
    void *_config;
    void *_context;
    void *_surface;

    std::string _platform;
    std::string _renderer;
    std::string _version;

    UInt32 _width;
    UInt32 _height;
    UInt32 _fbo;
    bool   _pbufferBacked;
    UInt32 _colorBuffer;
    UInt32 _depthStencilBuffer;

    FramebufferFuncs *_funcs;
};

OSG_END_NAMESPACE

#endif
