#include <OpenSG/OSGPermutationSHLChunk.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

PermutationSHLChunk::PermutationSHLChunk(void) : Inherited()
{
}

PermutationSHLChunk::PermutationSHLChunk(const PermutationSHLChunk &source) : Inherited(source)
{
}

PermutationSHLChunk::~PermutationSHLChunk(void)
{
}

void PermutationSHLChunk::initMethod(void)
{
}

void PermutationSHLChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PermutationSHLChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PermutationSHLChunk NI" << std::endl;
}

OSG_END_NAMESPACE
