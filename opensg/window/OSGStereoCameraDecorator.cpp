#include <OpenSG/OSGStereoCameraDecorator.h>

OSG_BEGIN_NAMESPACE

StereoCameraDecorator::StereoCameraDecorator(void) : Inherited()
{
}

StereoCameraDecorator::StereoCameraDecorator(const StereoCameraDecorator &source) : Inherited(source)
{
}

StereoCameraDecorator::~StereoCameraDecorator(void)
{
}

void StereoCameraDecorator::initMethod(void)
{
}

void StereoCameraDecorator::changed(BitVector, UInt32)
{
    // an eye switch concerns nobody further up
}

void StereoCameraDecorator::dump(UInt32, const BitVector) const
{
    SLOG << "Dump StereoCameraDecorator NI" << std::endl;
}

OSG_END_NAMESPACE
