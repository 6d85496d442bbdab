#include <OpenSG/OSGScreenDumpForeground.h>

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLog.h>

#include <cerrno>
#include <sstream>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

OSG_BEGIN_NAMESPACE

namespace
{

/// Writes bytes into the regular file `name`, created or truncated, but
/// never through a symbolic link at its last component (O_NOFOLLOW) and
/// never into a FIFO or device: a screen dump must not overwrite what the
/// link points at. False when the file can't be written.
bool writeRegularFile(const std::string &name, const std::string &bytes)
{
    const int fd = ::open(name.c_str(),
                          O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC,
                          0666);
    if(fd < 0)
        return false;

    struct stat info;
    bool        ok = ::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) &&
              ::ftruncate(fd, 0) == 0;

    for(size_t done = 0; ok && done < bytes.size();)
    {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if(n < 0 && errno == EINTR)
            continue;
        ok = n > 0;
        if(ok)
            done += size_t(n);
    }
    return ::close(fd) == 0 && ok;
}

} // namespace

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
        // The writer's answer is not looked at: a screen dump is best effort.
        // The PNG is made first, so that a file is only created for it.
        std::ostringstream png;

        if(ImageFileHandler::the().write(getImage(), png, "image/png"))
            writeRegularFile(names[0], png.str());
    }

    beginEditCP(thisP, FilenamesFieldMask);
    names.erase(names.begin());
    endEditCP(thisP, FilenamesFieldMask);
}

OSG_END_NAMESPACE
