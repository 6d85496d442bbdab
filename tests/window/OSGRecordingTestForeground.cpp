#include <OpenSG/OSGRecordingTestForeground.h>

#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGWindow.h>

OSG_BEGIN_NAMESPACE

RecordingTestForeground::RecordingTestForeground(void) : Inherited()
{
}

RecordingTestForeground::RecordingTestForeground(
    const RecordingTestForeground &source) :
    Inherited(source)
{
}

RecordingTestForeground::~RecordingTestForeground(void)
{
}

void RecordingTestForeground::initMethod(void)
{
}

std::vector<RecordingTestForeground::DrawCall> &
RecordingTestForeground::drawLog(void)
{
    static std::vector<DrawCall> log;
    return log;
}

void RecordingTestForeground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void RecordingTestForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump RecordingTestForeground NI" << std::endl;
}

void RecordingTestForeground::draw(DrawActionBase *action, Viewport *port)
{
    if(!getActive())
        return;

    DrawCall call;
    call.tag     = getTag();
    call.action  = action;
    call.port    = port;
    call.scissor = glIsEnabled(GL_SCISSOR_TEST) == GL_TRUE;
    glGetIntegerv(GL_SCISSOR_BOX, call.scissorBox);

    drawLog().push_back(call);
}

void RecordingTestForeground::handleGL(Window *win, UInt32 idstatus)
{
    UInt32                  id;
    Window::GLObjectStatusE status;
    Window::unpackIdStatus(idstatus, id, status);

    glCalls.push_back(GLCall{win, id, UInt32(status)});
}

OSG_END_NAMESPACE
