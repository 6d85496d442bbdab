#include <OpenSG/OSGWrappingTestCameraDecorator.h>

OSG_BEGIN_NAMESPACE

WrappingTestCameraDecorator::WrappingTestCameraDecorator(void) : Inherited()
{
}

WrappingTestCameraDecorator::WrappingTestCameraDecorator(
    const WrappingTestCameraDecorator &source)
    : Inherited(source)
{
}

WrappingTestCameraDecorator::~WrappingTestCameraDecorator(void)
{
}

void WrappingTestCameraDecorator::initMethod(void)
{
}

void WrappingTestCameraDecorator::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void WrappingTestCameraDecorator::dump(UInt32, const BitVector) const
{
    SLOG << "Dump WrappingTestCameraDecorator NI" << std::endl;
}

OSG_END_NAMESPACE
