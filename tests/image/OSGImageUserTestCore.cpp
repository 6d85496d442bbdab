#include <OpenSG/OSGImageUserTestCore.h>

OSG_BEGIN_NAMESPACE

ImageUserTestCore::ImageUserTestCore(void) : Inherited()
{
}

ImageUserTestCore::ImageUserTestCore(const ImageUserTestCore &source)
    : Inherited(source)
{
}

ImageUserTestCore::~ImageUserTestCore(void)
{
}

void ImageUserTestCore::initMethod(void)
{
}

void ImageUserTestCore::changed(BitVector whichField, UInt32 origin)
{
    changedCalls.push_back(ChangedCall(whichField, origin));
    Inherited::changed(whichField, origin);
}

void ImageUserTestCore::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ImageUserTestCore NI" << std::endl;
}

OSG_END_NAMESPACE
