// Every host-core addition used once, the way library code could slip: the
// API check must find each (never compiled; read by check_library_api.py).
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGSceneFileHandler.h>

OSG_USING_NAMESPACE

ImagePtr makeImage(void);

void attach(TextureChunkPtr tex, const ImagePtr &image)
{
    tex->setImage(image);
}

void fill(TextureChunkPtr tex, SHLChunkPtr shl)
{
    ImagePtr image = makeImage();
    image->editData()[0] = 1;
    tex->setImage(makeImage());
    if(shl->hasUniformParameter("scale"))
        shl->subUniformParameter("scale");
    unsigned short half = Real16::fromFloat(0.5f);
    if(!glErr("fill"))
        half = 0;
}

Int32 firstVertex(TriangleIterator &it)
{
    return it.getPrimitiveIterator().getVertexIndex(0);
}

void MyTransform::initMethod(void)
{
    registerFunctors(getClassType());
}

void limitScenes(void)
{
    SceneFileHandler::the().setMaxTriangles(1000000);
}
