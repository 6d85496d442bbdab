/// Test filter: its shader writes 1 - the grabbed colour (alpha 1) in the
/// read-back group named by `group`; createFilter and updateFilter calls
/// are counted.
#ifndef _OSGDISPLAYFILTERTESTINVERTER_H_
#define _OSGDISPLAYFILTERTESTINVERTER_H_

#include <OpenSG/OSGDisplayFilterTestInverterBase.h>
#include <OpenSG/OSGSHLChunk.h>

OSG_BEGIN_NAMESPACE

class DisplayFilterTestInverter : public DisplayFilterTestInverterBase
{
  private:
    typedef DisplayFilterTestInverterBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void createFilter(DisplayFilterForeground *fg, Viewport *port);
    virtual void updateFilter(Viewport *port);

    static const char *fragmentProgram(void);

    UInt32      creates;
    UInt32      updates;
    Viewport   *lastPort;
    SHLChunkPtr shader;

  protected:
    DisplayFilterTestInverter(void);
    DisplayFilterTestInverter(const DisplayFilterTestInverter &source);
    virtual ~DisplayFilterTestInverter(void);

  private:
    friend class FieldContainer;
    friend class DisplayFilterTestInverterBase;

    static void initMethod(void);

    void operator=(const DisplayFilterTestInverter &source);
};

OSG_END_NAMESPACE

#endif
