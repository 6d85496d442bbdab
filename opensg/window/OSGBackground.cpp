#include <OpenSG/OSGBackground.h>

OSG_BEGIN_NAMESPACE

Background::Background(void) : Inherited()
{
}

Background::Background(const Background &source) : Inherited(source)
{
}

Background::~Background(void)
{
}

void Background::initMethod(void)
{
}

void Background::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Background::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Background NI" << std::endl;
}

OSG_END_NAMESPACE
