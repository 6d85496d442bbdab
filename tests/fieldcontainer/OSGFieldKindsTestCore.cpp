#include <OpenSG/OSGFieldKindsTestCore.h>

OSG_BEGIN_NAMESPACE

UInt32 FieldKindsTestCore::destroyedCount = 0;

FieldKindsTestCore::FieldKindsTestCore(void) : Inherited()
{
}

FieldKindsTestCore::FieldKindsTestCore(const FieldKindsTestCore &source) : Inherited(source)
{
}

FieldKindsTestCore::~FieldKindsTestCore(void)
{
}

void FieldKindsTestCore::initMethod(void)
{
}

void FieldKindsTestCore::onDestroy(void)
{
    ++destroyedCount;
    Inherited::onDestroy();
}

void FieldKindsTestCore::changed(BitVector whichField, UInt32 origin)
{
    changedCalls.push_back(ChangedCall(whichField, origin));
    Inherited::changed(whichField, origin);
}

void FieldKindsTestCore::dump(UInt32, const BitVector) const
{
    SLOG << "Dump FieldKindsTestCore NI" << std::endl;
}

OSG_END_NAMESPACE
