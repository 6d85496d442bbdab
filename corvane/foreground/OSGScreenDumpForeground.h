#ifndef _OSGSCREENDUMPFOREGROUND_H_
#define _OSGSCREENDUMPFOREGROUND_H_

#include <OpenSG/OSGScreenDumpForegroundBase.h>

OSG_BEGIN_NAMESPACE

/// A grab foreground that writes one frame per queued file name as PNG.
///
/// Each draw takes the first name of `filenames`, grabs the viewport into
/// `image` (made here as RGB when there is none) and writes it; the name
/// leaves the queue whether or not the file could be written. The file is
/// created (or truncated) only as a regular file and never through a
/// symbolic link at its last component: a name that is a link, a FIFO or
/// a device is skipped. Like every GrabForeground it starts inactive.
class ScreenDumpForeground : public ScreenDumpForegroundBase
{
  private:
    typedef ScreenDumpForegroundBase Inherited;

  public:
    /// Passes the edit on to the base class; no field needs more.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// One draw as the class comment describes it.
    virtual void draw(DrawActionBase *action, Viewport *port);

  protected:
    ScreenDumpForeground(void);
    /// Copies the fields; the factory clones the prototype through it.
    ScreenDumpForeground(const ScreenDumpForeground &source);
    virtual ~ScreenDumpForeground(void);

    /// Releases the image this foreground made for itself.
    /// Releases the image made for an empty `image` field.
    virtual void onDestroy(void);

  private:
    friend class FieldContainer;
    friend class ScreenDumpForegroundBase;

    static void initMethod(void);

    void operator=(const ScreenDumpForeground &source);

    /// The image draw made when `image` was empty; the field counts no
    /// reference, so this one holds it.
    ImagePtr _ownImage;
};

typedef ScreenDumpForeground *ScreenDumpForegroundP;

OSG_END_NAMESPACE

#endif
