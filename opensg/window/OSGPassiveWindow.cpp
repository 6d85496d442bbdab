#include <OpenSG/OSGPassiveWindow.h>

OSG_BEGIN_NAMESPACE

PassiveWindow::PassiveWindow(void) : Inherited()
{
}

PassiveWindow::PassiveWindow(const PassiveWindow &source) : Inherited(source)
{
}

PassiveWindow::~PassiveWindow(void)
{
}

void PassiveWindow::initMethod(void)
{
}

void PassiveWindow::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PassiveWindow::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PassiveWindow NI" << std::endl;
}

void PassiveWindow::init(void)
{
    setupGL();
}

// The application owns the context: it is current whenever we are called.
void PassiveWindow::activate(void)
{
}

void PassiveWindow::deactivate(void)
{
}

void PassiveWindow::swap(void)
{
}

OSG_END_NAMESPACE
