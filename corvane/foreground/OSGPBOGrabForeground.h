#ifndef _OSGPBOGRABFOREGROUND_H_
#define _OSGPBOGRABFOREGROUND_H_

#include <OpenSG/OSGPBOGrabForegroundBase.h>
#include <OpenSG/OSGGL.h>

#include <vector>

OSG_BEGIN_NAMESPACE

class Window;

/// A grab foreground that reads back through a ring of pixel buffer objects.
///
/// Each draw starts the read-back of the viewport (or of `sourceTexture`)
/// into one buffer of the ring and copies the buffer next in the ring into
/// `image`: with `numPBOs` N the image shows the frame drawn N - 1 frames
/// ago, and with N of at least 2 the read-back doesn't stall the CPU.
/// Without pixel buffer objects the pixels are read straight into the image.
/// Like every GrabForeground it starts inactive.
class PBOGrabForeground : public PBOGrabForegroundBase
{
  private:
    typedef PBOGrabForegroundBase Inherited;

  public:
    /// Passes the edit on to the base class; no field needs more.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// One draw as the class comment describes it.
    virtual void draw(DrawActionBase *action, Viewport *port);

    /// Makes the ring match `numPBOs` buffers of size bytes, rebuilding it
    /// when either changed; false when pixel buffer objects can't be used.
    /// A ring of 0 buffers counts as ready.
    bool pbosReady(Window *win, UInt32 size);

  protected:
    PBOGrabForeground(void);
    /// Copies the fields; the factory clones the prototype through it.
    PBOGrabForeground(const PBOGrabForeground &source);
    virtual ~PBOGrabForeground(void);

  private:
    friend class FieldContainer;
    friend class PBOGrabForegroundBase;

    static void initMethod(void);

    void operator=(const PBOGrabForeground &source);

    UInt32              _bufferSize;
    Int32               _currentPBO;
    std::vector<GLuint> _pboIds;

    static UInt32 _glVBOExtension;
    static UInt32 _glPBOExtension;
    static UInt32 _funcGenBuffers;
    static UInt32 _funcDeleteBuffers;
    static UInt32 _funcBindBuffer;
    static UInt32 _funcBufferData;
    static UInt32 _funcBufferSubData;
    static UInt32 _funcGetBufferParameteriv;
    static UInt32 _funcMapBuffer;
    static UInt32 _funcUnmapBuffer;
};

typedef PBOGrabForeground *PBOGrabForegroundP;

OSG_END_NAMESPACE

#endif
