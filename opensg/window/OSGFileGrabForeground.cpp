#include <OpenSG/OSGFileGrabForeground.h>

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGImage.h>

#include <cstdio>
#include <vector>

OSG_BEGIN_NAMESPACE

FileGrabForeground::FileGrabForeground(void) : Inherited(), _ownImage(false)
{
}

FileGrabForeground::FileGrabForeground(const FileGrabForeground &source)
    : Inherited(source), _ownImage(false)
{
}

FileGrabForeground::~FileGrabForeground(void)
{
}

void FileGrabForeground::initMethod(void)
{
}

void FileGrabForeground::onDestroy(void)
{
    if(_ownImage && getImage() != NullFC)
    {
        subRefCP(getImage());
        setImage(NullFC);
    }

    _ownImage = false;

    Inherited::onDestroy();
}

void FileGrabForeground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void FileGrabForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump FileGrabForeground NI" << std::endl;
}

void FileGrabForeground::draw(DrawActionBase *action, Viewport *port)
{
    if(!getActive())
        return;

    if(getName().empty())
    {
        FWARNING(("FileGrabForeground::draw: no name ?!?\n"));
        return;
    }

    const UInt32 format = getPixelFormat() != 0 ? getPixelFormat() : UInt32(GL_RGB);

    ImagePtr img = getImage();

    if(img == NullFC)
    {
        img = Image::create();
        addRefCP(img);
        img->set(format, 1, 1);
        setImage(img);
        _ownImage = true;
    }
    else if(img->getPixelFormat() != format)
    {
        img->set(format, 1, 1);
    }

    Inherited::draw(action, port);

    // The pattern takes the frame number; the buffer grows for long names.
    std::vector<char> name(getName().size() + 64);

    int len = std::snprintf(&name[0], name.size(), getName().c_str(), getFrame());

    if(len >= Int32(name.size()))
    {
        name.resize(len + 1);
        std::snprintf(&name[0], name.size(), getName().c_str(), getFrame());
    }

    if(!img->write(&name[0]))
        FWARNING(("FileGrabForeground::draw: could not write %s\n", &name[0]));

    if(getIncrement())
        setFrame(getFrame() + 1);
}

OSG_END_NAMESPACE
