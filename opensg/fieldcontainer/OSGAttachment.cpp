#include <OpenSG/OSGAttachment.h>

#include <algorithm>
#include <ostream>

OSG_BEGIN_NAMESPACE

Attachment::Attachment(void) : Inherited()
{
}

Attachment::Attachment(const Attachment &source) : Inherited(source)
{
    _mfParents.clear();
}

Attachment::~Attachment(void)
{
}

void Attachment::initMethod(void)
{
}

void Attachment::addParent(FieldContainerPtr parent)
{
    _mfParents.push_back(parent);
}

void Attachment::subParent(FieldContainerPtr parent)
{
    MFFieldContainerPtr::iterator it = _mfParents.find(parent);
    if(it != _mfParents.end())
        _mfParents.erase(it);
}

Int32 Attachment::findParent(FieldContainerPtr parent)
{
    MFFieldContainerPtr::iterator it = _mfParents.find(parent);
    return it != _mfParents.end() ? Int32(it - _mfParents.begin()) : -1;
}

void Attachment::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Attachment::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Attachment NI" << std::endl;
}

std::ostream &operator<<(std::ostream &os, const AttachmentPtr &fc)
{
    writePtr(os, "NodePtr", fc); // OpenSG prints every hand-written pointer this way
    return os;
}

OSG_END_NAMESPACE
