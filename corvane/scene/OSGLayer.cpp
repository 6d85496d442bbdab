#include <OpenSG/OSGLayer.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

Layer::Layer(void) : Inherited()
{
}

Layer::Layer(const Layer &source) : Inherited(source)
{
}

Layer::~Layer(void)
{
}

void Layer::initMethod(void)
{
}

void Layer::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Layer::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Layer NI" << std::endl;
}

OSG_END_NAMESPACE
