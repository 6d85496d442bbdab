#include <OpenSG/OSGGroup.h>

OSG_BEGIN_NAMESPACE

Group::Group(void) : Inherited()
{
}

Group::Group(const Group &source) : Inherited(source)
{
}

Group::~Group(void)
{
}

void Group::initMethod(void)
{
}

void Group::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Group::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    Inherited::dump(uiIndent, bvFlags);
}

OSG_END_NAMESPACE
