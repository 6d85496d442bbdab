#include <OpenSG/OSGPassiveBackground.h>

OSG_BEGIN_NAMESPACE

PassiveBackground::PassiveBackground(void) : Inherited()
{
}

PassiveBackground::PassiveBackground(const PassiveBackground &source) : Inherited(source)
{
}

PassiveBackground::~PassiveBackground(void)
{
}

void PassiveBackground::initMethod(void)
{
}

void PassiveBackground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PassiveBackground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PassiveBackground NI" << std::endl;
}

void PassiveBackground::clear(DrawActionBase *, Viewport *)
{
}

OSG_END_NAMESPACE
