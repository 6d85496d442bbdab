#include <OpenSG/OSGForegroundGroup.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

ForegroundGroup::ForegroundGroup(void) : Inherited()
{
}

ForegroundGroup::ForegroundGroup(const ForegroundGroup &source) : Inherited(source)
{
}

ForegroundGroup::~ForegroundGroup(void)
{
}

void ForegroundGroup::initMethod(void)
{
}

void ForegroundGroup::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ForegroundGroup::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ForegroundGroup NI" << std::endl;
}

void ForegroundGroup::draw(DrawActionBase *action, Viewport *port)
{
    if(!getActive())
        return;

    // A member may change the list while it draws, so its size is read anew
    // for every entry.
    for(UInt32 i = 0; i < getForegrounds().size(); ++i)
    {
        ForegroundPtr fg = getForegrounds(i);

        if(fg != NullFC)
            fg->draw(action, port);
    }
}

OSG_END_NAMESPACE
