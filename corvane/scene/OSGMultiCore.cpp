#include <OpenSG/OSGMultiCore.h>

OSG_BEGIN_NAMESPACE

MultiCore::MultiCore(void) : Inherited()
{
}

MultiCore::MultiCore(const MultiCore &source) : Inherited(source)
{
}

MultiCore::~MultiCore(void)
{
}

void MultiCore::initMethod(void)
{
}

void MultiCore::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

// The one type without a line of its own: it dumps as the group it is.
void MultiCore::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    Group::dump(uiIndent, bvFlags);
}

OSG_END_NAMESPACE
