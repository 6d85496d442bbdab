#include <OpenSG/OSGForeground.h>

OSG_BEGIN_NAMESPACE

Foreground::Foreground(void) : Inherited()
{
}

Foreground::Foreground(const Foreground &source) : Inherited(source)
{
}

Foreground::~Foreground(void)
{
}

void Foreground::initMethod(void)
{
}

void Foreground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Foreground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Foreground NI" << std::endl;
}

OSG_END_NAMESPACE
