#include <OpenSG/OSGPBOGrabForeground.h>

#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGWindow.h>

#include <cstring>

OSG_BEGIN_NAMESPACE

UInt32 PBOGrabForeground::_glVBOExtension           = Window::invalidExtensionID;
UInt32 PBOGrabForeground::_glPBOExtension           = Window::invalidExtensionID;
UInt32 PBOGrabForeground::_funcGenBuffers           = Window::invalidFunctionID;
UInt32 PBOGrabForeground::_funcDeleteBuffers        = Window::invalidFunctionID;
UInt32 PBOGrabForeground::_funcBindBuffer           = Window::invalidFunctionID;
UInt32 PBOGrabForeground::_funcBufferData           = Window::invalidFunctionID;
UInt32 PBOGrabForeground::_funcBufferSubData        = Window::invalidFunctionID;
UInt32 PBOGrabForeground::_funcGetBufferParameteriv = Window::invalidFunctionID;
UInt32 PBOGrabForeground::_funcMapBuffer            = Window::invalidFunctionID;
UInt32 PBOGrabForeground::_funcUnmapBuffer          = Window::invalidFunctionID;

namespace
{

template <class FuncT>
FuncT pboFunc(Window *win, UInt32 id)
{
    return reinterpret_cast<FuncT>(win->getFunction(id));
}

/// What a read-back needs to know about where the pixels come from.
struct GrabSource
{
    Int32  width;
    Int32  height;
    UInt32 pixelFormat;
    Int32  dataType;
};

/// Starts the read of w x h pixels of the port (target GL_NONE), or of the
/// whole level 0 of the texture, into dst: an offset into the bound pack
/// buffer or a pointer.
void readPixels(Viewport *port, GLenum target, GLuint texId, const ImagePtr &img,
                Int32 w, Int32 h, void *dst)
{
    if(target == GL_NONE)
    {
        glReadPixels(port->getPixelLeft(), port->getPixelBottom(), w, h,
                     img->getPixelFormat(), img->getDataType(), dst);
    }
    else
    {
        glBindTexture(target, texId);
        glGetTexImage(target, 0, img->getPixelFormat(), img->getDataType(), dst);
        glBindTexture(target, 0);
    }
}

/// Whether level 0 of the texture fits into size bytes of img's format:
/// glGetTexImage always writes the whole level.
bool textureFits(GLenum target, GLuint texId, const ImagePtr &img, UInt32 size)
{
    GLint tw = 0, th = 0, td = 1;

    glBindTexture(target, texId);
    glGetTexLevelParameteriv(target, 0, GL_TEXTURE_WIDTH, &tw);
    glGetTexLevelParameteriv(target, 0, GL_TEXTURE_HEIGHT, &th);
    if(target == GL_TEXTURE_3D)
        glGetTexLevelParameteriv(target, 0, GL_TEXTURE_DEPTH, &td);
    glBindTexture(target, 0);

    return UInt64(tw) * UInt64(th) * UInt64(td) * UInt64(img->getBpp()) <= UInt64(size);
}

} // namespace

PBOGrabForeground::PBOGrabForeground(void)
    : Inherited(), _bufferSize(0), _currentPBO(0), _pboIds()
{
}

PBOGrabForeground::PBOGrabForeground(const PBOGrabForeground &source)
    : Inherited(source), _bufferSize(0), _currentPBO(0), _pboIds()
{
}

PBOGrabForeground::~PBOGrabForeground(void)
{
    // The buffers belong to the GL context and live as long as it does.
}

void PBOGrabForeground::initMethod(void)
{
    _glVBOExtension = Window::registerExtension("GL_ARB_vertex_buffer_object");
    _glPBOExtension = Window::registerExtension("GL_ARB_pixel_buffer_object");

    const Int32 vbo = Int32(_glVBOExtension);

    _funcGenBuffers           = Window::registerFunction("glGenBuffersARB", vbo, 65535);
    _funcDeleteBuffers        = Window::registerFunction("glDeleteBuffersARB", vbo, 65535);
    _funcBindBuffer           = Window::registerFunction("glBindBufferARB", vbo, 65535);
    _funcBufferData           = Window::registerFunction("glBufferDataARB", vbo, 65535);
    _funcBufferSubData        = Window::registerFunction("glBufferSubDataARB", vbo, 65535);
    _funcGetBufferParameteriv = Window::registerFunction("glGetBufferParameterivARB", vbo, 65535);
    _funcMapBuffer            = Window::registerFunction("glMapBufferARB", vbo, 65535);
    _funcUnmapBuffer          = Window::registerFunction("glUnmapBufferARB", vbo, 65535);
}

void PBOGrabForeground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PBOGrabForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PBOGrabForeground NI" << std::endl;
}

bool PBOGrabForeground::pbosReady(Window *win, UInt32 size)
{
    if(_glPBOExtension == UInt32(Window::invalidExtensionID))
        return false;

    const Int32 numPBOs = getNumPBOs();

    if(Int32(_pboIds.size()) == numPBOs && _bufferSize == size)
        return true;

    PFNGLGENBUFFERSARBPROC    genBuffers    = pboFunc<PFNGLGENBUFFERSARBPROC>(win, _funcGenBuffers);
    PFNGLDELETEBUFFERSARBPROC deleteBuffers = pboFunc<PFNGLDELETEBUFFERSARBPROC>(win, _funcDeleteBuffers);
    PFNGLBINDBUFFERARBPROC    bindBuffer    = pboFunc<PFNGLBINDBUFFERARBPROC>(win, _funcBindBuffer);
    PFNGLBUFFERDATAARBPROC    bufferData    = pboFunc<PFNGLBUFFERDATAARBPROC>(win, _funcBufferData);

    // A context without the entry points reads straight into the image.
    if(genBuffers == NULL || deleteBuffers == NULL || bindBuffer == NULL || bufferData == NULL)
        return false;

    if(!_pboIds.empty())
    {
        deleteBuffers(GLsizei(_pboIds.size()), &_pboIds[0]);
        _currentPBO = -1;
        _bufferSize = 0;
        _pboIds.clear();
    }

    if(numPBOs <= 0)
        return true;

    _pboIds.resize(numPBOs);
    genBuffers(GLsizei(numPBOs), &_pboIds[0]);

    for(UInt32 i = 0; i < _pboIds.size(); ++i)
    {
        bindBuffer(GL_PIXEL_PACK_BUFFER_ARB, _pboIds[i]);
        bufferData(GL_PIXEL_PACK_BUFFER_ARB, GLsizeiptrARB(size), NULL, GL_STREAM_READ_ARB);
    }

    bindBuffer(GL_PIXEL_PACK_BUFFER_ARB, 0);

    _currentPBO = 0;
    _bufferSize = size;

    return true;
}

