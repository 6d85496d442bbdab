#include <OpenSG/OSGVolumeViewport.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

VolumeViewport::VolumeViewport(void) : Inherited()
{
}

VolumeViewport::VolumeViewport(const VolumeViewport &source) : Inherited(source)
{
}

VolumeViewport::~VolumeViewport(void)
{
}

void VolumeViewport::initMethod(void)
{
}

void VolumeViewport::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void VolumeViewport::dump(UInt32, const BitVector) const
{
    SLOG << "Dump VolumeViewport NI" << std::endl;
}

OSG_END_NAMESPACE
