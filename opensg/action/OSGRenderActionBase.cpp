#include <OpenSG/OSGRenderActionBase.h>

OSG_BEGIN_NAMESPACE

RenderActionBase::RenderActionBase(void) : DrawActionBase()
{
}

RenderActionBase::RenderActionBase(const RenderActionBase &source) : DrawActionBase(source)
{
}

RenderActionBase::~RenderActionBase(void)
{
}

OSG_END_NAMESPACE
