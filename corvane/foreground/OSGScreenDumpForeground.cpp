#include <OpenSG/OSGScreenDumpForeground.h>

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLog.h>

#include <fstream>

OSG_BEGIN_NAMESPACE

ScreenDumpForeground::ScreenDumpForeground(void) : Inherited(), _ownImage(NullFC)
{
}

ScreenDumpForeground::ScreenDumpForeground(const ScreenDumpForeground &source)
    : Inherited(source), _ownImage(NullFC)
{
}

ScreenDumpForeground::~ScreenDumpForeground(void)
{
}

void ScreenDumpForeground::initMethod(void)
{
}

void ScreenDumpForeground::onDestroy(void)
{
    if(_ownImage != NullFC)
    {
        subRefCP(_ownImage);
        _ownImage = NullFC;
    }

    Inherited::onDestroy();
}

void ScreenDumpForeground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ScreenDumpForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ScreenDumpForeground NI" << std::endl;
}

void ScreenDumpForeground::draw(DrawActionBase *action, Viewport *port)
{
    if(!getActive() || getMFFilenames()->empty())
        return;

    ScreenDumpForegroundPtr thisP(this);

    if(getImage() == NullFC)
    {
        // A 1 x 1 image grows to the viewport's size in the grab.
        ImagePtr img = Image::create();
        addRefCP(img);
        img->set(GL_RGB, 1, 1, 1, 1, 1, 0.0, NULL, GL_UNSIGNED_BYTE, true, 1);

        if(_ownImage != NullFC)
            subRefCP(_ownImage);
        _ownImage = img;

        beginEditCP(thisP, ImageFieldMask);
        setImage(img);
        endEditCP(thisP, ImageFieldMask);
    }

    Inherited::draw(action, port);

    MFString &names = *getMFFilenames();

    {
        std::ofstream out(names[0].c_str(), std::ios::out | std::ios::binary);

        // The writer's answer is not looked at: a screen dump is best effort.
        if(out.is_open())
            ImageFileHandler::the().write(getImage(), out, "image/png");
    }

    beginEditCP(thisP, FilenamesFieldMask);
    names.erase(names.begin());
    endEditCP(thisP, FilenamesFieldMask);
}

OSG_END_NAMESPACE
