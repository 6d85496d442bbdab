#ifndef _OSGFOREGROUNDGROUP_H_
#define _OSGFOREGROUNDGROUP_H_

#include <OpenSG/OSGForegroundGroupBase.h>

OSG_BEGIN_NAMESPACE

/// A foreground that draws a list of foregrounds one after the other.
class ForegroundGroup : public ForegroundGroupBase
{
  private:
    typedef ForegroundGroupBase Inherited;

  public:
    /// Passes the edit on to the base class; no field needs more.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Draws each member in list order; each member tests its own active flag.
    virtual void draw(DrawActionBase *action, Viewport *port);

  protected:
    ForegroundGroup(void);
    /// Copies the fields; the factory clones the prototype through it.
    ForegroundGroup(const ForegroundGroup &source);
    virtual ~ForegroundGroup(void);

  private:
    friend class FieldContainer;
    friend class ForegroundGroupBase;

    static void initMethod(void);

    void operator=(const ForegroundGroup &source);
};

typedef ForegroundGroup *ForegroundGroupP;

OSG_END_NAMESPACE

#endif