void PBOGrabForeground::draw(DrawActionBase *action, Viewport *port)
{
    if(!getActive() || getImage() == NullFC)
        return;

    if(action == NULL || port == NULL || action->getWindow() == NULL)
        return;

    Window         *win = action->getWindow();
    ImagePtr        img = getImage();
    TextureChunkPtr tex = getSourceTexture();

    GrabSource src;

    if(tex != NullFC)
    {
        ImagePtr texImg = tex->getImage();

        // A texture without an image has nothing to read.
        if(texImg == NullFC)
            return;

        src.width       = osgMax(2, texImg->getWidth());
        src.height      = osgMax(2, texImg->getHeight());
        src.pixelFormat = texImg->getPixelFormat();
        src.dataType    = texImg->getDataType();
    }
    else
    {
        src.width       = osgMax(2, port->getPixelWidth());
        src.height      = osgMax(2, port->getPixelHeight());
        src.pixelFormat = GL_RGBA;
        src.dataType    = GL_UNSIGNED_BYTE;
    }

    const bool sizeOk = !getAutoResize() ||
                        (img->getWidth() == src.width && img->getHeight() == src.height);

    if(img->getWidth() < 2 || img->getHeight() < 2 || !sizeOk ||
       img->getPixelFormat() != src.pixelFormat || img->getDataType() != src.dataType)
    {
        img->set(src.pixelFormat, src.width, src.height, img->getDepth(),
                 img->getMipMapCount(), img->getFrameCount(), img->getFrameDelay(), NULL,
                 src.dataType, true, img->getSideCount());
    }

    GLenum target = GL_NONE;
    GLuint texId  = 0;

    if(tex != NullFC)
    {
        target = tex->getTarget();
        if(target == GL_NONE)
            target = tex->getImage()->getDepth() < 2 ? GL_TEXTURE_2D : GL_TEXTURE_3D;
        texId = win->getGLObjectId(tex->getGLId());
    }

    const Int32  w    = osgMin(img->getWidth(), src.width);
    const Int32  h    = osgMin(img->getHeight(), src.height);
    const UInt32 size = img->calcMipmapSumSize(1);

    // An image the source's format can't be stored in has no room to read to.
    if(size == 0)
        return;

    bool rowLength = false;

    if(w != src.width)
    {
        glPixelStorei(GL_PACK_ROW_LENGTH, w);
        rowLength = true;
    }

    // An empty ring has no buffer to read into: that is the direct path too.
    if(pbosReady(win, size) && !_pboIds.empty() && _currentPBO >= 0)
    {
        PFNGLBINDBUFFERARBPROC  bindBuffer  = pboFunc<PFNGLBINDBUFFERARBPROC>(win, _funcBindBuffer);
        PFNGLMAPBUFFERARBPROC   mapBuffer   = pboFunc<PFNGLMAPBUFFERARBPROC>(win, _funcMapBuffer);
        PFNGLUNMAPBUFFERARBPROC unmapBuffer = pboFunc<PFNGLUNMAPBUFFERARBPROC>(win, _funcUnmapBuffer);

        const Int32 next = (_currentPBO + 1) % Int32(_pboIds.size());

        bindBuffer(GL_PIXEL_PACK_BUFFER_ARB, _pboIds[_currentPBO]);
        readPixels(port, target, texId, img, w, h, NULL);

        // The buffer next in the ring was filled numPBOs - 1 frames ago (or
        // just now with a ring of one).
        bindBuffer(GL_PIXEL_PACK_BUFFER_ARB, _pboIds[next]);

        const UInt8 *mapped = (mapBuffer != NULL && unmapBuffer != NULL)
                                  ? static_cast<const UInt8 *>(
                                        mapBuffer(GL_PIXEL_PACK_BUFFER_ARB, GL_READ_ONLY_ARB))
                                  : NULL;

        if(mapped != NULL)
        {
            // setData copies every frame, side and level; the buffer holds
            // level 0 of one of them only.
            if(img->getSize() == _bufferSize)
                img->setData(mapped);
            else
                std::memcpy(img->getData(), mapped, _bufferSize);

            unmapBuffer(GL_PIXEL_PACK_BUFFER_ARB);
        }

        bindBuffer(GL_PIXEL_PACK_BUFFER_ARB, 0);

        _currentPBO = next;
    }
    else if(img->getData() != NULL &&
            (target == GL_NONE || textureFits(target, texId, img, size)))
    {
        readPixels(port, target, texId, img, w, h, img->getData());
    }

    beginEditCP(img, Image::PixelFieldMask);
    endEditCP(img, Image::PixelFieldMask);

    if(rowLength)
        glPixelStorei(GL_PACK_ROW_LENGTH, 0);
}

OSG_END_NAMESPACE
