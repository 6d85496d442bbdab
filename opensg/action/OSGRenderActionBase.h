/// RenderActionBase: the type windows and viewports render with.
#ifndef _OSGRENDERACTIONBASE_H_
#define _OSGRENDERACTIONBASE_H_

#include <OpenSG/OSGDrawActionBase.h>

OSG_BEGIN_NAMESPACE

class RenderActionBase : public DrawActionBase
{
  public:
    virtual ~RenderActionBase(void);

  protected:
    RenderActionBase(void);
    RenderActionBase(const RenderActionBase &source);

  private:
    void operator=(const RenderActionBase &source);
};

OSG_END_NAMESPACE

#endif
