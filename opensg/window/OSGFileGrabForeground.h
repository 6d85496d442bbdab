/// Grabs the viewport each frame and writes the image to a file whose name
/// is `name` used as a printf pattern with `frame` as its argument
/// ("shot%04d.png"); the suffix picks the file type. `frame` counts up
/// after each write while `increment` is on.
#ifndef _OSGFILEGRABFOREGROUND_H_
#define _OSGFILEGRABFOREGROUND_H_

#include <OpenSG/OSGFileGrabForegroundBase.h>

OSG_BEGIN_NAMESPACE

class FileGrabForeground : public FileGrabForegroundBase
{
  private:
    typedef FileGrabForegroundBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void draw(DrawActionBase *action, Viewport *port);

  protected:
    FileGrabForeground(void);
    FileGrabForeground(const FileGrabForeground &source);
    virtual ~FileGrabForeground(void);

    /// Drops the image this foreground made for itself.
    virtual void onDestroy(void);

  private:
    friend class FieldContainer;
    friend class FileGrabForegroundBase;

    static void initMethod(void);

    /// The image was created here (and holds a reference of ours).
    bool _ownImage;

    void operator=(const FileGrabForeground &source);
};

typedef FileGrabForeground *FileGrabForegroundP;

OSG_END_NAMESPACE

#endif
