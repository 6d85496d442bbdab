#include <OpenSG/OSGVolumeNode.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

VolumeNode::VolumeNode(void) : Inherited()
{
}

VolumeNode::VolumeNode(const VolumeNode &source) : Inherited(source)
{
}

VolumeNode::~VolumeNode(void)
{
}

void VolumeNode::initMethod(void)
{
}

void VolumeNode::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void VolumeNode::dump(UInt32, const BitVector) const
{
    SLOG << "Dump VolumeNode NI" << std::endl;
}

OSG_END_NAMESPACE
